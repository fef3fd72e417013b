// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_MOIMPL_H
#define ORV_EXT_CM_MOIMPL_H

#include "AutoMemory.h"
#include "OrvInterfaceBinders.h"
#include "OrvMgmtSpiComponent_1.h"
#include "OrvMgmtSpiInterfacePortal.h"
#include "OrvMoAttributeValue.h"
#include "OrvOamSpiManagedObject_1.h"
#include "OrvReturn.h"
#include "life/OpeningSteps.h"
#include "life/TransactionData.h"
#include "life/UnderLock.h"
#include "messages/Tracing.h"
#include "values/IdMappings.h"

#include <Poco/Exception.h>
#include <Poco/Mutex.h>
#include <Poco/ScopedLock.h>

#include <bit>
#include <memory>
#include <set>
#include <string>

namespace OrvExtCmRouterService {

/// Iteration over the children of an MO, for an interface table and its type of handles; base of
/// the classes that serve such a table. It stands in this header, also for version 3, because its
/// messages carry the name of the source that they come from, which readers of logs know. A
/// client's handle is the address of a record of this class, not the router's handle: it can be
/// checked before it is used, and it ends with the transaction.
///
/// Threads: as the serving class. MoIterator::_mutex guards the set of living records and is held
/// for the work on the set only.
template <class Table, class Handle>
class IterImpl {
public:
    /// The record that a handle stands for. Owned by the memory of its transaction.
    class MoIterator {
    public:
        explicit MoIterator(unsigned long long handle) : routerHandle(handle) {}
        MoIterator(const MoIterator&) = delete;
        MoIterator& operator=(const MoIterator&) = delete;
        ~MoIterator();

        /// Makes the record one that find gives. \p opensRoot: the client asked for the top level.
        void enter(bool opensRoot);

        /// The living record that \p handle names, or null. Does not look at what a wrong handle
        /// points at.
        static MoIterator* find(Handle handle);

        unsigned long long routerHandle;
        bool atRoot = false;

    private:
        static std::set<void*> _allIters; ///< of all transactions
        static Poco::FastMutex _mutex;
        static void* _lastFound; ///< one of _allIters, or null: a walk asks for it at each step

        [[gnu::noinline]] static bool search(void* address) {
            const bool isThere = _allIters.count(address) != 0;
            _lastFound = isThere ? address : _lastFound;
            return isThere;
        }

        void leave() {
            _allIters.erase(this);
            _lastFound = nullptr;
        }
    };

    explicit IterImpl(IdMappings& idMappings) : mappings(idMappings) {}
    IterImpl(const IterImpl&) = delete;
    IterImpl& operator=(const IterImpl&) = delete;
    virtual ~IterImpl() = default;

protected:
    /// The memory of the transaction; the first touch joins it.
    virtual Orv::AutoMemory* getTxData(unsigned long txHandle) = 0;
    virtual Table* getCmRouter() = 0;

public:
    /// Opens an iterator at the router. \p dn is external; empty is the top level, for which the
    /// translator is not asked. OrvNotExist if the DN cannot be translated, also while the service
    /// is stopped; OrvNotActive if it is stopped otherwise.
    OrvReturnT newMoIterator(unsigned long txHandle, const char* dn, const char* className,
                             Handle* iterator);

    /// The next child's naming value, or null at the end. At the top level every name that the
    /// router gives is replaced by the identity by which clients know the root at present; that
    /// text is the translator's. OrvNotActive for a handle that is not living, and while the
    /// service is stopped.
    OrvReturnT nextMo(Handle iterator, char** result) {
        ORV_TRACE_ENTRY(" >> ");
        MoIterator* const record = MoIterator::find(iterator);
        if (record == nullptr) {
            return OrvNotActive;
        }
        if (result == nullptr) {
            return ORV_TRACE_RESULT(OrvFailure);
        }
        Table* const router = getCmRouter();
        if (router == nullptr) {
            return ORV_TRACE_RESULT(OrvNotActive);
        }
        const bool atRoot = record->atRoot; // the record may end while the router works
        char* name = nullptr;
        const OrvReturnT code = router->nextMo(toHandle(record->routerHandle), &name);
        *result = name;
        if (code == OrvOk && name != nullptr && atRoot) {
            *result = const_cast<char*>(mappings.rootIdentity());
        }
        return ORV_TRACE_RESULT(code);
    }

private:
    // Pointers and handles are of one width here, so that each is kept whole as the other.
    static unsigned long long toWord(Handle handle) {
        return std::bit_cast<unsigned long long>(handle);
    }
    static Handle toHandle(unsigned long long word) { return std::bit_cast<Handle>(word); }

