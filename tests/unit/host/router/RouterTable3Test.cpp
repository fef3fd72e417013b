// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RouterScene.h"

#include <gmock/gmock.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StrEq;

constexpr const char* kA = "Network=1,Node=a";
constexpr const char* kB = "Network=1,Node=b";

OrvMoAttributeValue_3 slotOf(const char* text) {
    OrvMoAttributeValue_3 slot{};
    slot.string = text;
    return slot;
}

class RouterTable3Test : public RouterScene {
protected:
    OrvReturnT set(const char* dn, const char* name, std::int32_t type,
                   std::vector<OrvMoAttributeValue_3> slots) {
        const OrvMoAttributeValueContainer_3 value{type, static_cast<std::uint32_t>(slots.size()),
                                                   slots.empty() ? nullptr : slots.data()};
        return v3.setMoAttribute(tx, dn, name, &value);
    }
    std::string getText(const char* dn, const char* name) {
        OrvMoAttributeValueResult_3 result{};
        EXPECT_EQ(v3.getMoAttribute(tx, dn, name, &result), OrvOk) << lastMessage();
        EXPECT_EQ(result.container->count, 1U);
        std::string text = result.container->values[0].string;
        result.release(result.container);
        return text;
    }
    std::vector<std::string> walk(unsigned long long iterator) {
        std::vector<std::string> names;
        char* name = nullptr;
        while (v3.nextMo(iterator, &name) == OrvOk && name != nullptr) {
            names.emplace_back(name);
        }
        return names;
    }
};

TEST_F(RouterTable3Test, Interfaces_HaveTheirIdentities) {
    const auto check = [](const OrvMgmtSpiInterface_1& id, const char* component, const char* name,
                          const char* version) {
        EXPECT_STREQ(id.componentName, component);
        EXPECT_STREQ(id.interfaceName, name);
        EXPECT_STREQ(id.interfaceVersion, version);
    };
    check(v1.identity, "OrvOamSpiCmRouterService", "OrvOamSpiManagedObject", "1");
    check(v3.identity, "OrvOamSpiCmRouterService", "OrvOamSpiManagedObject", "3");
    const OrvOamSpiManagedObject_3& vek = *router.getVekInterface3();
    check(vek.identity, "VekOamSpiCmRouterService", "VekOamSpiManagedObject", "3");
    check(v3_1.identity, "VekOamSpiCmRouterService", "VekOamSpiManagedObject", "3_1");
    bool exists = false;
    EXPECT_EQ(vek.existsMo(tx, kA, &exists), OrvOk);
    EXPECT_TRUE(exists);
}

TEST_F(RouterTable3Test, GetMoAttribute_EachKind_HasItsCodeAndSlot) {
    OrvMoAttributeValue_3 slot{};
    slot.int64 = -5;
    EXPECT_EQ(set(kA, "height", OrvMoAttributeTypeInt64_3, {slot}), OrvOk);
    slot.uint64 = 80;
    EXPECT_EQ(set(kA, "port", OrvMoAttributeTypeUint64_3, {slot}), OrvOk);
    slot.real = 0.5;
    EXPECT_EQ(set(kA, "power", OrvMoAttributeTypeDouble_3, {slot}), OrvOk);
    slot = {};
    slot.boolean = true;
    EXPECT_EQ(set(kA, "enabled", OrvMoAttributeTypeBool_3, {slot}), OrvOk);
    EXPECT_EQ(set(kA, "mode", OrvMoAttributeTypeEnumeration_3, {slotOf("red")}), OrvOk);
    EXPECT_EQ(set(kA, "peers", OrvMoAttributeTypeMoRef_3, {slotOf(kB), slotOf(kA)}), OrvOk);

    const char* names[] = {"height", "port", "power", "enabled", "mode", "peers", "label", nullptr};
    OrvMoAttributeValuesResult_3 result{};
    ASSERT_EQ(v3.getMoAttributes(tx, kA, names, &result), OrvOk) << lastMessage();
    auto** const all = result.containers;
    EXPECT_EQ(all[0]->type, 2);
    EXPECT_EQ(all[0]->values[0].int64, -5);
    EXPECT_EQ(all[1]->type, 3);
    EXPECT_EQ(all[1]->values[0].uint64, 80U);
    EXPECT_EQ(all[2]->type, 4);
    EXPECT_EQ(all[2]->values[0].real, 0.5);
    EXPECT_EQ(all[3]->type, 1);
    EXPECT_TRUE(all[3]->values[0].boolean);
    EXPECT_EQ(all[4]->type, 5);
    EXPECT_STREQ(all[4]->values[0].string, "red");
    EXPECT_EQ(all[5]->type, 11);
    ASSERT_EQ(all[5]->count, 2U);
    EXPECT_STREQ(all[5]->values[0].moRef, kB);
    EXPECT_STREQ(all[5]->values[1].moRef, kA);
    EXPECT_EQ(all[6]->type, 9);
    EXPECT_STREQ(all[6]->values[0].string, "first");
    EXPECT_EQ(all[7], nullptr);
    result.release(result.containers);
}

