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
/// Binders carry a plain table call to an object. A binder owns one table, fills it with static
/// functions, and keeps the one object that serves the table in a static pointer: a table function
/// is handed no object, so there can be one serving object of a type in a process.
///
/// The serving object holds its binder as a data member and has a member function for each slot,
/// of the slot's name and arguments. A binder has no lock: `_instance` is written at construction
/// and destruction only, both outside the life of the table in the host.

namespace Orv {

/// The boundary of a component: runs \p call and answers OrvFailure for any std::exception, without
/// a word. Whatever else is thrown passes.
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

/// Binds OrvOamSpiTransactionalResource_2 to a \p T.
template <class T>
class TransactionalResource2Binder {
public:
    /// \p identity is copied; its texts must be constants. \p served must outlive the binder.
    TransactionalResource2Binder(const OrvMgmtSpiInterface_1& identity, T& served)
        : mInterface{identity, &join, &prepare, &commit, &abort, &finish, &validate} {
        bindOnce(_instance, served);
    }
    TransactionalResource2Binder(const TransactionalResource2Binder&) = delete;
    TransactionalResource2Binder& operator=(const TransactionalResource2Binder&) = delete;
    virtual ~TransactionalResource2Binder() { _instance = nullptr; }

    OrvOamSpiTransactionalResource_2* getInterface() { return &mInterface; }

private:
    static OrvReturnT join(unsigned long txHandle) {
        return shielded([&] { return _instance->join(txHandle); });
    }
    static OrvReturnT prepare(unsigned long txHandle) {
        return shielded([&] { return _instance->prepare(txHandle); });
    }
    static OrvReturnT commit(unsigned long txHandle) {
        return shielded([&] { return _instance->commit(txHandle); });
    }
    static OrvReturnT abort(unsigned long txHandle) {
        return shielded([&] { return _instance->abort(txHandle); });
    }
    static OrvReturnT finish(unsigned long txHandle) {
        return shielded([&] { return _instance->finish(txHandle); });
    }
    static OrvReturnT validate(unsigned long txHandle, bool* result) {
        return shielded([&] { return _instance->validate(txHandle, result); });
    }

    OrvOamSpiTransactionalResource_2 mInterface;
    static inline T* _instance = nullptr;
};

/// Binds OrvOamSpiManagedObject_1 to a \p T.
template <class T>
class ManagedObject1Binder {
public:
    /// \p identity is copied; its texts must be constants. \p served must outlive the binder.
    ManagedObject1Binder(const OrvMgmtSpiInterface_1& identity, T& served)
        : mInterface{identity, &setMoAttribute, &getMoAttribute, &newMoIterator,
                     &nextMo,  &createMo,       &deleteMo,       &action} {
        bindOnce(_instance, served);
    }
    ManagedObject1Binder(const ManagedObject1Binder&) = delete;
    ManagedObject1Binder& operator=(const ManagedObject1Binder&) = delete;
    virtual ~ManagedObject1Binder() { _instance = nullptr; }

    OrvOamSpiManagedObject_1* getInterface() { return &mInterface; }

private:
    static OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                                     const OrvMoAttributeValueContainer* value) {
        return shielded([&] { return _instance->setMoAttribute(txHandle, dn, attrName, value); });
    }
    static OrvReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                                     OrvMoAttributeValueContainer** result) {
        return shielded([&] { return _instance->getMoAttribute(txHandle, dn, attrName, result); });
    }
    static OrvReturnT newMoIterator(unsigned long txHandle, const char* dn, const char* className,
                                    void** iterator) {
        return shielded(
            [&] { return _instance->newMoIterator(txHandle, dn, className, iterator); });
    }
    static OrvReturnT nextMo(void* iterator, char** result) {
        return shielded([&] { return _instance->nextMo(iterator, result); });
    }
    static OrvReturnT createMo(unsigned long txHandle, const char* dn, const char* className,
                               const char* attrName, const char* attrValue) {
        return shielded(
            [&] { return _instance->createMo(txHandle, dn, className, attrName, attrValue); });
    }
    static OrvReturnT deleteMo(unsigned long txHandle, const char* dn) {
        return shielded([&] { return _instance->deleteMo(txHandle, dn); });
    }
    static OrvReturnT action(unsigned long txHandle, const char* dn, const char* name,
                             OrvMoAttributeValueContainer** parameters,
                             OrvMoAttributeValueContainer** result) {
        return shielded([&] { return _instance->action(txHandle, dn, name, parameters, result); });
    }

    OrvOamSpiManagedObject_1 mInterface;
    static inline T* _instance = nullptr;
};

