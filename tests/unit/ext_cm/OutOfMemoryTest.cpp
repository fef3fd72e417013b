// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Every allocation of an operation fails in turn: the answer is OrvFailure or the operation's own,
// nothing is lost, and the next call is served. The process's operator new is replaced for that, so
// these tests have a program of their own.

#include "ExtCmInterceptorRepository.h"
#include "MoImpl.h"
#include "MoImpl3.h"
#include "MoImpl3_1.h"
#include "PlainHost.h"
#include "Portal.h"
#include "associations/PendingAdditions.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>

using namespace OrvExtCmRouterService;

namespace {

int allocationsLeft = -1; // no limit below zero
long living = 0;

bool mayAllocate() {
    if (allocationsLeft == 0) {
        return false;
    }
    if (allocationsLeft > 0) {
        --allocationsLeft;
    }
    return true;
}

}

// Out of line, so that the compiler does not take a `delete` for a `free` of the wrong block.
__attribute__((noinline)) void* operator new(std::size_t size) {
    void* const block = mayAllocate() ? std::malloc(size) : nullptr;
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    ++living;
    return block;
}
__attribute__((noinline)) void operator delete(void* block) noexcept {
    living -= block != nullptr ? 1 : 0;
    std::free(block);
}
__attribute__((noinline)) void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}

namespace {

constexpr unsigned long kTx = 1;
constexpr char kDn[] = "A=0123456789012345678901234567890123456789"; // too long for the stack

// One value of each kind that is converted: a struct that holds a reference and a struct of its
// own.
template <class Container, class Slot, class Member>
struct Sample {
    Slot refSlot{};
    Container ref{OrvMoAttributeTypeMoRef_3, 1, &refSlot};
    Member innerMember{"to", &ref, nullptr};
    Slot innerSlot{};
    Container inner{OrvMoAttributeTypeStruct_3, 1, &innerSlot};
    Member second{"in", &inner, nullptr};
    Member first{"to", &ref, &second};
    Slot outerSlot{};
    Container outer{OrvMoAttributeTypeStruct_3, 1, &outerSlot};

