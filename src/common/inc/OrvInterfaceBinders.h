// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_COMMON_ORVINTERFACEBINDERS_H
#define ORV_COMMON_ORVINTERFACEBINDERS_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvMoAttributeValue.h"
#include "OrvOamSpiManagedObject_1.h"
#include "OrvOamSpiManagedObject_3.h"
#include "OrvOamSpiTransactionalResource_2.h"
#include "OrvReturn.h"
#include "VekOamSpiManagedObject_3_1.h"

#include <cstdio>
#include <cstdlib>
#include <exception>

/// \file
/// For authors of components; a host does not need it.
///
/// Binders carry a plain table call to an object. A binder owns one table, fills it with static
/// functions, and keeps the one object that serves the table in a static pointer: a table function
/// is handed no object, so there can be one serving object of a type in a process.
///
/// The serving object holds its binder as a data member and has a member function for each slot,
/// of the slot's name and arguments. A binder has no lock: `_instance` is written at construction
/// and destruction only, both outside the life of the table in the host.
///
/// The slots of a table stand in one list. It makes the static functions, each of which calls the
/// member of its own name, and the entries of the table. A slot that is missing in the list, a
/// member that is missing, or one that cannot be called with the slot's arguments does not compile.

namespace Orv {

/// The boundary of a component: runs \p call and answers OrvFailure for any std::exception, which
/// it does not report. All else that is thrown passes.
template <class Call>
OrvReturnT shielded(Call&& call) {
    try {
        return call();
    } catch (const std::exception&) {
        return OrvFailure;
    }
}

/// Makes \p served the serving object. A second one would take over a table that is in use, which
/// ends the process, in builds without assertions as well.
template <class T>
void bindOnce(T*& instance, T& served) {
    if (instance != nullptr) {
        // GCOVR_EXCL_START: tested, but a process that aborts leaves no counts
        std::fputs("Orv: second binder of a kind: assertion `!_instance' failed\n", stderr);
        std::abort();
        // GCOVR_EXCL_STOP
    }
    instance = &served;
}

}

// The slots of each table. SLOT is used once for each of them.
// clang-format off

#define ORV_TRANSACTIONAL_RESOURCE_2_SLOTS(SLOT)                                                   \
    SLOT(join)                                                                                     \
    SLOT(prepare)                                                                                  \
    SLOT(commit)                                                                                   \
    SLOT(abort)                                                                                    \
    SLOT(finish)                                                                                   \
    SLOT(validate)

#define ORV_MANAGED_OBJECT_1_SLOTS(SLOT)                                                           \
    SLOT(setMoAttribute)                                                                           \
    SLOT(getMoAttribute)                                                                           \
    SLOT(newMoIterator)                                                                            \
    SLOT(nextMo)                                                                                   \
    SLOT(createMo)                                                                                 \
    SLOT(deleteMo)                                                                                 \
    SLOT(action)

#define ORV_MANAGED_OBJECT_3_SLOTS(SLOT)                                                           \
    SLOT(setMoAttribute)                                                                           \
    SLOT(getMoAttribute)                                                                           \
    SLOT(getMoAttributes)                                                                          \
    SLOT(newMoIterator)                                                                            \
    SLOT(nextMo)                                                                                   \
    SLOT(createMo)                                                                                 \
    SLOT(deleteMo)                                                                                 \
    SLOT(action)                                                                                   \
    SLOT(finalizeMoIterator)                                                                       \
    SLOT(existsMo)                                                                                 \
    SLOT(countMoChildren)

#define ORV_MANAGED_OBJECT_3_1_SLOTS(SLOT)                                                         \
    SLOT(setMoAttributes)

// clang-format on

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are names, of slots and of types

// What each use of SLOT makes: the function of a slot, its entry in the table, and one of a count.
// The function's arguments are those of the entry that it is put into.

#define ORV_SLOT_FUNCTION(slot)                                                                    \
    template <class... Arguments>                                                                  \
    static OrvReturnT slot(Arguments... arguments) {                                               \
        return ::Orv::shielded([&] { return _instance->slot(arguments...); });                     \
    }
#define ORV_SLOT_ENTRY(slot) mInterface.slot = &slot;
#define ORV_SLOT_COUNT(slot) +1

/// Defines the class template \p Binder, which binds \p Table, whose slots \p SLOTS lists, to an
/// object of the class `T`. Its constructor copies the identity, whose texts must be constants; the
/// object must outlive the binder.
#define ORV_DEFINE_BINDER(Binder, Table, SLOTS)                                                    \
    template <class T>                                                                             \
    class Binder {                                                                                 \
    public:                                                                                        \
        Binder(const OrvMgmtSpiInterface_1& identity, T& served) {                                 \
            static_assert(sizeof(Table) ==                                                         \
                              sizeof(identity) + (0 SLOTS(ORV_SLOT_COUNT)) * sizeof(void (*)()),   \
                          "the list has each slot of the table");                                  \
            mInterface.identity = identity;                                                        \
            SLOTS(ORV_SLOT_ENTRY)                                                                  \
            ::Orv::bindOnce(_instance, served);                                                    \
        }                                                                                          \
        Binder(const Binder&) = delete;                                                            \
        Binder& operator=(const Binder&) = delete;                                                 \
        virtual ~Binder() { _instance = nullptr; }                                                 \
                                                                                                   \
        Table* getInterface() { return &mInterface; }                                              \
                                                                                                   \
    private:                                                                                       \
        SLOTS(ORV_SLOT_FUNCTION)                                                                   \
                                                                                                   \
        Table mInterface{};                                                                        \
        static inline T* _instance = nullptr;                                                      \
    };

// NOLINTEND(bugprone-macro-parentheses)

namespace Orv {

ORV_DEFINE_BINDER(TransactionalResource2Binder, OrvOamSpiTransactionalResource_2,
                  ORV_TRANSACTIONAL_RESOURCE_2_SLOTS)
ORV_DEFINE_BINDER(ManagedObject1Binder, OrvOamSpiManagedObject_1, ORV_MANAGED_OBJECT_1_SLOTS)
ORV_DEFINE_BINDER(ManagedObject3Binder, OrvOamSpiManagedObject_3, ORV_MANAGED_OBJECT_3_SLOTS)
ORV_DEFINE_BINDER(ManagedObject3_1Binder, VekOamSpiManagedObject_3_1, ORV_MANAGED_OBJECT_3_1_SLOTS)

}

#endif
