// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Locks that cannot be taken or given back. The linker puts the two functions below in the place of
// the system's for everything that is part of this program, so these tests have one of their own.

#include "ExtCmRouterService.h"
#include "IsFree.h"
#include "MoInterceptorBase.h"
#include "PlainHost.h"
#include "Portal.h"
#include "values/ConvertedResultData.h"

#include <Poco/Exception.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <list>
#include <memory>
#include <pthread.h>
#include <string>

using namespace OrvExtCmRouterService;

namespace {

int locksUntilFailure = 0; // 0: none fails
int unlocksUntilFailure = 0;
int locksTaken = 0;
int locksGivenBack = 0;

bool countsDownToZero(int& counter) {
    return counter > 0 && --counter == 0;
}

}

extern "C" {
int __real_pthread_mutex_lock(pthread_mutex_t* mutex);
int __real_pthread_mutex_unlock(pthread_mutex_t* mutex);

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
    ++locksTaken;
    return countsDownToZero(locksUntilFailure) ? EINVAL : __real_pthread_mutex_lock(mutex);
}
int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) {
    ++locksGivenBack;
    return countsDownToZero(unlocksUntilFailure) ? EPERM : __real_pthread_mutex_unlock(mutex);
}
}

namespace {

// What comes out of `operation` when the given lock fails; "nothing" if no exception does.
template <class Operation>
std::string whenFails(int& counter, int number, Operation&& operation) {
    std::string message = "nothing";
    counter = number;
    try {
        operation();
    } catch (const Poco::SystemException& failure) {
        EXPECT_EQ(failure.code(), 0);
        message = failure.message();
    }
    EXPECT_EQ(counter, 0) << "the lock was not reached";
    counter = 0;
    return message;
}

template <class Operation>
std::string whenLockFails(Operation&& operation, int number = 1) {
    return whenFails(locksUntilFailure, number, operation);
}

template <class Operation>
std::string whenUnlockFails(Operation&& operation, int number = 1) {
    return whenFails(unlocksUntilFailure, number, operation);
}

const std::string kCannotLock = "cannot lock mutex";
const std::string kCannotUnlock = "cannot unlock mutex";

int joins = 0;
OrvReturnT join(unsigned long, OrvOamSpiTransactionalResource_2*) {
    ++joins;
    return OrvOk;
}

OrvReturnT newIterator3(unsigned long, const char*, const char*, unsigned long long* iterator) {
    *iterator = 1;
    return OrvOk;
}

OrvReturnT next3(unsigned long long, char** result) {
    *result = nullptr;
    return OrvOk;
}

OrvReturnT finalize3(unsigned long long) {
    return OrvOk;
}

OrvOamSpiManagedObject_1 router1{};
OrvOamSpiManagedObject_3 router3{};
VekOamSpiManagedObject_3_1 router3_1{};

OrvReturnT getInterface(VekMgmtSpiInterface_1 id, void** result) {
    const std::string version = id.interfaceVersion;
    *result = version == "1"   ? static_cast<void*>(&router1)
              : version == "3" ? static_cast<void*>(&router3)
                               : static_cast<void*>(&router3_1);
    return OrvOk;
}

// The class with its inner steps and its lock within reach.
class OpenBiDirUtils : public BiDirUtils {
public:
    using BiDirUtils::addMoToBackPointer;
    using BiDirUtils::mMutex;
    using BiDirUtils::removeMoFromBackPointer;
    using BiDirUtils::setMoAttr;
};

class LockFailure : public testing::Test {
protected:
    LockFailure() {
        joins = 0;
        transactions.transaction = &transactionTable;
        router3.newMoIterator = &newIterator3;
        router3.nextMo = &next3;
        router3.finalizeMoIterator = &finalize3;
    }

    OrvOamSpiTransaction_1 transactionTable{{}, &join};
    OrvOamSpiTransactionalResource_2 resource{};
    OrvMgmtSpiInterfacePortal_1 portal{{}, &getInterface, nullptr, nullptr, nullptr};
    ExtCmInterceptorRepository repository;
    IdMappings mappings{Orv::MeIdTranslator::instance()};
    TransactionData transactions{&resource};
    BiDirUtils biDirUtils;
    UniDirValidator uniDirValidator;
};

}