// The key of these classes is `id`, their naming attributes are `networkId` and `nodeId`.
TEST_F(RouterTable3Test, DnsWithTheKey_InEveryOperation_NameTheSameObject) {
    for (const char* dn : {"Network.id=1,Node.id=a", "Network=1,Node.nodeId=a"}) {
        bool exists = false;
        EXPECT_EQ(v3.existsMo(tx, dn, &exists), OrvOk);
        EXPECT_TRUE(exists) << dn;
        EXPECT_EQ(getText(dn, "id"), "a");
        EXPECT_EQ(getText(dn, "nodeId"), "a");
        const char* names[] = {"label", "id", nullptr};
        OrvMoAttributeValuesResult_3 result{};
        ASSERT_EQ(v3.getMoAttributes(tx, dn, names, &result), OrvOk);
        EXPECT_STREQ(result.containers[1]->values[0].string, "a");
        result.release(result.containers);
        EXPECT_EQ(set(dn, "label", OrvMoAttributeTypeString_3, {slotOf(dn)}), OrvOk);
        EXPECT_EQ(getText(kA, "label"), dn);
    }
    unsigned long long number = 0;
    EXPECT_EQ(v3.countMoChildren(tx, "Network.id=1", "Node", &number), OrvOk);
    EXPECT_EQ(number, 2U);
    ASSERT_EQ(v3.newMoIterator(tx, "Network.id=1", "Node", &number), OrvOk);
    EXPECT_THAT(walk(number), ElementsAre("a", "b"));
    EXPECT_EQ(v3.createMo(tx, "Network.id=1", "Node", "id", "c", nullptr), OrvOk);
    EXPECT_EQ(v3.createMo(tx, "Network.id=1", "Node", "nodeId", "c", nullptr), OrvAlreadyExist);
    EXPECT_EQ(v3.deleteMo(tx, "Network.id=1,Node.id=c"), OrvOk);
    bool exists = true;
    EXPECT_EQ(v3.existsMo(tx, "Network=1,Node=c", &exists), OrvOk);
    EXPECT_FALSE(exists);
    EXPECT_EQ(v3.existsMo(tx, "Network=1,Node.label=a", &exists), OrvOk);
    EXPECT_FALSE(exists);
    EXPECT_EQ(set(kA, "id", OrvMoAttributeTypeString_3, {slotOf("x")}), OrvHostNotWritable);
}

TEST_F(RouterTable3Test, ReferencesWithTheKey_AreKeptInTheShortForm) {
    EXPECT_EQ(set(kA, "peers", OrvMoAttributeTypeMoRef_3, {slotOf("Network.id=1,Node.id=b")}),
              OrvOk);
    EXPECT_EQ(getText(kA, "peers"), kB);
    OrvMoNamedAttributeValueContainer_3 peers{};
    OrvMoAttributeValue_3 slot = slotOf("Network=1,Node.nodeId=b");
    peers.name = "peers";
    peers.value = {OrvMoAttributeTypeMoRef_3, 1, &slot};
    OrvMoNamedAttributeValueContainer_3* all[] = {&peers, nullptr};
    EXPECT_EQ(v3.createMo(tx, "Network=1", "Node", "nodeId", "c", all), OrvOk);
    EXPECT_EQ(getText("Network=1,Node=c", "peers"), kB);
    EXPECT_EQ(v3_1.setMoAttributes(tx, kA, all), OrvOk);
    EXPECT_EQ(getText(kA, "peers"), kB);
}