    Sample() {
        refSlot.moRef = kDn;
        innerSlot.structValue = &innerMember;
        outerSlot.structValue = &first;
    }
};

Sample<OrvMoAttributeValueContainer, OrvMoAttributeValue, OrvMoStructMember> sample1;
Sample<OrvMoAttributeValueContainer_3, OrvMoAttributeValue_3, OrvMoStructMember_3> sample3;
OrvMoAttributeValueContainer_3* many3[] = {&sample3.outer, &sample3.ref, &sample3.outer, nullptr};
OrvMoNamedAttributeValueContainer_3 namedStruct{"s", {}};
OrvMoNamedAttributeValueContainer_3 namedRef{"r", {}};
OrvMoNamedAttributeValueContainer_3* named3[] = {&namedStruct, &namedRef, nullptr};

int released = 0;
void release(OrvMoAttributeValueContainer_3*) {
    ++released;
}
void releaseMany(OrvMoAttributeValueContainer_3**) {
    ++released;
}

OrvReturnT join(unsigned long, OrvOamSpiTransactionalResource_2*) {
    return OrvOk;
}

OrvOamSpiManagedObject_1 router1 = {
    {},
    [](unsigned long, const char*, const char*, const OrvMoAttributeValueContainer*) {
        return OrvOk;
    },
    [](unsigned long, const char*, const char*, OrvMoAttributeValueContainer** result) {
        *result = &sample1.outer;
        return OrvOk;
    },
    [](unsigned long, const char*, const char*, void** iterator) {
        *iterator = &sample1;
        return OrvOk;
    },
    nullptr,
    [](unsigned long, const char*, const char*, const char*, const char*) { return OrvOk; },
    [](unsigned long, const char*) { return OrvOk; },
    [](unsigned long, const char*, const char*, OrvMoAttributeValueContainer**,
       OrvMoAttributeValueContainer** result) {
        *result = &sample1.ref;
        return OrvOk;
    }};

OrvOamSpiManagedObject_3 router3 = {
    {},
    [](unsigned long, const char*, const char*, const OrvMoAttributeValueContainer_3*) {
        return OrvOk;
    },
    [](unsigned long, const char*, const char*, OrvMoAttributeValueResult_3* result) {
        *result = {&release, &sample3.outer};
        return OrvOk;
    },
    [](unsigned long, const char*, const char**, OrvMoAttributeValuesResult_3* result) {
        *result = {&releaseMany, many3};
        return OrvOk;
    },
    [](unsigned long, const char*, const char*, unsigned long long* iterator) {
        *iterator = 1;
        return OrvOk;
    },
    nullptr,
    [](unsigned long, const char*, const char*, const char*, const char*,
       OrvMoNamedAttributeValueContainer_3**) { return OrvOk; },
    [](unsigned long, const char*) { return OrvOk; },
    [](unsigned long, const char*, const char*, OrvMoNamedAttributeValueContainer_3**,
       OrvMoAttributeValueResult_3* result) {
        *result = {&release, &sample3.ref};
        return OrvOk;
    },
    nullptr,
    [](unsigned long, const char*, bool*) { return OrvOk; },
    [](unsigned long, const char*, const char*, unsigned long long*) { return OrvOk; }};

VekOamSpiManagedObject_3_1 router3_1 = {
    {}, [](unsigned long, const char*, VekMoNamedAttributeValueContainer_3**) { return OrvOk; }};

OrvReturnT getInterface(VekMgmtSpiInterface_1 id, void** result) {
    const std::string version = id.interfaceVersion;
    *result = version == "1"   ? static_cast<void*>(&router1)
              : version == "3" ? static_cast<void*>(&router3)
                               : static_cast<void*>(&router3_1);
    return OrvOk;
}

/// At level 0 nothing is written; at level 8 every trace needs memory, too.
class OutOfMemory : public testing::TestWithParam<unsigned int> {
protected:
    OutOfMemory() {
        namedStruct.value = sample3.outer;
        namedRef.value = sample3.ref;
        Orv::LoggingWrapper::instance()->setLevel(GetParam());
        one.init(&portal);
        three.init(&portal, &repository);
        threeOne.init(&portal, &repository);
        one.start(OrvStateChangeReasonRequested);
        three.start(OrvStateChangeReasonRequested);
        threeOne.start(OrvStateChangeReasonRequested);
    }
    ~OutOfMemory() override { Orv::LoggingWrapper::instance()->setLevel(4); }

    // Runs `operation`, which answers a code, with ever more room until it succeeds. `discard`
    // gives back what a run has left with the client; it is told the run's code.
    template <class Operation, class Discard>
    void failEachAllocation(Operation&& operation, Discard&& discard) {
        constexpr int tooMany = 1000;
        int failures = 0;
        OrvReturnT code = OrvFailure;
        for (int room = 0; code != OrvOk && room < tooMany; ++room) {
            const long before = living;
            transactions.transaction = &transactionTable;
            allocationsLeft = room;
            code = operation();
            allocationsLeft = -1;
            discard(code);
            transactions.sweep();
            ASSERT_EQ(living, before) << "with room for " << room;
            ASSERT_TRUE(code == OrvOk || code == OrvFailure) << code;
            failures += code == OrvOk ? 0 : 1;
        }
        EXPECT_EQ(code, OrvOk);
        EXPECT_GT(failures, 0) << "nothing was allocated";
    }

    template <class Operation>
    void failEachAllocation(Operation&& operation) {
        failEachAllocation(operation, [](OrvReturnT) {});
    }

