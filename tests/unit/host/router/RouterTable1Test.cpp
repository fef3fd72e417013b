// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RouterScene.h"

#include <gmock/gmock.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;

constexpr const char* kA = "Network=1,Node=a";

class RouterTable1Test : public RouterScene {};

TEST_F(RouterTable1Test, GetMoAttribute_TwoReads_LiveSideBySideUntilFinish) {
    OrvMoAttributeValueContainer* first = nullptr;
    OrvMoAttributeValueContainer* second = nullptr;
    ASSERT_EQ(v1.getMoAttribute(tx, kA, "label", &first), OrvOk);
    ASSERT_EQ(v1.getMoAttribute(tx, kA, "label", &second), OrvOk);
    EXPECT_NE(first, second);
    EXPECT_STREQ(first->values[0].string, "first");
    EXPECT_STREQ(second->values[0].string, "first");
    EXPECT_EQ(v1.getMoAttribute(tx, kA, "colour", &first), OrvNotExist);
}

TEST_F(RouterTable1Test, GetMoAttribute_Unset_IsNeverNull) {
    OrvMoAttributeValueContainer* value = nullptr;
    ASSERT_EQ(v1.getMoAttribute(tx, kA, "peers", &value), OrvOk);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->type, 11);
    EXPECT_EQ(value->count, 0U);
}

TEST_F(RouterTable1Test, SetMoAttribute_Struct_IsReadBackByBothVersions) {
    OrvMoAttributeValue latitude{};
    latitude.real = 2.5;
    OrvMoAttributeValueContainer latitudeValue{OrvMoAttributeTypeDouble_3, 1, &latitude};
    OrvMoStructMember member{"latitude", &latitudeValue, nullptr};
    OrvMoAttributeValue whole{};
    whole.structValue = &member;
    const OrvMoAttributeValueContainer value{OrvMoAttributeTypeStruct_3, 1, &whole};
    ASSERT_EQ(v1.setMoAttribute(tx, kA, "position", &value), OrvOk) << lastMessage();
    OrvMoAttributeValueResult_3 result{};
    ASSERT_EQ(v3.getMoAttribute(tx, kA, "position", &result), OrvOk);
    EXPECT_EQ(result.container->values[0].structValue->value->values[0].real, 2.5);
    result.release(result.container);
    OrvMoAttributeValueContainer* again = nullptr;
    ASSERT_EQ(v1.getMoAttribute(tx, kA, "position", &again), OrvOk);
    EXPECT_STREQ(again->values[0].structValue->name, "latitude");
    EXPECT_EQ(again->values[0].structValue->value->values[0].real, 2.5);
    EXPECT_EQ(again->values[0].structValue->next, nullptr);
    EXPECT_EQ(v1.setMoAttribute(tx, kA, "position", nullptr), OrvInvalidArgument);
}

TEST_F(RouterTable1Test, CreateAndDelete_AndWalk) {
    EXPECT_EQ(v1.createMo(tx, "Network=1", "Node", "id", "c"), OrvOk);
    EXPECT_EQ(v1.createMo(tx, "", "Network", "id", "2"), OrvOk);
    EXPECT_EQ(v1.deleteMo(tx, kA), OrvOk);
    EXPECT_EQ(v1.deleteMo(tx, kA), OrvNotExist);
    void* iterator = nullptr;
    ASSERT_EQ(v1.newMoIterator(tx, "Network=1", "Node", &iterator), OrvOk);
    std::vector<std::string> names;
    char* name = nullptr;
    while (v1.nextMo(iterator, &name) == OrvOk && name != nullptr) {
        names.emplace_back(name);
    }
    EXPECT_THAT(names, ElementsAre("b", "c"));
    service.abort(tx);
    EXPECT_EQ(v1.nextMo(iterator, &name), OrvNotActive);
}

TEST_F(RouterTable1Test, PlaceForTheAnswer_Null_IsRefused) {
    OrvMoAttributeValueContainer* none[] = {nullptr};
    void* iterator = nullptr;
    ASSERT_EQ(v1.newMoIterator(tx, "Network=1", "Node", &iterator), OrvOk);
    EXPECT_EQ(v1.getMoAttribute(tx, kA, "label", nullptr), OrvInvalidArgument);
    EXPECT_EQ(v1.newMoIterator(tx, "Network=1", "Node", nullptr), OrvInvalidArgument);
    EXPECT_EQ(v1.nextMo(iterator, nullptr), OrvInvalidArgument);
    EXPECT_EQ(v1.action(tx, kA, "reset", none, nullptr), OrvInvalidArgument);
}

TEST_F(RouterTable1Test, Action_EmptyResult_IsAContainerWithoutValues) {
    OrvMoAttributeValue slot{};
    OrvMoAttributeValueContainer delay{OrvMoAttributeTypeUint64_3, 1, &slot};
    OrvMoAttributeValueContainer* parameters[] = {&delay, nullptr};
    OrvMoAttributeValueContainer* result = nullptr;
    ASSERT_EQ(v1.action(tx, kA, "reset", parameters, &result), OrvOk) << lastMessage();
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(result->count, 0U);
    OrvMoAttributeValueContainer* tooMany[] = {&delay, &delay, &delay, nullptr};
    EXPECT_EQ(v1.action(tx, kA, "reset", tooMany, &result), OrvInvalidArgument);
    EXPECT_EQ(v1.action(tx, kA, "reset", nullptr, &result), OrvInvalidArgument);
}

}
}