TEST_F(RouterTable3Test, GetMoAttribute_Unset_IsAContainerWithoutValues) {
    OrvMoAttributeValueResult_3 result{};
    ASSERT_EQ(v3.getMoAttribute(tx, kB, "peers", &result), OrvOk);
    EXPECT_EQ(result.container->type, 11);
    EXPECT_EQ(result.container->count, 0U);
    EXPECT_EQ(result.container->values, nullptr);
    result.release(result.container);
    EXPECT_EQ(getText(kB, "mode"), "green");
}

TEST_F(RouterTable3Test, GetMoAttributes_NoNames_IsAnEmptyList) {
    const char* names[] = {nullptr};
    OrvMoAttributeValuesResult_3 result{};
    ASSERT_EQ(v3.getMoAttributes(tx, kA, names, &result), OrvOk);
    EXPECT_EQ(result.containers[0], nullptr);
    result.release(result.containers);
    EXPECT_EQ(v3.getMoAttributes(tx, kA, nullptr, &result), OrvInvalidArgument);
}

TEST_F(RouterTable3Test, GetMoAttribute_Result_OutlivesTheTransaction) {
    OrvMoAttributeValueResult_3 result{};
    ASSERT_EQ(v3.getMoAttribute(tx, kA, "label", &result), OrvOk);
    commit();
    EXPECT_STREQ(result.container->values[0].string, "first");
    result.release(result.container);
}

TEST_F(RouterTable3Test, SetMoAttribute_Struct_ComesBackWithNestedMembers) {
    OrvMoAttributeValue_3 depth{};
    depth.int64 = 4;
    OrvMoAttributeValueContainer_3 depthValue{OrvMoAttributeTypeInt64_3, 1, &depth};
    OrvMoStructMember_3 innerMember{"depth", &depthValue, nullptr};
    OrvMoAttributeValue_3 inner[2] = {};
    inner[0].structValue = &innerMember; // the second is an empty struct
    OrvMoAttributeValueContainer_3 innerValue{OrvMoAttributeTypeStruct_3, 2, inner};
    OrvMoStructMember_3 last{"inner", &innerValue, nullptr};
    OrvMoAttributeValue_3 latitude{};
    latitude.real = 1.5;
    OrvMoAttributeValueContainer_3 latitudeValue{OrvMoAttributeTypeDouble_3, 1, &latitude};
    OrvMoStructMember_3 second{"latitude", &latitudeValue, &last};
    OrvMoStructMember_3 first{"names", nullptr, &second}; // a member without value
    OrvMoAttributeValue_3 whole{};
    whole.structValue = &first;
    ASSERT_EQ(set(kA, "position", OrvMoAttributeTypeStruct_3, {whole}), OrvOk) << lastMessage();

    OrvMoAttributeValueResult_3 result{};
    ASSERT_EQ(v3.getMoAttribute(tx, kA, "position", &result), OrvOk);
    const OrvMoStructMember_3* member = result.container->values[0].structValue;
    EXPECT_STREQ(member->name, "latitude");
    EXPECT_EQ(member->value->values[0].real, 1.5);
    member = member->next;
    EXPECT_STREQ(member->name, "inner");
    ASSERT_EQ(member->value->count, 2U);
    EXPECT_EQ(member->value->values[0].structValue->value->values[0].int64, 4);
    EXPECT_EQ(member->value->values[1].structValue, nullptr);
    EXPECT_EQ(member->next, nullptr);
    result.release(result.container);
}