TEST_F(LockFailure, GetTxData_Lock_EntersAndJoinsNothing) {
    EXPECT_EQ(whenLockFails([&] { transactions.getTxData(ORV_TRACE_POINT, 1); }), kCannotLock);
    EXPECT_EQ(joins, 0);
    EXPECT_TRUE(transactions.memoryByTx.empty());
}

TEST_F(LockFailure, GetTxData_Unlock_TheEntryStaysAndTheLockIsFree) {
    EXPECT_EQ(whenUnlockFails([&] { transactions.getTxData(ORV_TRACE_POINT, 1); }), kCannotUnlock);
    EXPECT_EQ(whenUnlockFails([&] { transactions.getTxData(ORV_TRACE_POINT, 1); }), kCannotUnlock);
    EXPECT_EQ(transactions.memoryByTx.size(), 1U);
    EXPECT_EQ(joins, 1);
}

TEST_F(LockFailure, Repository_EveryOperationTellsOfBoth) {
    MoInterceptorBase interceptor;
    EXPECT_EQ(whenLockFails([&] { repository.registerClass(interceptor, "A"); }), kCannotLock);
    EXPECT_EQ(repository.getInterceptor("A"), nullptr);
    EXPECT_EQ(whenUnlockFails([&] { repository.registerClass(interceptor, "A"); }), kCannotUnlock);
    EXPECT_EQ(whenLockFails([&] { repository.getInterceptor("A"); }), kCannotLock);
    EXPECT_EQ(whenUnlockFails([&] { repository.getInterceptor("A"); }), kCannotUnlock);
    EXPECT_EQ(whenLockFails([&] { repository.deregisterClass("A"); }), kCannotLock);
    EXPECT_EQ(repository.getInterceptor("A"), &interceptor);
    EXPECT_EQ(whenUnlockFails([&] { repository.deregisterClass("A"); }), kCannotUnlock);
    EXPECT_EQ(repository.getInterceptor("A"), nullptr);
}

TEST_F(LockFailure, Stop_OfEveryVersion_TellsOfBoth) {
    const auto both = [&](auto& service, auto initialize) {
        initialize();
        service.start(OrvStateChangeReasonRequested);
        EXPECT_EQ(whenLockFails([&] { service.stop(OrvStateChangeReasonRequested); }), kCannotLock);
        EXPECT_EQ(whenUnlockFails([&] { service.stop(OrvStateChangeReasonRequested); }),
                  kCannotUnlock);
        EXPECT_EQ(service.stop(OrvStateChangeReasonRequested), OrvOk);
    };
    MoImpl one(mappings, transactions);
    both(one, [&] { one.init(&portal); });
    MoImpl3 three(mappings, transactions, biDirUtils, uniDirValidator);
    both(three, [&] { three.init(&portal, &repository); });
    MoImpl3_1 threeOne(mappings, transactions, biDirUtils, uniDirValidator);
    both(threeOne, [&] { threeOne.init(&portal, &repository); });
}

TEST_F(LockFailure, Iterators_TheBoundaryAnswersFailureAndTheNextCallIsServed) {
    MoImpl3 service(mappings, transactions, biDirUtils, uniDirValidator);
    service.init(&portal, &repository);
    service.start(OrvStateChangeReasonRequested);
    OrvOamSpiManagedObject_3& table = *service.getMoInterface();
    unsigned long long iterator = 0;
    char* name = nullptr;
    const auto open = [&] { return table.newMoIterator(1, "A=1", "B", &iterator); };
    ASSERT_EQ(open(), OrvOk);
    OrvReturnT code = OrvOk;
    EXPECT_EQ(whenLockFails([&] { code = table.nextMo(iterator, &name); }), "nothing");
    EXPECT_EQ(code, OrvFailure);
    EXPECT_EQ(whenUnlockFails([&] { code = table.nextMo(iterator, &name); }), "nothing");
    EXPECT_EQ(code, OrvFailure);
    EXPECT_EQ(whenLockFails([&] { code = table.finalizeMoIterator(iterator); }), "nothing");
    EXPECT_EQ(code, OrvFailure);
    EXPECT_EQ(whenUnlockFails([&] { code = table.finalizeMoIterator(iterator); }), "nothing");
    EXPECT_EQ(code, OrvFailure);
    EXPECT_EQ(table.nextMo(iterator, &name), OrvOk);
    // The registry's lock comes first, then that of the iterators.
    EXPECT_EQ(whenLockFails([&] { code = open(); }, 2), "nothing");
    EXPECT_EQ(code, OrvFailure);
    EXPECT_EQ(iterator, 1U) << "the client's output keeps what the router wrote";
    EXPECT_EQ(whenUnlockFails([&] { code = open(); }, 2), "nothing");
    EXPECT_EQ(code, OrvFailure);
    EXPECT_EQ(open(), OrvOk);
}