/// Binds OrvOamSpiManagedObject_3 to a \p T.
template <class T>
class ManagedObject3Binder {
public:
    /// \p identity is copied; its texts must be constants. \p served must outlive the binder.
    ManagedObject3Binder(const OrvMgmtSpiInterface_1& identity, T& served)
        : mInterface{
              identity,  &setMoAttribute, &getMoAttribute, &getMoAttributes, &newMoIterator,
              &nextMo,   &createMo,       &deleteMo,       &action,          &finalizeMoIterator,
              &existsMo, &countMoChildren} {
        bindOnce(_instance, served);
    }
    ManagedObject3Binder(const ManagedObject3Binder&) = delete;
    ManagedObject3Binder& operator=(const ManagedObject3Binder&) = delete;
    virtual ~ManagedObject3Binder() { _instance = nullptr; }

    OrvOamSpiManagedObject_3* getInterface() { return &mInterface; }

private:
    static OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                                     const OrvMoAttributeValueContainer_3* value) {
        return shielded([&] { return _instance->setMoAttribute(txHandle, dn, attrName, value); });
    }
    static OrvReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                                     OrvMoAttributeValueResult_3* result) {
        return shielded([&] { return _instance->getMoAttribute(txHandle, dn, attrName, result); });
    }
    static OrvReturnT getMoAttributes(unsigned long txHandle, const char* dn,
                                      const char** attrNames,
                                      OrvMoAttributeValuesResult_3* result) {
        return shielded(
            [&] { return _instance->getMoAttributes(txHandle, dn, attrNames, result); });
    }
    static OrvReturnT newMoIterator(unsigned long txHandle, const char* dn, const char* className,
                                    unsigned long long* iterator) {
        return shielded(
            [&] { return _instance->newMoIterator(txHandle, dn, className, iterator); });
    }
    static OrvReturnT nextMo(unsigned long long iterator, char** result) {
        return shielded([&] { return _instance->nextMo(iterator, result); });
    }
    static OrvReturnT createMo(unsigned long txHandle, const char* dn, const char* className,
                               const char* attrName, const char* attrValue,
                               OrvMoNamedAttributeValueContainer_3** attributes) {
        return shielded([&] {
            return _instance->createMo(txHandle, dn, className, attrName, attrValue, attributes);
        });
    }
    static OrvReturnT deleteMo(unsigned long txHandle, const char* dn) {
        return shielded([&] { return _instance->deleteMo(txHandle, dn); });
    }
    static OrvReturnT action(unsigned long txHandle, const char* dn, const char* name,
                             OrvMoNamedAttributeValueContainer_3** parameters,
                             OrvMoAttributeValueResult_3* result) {
        return shielded([&] { return _instance->action(txHandle, dn, name, parameters, result); });
    }
    static OrvReturnT finalizeMoIterator(unsigned long long iterator) {
        return shielded([&] { return _instance->finalizeMoIterator(iterator); });
    }
    static OrvReturnT existsMo(unsigned long txHandle, const char* dn, bool* exists) {
        return shielded([&] { return _instance->existsMo(txHandle, dn, exists); });
    }
    static OrvReturnT countMoChildren(unsigned long txHandle, const char* dn, const char* className,
                                      unsigned long long* count) {
        return shielded([&] { return _instance->countMoChildren(txHandle, dn, className, count); });
    }

    OrvOamSpiManagedObject_3 mInterface;
    static inline T* _instance = nullptr;
};

/// Binds VekOamSpiManagedObject_3_1 to a \p T.
template <class T>
class ManagedObject3_1Binder {
public:
    /// \p identity is copied; its texts must be constants. \p served must outlive the binder.
    ManagedObject3_1Binder(const VekMgmtSpiInterface_1& identity, T& served)
        : mInterface{identity, &setMoAttributes} {
        bindOnce(_instance, served);
    }
    ManagedObject3_1Binder(const ManagedObject3_1Binder&) = delete;
    ManagedObject3_1Binder& operator=(const ManagedObject3_1Binder&) = delete;
    virtual ~ManagedObject3_1Binder() { _instance = nullptr; }

    VekOamSpiManagedObject_3_1* getInterface() { return &mInterface; }

private:
    static OrvReturnT setMoAttributes(unsigned long txHandle, const char* dn,
                                      VekMoNamedAttributeValueContainer_3** attributes) {
        return shielded([&] { return _instance->setMoAttributes(txHandle, dn, attributes); });
    }

    VekOamSpiManagedObject_3_1 mInterface;
    static inline T* _instance = nullptr;
};

}

#endif