TEST_F(RouterTable3Test, GetMoAttribute_MembersWithEmptyLists_HaveNoValues) {
    const OrvMoAttributeValueContainer_3 none{OrvMoAttributeTypeString_3, 0, nullptr};
    OrvMoStructMember_3 names{"names", const_cast<OrvMoAttributeValueContainer_3*>(&none), nullptr};
    OrvMoAttributeValue_3 latitude{};
    latitude.real = 1.5;
    OrvMoAttributeValueContainer_3 latitudeValue{OrvMoAttributeTypeDouble_3, 1, &latitude};
    OrvMoStructMember_3 first{"latitude", &latitudeValue, &names};
    OrvMoAttributeValue_3 whole{};
    whole.structValue = &first;
    ASSERT_EQ(set(kA, "position", OrvMoAttributeTypeStruct_3, {whole}), OrvOk) << lastMessage();

    OrvMoAttributeValueResult_3 result{};
    ASSERT_EQ(v3.getMoAttribute(tx, kA, "position", &result), OrvOk);
    const OrvMoStructMember_3* second = result.container->values[0].structValue->next;
    ASSERT_NE(second, nullptr);
    EXPECT_STREQ(second->name, "names");
    EXPECT_EQ(second->value->count, 0U);
    EXPECT_EQ(second->value->values, nullptr);
    result.release(result.container);
}

TEST_F(RouterTable3Test, SecondRouterOrService_IsRefusedAndLeavesTheFirstInPlace) {
    EXPECT_THROW(CmRouter second(model, store, context), std::logic_error);
    EXPECT_THROW(TransactionService second(context), std::logic_error);
    EXPECT_EQ(getText(kA, "label"), "first");
    ASSERT_TRUE(commit().accepted);
    EXPECT_EQ(getText(kA, "label"), "first");
}

TEST_F(RouterTable3Test, SetMoAttribute_BrokenRecords_AreRefused) {
    EXPECT_EQ(v3.setMoAttribute(tx, kA, "label", nullptr), OrvInvalidArgument);
    EXPECT_EQ(set(kA, "label", 200, {slotOf("x")}), OrvInvalidArgument);
    EXPECT_THAT(lastMessage(), HasSubstr("type code 200"));
    EXPECT_EQ(set(kA, "label", OrvMoAttributeTypeString_3, {slotOf(nullptr)}), OrvInvalidArgument);
    EXPECT_EQ(set(kA, "peers", OrvMoAttributeTypeMoRef_3, {slotOf(nullptr)}), OrvInvalidArgument);
    EXPECT_EQ(set(nullptr, "label", OrvMoAttributeTypeString_3, {}), OrvInvalidArgument);
    EXPECT_EQ(set(kA, nullptr, OrvMoAttributeTypeString_3, {}), OrvInvalidArgument);
    const OrvMoAttributeValueContainer_3 noArray{OrvMoAttributeTypeString_3, 2, nullptr};
    EXPECT_EQ(v3.setMoAttribute(tx, kA, "tags", &noArray), OrvInvalidArgument);
    EXPECT_EQ(getText(kA, "label"), "first");
}

TEST_F(RouterTable3Test, SetMoAttribute_MembersInARing_AreRefused) {
    OrvMoAttributeValue_3 depth{};
    OrvMoAttributeValueContainer_3 depthValue{OrvMoAttributeTypeUint64_3, 1, &depth};
    OrvMoStructMember_3 member{"depth", &depthValue, nullptr};
    member.next = &member;
    OrvMoAttributeValue_3 slot{};
    slot.structValue = &member;
    const OrvMoAttributeValueContainer_3 value{OrvMoAttributeTypeStruct_3, 1, &slot};
    EXPECT_EQ(v3.setMoAttribute(tx, kA, "position", &value), OrvInvalidArgument);
    EXPECT_THAT(lastMessage(), HasSubstr("more than 100000 members"));
}

TEST_F(RouterTable3Test, SetMoAttribute_BoolOfAnyByte_IsTrueUnlessZero) {
    OrvMoAttributeValue_3 slot{};
    slot.uint64 = 42;
    const OrvMoAttributeValueContainer_3 value{OrvMoAttributeTypeBool_3, 1, &slot};
    ASSERT_EQ(v3.setMoAttribute(tx, kA, "enabled", &value), OrvOk) << lastMessage();
    OrvMoAttributeValueResult_3 result{};
    ASSERT_EQ(v3.getMoAttribute(tx, kA, "enabled", &result), OrvOk);
    EXPECT_EQ(result.container->values[0].uint64, 1U);
    result.release(result.container);
}