TEST_F(LockFailure, EndOfAnIterator_LeavesNoLivingHandleBehind) {
    using Iterator = MoImpl3::MoIterator;
    auto* const record = new Iterator(1);
    record->enter(false);
    const auto handle = std::bit_cast<unsigned long long>(record);
    ASSERT_EQ(Iterator::find(handle), record);
    EXPECT_EQ(whenLockFails([&] { delete record; }), "nothing");
    EXPECT_EQ(Iterator::find(handle), nullptr);
}

TEST_F(LockFailure, EndOfSeveralIterators_TakesAndGivesBackTheLockOnceForEach) {
    using Iterator = MoImpl::MoIterator;
    auto memory = std::make_unique<Orv::AutoMemory>();
    for (int number = 0; number < 3; ++number) {
        auto* const record = new Iterator(1);
        record->enter(false);
        memory->own(record);
    }
    locksTaken = locksGivenBack = 0;
    memory.reset();
    EXPECT_EQ(locksTaken, 3);
    EXPECT_EQ(locksGivenBack, 3);
}

TEST_F(LockFailure, EndOfHoldersOfNothing_TakesNoLock) {
    auto memory = std::make_unique<Orv::AutoMemory>();
    memory->own<ConvertedResultData>(nullptr);
    memory->own<MoImpl::MoIterator>(nullptr);
    memory->own<MoImpl3::MoIterator>(nullptr);
    memory->own<OrvMoNamedAttributeValueContainer_3>(nullptr);
    memory->own<VekMoNamedAttributeValueContainer_3>(nullptr);
    locksTaken = 0;
    memory.reset();
    EXPECT_EQ(locksTaken, 0);
}

// A failed release is reported. The lock is free all the same, because the guard tries again.
TEST_F(LockFailure, BackPointers_EveryOperationTellsOfBoth) {
    Orv::Portal::instance()->attach(&PlainHost::lookup);
    OpenBiDirUtils utils;
    utils.start();
    OrvMoAttributeValue_3 slot{};
    slot.moRef = "A=2";
    const OrvMoAttributeValueContainer_3 value{OrvMoAttributeTypeMoRef_3, 1, &slot};
    const OrvMoAttributeValueContainer_3 noValue{OrvMoAttributeTypeMoRef_3, 0, nullptr};
    // Each with one lock, except where two nest: an edit's own, and in it that of the write.
    const std::list<std::pair<std::function<void()>, int>> operations = {
        {[&] { utils.updateBackPointersForModify(1, "A=1", "ys", &noValue, true); }, 1},
        {[&] { utils.updateBackPointersForModify(1, "A=1", "ys", &value, true); }, 3},
        {[&] { utils.getModifiedBackPointers(1); }, 1},
        {[&] { utils.updatePendingBackPointer(1, "A=1", "id"); }, 1},
        {[&] { utils.removePendingBackPointerUpdates(1, "A=1"); }, 1},
        {[&] { utils.removePendingBackPointerFromQueue(1, "A=1", "ys"); }, 1},
        {[&] { utils.removePendingBackpointersForTransaction(1); }, 1},
        {[&] { utils.addMoToBackPointer(1, "A=1", "A=2", 1, "ys"); }, 2},
        {[&] { utils.removeMoFromBackPointer(1, "A=1", "A=2", 1, "ys"); }, 1},
        {[&] { utils.setMoAttr(1, {}, "A=1", "ys"); }, 1},
    };
    for (const auto& [operation, locks] : operations) {
        for (int number = 1; number <= locks; ++number) {
            EXPECT_EQ(whenLockFails(operation, number), kCannotLock);
            EXPECT_TRUE(isFree(utils.mMutex));
            EXPECT_EQ(whenUnlockFails(operation, number), kCannotUnlock);
            EXPECT_TRUE(isFree(utils.mMutex));
        }
    }
    Orv::Portal::instance()->detach();
}

