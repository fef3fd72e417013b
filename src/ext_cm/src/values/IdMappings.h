// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_IDMAPPINGS_H
#define ORV_EXT_CM_IDMAPPINGS_H

#include "MeIdTranslator.h"

#include <string>

namespace OrvExtCmRouterService {

/// Access to the translator of DNs. Clients use the external form; the router, interceptors and all
/// else that the MO operations call use the internal form.
///
/// Threads: never changes; the translator may be called from any thread.
class IdMappings {
public:
    /// Which way a DN goes.
    enum DnConversion { ToInternal = 0, ToExternal = 1 };

    /// \p translator is not owned and outlives this object.
    explicit IdMappings(Orv::MeIdTranslator* translator) : _translator(translator) {}
    IdMappings(const IdMappings&) = delete;
    IdMappings& operator=(const IdMappings&) = delete;
    virtual ~IdMappings() = default;

    /// The internal form of the external \p dn; empty if it cannot be translated.
    std::string toInternalDn(const std::string& dn) const { return _translator->toInternalDn(dn); }

    /// The external form of the internal \p dn; empty if it cannot be translated.
    std::string toExternalDn(const std::string& dn) const { return _translator->toExternalDn(dn); }

    /// One of the two.
    std::string convertDn(const std::string& dn, DnConversion direction) const {
        return direction == ToInternal ? toInternalDn(dn) : toExternalDn(dn);
    }

    /// The identity by which clients know the root at present. The text is the translator's and
    /// ends with the next change of the identity.
    const char* rootIdentity() const { return _translator->identity(); }

private:
    Orv::MeIdTranslator* _translator;
};

}

#endif