TEST_F(RouterTable3Test, PlaceForTheAnswer_Null_IsRefused) {
    const char* names[] = {"label", nullptr};
    OrvMoNamedAttributeValueContainer_3* none[] = {nullptr};
    unsigned long long iterator = 0;
    ASSERT_EQ(v3.newMoIterator(tx, "Network=1", "Node", &iterator), OrvOk);
    EXPECT_EQ(v3.getMoAttribute(tx, kA, "label", nullptr), OrvInvalidArgument);
    EXPECT_EQ(v3.getMoAttributes(tx, kA, names, nullptr), OrvInvalidArgument);
    EXPECT_EQ(v3.newMoIterator(tx, "Network=1", "Node", nullptr), OrvInvalidArgument);
    EXPECT_EQ(v3.nextMo(iterator, nullptr), OrvInvalidArgument);
    EXPECT_EQ(v3.action(tx, kA, "reset", none, nullptr), OrvInvalidArgument);
    EXPECT_EQ(v3.existsMo(tx, kA, nullptr), OrvInvalidArgument);
    EXPECT_EQ(v3.countMoChildren(tx, "Network=1", "Node", nullptr), OrvInvalidArgument);
    char* name = nullptr;
    EXPECT_EQ(v3.nextMo(iterator, &name), OrvOk);
    EXPECT_STREQ(name, "a") << "nothing was taken from the iterator";
}

TEST_F(RouterTable3Test, SetMoAttribute_EndlesslyNestedStruct_IsRefused) {
    OrvMoAttributeValue_3 slot{};
    OrvMoAttributeValueContainer_3 value{OrvMoAttributeTypeStruct_3, 1, &slot};
    OrvMoStructMember_3 member{"inner", &value, nullptr};
    slot.structValue = &member; // holds itself
    EXPECT_EQ(v3.setMoAttribute(tx, kA, "position", &value), OrvInvalidArgument);
    EXPECT_THAT(lastMessage(), HasSubstr("nested deeper"));
}

TEST_F(RouterTable3Test, SetMoAttribute_WhatTheModelForbids_IsExplainedInTheThreadContext) {
    EXPECT_EQ(set(kA, "tags", OrvMoAttributeTypeString_3,
                  {slotOf("1"), slotOf("2"), slotOf("3"), slotOf("4")}),
              OrvInvalidArgument);
    const auto messages = context.take();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].kind, ThreadContext::Explanation);
    EXPECT_EQ(messages[0].text, "Network=1,Node=a: attribute 'tags' of class 'Node': 4 values, "
                                "expected 0..3");
}

TEST_F(RouterTable3Test, SetMoAttribute_BackPointers_MayBeEmptiedAndOverfilled) {
    EXPECT_EQ(set(kA, "peers", OrvMoAttributeTypeMoRef_3, {slotOf(kB), slotOf(kB), slotOf(kB)}),
              OrvOk);
    EXPECT_EQ(set(kA, "peers", OrvMoAttributeTypeMoRef_3, {}), OrvOk);
    EXPECT_TRUE(commit().accepted);
}

TEST_F(RouterTable3Test, CreateMo_WithAttributes_IsSeenByThisTransactionOnly) {
    OrvMoAttributeValue_3 label = slotOf("third");
    OrvMoNamedAttributeValueContainer_3 named{"label", {OrvMoAttributeTypeString_3, 1, &label}};
    OrvMoNamedAttributeValueContainer_3* attributes[] = {&named, nullptr};
    ASSERT_EQ(v3.createMo(tx, "Network=1", "Node", "id", "c", attributes), OrvOk);
    ASSERT_EQ(v3.createMo(tx, "Network=1", "Node", "id", "d", nullptr), OrvOk);
    EXPECT_EQ(getText("Network=1,Node=c", "label"), "third");
    EXPECT_EQ(getText("Network=1,Node=c", "id"), "c");
    const unsigned long other = service.begin();
    bool exists = true;
    EXPECT_EQ(v3.existsMo(other, "Network=1,Node=c", &exists), OrvOk);
    EXPECT_FALSE(exists);
    unsigned long long count = 0;
    EXPECT_EQ(v3.countMoChildren(tx, "Network=1", "Node", &count), OrvOk);
    EXPECT_EQ(count, 4U);
    EXPECT_EQ(v3.countMoChildren(other, "Network=1", "Node", &count), OrvOk);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(v3.countMoChildren(other, "", "Network", &count), OrvOk);
    EXPECT_EQ(count, 1U);
}