TEST_F(LockFailure, WrittenAttribute_IsRecordedUnlessTheLockIsNotTaken) {
    Orv::Portal::instance()->attach(&PlainHost::lookup);
    biDirUtils.start();
    const OrvMoAttributeValueContainer_3 value{OrvMoAttributeTypeMoRef_3, 0, nullptr};
    const auto write = [&] {
        biDirUtils.updateBackPointersForModify(1, "A=1", "ys", &value, true);
    };
    EXPECT_EQ(whenLockFails(write), kCannotLock);
    EXPECT_TRUE(biDirUtils.getModifiedBackPointers(1).empty());
    EXPECT_EQ(whenUnlockFails(write), kCannotUnlock);
    EXPECT_EQ(biDirUtils.getModifiedBackPointers(1).size(), 1U);
    Orv::Portal::instance()->detach();
}

TEST_F(LockFailure, References_EveryOperationTellsOfBothAndNoVerdictIsWritten) {
    Orv::Portal::instance()->attach(&PlainHost::lookup);
    uniDirValidator.start();
    const OrvMoAttributeValueContainer_3 value{OrvMoAttributeTypeMoRef_3, 0, nullptr};
    bool verdict = false;
    const std::function<void()> operations[] = {
        [&] { uniDirValidator.setMoRef(1, "A=1", "ys", &value); },
        [&] { uniDirValidator.validate(1, &verdict); },
        [&] { uniDirValidator.deleteMo(1, "A=1"); },
        [&] { uniDirValidator.finish(1); },
    };
    for (const std::function<void()>& operation : operations) {
        EXPECT_EQ(whenLockFails(operation), kCannotLock);
        EXPECT_EQ(whenUnlockFails(operation), kCannotUnlock);
        EXPECT_FALSE(verdict);
    }
    EXPECT_EQ(uniDirValidator.validate(1, &verdict), OrvOk);
    EXPECT_TRUE(verdict);
    EXPECT_EQ(whenLockFails([&] { uniDirValidator.stop(); }), kCannotLock);
    EXPECT_EQ(whenUnlockFails([&] { uniDirValidator.stop(); }), kCannotUnlock);
    EXPECT_EQ(uniDirValidator.validate(1, &verdict), OrvNotActive) << "stopped all the same";
    Orv::Portal::instance()->detach();
}

// The first two locks of finish are those of the back-pointers and of the references.
TEST(LockFailureOfTheService, Finish_EveryLockThatFailsIsReported) {
    OrvExtCmRouterService::ExtCmRouterService& service =
        OrvExtCmRouterService::ExtCmRouterService::instance();
    for (int number = 1; number <= 3; ++number) {
        EXPECT_EQ(whenLockFails([&] { service.finish(1); }, number), kCannotLock);
        EXPECT_EQ(whenUnlockFails([&] { service.finish(1); }, number), kCannotUnlock);
    }
    EXPECT_EQ(service.finish(1), OrvOk);
}