    OrvOamSpiTransaction_1 transactionTable{{}, &join};
    OrvOamSpiTransactionalResource_2 resource{};
    OrvMgmtSpiInterfacePortal_1 portal{{}, &getInterface, nullptr, nullptr, nullptr};
    ExtCmInterceptorRepository repository;
    IdMappings mappings{Orv::MeIdTranslator::instance()};
    TransactionData transactions{&resource};
    BiDirUtils biDirUtils;
    UniDirValidator uniDirValidator;
    MoImpl one{mappings, transactions};
    MoImpl3 three{mappings, transactions, biDirUtils, uniDirValidator};
    MoImpl3_1 threeOne{mappings, transactions, biDirUtils, uniDirValidator};
    OrvOamSpiManagedObject_1& table1 = *one.getMoInterface();
    OrvOamSpiManagedObject_3& table3 = *three.getMoInterface();
    VekOamSpiManagedObject_3_1& table3_1 = *threeOne.getMoInterface();
};

}

// After a failure the result is still the router's, which takes it back all the same.
TEST_P(OutOfMemory, GetMoAttribute3) {
    OrvMoAttributeValueResult_3 result{};
    failEachAllocation(
        [&] {
            result = {};
            return table3.getMoAttribute(kTx, kDn, "s", &result);
        },
        [&](OrvReturnT code) {
            const bool answered = result.container != nullptr;
            EXPECT_EQ(answered && result.container != &sample3.outer, code == OrvOk);
            released = 0;
            if (answered) {
                result.release(result.container);
            }
            EXPECT_EQ(released, answered ? 1 : 0);
        });
}

TEST_P(OutOfMemory, GetMoAttributes3) {
    OrvMoAttributeValuesResult_3 result{};
    const char* names[] = {"s", "r", "s", nullptr};
    failEachAllocation(
        [&] {
            result = {};
            return table3.getMoAttributes(kTx, kDn, names, &result);
        },
        [&](OrvReturnT code) {
            const bool answered = result.containers != nullptr;
            EXPECT_EQ(answered && result.containers != many3, code == OrvOk);
            released = 0;
            if (answered) {
                result.release(result.containers);
            }
            EXPECT_EQ(released, answered ? 1 : 0);
        });
}

TEST_P(OutOfMemory, Action3) {
    OrvMoAttributeValueResult_3 result{};
    failEachAllocation(
        [&] {
            result = {};
            return table3.action(kTx, kDn, "act", named3, &result);
        },
        [&](OrvReturnT) {
            if (result.container != nullptr) {
                result.release(result.container);
            }
        });
}

TEST_P(OutOfMemory, SetMoAttribute3) {
    failEachAllocation([&] { return table3.setMoAttribute(kTx, kDn, "s", &sample3.outer); });
    failEachAllocation([&] { return table3.setMoAttribute(kTx, kDn, "r", &sample3.ref); });
}

TEST_P(OutOfMemory, CreateMo3) {
    failEachAllocation([&] { return table3.createMo(kTx, kDn, "Unit", "label", "7", named3); });
}

TEST_P(OutOfMemory, NewMoIterator3) {
    unsigned long long iterator = 0;
    failEachAllocation([&] { return table3.newMoIterator(kTx, kDn, "Unit", &iterator); },
                       [&](OrvReturnT code) {
                           EXPECT_EQ(MoImpl3::MoIterator::find(iterator) != nullptr, code == OrvOk);
                       });
}

TEST_P(OutOfMemory, ReadsAndDelete3) {
    bool exists = false;
    unsigned long long count = 0;
    failEachAllocation([&] { return table3.existsMo(kTx, kDn, &exists); });
    failEachAllocation([&] { return table3.countMoChildren(kTx, kDn, "Unit", &count); });
    failEachAllocation([&] { return table3.deleteMo(kTx, kDn); });
}

TEST_P(OutOfMemory, SetMoAttributes3_1) {
    failEachAllocation([&] { return table3_1.setMoAttributes(kTx, kDn, named3); });
}

