// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "values/ConvertedResultData.h"

#include "Records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <type_traits>
#include <vector>

using OrvExtCmRouterService::ConvertedResultData;
using testing::ElementsAre;
using testing::IsEmpty;

using namespace Scripted;

namespace {

std::vector<const void*> released;
const char* textAtRelease = nullptr;

void releaseOne(OrvMoAttributeValueContainer_3* container) {
    released.push_back(container);
}

void releaseMany(OrvMoAttributeValueContainer_3** containers) {
    released.push_back(containers);
}

// Reads the view, which must not be gone yet.
OrvMoAttributeValueContainer_3* viewToRead = nullptr;
void releaseReadingTheView(OrvMoAttributeValueContainer_3* container) {
    released.push_back(container);
    textAtRelease = viewToRead->values[0].string;
}
void releaseManyReadingTheView(OrvMoAttributeValueContainer_3** containers) {
    released.push_back(containers);
    textAtRelease = viewToRead->values[0].string;
}

class ConvertedResultDataTest : public testing::Test {
protected:
    ConvertedResultDataTest() { released.clear(); }

    Records records;
};

}

static_assert(std::is_base_of_v<OrvMoAttributeValueContainer_3, ConvertedResultData>);
static_assert(std::is_base_of_v<Orv::AutoMemory, ConvertedResultData>);
static_assert(std::has_virtual_destructor_v<ConvertedResultData>);

TEST_F(ConvertedResultDataTest, New_SharesTheOriginalsSlots) {
    OrvMoAttributeValueContainer_3* const original = records.container(strings({"a", "b"}));
    const ConvertedResultData view(nullptr, original);
    EXPECT_EQ(view.type, OrvMoAttributeTypeString_3);
    EXPECT_EQ(view.count, 2U);
    EXPECT_EQ(view.values, original->values);
    EXPECT_EQ(&view.originalValue(1), &original->values[1]);
}

TEST_F(ConvertedResultDataTest, New_NullContainer_IsEmptyOfTypeZero) {
    const ConvertedResultData view(&releaseOne, nullptr);
    EXPECT_EQ(view.type, 0);
    EXPECT_EQ(view.count, 0U);
    EXPECT_EQ(view.values, nullptr);
}

TEST_F(ConvertedResultDataTest, OwnValues_ReplacesTheSlotsOnceWithZeroedOnes) {
    OrvMoAttributeValueContainer_3* const original = records.container(strings({"a", "b"}));
    ConvertedResultData view(nullptr, original);
    OrvMoAttributeValue_3* const own = view.ownValues();
    EXPECT_NE(own, original->values);
    EXPECT_EQ(view.values, own);
    EXPECT_EQ(own[0].uint64, 0U);
    EXPECT_EQ(own[1].uint64, 0U);
    own[1].string = "x";
    EXPECT_EQ(view.ownValues(), own);
    EXPECT_STREQ(view.values[1].string, "x");
    EXPECT_EQ(view.type, original->type);
    EXPECT_EQ(view.count, original->count);
    EXPECT_STREQ(original->values[1].string, "b");
}

TEST_F(ConvertedResultDataTest, AddNested_StandsForTheContainerItWasGiven) {
    OrvMoAttributeValueContainer_3* const original = records.container(strings({"a"}));
    ConvertedResultData view(nullptr, nullptr);
    ConvertedResultData& nested = view.addNested(original);
    EXPECT_EQ(nested.values, original->values);
    EXPECT_EQ(view.addNested(nullptr).type, 0);
}

TEST_F(ConvertedResultDataTest, Destruction_LeavesTheOriginalAlone) {
    OrvMoAttributeValueContainer_3* const original = records.container(strings({"a"}));
    { const ConvertedResultData view(&releaseOne, original); }
    EXPECT_THAT(released, IsEmpty());
}

TEST_F(ConvertedResultDataTest, ReleaseFunc_HandsTheOriginalBackOnceAndBeforeTheView) {
    OrvMoAttributeValueContainer_3* const original = records.container(strings({"a"}));
    auto* const view = new ConvertedResultData(&releaseReadingTheView, original);
    view->ownValues()[0].string = "converted";
    viewToRead = view;
    ConvertedResultData::releaseFunc(view);
    EXPECT_THAT(released, ElementsAre(original));
    EXPECT_STREQ(textAtRelease, "converted");
}

TEST_F(ConvertedResultDataTest, ReleaseFunc_NoReleaseOrNoContainer_CallsNobody) {
    ConvertedResultData::releaseFunc(
        new ConvertedResultData(nullptr, records.container(strings({"a"}))));
    ConvertedResultData::releaseFunc(new ConvertedResultData(&releaseOne, nullptr));
    EXPECT_THAT(released, IsEmpty());
}

namespace {

// As a client gets them: an array from calloc with its terminator.
OrvMoAttributeValueContainer_3** arrayOf(const std::vector<ConvertedResultData*>& views) {
    auto** const array =
        static_cast<OrvMoAttributeValueContainer_3**>(std::calloc(views.size() + 1, sizeof(void*)));
    for (std::size_t index = 0; index < views.size(); ++index) {
        array[index] = views[index];
    }
    return array;
}

}

TEST_F(ConvertedResultDataTest, MultiReleaseFunc_HandsTheArrayBackOnce) {
    OrvMoAttributeValueContainer_3** const originals =
        records.array({strings({"a"}), strings({"b"}), strings({"c"})});
    auto* const first = new ConvertedResultData(nullptr, originals[0]);
    first->setOriginalMany(&releaseMany, originals);
    ConvertedResultData::multiReleaseFunc(
        arrayOf({first, new ConvertedResultData(nullptr, originals[1]),
                 new ConvertedResultData(nullptr, originals[2])}));
    EXPECT_THAT(released, ElementsAre(originals));
}

TEST_F(ConvertedResultDataTest, MultiReleaseFunc_HandsTheArrayBackBeforeTheViews) {
    OrvMoAttributeValueContainer_3** const originals =
        records.array({strings({"a"}), strings({"b"})});
    auto* const first = new ConvertedResultData(nullptr, originals[0]);
    first->setOriginalMany(&releaseManyReadingTheView, originals);
    first->ownValues()[0].string = "converted";
    textAtRelease = nullptr;
    viewToRead = first;
    ConvertedResultData::multiReleaseFunc(
        arrayOf({first, new ConvertedResultData(nullptr, originals[1])}));
    EXPECT_THAT(released, ElementsAre(originals));
    EXPECT_STREQ(textAtRelease, "converted");
}

TEST_F(ConvertedResultDataTest, MultiReleaseFunc_NoReleaseOrNoArray_CallsNobody) {
    OrvMoAttributeValueContainer_3** const originals = records.array({strings({"a"})});
    auto* const withoutRelease = new ConvertedResultData(nullptr, originals[0]);
    withoutRelease->setOriginalMany(nullptr, originals);
    ConvertedResultData::multiReleaseFunc(arrayOf({withoutRelease}));
    auto* const withoutArray = new ConvertedResultData(nullptr, originals[0]);
    withoutArray->setOriginalMany(&releaseMany, nullptr);
    ConvertedResultData::multiReleaseFunc(arrayOf({withoutArray}));
    EXPECT_THAT(released, IsEmpty());
}