TEST_F(RouterTable3Test, CreateMo_Refusals_HaveTheirCodes) {
    EXPECT_EQ(v3.createMo(tx, "Network=1", "Node", "id", "a", nullptr), OrvAlreadyExist);
    EXPECT_EQ(v3.createMo(tx, "Network=9", "Node", "id", "a", nullptr), OrvNotExist);
    EXPECT_EQ(v3.createMo(tx, "", "Node", "id", "a", nullptr), OrvHostNotContained);
    EXPECT_EQ(v3.createMo(tx, "Network=1", "Node", nullptr, "a", nullptr), OrvInvalidArgument);
    EXPECT_EQ(v3.createMo(tx, "Network=1", "Node", "id", nullptr, nullptr), OrvInvalidArgument);
    OrvMoNamedAttributeValueContainer_3 nameless{nullptr, {OrvMoAttributeTypeString_3, 0, nullptr}};
    OrvMoNamedAttributeValueContainer_3* attributes[] = {&nameless, nullptr};
    EXPECT_EQ(v3.createMo(tx, "Network=1", "Node", "id", "z", attributes), OrvInvalidArgument);
}

TEST_F(RouterTable3Test, DeleteMo_Subtree_IsGone) {
    EXPECT_EQ(v3.deleteMo(tx, "Network=1"), OrvOk);
    bool exists = true;
    EXPECT_EQ(v3.existsMo(tx, kA, &exists), OrvOk);
    EXPECT_FALSE(exists);
    EXPECT_EQ(v3.deleteMo(tx, kA), OrvNotExist);
    EXPECT_TRUE(commit().accepted);
    EXPECT_EQ(store.size(), 0U);
}

TEST_F(RouterTable3Test, NextMo_AllChildren_GivesNamesAndThenNull) {
    unsigned long long iterator = 0;
    ASSERT_EQ(v3.newMoIterator(tx, "Network=1", "Node", &iterator), OrvOk);
    EXPECT_THAT(walk(iterator), ElementsAre("a", "b"));
    char* name = nullptr;
    EXPECT_EQ(v3.nextMo(iterator, &name), OrvOk);
    EXPECT_EQ(name, nullptr);
    ASSERT_EQ(v3.newMoIterator(tx, "", "Network", &iterator), OrvOk);
    EXPECT_THAT(walk(iterator), ElementsAre("1"));
    EXPECT_EQ(v3.newMoIterator(tx, "Network=9", "Node", &iterator), OrvNotExist);
    EXPECT_EQ(v3.newMoIterator(tx, "Network=1", "Tree", &iterator), OrvNotExist);
}

TEST_F(RouterTable3Test, NextMo_MadeUpHandles_AreNotActive) {
    char* name = nullptr;
    for (const unsigned long long handle : {0ULL, 1ULL, 77ULL, ~0ULL, 0x7fffffffffffULL}) {
        EXPECT_EQ(v3.nextMo(handle, &name), OrvNotActive);
        EXPECT_EQ(v3.finalizeMoIterator(handle), OrvNotActive);
    }
    EXPECT_EQ(v1.nextMo(nullptr, &name), OrvNotActive);
}

TEST_F(RouterTable3Test, NextMo_AfterFinalize_IsNotActive) {
    unsigned long long iterator = 0;
    ASSERT_EQ(v3.newMoIterator(tx, "Network=1", "Node", &iterator), OrvOk);
    EXPECT_EQ(v3.finalizeMoIterator(iterator), OrvOk);
    char* name = nullptr;
    EXPECT_EQ(v3.nextMo(iterator, &name), OrvNotActive);
    EXPECT_EQ(v3.finalizeMoIterator(iterator), OrvNotActive);
}