TEST_P(OutOfMemory, Version1) {
    OrvMoAttributeValueContainer* result = nullptr;
    OrvMoAttributeValueContainer* parameters[] = {&sample1.outer, &sample1.ref, nullptr};
    void* iterator = nullptr;
    failEachAllocation([&] { return table1.getMoAttribute(kTx, kDn, "s", &result); });
    failEachAllocation([&] { return table1.setMoAttribute(kTx, kDn, "s", &sample1.outer); });
    failEachAllocation([&] { return table1.action(kTx, kDn, "act", parameters, &result); });
    failEachAllocation([&] { return table1.newMoIterator(kTx, kDn, "Unit", &iterator); });
    failEachAllocation([&] { return table1.createMo(kTx, kDn, "Unit", "unitId", "7"); });
    failEachAllocation([&] { return table1.deleteMo(kTx, kDn); });
}

TEST_P(OutOfMemory, Registration) {
    MoInterceptorBase interceptor;
    failEachAllocation(
        [&] { return Orv::shielded([&] { return repository.registerClass(interceptor, kDn); }); },
        [&](OrvReturnT code) {
            EXPECT_EQ(repository.getInterceptor(kDn) != nullptr, code == OrvOk);
            repository.deregisterClass(kDn);
        });
}

// The way through a table itself takes none.
TEST_P(OutOfMemory, CallsThatKeepNothing_NeedNoMemory) {
    char* name = nullptr;
    allocationsLeft = 0;
    const OrvReturnT finalized = table3.finalizeMoIterator(0);
    const OrvReturnT stepped3 = table3.nextMo(0, &name);
    const OrvReturnT stepped1 = table1.nextMo(nullptr, &name);
    allocationsLeft = -1;
    EXPECT_EQ(finalized, OrvOk);
    EXPECT_EQ(stepped3, OrvNotActive);
    EXPECT_EQ(stepped1, OrvNotActive);
}

// What a transaction has recorded goes with it, all of it.
TEST_P(OutOfMemory, Finish_GivesTheMemoryBack) {
    Orv::Portal::instance()->attach(&PlainHost::lookup);
    uniDirValidator.start();
    const long before = living;
    OrvMoAttributeValue_3 slots[2] = {};
    slots[0].moRef = slots[1].moRef = kDn;
    const OrvMoAttributeValueContainer_3 value{OrvMoAttributeTypeMoRef_3, 2, slots};
    for (int i = 0; i < 1000; ++i) {
        const std::string dn = std::string(kDn) + ",B=" + std::to_string(i);
        uniDirValidator.setMoRef(kTx, dn, "ys", &value);
    }
    EXPECT_GT(living, before + 1000);
    uniDirValidator.finish(kTx);
    EXPECT_EQ(living, before);
    Orv::Portal::instance()->detach();
}

// What waits goes, too; the work list of the validation is what stays.
TEST_P(OutOfMemory, WaitingAdditions_GiveTheMemoryBack) {
    const long before = living;
    {
        PendingAdditions::Store store;
        PendingAdditions pending(store);
        for (int i = 0; i < 1000; ++i) {
            pending.add(kDn, {kTx, "xs", 1, kDn, true, "ys"});
        }
        EXPECT_GT(living, before + 1000);
        pending.dropTransaction(kTx);
        EXPECT_EQ(living, before);
        // Either both orders have an addition or none, wherever the memory ends.
        for (int room = 0; store.empty(); ++room) {
            allocationsLeft = room;
            try {
                pending.add(kDn, {kTx, "xs", 1, kDn, true, "ys"});
            } catch (const std::bad_alloc&) {
                EXPECT_TRUE(store.empty());
            }
            allocationsLeft = -1;
        }
        pending.dropSources(kTx, kDn, [](const std::string&, const std::string&) { return true; });
        EXPECT_TRUE(store.empty());
    }
    EXPECT_EQ(living, before);
}

INSTANTIATE_TEST_SUITE_P(Level, OutOfMemory, testing::Values(0U, 8U));
