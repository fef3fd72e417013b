// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What the data structures that transactions fill take and give back, and what they hold when
// memory runs out under them. The process's operator new is replaced for that, so these tests have
// a program of their own.

#include "ExtCmInterceptorRepository.h"
#include "LoggingWrapper.h"
#include "MoInterceptorBase.h"
#include "PlainHost.h"
#include "Portal.h"
#include "UniDirValidator.h"
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

/// Runs \p work with ever more room, until it succeeds.
template <class Work, class Check>
void failEachAllocation(const Work& work, const Check& checkAfterFailure) {
    constexpr int tooMany = 100;
    bool done = false;
    int room = 0;
    for (; !done && room < tooMany; ++room) {
        allocationsLeft = room;
        try {
            work();
            done = true;
        } catch (const std::bad_alloc&) {
            allocationsLeft = -1;
            checkAfterFailure();
        }
        allocationsLeft = -1;
    }
    EXPECT_TRUE(done);
    EXPECT_GT(room, 1) << "nothing was allocated";
}

}

TEST(OutOfMemory, Registration_IsMadeOrNot) {
    Orv::LoggingWrapper::instance(); // made when it is first used, and stays
    const long before = living;
    {
        ExtCmInterceptorRepository repository;
        MoInterceptorBase interceptor;
        failEachAllocation([&] { repository.registerClass(interceptor, kDn); },
                           [&] { EXPECT_EQ(repository.getInterceptor(kDn), nullptr); });
        EXPECT_EQ(repository.getInterceptor(kDn), &interceptor);
    }
    EXPECT_EQ(living, before);
}

// What a transaction has recorded goes with it, all of it.
TEST(OutOfMemory, RecordedReferences_GiveTheMemoryBack) {
    Orv::Portal::instance()->attach(&PlainHost::lookup);
    UniDirValidator uniDirValidator;
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

// Either both orders have an addition or none, wherever the memory ends.
TEST(OutOfMemory, WaitingAdditions_AreQueuedOrNotAndGiveTheMemoryBack) {
    const long before = living;
    {
        PendingAdditions::Store store;
        PendingAdditions pending(store);
        const auto add = [&] { pending.add(kDn, {kTx, "xs", 1, kDn, true, "ys"}); };
        for (int i = 0; i < 1000; ++i) {
            add();
        }
        EXPECT_GT(living, before + 1000);
        pending.dropTransaction(kTx);
        EXPECT_EQ(living, before);
        failEachAllocation(add, [&] { EXPECT_TRUE(store.empty()); });
        pending.dropSources(kTx, kDn, [](const std::string&, const std::string&) { return true; });
        EXPECT_TRUE(store.empty());
    }
    EXPECT_EQ(living, before);
}