    IdMappings& mappings;
};

// Built when the shared object is loaded, and so before the service and destroyed after it: the
// service's own end still takes records out.
template <class Table, class Handle>
std::set<void*> IterImpl<Table, Handle>::MoIterator::_allIters;
template <class Table, class Handle>
Poco::FastMutex IterImpl<Table, Handle>::MoIterator::_mutex;

template <class Table, class Handle>
void* IterImpl<Table, Handle>::MoIterator::_lastFound = nullptr;

template <class Table, class Handle>
IterImpl<Table, Handle>::MoIterator::~MoIterator() {
    // Nothing may leave a destructor. If the lock fails the record goes from the set all the same:
    // a mutex that cannot be locked lets no other thread in, and an address that stayed there would
    // make a dead handle look living.
    try {
        Poco::ScopedLock<Poco::FastMutex> lock(_mutex); // drops a failure to unlock
        leave();
    } catch (const Poco::SystemException&) {
        leave();
    }
}

template <class Table, class Handle>
void IterImpl<Table, Handle>::MoIterator::enter(bool opensRoot) {
    underLock(_mutex, [&] {
        _allIters.insert(_allIters.end(), this); // a new one often has the highest address
        _lastFound = this;
        atRoot = opensRoot;
    });
}

template <class Table, class Handle>
typename IterImpl<Table, Handle>::MoIterator*
IterImpl<Table, Handle>::MoIterator::find(Handle handle) {
    void* const address = std::bit_cast<void*>(handle);
    const bool living = underLock(
        _mutex, [address] { return address == _lastFound ? address != nullptr : search(address); });
    return living ? static_cast<MoIterator*>(address) : nullptr;
}

template <class Table, class Handle>
OrvReturnT IterImpl<Table, Handle>::newMoIterator(unsigned long txHandle, const char* dn,
                                                  const char* className, Handle* iterator) {
    ORV_TRACE_ENTRY(" >> newMoIterator  dn: %s, class: %s", shown(dn), shown(className));
    // Unlike all other operations, this one does not ask whether the service is started: a DN that
    // cannot be translated is answered first, and then the missing router.
    const Opened opened = openWalk(true, mappings, dn, [&] { return areThere(iterator); });
    if (opened.code == OrvNotExist) {
        ORV_TRACE_EXIT(" << Error: %s", "OrvNotExist");
        return opened.code;
    }
    if (opened.code != OrvOk) {
        return ORV_TRACE_RESULT(opened.code);
    }
    Table* const router = getCmRouter();
    if (router == nullptr) {
        return ORV_TRACE_RESULT(OrvNotActive);
    }
    const OrvReturnT code = router->newMoIterator(txHandle, opened.dn.c_str(), className, iterator);
    if (code != OrvOk) {
        return ORV_TRACE_RESULT(code);
    }
    // Only now: an iteration that the router refuses joins no transaction.
    Orv::AutoMemory* const memory = getTxData(txHandle);
    auto record = std::make_unique<MoIterator>(toWord(*iterator));
    record->enter(*dn == '\0');
    const auto handle = std::bit_cast<Handle>(record.get());
    memory->own(record.release());
    *iterator = handle;
    return ORV_TRACE_RESULT(OrvOk);
}

/// The managed-object interface of version 1: translates DNs, also those in values, and forwards to
/// the host's router of the same version. That is all: no interceptor is asked, and no write takes
/// part in the rules for associations.
///
/// A client of this version gives nothing back, so whatever is made for one belongs to the memory
/// of the transaction and lives until that is finished. The router's own containers are not
/// released: there is no way to.
///
/// Threads: operations from any number of host threads, a transaction on one at a time; not during
/// start or stop. `started` and `router` are read without a lock; mMutex guards the two writes in
/// stop.
class MoImpl : public IterImpl<OrvOamSpiManagedObject_1, void*> {
public:
    /// Stores the references and uses neither: what they name may not be built yet.
    MoImpl(IdMappings& ids, TransactionData& transactions);

    /// \p hostPortal is not owned. Always OrvOk.
    OrvReturnT init(OrvMgmtSpiInterfacePortal_1* hostPortal);

    /// Looks the router up, unless started. OrvFailure, with a log, if there is none.
    OrvReturnT start(OrvStateChangeReason reason);
    OrvReturnT stop(OrvStateChangeReason reason);

    /// The table offered to the host, owned by this object.
    OrvOamSpiManagedObject_1* getMoInterface();

    // The slots of the table. DNs are external. OrvNotActive when stopped, OrvFailure, with nothing
    // done, for a null or a value that would have to be read and cannot be, OrvNotExist for a DN
    // that cannot be translated; the router's codes as they are.

    OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                              const OrvMoAttributeValueContainer* value);
    OrvReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                              OrvMoAttributeValueContainer** result);
    OrvReturnT createMo(unsigned long txHandle, const char* dn, const char* className,
                        const char* attrName, const char* attrValue);
    OrvReturnT deleteMo(unsigned long txHandle, const char* dn);
    OrvReturnT action(unsigned long txHandle, const char* dn, const char* name,
                      OrvMoAttributeValueContainer** parameters,
                      OrvMoAttributeValueContainer** result);

    // Conversion of values: a new container in the transaction's memory where a copy is needed,
    // otherwise \p value itself. \p value is not null and is readable (see isReadable).

    OrvMoAttributeValueContainer* transformContainer(const OrvMoAttributeValueContainer* value,
                                                     IdMappings::DnConversion direction,
                                                     unsigned long txHandle);
    OrvMoAttributeValueContainer* transformMoRefContainer(const OrvMoAttributeValueContainer* value,
                                                          IdMappings::DnConversion direction,
                                                          unsigned long txHandle);
    OrvMoAttributeValueContainer*
    transformStructContainer(const OrvMoAttributeValueContainer* value,
                             IdMappings::DnConversion direction, unsigned long txHandle);

protected:
    Orv::AutoMemory* getTxData(unsigned long txHandle) override;
    OrvOamSpiManagedObject_1* getCmRouter() override;

private:
    class CopyMaker;

    OrvMoAttributeValueContainer* rootIdContainer(const OrvMoAttributeValueContainer* value,
                                                  unsigned long txHandle);

    /// What a router has answered, converted if it is there and readable, otherwise as it is.
    OrvMoAttributeValueContainer* toExternal(OrvMoAttributeValueContainer* value,
                                             unsigned long txHandle);

    Poco::Mutex mMutex;
    OrvOamSpiManagedObject_1* router = nullptr;    ///< the host's
    OrvMgmtSpiInterfacePortal_1* portal = nullptr; ///< the host's, given in init
    bool started = false;
    Orv::ManagedObject1Binder<MoImpl> binder;
    IdMappings& idMappings;
    TransactionData& txData;
};

}

#endif
