// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Memory runs out at every place where the component allocates: at the first allocation of an
// operation, in the next run at the second, and so on until no allocation is left to refuse. Each
// time the client gets OrvFailure, nothing is lost or left locked, and the component goes on
// serving.

#include "DnUtil.h"
#include "FailingNew.h"
#include "Operations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include <malloc.h>

namespace Scripted {
namespace {

using testing::AnyOfArray;

constexpr unsigned int kQuiet = 2;
constexpr unsigned int kTracing = 8;

/// Nothing: std::bad_alloc has come out of the component.
std::optional<OrvReturnT> answerOf(const Operation& operation, Scene& scene) {
    try {
        return operation.when(scene);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

/// What an operation that is refused memory may answer. The only entry without a shield throws to
/// its host; a trace that there is no memory for is dropped, and nobody learns of it.
std::vector<std::optional<OrvReturnT>> answersWithout(const Operation& operation,
                                                      unsigned int logLevel) {
    const bool shielded = operation.name != "orvLCMinit";
    std::vector<std::optional<OrvReturnT>> answers = {
        shielded ? std::optional<OrvReturnT>(OrvFailure) : std::nullopt};
    if (logLevel == kTracing) {
        answers.emplace_back(operation.ordinarily);
    }
    return answers;
}

/// One run with the \p failing th allocation refused. False: there are not so many.
bool survives(const Operation& operation, unsigned int logLevel, std::size_t failing) {
    SCOPED_TRACE(operation.name + ", allocation " + std::to_string(failing));
    bool sprung = false;
    {
        Scene scene(operation.stage);
        operation.given(scene);
        scene.host.logLevel(logLevel);
        scene.host.forget();
        std::optional<OrvReturnT> answer;
        {
            const NewWatch watch(failing);
            answer = answerOf(operation, scene);
            sprung = watch.sprung();
        }
        scene.host.logLevel(kQuiet);
        if (sprung) {
            EXPECT_THAT(answer, AnyOfArray(answersWithout(operation, logLevel)));
        } else {
            EXPECT_EQ(answer, operation.ordinarily);
        }
        scene.giveBack(answer.value_or(OrvFailure));
        expectServes(scene, operation);
    }
    EXPECT_EQ(watchedBlocks(), 0U) << "left behind after the component is gone";
    return sprung;
}

void refuseEachAllocation(const Operation& operation, unsigned int logLevel) {
    std::size_t failing = 1;
    while (survives(operation, logLevel, failing) && !testing::Test::HasFailure()) {
        ++failing;
    }
}

class AllocationFaults : public testing::TestWithParam<Operation> {};

TEST_P(AllocationFaults, EachRefusedAllocation_AnswersFailureAndServesOn) {
    refuseEachAllocation(GetParam(), kQuiet);
}

// Above the gate every operation writes traces too.
TEST_P(AllocationFaults, EachRefusedWhileTracing_LeavesNothingBehindEither) {
    refuseEachAllocation(GetParam(), kTracing);
}

INSTANTIATE_TEST_SUITE_P(Operations, AllocationFaults, testing::ValuesIn(operations()),
                         [](const auto& tested) { return plainName(tested.param); });

// A process may end with the component started and transactions open.
TEST(EndWithoutStop, WhatWasKeptForTransactions_GoesWithTheComponent) {
    Scene scene(Life::Started);
    {
        const NewWatch watch;
        EXPECT_EQ(
            scene.host.client().table->newMoIterator(1, "", "ManagedElement", &scene.iterator),
            OrvOk);
        EXPECT_EQ(
            scene.host.client1().table->newMoIterator(2, "", "ManagedElement", &scene.iterator1),
            OrvOk);
    }
    EXPECT_GT(watchedBlocks(), 0U);
    scene.host.closeAsItIs();
    EXPECT_EQ(watchedBlocks(), 0U);
}

// Called without a binder: the interceptor component sees the exception.
TEST(AllocationFaultsOfTheRepository, Registration_ThrowsAndEntersNothing) {
    const std::string path = "ManagedElement,Unit,AndMoreThanFitsIntoAShortString";
    for (std::size_t failing = 1;; ++failing) {
        Scene scene(Life::Started);
        Interceptor& interceptor = scene.host.bareInterceptor("probe");
        interceptor.initialize();
        bool thrown = false;
        {
            const NewWatch watch(failing);
            try {
                interceptor.registerClass(path);
            } catch (const std::bad_alloc&) {
                thrown = true;
            }
        }
        EXPECT_EQ(interceptor.getInterceptor(path), thrown ? nullptr : interceptor.address());
        std::async(std::launch::async, [&] { interceptor.deregisterClass(path); }).get();
        EXPECT_EQ(watchedBlocks(), 0U);
        if (!thrown) {
            EXPECT_GT(failing, 1U);
            return;
        }
    }
}

/// What the C library has given out in this process. A sanitizer does not count it, and finds what
/// is lost by itself.
std::size_t bytesInUse() {
    const struct mallinfo2 all = mallinfo2();
    return all.uordblks + all.hblkhd;
}

// A block of the C library is no allocation that is watched; what enters it in a list is one.
TEST(AllocationFaultsOfBlocks, BlockThatCannotBeEntered_IsNotLost) {
    constexpr std::size_t references = 5000;
    const auto refuseEach = [] {
        bool sprung = true;
        for (std::size_t failing = 1; sprung; ++failing) {
            Scene scene(Life::Started);
            const std::vector<std::string> many(references, "Unit=7");
            scene.named = scene.records.named({{"to", refs(many)}});
            const Client3 client = scene.host.client();
            const NewWatch watch(failing);
            const OrvReturnT code = client.table->action(kFaultTx, "ManagedElement=paris,Unit=7",
                                                         "go", scene.named, &scene.read);
            sprung = watch.sprung();
            EXPECT_EQ(code, sprung ? OrvFailure : OrvOk);
        }
    };
    refuseEach(); // some things are made once and stay
    const std::size_t before = bytesInUse();
    refuseEach();
    EXPECT_LT(bytesInUse(), before + references * sizeof(OrvMoAttributeValue_3));
}

TEST(FailingNew, ServesTheComponentAndTheHelperLibrary) {
    const std::string dn(1000, 'x');
    {
        const NewWatch watch(1);
        EXPECT_THROW(Orv::DnUtil::getMocPath(dn + "=1"), std::bad_alloc);
        EXPECT_TRUE(watch.sprung());
    }
    Scene scene(Life::Started);
    {
        const NewWatch watch;
        OrvReturnT code = scene.host.client().table->newMoIterator(1, "ManagedElement=paris",
                                                                   "Unit", &scene.iterator);
        EXPECT_EQ(code, OrvOk);
        EXPECT_GT(watch.seen(), 0U);
    }
    EXPECT_GT(watchedBlocks(), 0U) << "the iterator lives until its transaction ends";
    EXPECT_EQ(scene.host.resource().finish(1), OrvOk);
    EXPECT_EQ(watchedBlocks(), 0U);
}

}
}