TEST_F(RouterTable3Test, NextMo_AfterTheTransaction_IsNotActive) {
    unsigned long long iterator = 0;
    ASSERT_EQ(v3.newMoIterator(tx, "Network=1", "Node", &iterator), OrvOk);
    service.abort(tx);
    char* name = nullptr;
    EXPECT_EQ(v3.nextMo(iterator, &name), OrvNotActive);
}

TEST_F(RouterTable3Test, Operations_UnknownTransaction_AreNotActive) {
    bool exists = false;
    unsigned long long number = 0;
    OrvMoAttributeValueResult_3 result{};
    for (const unsigned long handle : {0UL, 999UL}) {
        EXPECT_EQ(v3.existsMo(handle, kA, &exists), OrvNotActive);
        EXPECT_EQ(v3.getMoAttribute(handle, kA, "label", &result), OrvNotActive);
        EXPECT_EQ(v3.newMoIterator(handle, "", "Network", &number), OrvNotActive);
        EXPECT_EQ(v3.countMoChildren(handle, "", "Network", &number), OrvNotActive);
        EXPECT_EQ(v3.createMo(handle, "", "Network", "id", "2", nullptr), OrvNotActive);
        EXPECT_EQ(v3.deleteMo(handle, kA), OrvNotActive);
        EXPECT_EQ(v3.action(handle, kA, "reset", nullptr, &result), OrvNotActive);
    }
}

class RouterActionTest : public RouterTable3Test {
protected:
    RouterActionTest() { delaySlot.uint64 = 3; }

    OrvReturnT call(const char* name, std::vector<OrvMoNamedAttributeValueContainer_3*> given) {
        given.push_back(nullptr);
        return v3.action(tx, kA, name, given.data(), &result);
    }

    OrvMoAttributeValue_3 delaySlot{};
    OrvMoNamedAttributeValueContainer_3 delay{"delay", {OrvMoAttributeTypeUint64_3, 1, &delaySlot}};
    OrvMoAttributeValueResult_3 result{};
};

TEST_F(RouterActionTest, Action_WithoutHandler_SucceedsWithAnEmptyResult) {
    ASSERT_EQ(call("reset", {&delay}), OrvOk) << lastMessage();
    EXPECT_EQ(result.container->type, OrvMoAttributeTypeInt64_3);
    EXPECT_EQ(result.container->count, 0U);
    result.release(result.container);
}

TEST_F(RouterActionTest, Action_WithHandler_GetsAllParametersAndGivesItsResult) {
    router.setActionHandler([](const ActionCall& one) -> std::optional<AttributeValue> {
        EXPECT_EQ(one.dn, kA);
        EXPECT_EQ(one.moc.name, "Node");
        EXPECT_EQ(one.action.name, "reset");
        EXPECT_THAT(one.parameters, ElementsAre(NamedValue("delay", natural(3)),
                                                NamedValue("how", choice("soft"))));
        return integer(-4);
    });
    ASSERT_EQ(call("reset", {&delay}), OrvOk);
    EXPECT_EQ(result.container->values[0].int64, -4);
    result.release(result.container);

    OrvMoAttributeValue slot{};
    slot.uint64 = 3;
    OrvMoAttributeValueContainer first{OrvMoAttributeTypeUint64_3, 1, &slot};
    OrvMoAttributeValueContainer* parameters[] = {&first, nullptr};
    OrvMoAttributeValueContainer* container = nullptr;
    ASSERT_EQ(v1.action(tx, kA, "reset", parameters, &container), OrvOk);
    EXPECT_EQ(container->values[0].int64, -4);
}

TEST_F(RouterActionTest, Action_HandlerRefuses_ItsCodeAndTextAreReported) {
    router.setActionHandler([](const ActionCall&) -> std::optional<AttributeValue> {
        throw HostError(-777, "not now");
    });
    EXPECT_EQ(call("reset", {&delay}), -777);
    EXPECT_EQ(lastMessage(), "not now");
}

