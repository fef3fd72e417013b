// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_COMMON_PORTAL_H
#define ORV_COMMON_PORTAL_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvReturn.h"

#include <type_traits>

struct OrvOamSpiManagedObject_3;
struct VekOamSpiManagedObject_3_1;
struct VekOamSpiModelRepository_4;
struct VekMgmtSpiThreadContext_2;

namespace Orv {

/// The process's one way to look interfaces up without holding a portal table, with a cached
/// pointer for each of the four tables that are asked for in this way.
///
/// The cache goes by the type of the table, not by identity: while it is valid the first answer
/// for a type stands for all identities of that type.
///
/// Threads: attach and detach belong to the host, at a time when no component is started. Lookups
/// are made from a component's start and from the initialisation of interceptors, one at a time.
class Portal {
public:
    /// The host's lookup. On OrvOk the table is in `*result`, owned by whoever offers it.
    using LookupFn = OrvReturnT (*)(VekMgmtSpiInterface_1 id, void** result);

    /// The one object. Owned by the library; never null.
    static Portal* instance();

    Portal(const Portal&) = delete;
    Portal& operator=(const Portal&) = delete;

    /// The table that is offered under \p id, or null. A failed lookup is logged at level 4 as
    /// "Interface %s not found". \p Table is one of the four types with a cached pointer.
    template <class Table>
    Table* getInterface(const VekMgmtSpiInterface_1& id) {
        Table*& cached = cachedPointer<Table>();
        if (cached != nullptr && mCacheValid) {
            return cached;
        }
        if (mLookup != nullptr && lookUp(id, cached) == OrvOk) {
            return cached;
        }
        logNotFound(id.interfaceName);
        return nullptr;
    }

    /// The host's lookup as it is, without the cache; null while no host is attached.
    LookupFn lookup() const;

    /// Host only: sets the lookup, empties the cache and declares it valid.
    void attach(LookupFn lookup);

    /// Host only: drops the lookup and all cached pointers.
    void detach();

private:
    Portal() = default;
    ~Portal() = default;

    template <class Table>
    Table*& cachedPointer() {
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

    // What the host's lookup writes goes into the cache, whatever its code says.
    template <class Table>
    OrvReturnT lookUp(const VekMgmtSpiInterface_1& id, Table*& cached) {
        void* found = cached;
        const OrvReturnT code = mLookup(id, &found);
        cached = static_cast<Table*>(found);
        return code;
    }

    // Out of line, so that this header needs nothing of the logging.
    static void logNotFound(const char* interfaceName);

    OrvOamSpiManagedObject_3* mRouter3 = nullptr;
    VekOamSpiManagedObject_3_1* mRouter3_1 = nullptr;
    VekOamSpiModelRepository_4* mModelRepository = nullptr;
    VekMgmtSpiThreadContext_2* mThreadContext = nullptr;
    LookupFn mLookup = nullptr;
    bool mCacheValid = false;
};

}

#endif
