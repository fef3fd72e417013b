// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_COMMON_PORTAL_H
#define ORV_COMMON_PORTAL_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"

#include <atomic>
#include <type_traits>

struct OrvOamSpiManagedObject_3;
struct VekOamSpiManagedObject_3_1;
struct VekOamSpiModelRepository_4;
struct VekMgmtSpiThreadContext_2;

namespace Orv {

/// The process's one way to look interfaces up without holding a portal table, with a cached
/// pointer for each of the four tables that are asked for in this way.
///
/// A host must attach its lookup before it starts a component. Nothing does that by itself, and
/// ext_cm finds the model, the thread context and one of its routers only here: OrvHostGuide.h, 2.
///
/// The cache knows the type of the table, not the identity: while it is valid the first answer for
/// a type stands for all identities of that type. It outlives the stop of a component.
///
/// Conventions: OrvConventions.h.
///
/// Threads: getInterface and lookup may be called from any thread. Two lookups of one type that run
/// at once may both reach the host; either answer is good. attach and detach belong to the host, at
/// a time when no component is started.
class Portal {
public:
    /// The host's lookup: OrvMgmtSpiInterfacePortal_1::getInterface, with its contract.
    using LookupFn = OrvReturnT (*)(VekMgmtSpiInterface_1 id, void** result);

    /// The one object. Owned by the library; never null.
    static Portal* instance();

    Portal(const Portal&) = delete;
    Portal& operator=(const Portal&) = delete;

    /// The table that is offered under \p id, or null. Owned by what offers it until that is
    /// stopped. A failed lookup is logged at level 4 as "Interface %s not found"; OrvOk with a null
    /// is not logged. \p Table is one of the four types with a cached pointer. An exception of the
    /// host passes.
    template <class Table>
    Table* getInterface(const VekMgmtSpiInterface_1& id) {
        std::atomic<Table*>& cached = cachedPointer<Table>();
        Table* const known = cached;
        if (known != nullptr && mCacheValid) {
            return known;
        }
        const LookupFn hostLookup = mLookup;
        if (hostLookup != nullptr) {
            // What the host writes goes into the cache, whatever its code says.
            void* found = known;
            const OrvReturnT code = hostLookup(id, &found);
            Table* const table = static_cast<Table*>(found);
            if (table != known) {
                cached = table;
            }
            if (code == OrvOk) {
                return table;
            }
        }
        logNotFound(id.interfaceName);
        return nullptr;
    }

    /// The host's lookup as it is, without the cache; null while no host is attached.
    LookupFn lookup() const;

    /// Host only: sets the lookup, empties the cache and declares it valid. Usually the lookup is
    /// the getInterface of the host's portal. The function, and each table that it has found, must
    /// be there until detach, also while no component is started: a component that is stopped and
    /// started again gets the tables of before. To replace a table: stop, detach, attach, start.
    void attach(LookupFn hostLookup);

    /// Host only: drops the lookup and all cached pointers.
    void detach();

private:
    Portal() = default;
    ~Portal() = default;

    template <class Table>
    std::atomic<Table*>& cachedPointer() {
        if constexpr (std::is_same_v<Table, OrvOamSpiManagedObject_3>) {
            return mRouter3;
        } else if constexpr (std::is_same_v<Table, VekOamSpiManagedObject_3_1>) {
            return mRouter3_1;
        } else if constexpr (std::is_same_v<Table, VekOamSpiModelRepository_4>) {
            return mModelRepository;
        } else {
            static_assert(std::is_same_v<Table, VekMgmtSpiThreadContext_2>,
                          "the portal caches no table of this type");
            return mThreadContext;
        }
    }

    // Out of line, so that this header needs nothing of the logging.
    static void logNotFound(const char* interfaceName);

    std::atomic<OrvOamSpiManagedObject_3*> mRouter3{nullptr};
    std::atomic<VekOamSpiManagedObject_3_1*> mRouter3_1{nullptr};
    std::atomic<VekOamSpiModelRepository_4*> mModelRepository{nullptr};
    std::atomic<VekMgmtSpiThreadContext_2*> mThreadContext{nullptr};
    std::atomic<LookupFn> mLookup{nullptr};
    std::atomic<bool> mCacheValid{false};
};

}

#endif