namespace {

OrvMgmtSpiComponent_1* registered = nullptr;
OrvOamSpiTransaction_1 hostsTransactions{{}, &join};

OrvReturnT lookUp(VekMgmtSpiInterface_1 id, void** result) {
    if (std::string(id.interfaceName) == "OrvOamSpiTransaction") {
        *result = &hostsTransactions;
        return OrvOk;
    }
    return getInterface(id, result);
}

OrvReturnT keepRecord(OrvMgmtSpiComponent_1* record) {
    registered = record;
    return OrvOk;
}

void* getPortal(const char* version) {
    static OrvMgmtSpiInterfacePortal_1 portal1 = {{}, &lookUp, nullptr, &keepRecord, nullptr};
    return std::string(version) == "1" ? &portal1 : nullptr;
}

/// The whole service, started, with an iterator open in a transaction. A stop takes the locks of
/// the three interfaces, that of the iterator, which ends with its transaction, and that of the
/// references; the registry's own it does not take.
class LockFailureOfStop : public testing::Test {
protected:
    using Service = OrvExtCmRouterService::ExtCmRouterService;

    LockFailureOfStop() {
        Orv::Portal::instance()->attach(&PlainHost::lookup);
        router1.deleteMo = [](unsigned long, const char*) { return OrvOk; };
        router3.existsMo = [](unsigned long, const char*, bool*) { return OrvOk; };
        router3.newMoIterator = &newIterator3;
        router3_1.setMoAttributes = [](unsigned long, const char*,
                                       VekMoNamedAttributeValueContainer_3**) { return OrvOk; };
        EXPECT_EQ(Service::lcmInit(&accessor, nullptr), OrvOk);
        EXPECT_EQ(registered->start(OrvStateChangeReasonRequested), OrvOk);
        EXPECT_EQ(offered<OrvOamSpiManagedObject_3>(1).newMoIterator(1, "A=1", "B", &iterator),
                  OrvOk);
    }
    ~LockFailureOfStop() override {
        EXPECT_EQ(stop(), OrvOk);
        Service::lcmTerminate();
        Orv::Portal::instance()->detach();
    }

    template <class Table>
    static const Table& offered(std::size_t index) {
        return *static_cast<const Table*>(
            static_cast<const void*>(registered->interfaceArray[index]));
    }

    static OrvReturnT stop() { return registered->stop(OrvStateChangeReasonRequested); }

    bool memoryIsThere() const { return MoImpl3::MoIterator::find(iterator) != nullptr; }

    static bool serves1() {
        return offered<OrvOamSpiManagedObject_1>(0).deleteMo(1, "A=1") != OrvNotActive;
    }
    static bool serves3() {
        bool exists = false;
        return offered<OrvOamSpiManagedObject_3>(1).existsMo(1, "A=1", &exists) != OrvNotActive;
    }
    static bool serves3_1() {
        VekMoNamedAttributeValueContainer_3* nothing = nullptr;
        return offered<VekOamSpiManagedObject_3_1>(2).setMoAttributes(1, "A=1", &nothing) !=
               OrvNotActive;
    }

    OrvMgmtSpiInterfacePortalAccessor accessor{&getPortal};
    unsigned long long iterator = 0;
};

}

TEST_F(LockFailureOfStop, LockOfAnInterface_IsAFailureAndTheRestDoesNotRun) {
    OrvReturnT code = OrvOk;
    EXPECT_EQ(whenLockFails([&] { code = stop(); }, 1), "nothing");
    EXPECT_EQ(code, OrvFailure);
    EXPECT_TRUE(serves1() && serves3() && serves3_1() && memoryIsThere());
    EXPECT_EQ(whenLockFails([&] { code = stop(); }, 2), "nothing");
    EXPECT_EQ(code, OrvFailure);
    EXPECT_FALSE(serves1());
    EXPECT_TRUE(serves3() && serves3_1() && memoryIsThere());
    EXPECT_EQ(whenLockFails([&] { code = stop(); }, 3), "nothing");
    EXPECT_EQ(code, OrvFailure);
    EXPECT_FALSE(serves3());
    EXPECT_TRUE(serves3_1() && memoryIsThere());
    // An iterator can outlive the service, and then nobody is called at its end.
    router3.finalizeMoIterator = nullptr;
    EXPECT_EQ(offered<OrvOamSpiManagedObject_3>(1).finalizeMoIterator(iterator), OrvOk);
    router3.finalizeMoIterator = &finalize3;
}