TEST_F(RouterActionTest, Action_WhatTheModelForbids_IsRefused) {
    EXPECT_EQ(call("explode", {}), OrvNotExist);
    EXPECT_THAT(lastMessage(), HasSubstr("has no action 'explode'"));
    EXPECT_EQ(call("reset", {}), OrvInvalidArgument);
    EXPECT_THAT(lastMessage(), HasSubstr("parameter 'delay' of action 'reset': it is mandatory"));
    EXPECT_EQ(call("reset", {&delay, &delay}), OrvInvalidArgument);
    EXPECT_THAT(lastMessage(), HasSubstr("more than once"));
    OrvMoNamedAttributeValueContainer_3 unknown = delay;
    unknown.name = "colour";
    EXPECT_EQ(call("reset", {&delay, &unknown}), OrvInvalidArgument);
    EXPECT_THAT(lastMessage(), HasSubstr("no such parameter"));
    delay.value.type = OrvMoAttributeTypeInt64_3;
    EXPECT_EQ(call("reset", {&delay}), OrvInvalidArgument);
    EXPECT_EQ(v3.action(tx, "Network=1,Node=z", "reset", nullptr, &result), OrvNotExist);
}

class RouterTable3_1Test : public RouterTable3Test {
protected:
    OrvMoAttributeValue_3 labelSlot = slotOf("new");
    OrvMoAttributeValue_3 heightSlot{};
    OrvMoNamedAttributeValueContainer_3 label{"label", {OrvMoAttributeTypeString_3, 1, &labelSlot}};
    OrvMoNamedAttributeValueContainer_3 height{"height",
                                               {OrvMoAttributeTypeInt64_3, 1, &heightSlot}};
};

TEST_F(RouterTable3_1Test, SetMoAttributes_Several_AreSetTogether) {
    OrvMoNamedAttributeValueContainer_3* both[] = {&label, &height, nullptr};
    EXPECT_EQ(v3_1.setMoAttributes(tx, kA, both), OrvOk);
    EXPECT_EQ(getText(kA, "label"), "new");
    EXPECT_EQ(v3_1.setMoAttributes(tx, kA, nullptr), OrvOk);
    OrvMoNamedAttributeValueContainer_3* none[] = {nullptr};
    EXPECT_EQ(v3_1.setMoAttributes(tx, kA, none), OrvOk);
    EXPECT_EQ(v3_1.setMoAttributes(tx, "Network=1,Node=z", none), OrvNotExist);
}

TEST_F(RouterTable3_1Test, SetMoAttributes_OneIsWrong_SetsNone) {
    height.value.type = OrvMoAttributeTypeBool_3;
    OrvMoNamedAttributeValueContainer_3* both[] = {&label, &height, nullptr};
    EXPECT_EQ(v3_1.setMoAttributes(tx, kA, both), OrvInvalidArgument);
    EXPECT_EQ(getText(kA, "label"), "first");
}

TEST_F(RouterTable3Test, DeleteMo_WhoseNewChildIsGoneAgain_IsAConflict) {
    const unsigned long other = service.begin();
    ASSERT_EQ(v3.createMo(other, "Network=1", "Node", "id", "c", nullptr), OrvOk);
    ASSERT_EQ(service.commit(other).code, OrvOk);
    const unsigned long third = service.begin();
    ASSERT_EQ(v3.deleteMo(third, "Network=1,Node=c"), OrvOk);
    ASSERT_EQ(service.commit(third).code, OrvOk);

    EXPECT_EQ(v3.deleteMo(tx, "Network=1"), OrvHostWriteConflict);
    EXPECT_EQ(lastMessage(), "the children of Network=1 were changed since this transaction "
                             "began, by transaction " +
                                 std::to_string(third));
    EXPECT_EQ(service.commit(tx).code, OrvValidationFailed);
    EXPECT_EQ(v3.createMo(service.begin(), "Network=1", "Node", "id", "d", nullptr), OrvOk);
}

}
}
