// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_ORV_COMMON_MEIDTRANSLATOR_H
#define ORV_ORV_COMMON_MEIDTRANSLATOR_H

#include <atomic>
#include <map>
#include <mutex>
#include <string>

namespace Orv {

/// Translates DNs between the form that clients speak (external) and the form of the router
/// (internal). The two differ in the value of a `ManagedElement` at the root: clients know it by
/// its identity, the preferred one or else the fallback; inside it is always `1`. A first step of
/// the form `ManagedElement.attr=value` counts as a ManagedElement too and keeps its form. While
/// both identities are empty, as they are at first, no DN with a ManagedElement at the root can be
/// translated, and the component answers OrvNotExist for it: a host calls configure before it lets
/// clients in (OrvHostGuide.h, 3).
///
/// Any text is accepted. Steps other than the first are not looked at, and no step is checked for
/// its form. Conventions: OrvConventions.h.
///
/// Threads: every operation may be called from any thread at any time, and all but configure
/// without a lock: each client call translates its DN. They throw std::bad_alloc at most, configure
/// also lock failures as std::system_error.
class MeIdTranslator {
public:
    /// The one object. Owned by the library; never null.
    static MeIdTranslator* instance();

    MeIdTranslator(const MeIdTranslator&) = delete;
    MeIdTranslator& operator=(const MeIdTranslator&) = delete;

    /// Called with the life of a component. The identities are configured by the host and live
    /// longer than that, so there is nothing to do in either.
    void start();
    void stop();

    /// The internal form of the external `dn`; empty if it cannot be translated: its first step is
    /// of the class ManagedElement and has a value other than the identity. An empty DN gives an
    /// empty DN; a DN with another first class comes back unchanged.
    std::string toInternalDn(const std::string& dn);

    /// The external form of the internal `dn`; empty if it cannot be translated: its first step is
    /// of the class ManagedElement and has a value other than `1`. An empty DN gives an empty DN; a
    /// DN with another first class comes back unchanged.
    std::string toExternalDn(const std::string& dn);

    /// The preferred identity, or the fallback if that is empty; empty if both are, never null. The
    /// text is owned by the translator until the next configure.
    const char* identity();

    /// Host only: sets both identities. Either may be empty. Best while no component is started: a
    /// client that walks the top level holds the text of identity, and DNs that it has read before
    /// cannot be translated afterwards. Each identity that is ever set is kept, once.
    void configure(const std::string& preferred, const std::string& fallback);

private:
    MeIdTranslator();
    ~MeIdTranslator() = default;

    /// Each identity that was ever chosen, once, and whether it can be the value of a step. None is
    /// dropped, so that nobody who reads one needs a lock.
    using Identities = std::map<std::string, bool>;

    std::mutex mMutex; ///< guards mEverChosen
    Identities mEverChosen;
    std::atomic<const Identities::value_type*> mChosen; ///< the present one
};

}

#endif