TEST_F(LockFailureOfStop, UnlockOfAnInterface_IsAFailureAndTheRestDoesNotRun) {
    OrvReturnT code = OrvOk;
    EXPECT_EQ(whenUnlockFails([&] { code = stop(); }, 1), "nothing");
    EXPECT_EQ(code, OrvFailure);
    EXPECT_FALSE(serves1());
    EXPECT_TRUE(serves3() && serves3_1() && memoryIsThere());
}

TEST_F(LockFailureOfStop, LockOfTheReferences_ComesAfterTheSweep) {
    OrvReturnT code = OrvOk;
    EXPECT_EQ(whenLockFails([&] { code = stop(); }, 5), "nothing");
    EXPECT_EQ(code, OrvFailure);
    EXPECT_FALSE(serves3_1());
    EXPECT_FALSE(memoryIsThere());
}

TEST_F(LockFailureOfStop, NothingFails_TheRegistrysLockIsNotTaken) {
    locksTaken = locksGivenBack = 0;
    EXPECT_EQ(stop(), OrvOk);
    EXPECT_EQ(locksTaken, 5);
    EXPECT_EQ(locksGivenBack, 5);
}

namespace {

/// The same, for what the host says about transactions and what clients do in them.
class LockFailureOfTransactions : public LockFailureOfStop {
protected:
    LockFailureOfTransactions() { router3.nextMo = &next3; }

    const OrvOamSpiTransactionalResource_2* resource =
        &offered<OrvOamSpiTransactionalResource_2>(3);
    const OrvOamSpiManagedObject_3* table3 = &offered<OrvOamSpiManagedObject_3>(1);
};

}

TEST_F(LockFailureOfTransactions, PhasesWithoutWork_TouchNoLock) {
    locksUntilFailure = 1;
    EXPECT_EQ(resource->join(1), OrvOk);
    EXPECT_EQ(resource->prepare(1), OrvOk);
    EXPECT_EQ(resource->commit(1), OrvOk);
    EXPECT_EQ(resource->abort(1), OrvOk);
    EXPECT_EQ(locksUntilFailure, 1);
    locksUntilFailure = 0;
}

// The first lock is that of the back-pointers' work list, the second that of the references.
TEST_F(LockFailureOfTransactions, Validate_IsAFailureAndWritesNoVerdict) {
    for (const bool before : {true, false}) {
        for (int number = 1; number <= 2; ++number) {
            OrvReturnT code = OrvOk;
            bool result = before;
            const auto validate = [&] { code = resource->validate(1, &result); };
            EXPECT_EQ(whenLockFails(validate, number), "nothing");
            EXPECT_EQ(code, OrvFailure);
            EXPECT_EQ(result, before);
            EXPECT_EQ(whenUnlockFails(validate, number), "nothing");
            EXPECT_EQ(code, OrvFailure);
            EXPECT_EQ(result, before);
        }
    }
}

// The third lock of finish is the registry's.
TEST_F(LockFailureOfTransactions, Finish_RegistryLocked_TheMemoryStaysUntilStop) {
    char* name = nullptr;
    OrvReturnT code = OrvOk;
    EXPECT_EQ(whenLockFails([&] { code = resource->finish(1); }, 3), "nothing");
    EXPECT_EQ(code, OrvFailure);
    EXPECT_EQ(table3->nextMo(iterator, &name), OrvOk);
    EXPECT_EQ(stop(), OrvOk);
    EXPECT_FALSE(memoryIsThere());
}

// The registry's lock is the first one that a write takes.
TEST_F(LockFailureOfTransactions, Write_RegistryLocked_IsAFailureAndReachesNobody) {
    joins = 0;
    for (const bool locking : {true, false}) {
        OrvReturnT code = OrvOk;
        const auto remove = [&] { code = table3->deleteMo(2, "A=1"); };
        EXPECT_EQ(locking ? whenLockFails(remove) : whenUnlockFails(remove), "nothing");
        EXPECT_EQ(code, OrvFailure); // the router has no such function, so that a call would crash
        EXPECT_EQ(joins, locking ? 0 : 1);
    }
}
