// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OwnedResult.h"

#include "OrvMoAttributeValue.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using One = OrvMoAttributeValueResult_3;
using Many = OrvMoAttributeValuesResult_3;

std::vector<const void*> released;

void releaseOne(OrvMoAttributeValueContainer_3* container) {
    released.push_back(container);
}

void releaseMany(OrvMoAttributeValueContainer_3** containers) {
    released.push_back(static_cast<const void*>(containers));
}

void releaseAndThrow(OrvMoAttributeValueContainer_3* container) {
    released.push_back(container);
    throw std::runtime_error("release");
}

void releaseAndThrowANumber(OrvMoAttributeValueContainer_3** containers) {
    released.push_back(static_cast<const void*>(containers));
    throw 5;
}

class OwnedResultTest : public testing::Test {
protected:
    OwnedResultTest() { released.clear(); }

    OrvMoAttributeValueContainer_3 container{};
    OrvMoAttributeValueContainer_3* containers[2] = {&container, nullptr};
};

TEST_F(OwnedResultTest, AResult_IsReleasedOnceAtTheEndOfTheScope) {
    {
        const Orv::OwnedResult<One> owner(One{&releaseOne, &container});
        EXPECT_EQ(owner.get().container, &container);
        EXPECT_TRUE(released.empty());
    }
    EXPECT_EQ(released, std::vector<const void*>{&container});
}

TEST_F(OwnedResultTest, ManyValues_AreReleasedOnceAsAWhole) {
    { const Orv::OwnedResult<Many> owner(Many{&releaseMany, containers}); }
    EXPECT_EQ(released, std::vector<const void*>{containers});
}

TEST_F(OwnedResultTest, NothingToRelease_ReleasesNothing) {
    { const Orv::OwnedResult<One> owner; }
    { const Orv::OwnedResult<One> owner(One{nullptr, &container}); }
    { const Orv::OwnedResult<One> owner(One{&releaseOne, nullptr}); }
    { const Orv::OwnedResult<Many> owner; }
    { const Orv::OwnedResult<Many> owner(Many{nullptr, containers}); }
    EXPECT_TRUE(released.empty());
}

TEST_F(OwnedResultTest, ManyValuesWithoutAnArray_ArePassedToTheirRelease) {
    { const Orv::OwnedResult<Many> owner(Many{&releaseMany, nullptr}); }
    EXPECT_EQ(released, std::vector<const void*>{nullptr});
}

TEST_F(OwnedResultTest, ARecordThatACallHasWrittenTo_IsReleased) {
    {
        Orv::OwnedResult<One> owner;
        *owner.record() = One{&releaseOne, &container};
    }
    EXPECT_EQ(released, std::vector<const void*>{&container});
}

TEST_F(OwnedResultTest, AMovedOwner_ReleasesNothing) {
    {
        Orv::OwnedResult<Many> first(Many{&releaseMany, containers});
        const Orv::OwnedResult<Many> second(std::move(first));
        EXPECT_EQ(second.get().containers, containers);
    }
    EXPECT_EQ(released, std::vector<const void*>{containers});
    static_assert(!std::is_copy_constructible_v<Orv::OwnedResult<Many>>);
}

TEST_F(OwnedResultTest, AResultThatWasTaken_IsTheTakersToRelease) {
    One taken{};
    {
        Orv::OwnedResult<One> owner(One{&releaseOne, &container});
        taken = owner.take();
    }
    EXPECT_TRUE(released.empty());
    EXPECT_EQ(taken.release, &releaseOne);
    EXPECT_EQ(taken.container, &container);
}

TEST_F(OwnedResultTest, WhatAReleaseThrows_IsDropped) {
    { const Orv::OwnedResult<One> owner(One{&releaseAndThrow, &container}); }
    { const Orv::OwnedResult<Many> owner(Many{&releaseAndThrowANumber, containers}); }
    EXPECT_EQ(released, (std::vector<const void*>{&container, containers}));
}

}
