// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The interface of version 1: it translates and forwards, and what it hands out lives as long as
// the transaction.

#include "Network.h"
#include "Records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

using namespace Scripted;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

const std::string kJoin = "Transaction.join(1, OrvOamSpiTransactionalResource)";
const std::string kNetworkId = "networkManagedElementId";

}

class Version1 : public Network {
protected:
    Client1 old() const { return host.client1(); }

    /// The router answers reads with this record of its own.
    OrvMoAttributeValueContainer* routersOwn(const Value& value) {
        auto* container = records.container(value);
        host.when("Router1.getMoAttribute")
            .answers<OrvMoAttributeValueContainer*>(
                [container](OrvMoAttributeValueContainer*& out) {
                    out = container;
                    return OrvOk;
                });
        return container;
    }

    OrvMoAttributeValueContainer* read(const std::string& dn, const std::string& attribute) const {
        const auto answer = old().get(1, dn, attribute);
        EXPECT_EQ(answer.code, OrvOk);
        return answer.thing;
    }

    Records1 records;
};

TEST_F(Version1, NotStarted_EverythingIsNotActive) {
    ASSERT_EQ(host.stopComponent(), OrvOk);
    EXPECT_EQ(old().get(1, unit("7"), "label").code, OrvNotActive);
    EXPECT_EQ(old().set(1, unit("7"), "label", strings({"y"})), OrvNotActive);
    EXPECT_EQ(old().create(1, kRoot, "Unit", "unitId", "9"), OrvNotActive);
    EXPECT_EQ(old().remove(1, unit("7")), OrvNotActive);
    EXPECT_EQ(old().action(1, unit("7"), "go").code, OrvNotActive);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Version1, ForeignDn_NothingExistsAndNobodyIsCalled) {
    EXPECT_EQ(old().get(1, kForeignDn, "label").code, OrvNotExist);
    EXPECT_EQ(old().set(1, kForeignDn, kNetworkId), OrvNotExist);
    EXPECT_EQ(old().create(1, kForeignDn, "Cell", "cellId", "9"), OrvNotExist);
    EXPECT_EQ(old().remove(1, kForeignDn), OrvNotExist);
    EXPECT_EQ(old().action(1, kForeignDn, "go").code, OrvNotExist);
    EXPECT_EQ(old().open(1, kForeignDn, "Cell").code, OrvNotExist);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Version1, EmptyDn_OnlyCreationIsServed) {
    EXPECT_EQ(old().get(1, "", "label").code, OrvNotExist);
    EXPECT_EQ(old().set(1, "", "label", strings({"y"})), OrvNotExist);
    EXPECT_EQ(old().remove(1, ""), OrvNotExist);
    EXPECT_EQ(old().action(1, "", "go").code, OrvNotExist);
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_EQ(old().create(1, "", "Plant", "plantId", "1"), OrvOk);
    EXPECT_THAT(host.calls(), ElementsAre("Router1.createMo(1, '', 'Plant', 'plantId', '1')"));
}

TEST_F(Version1, RoutersCodes_ComeBackUnchanged) {
    for (const std::string name : {"getMoAttribute", "setMoAttribute", "createMo", "deleteMo"}) {
        host.when("Router1." + name).fails(-4711);
    }
    EXPECT_EQ(old().get(1, unit("7"), "label").code, -4711);
    EXPECT_EQ(old().set(1, unit("7"), "label", strings({"y"})), -4711);
    EXPECT_EQ(old().create(1, kRoot, "Unit", "unitId", "9"), -4711);
    EXPECT_EQ(old().remove(1, unit("7")), -4711);
}

TEST_F(Version1, RouterThrows_IsAFailure) {
    for (const std::string name :
         {"getMoAttribute", "setMoAttribute", "createMo", "deleteMo", "action"}) {
        host.when("Router1." + name).throws(std::runtime_error("router"));
    }
    EXPECT_EQ(old().get(1, unit("7"), "label").code, OrvFailure);
    EXPECT_EQ(old().set(1, unit("7"), "label", strings({"y"})), OrvFailure);
    EXPECT_EQ(old().create(1, kRoot, "Unit", "unitId", "9"), OrvFailure);
    EXPECT_EQ(old().remove(1, unit("7")), OrvFailure);
    EXPECT_EQ(old().action(1, unit("7"), "go").code, OrvFailure);
}

TEST_F(Version1, Interceptor_IsNeverAskedAndNothingIsRecorded) {
    host.interceptor("ManagedElement,Unit");
    old().set(1, unit("7"), "cells", refs({cell("1")}));
    old().get(1, unit("7"), "cells");
    old().create(1, kRoot, "Unit", "unitId", "9");
    old().action(1, unit("7"), "go");
    old().remove(1, unit("7"));
    EXPECT_THAT(host.calls("Interceptor."), IsEmpty());
    EXPECT_THAT(host.calls("Model."), IsEmpty());
    EXPECT_THAT(host.calls("VekRouter3."), IsEmpty());
    EXPECT_TRUE(validate(1));
}

// getMoAttribute.

TEST_F(Version1, Get_ValueWithoutDns_IsTheRoutersOwnAndDoesNotJoin) {
    for (const Value& value :
         {strings({"x"}), opaque(2, {1}), opaque(200, {1}), none(OrvMoAttributeTypeString_3),
          none(OrvMoAttributeTypeStruct_3), andEmptyStruct(none(OrvMoAttributeTypeStruct_3)),
          structs({{member("label", strings({"x"}))}}),
          structs({{member("label", strings({"x"}))}, {member("to", refs({unitInside("7")}))}})}) {
        const auto* container = routersOwn(value);
        EXPECT_EQ(read(unit("7"), "a"), container) << value;
    }
    EXPECT_THAT(host.calls("Transaction."), IsEmpty());
}

TEST_F(Version1, Get_References_AreCopiedExternalAndJoin) {
    const auto* container = routersOwn(refs({cellInside("1"), cellInside("2")}));
    const auto* got = read(unit("7"), "cells");
    EXPECT_EQ(readValue(got), refs({cell("1"), cell("2")}));
    EXPECT_NE(got, container);
    EXPECT_THAT(
        host.calls(),
        ElementsAre("Router1.getMoAttribute(1, 'ManagedElement=1,Unit=7', 'cells')", kJoin));
}

TEST_F(Version1, Get_UntranslatableReference_IsACopyOfTheSameText) {
    const auto* container = routersOwn(refs({"ManagedElement=2,Cell=1"}));
    const auto* got = read(unit("7"), "cells");
    EXPECT_EQ(readValue(got), refs({"ManagedElement=2,Cell=1"}));
    EXPECT_NE(got->values[0].moRef, container->values[0].moRef);
}

TEST_F(Version1, Get_ReferenceWithoutValues_IsANewContainerAndJoins) {
    const auto* container = routersOwn(refs({}));
    const auto* got = read(unit("7"), "cells");
    EXPECT_NE(got, container);
    EXPECT_EQ(readValue(got), refs({}));
    EXPECT_THAT(host.calls("Transaction."), ElementsAre(kJoin));
}

TEST_F(Version1, Get_Struct_IsRebuiltWithAllItsMembers) {
    const auto* container = routersOwn(andEmptyStruct(
        structs({{member("to", refs({cellInside("1")})), member("label", strings({"x"})),
                  member("in", structs({{member("at", refs({cellInside("2")}))}}))},
                 {member("label", strings({"y"}))}})));
    const auto* got = read(unit("7"), "s");
    EXPECT_EQ(
        readValue(got),
        andEmptyStruct(structs({{member("to", refs({cell("1")})), member("label", strings({"x"})),
                                 member("in", structs({{member("at", refs({cell("2")}))}}))},
                                {member("label", strings({"y"}))}})));
    EXPECT_NE(got, container);
    EXPECT_NE(got->values[1].structValue, container->values[1].structValue);
    EXPECT_THAT(host.calls("Transaction."), ElementsAre(kJoin));
}

TEST_F(Version1, Get_MemberWithoutDn_SharesTheRoutersContainer) {
    const auto* container = routersOwn(
        structs({{member("to", refs({cellInside("1")})), member("label", strings({"x"}))}}));
    const auto* got = read(unit("7"), "s");
    EXPECT_EQ(got->values[0].structValue->next->value,
              container->values[0].structValue->next->value);
}

TEST_F(Version1, Get_Twice_BothCopiesLiveUntilFinish) {
    routersOwn(refs({cellInside("1")}));
    const auto* first = read(unit("7"), "cells");
    const auto* second = read(unit("7"), "cells");
    EXPECT_NE(first, second);
    EXPECT_EQ(readValue(first), refs({cell("1")}));
    EXPECT_EQ(readValue(second), refs({cell("1")}));
    EXPECT_THAT(host.calls("Transaction."), ElementsAre(kJoin));
    EXPECT_EQ(host.resource().finish(1), OrvOk);
}

TEST_F(Version1, Get_RouterRefuses_TheResultStaysAsTheRouterLeftIt) {
    host.mo(unitInside("7")).with("cells", refs({cellInside("1")}));
    host.when("Router1.getMoAttribute").returns(-42);
    const auto got = old().get(1, unit("7"), "cells");
    EXPECT_EQ(got.code, -42);
    EXPECT_EQ(readValue(got.thing), refs({cellInside("1")}));
    EXPECT_THAT(host.calls("Transaction."), IsEmpty());
}

TEST_F(Version1, Get_JoinThrows_TheResultKeepsWhatTheRouterWrote) {
    const auto* container = routersOwn(refs({cellInside("1")}));
    host.when("Transaction.join").throws(std::runtime_error("host"));
    const auto got = old().get(1, unit("7"), "cells");
    EXPECT_EQ(got.code, OrvFailure);
    EXPECT_EQ(got.thing, container);
}

TEST_F(Version1, Get_RootId_IsTheExternalIdentityAndJoins) {
    const auto* container = routersOwn(strings({"1"}));
    const auto* got = read(kRoot, "managedElementId");
    EXPECT_EQ(readValue(got), strings({"paris"}));
    EXPECT_NE(got, container);
    EXPECT_THAT(host.calls("Transaction."), ElementsAre(kJoin));
}

TEST_F(Version1, Get_RootId_PrefixOfTheRoot_IsTheExternalIdentityToo) {
    routersOwn(strings({"1"}));
    EXPECT_EQ(readValue(read("ManagedElementExtra=1", "managedElementId")), strings({"paris"}));
}

TEST_F(Version1, Get_RootId_WithoutExternalForm_IsTheEmptyText) {
    routersOwn(strings({"2"}));
    EXPECT_EQ(readValue(read(kRoot, "managedElementId")), strings({""}));
}

TEST_F(Version1, Get_RootId_ElsewhereIsTheRoutersOwn) {
    const auto* one = routersOwn(strings({"1"}));
    EXPECT_EQ(read(unit("7"), "managedElementId"), one);
    EXPECT_EQ(read("Plant=1", "managedElementId"), one);
    EXPECT_EQ(read(kRoot, "managedElementIdX"), one);
    const auto* two = routersOwn(strings({"1", "1"}));
    EXPECT_EQ(read(kRoot, "managedElementId"), two);
    const auto* number = routersOwn(opaque(2, {1}));
    EXPECT_EQ(read(kRoot, "managedElementId"), number);
    EXPECT_THAT(host.calls("Transaction."), IsEmpty());
}

// setMoAttribute.

TEST_F(Version1, Set_PlainValue_IsTheClientsOwnAndDoesNotJoin) {
    const auto* container = records.container(strings({"y"}));
    EXPECT_EQ(old().table->setMoAttribute(1, unit("7").c_str(), "label", container), OrvOk);
    EXPECT_THAT(host.calls(), ElementsAre("Router1.setMoAttribute(1, 'ManagedElement=1,Unit=7', "
                                          "'label', String['y'])"));
    EXPECT_EQ(host.callRecords().at(0).arguments.at(3).address, container);
}

TEST_F(Version1, Set_References_JoinAndReachTheRouterInternal) {
    EXPECT_EQ(old().set(1, unit("7"), "cells", refs({cell("1"), "ManagedElement=rome"})), OrvOk);
    EXPECT_THAT(host.calls(),
                ElementsAre(kJoin, "Router1.setMoAttribute(1, 'ManagedElement=1,Unit=7', 'cells', "
                                   "MoRef['ManagedElement=1,Cell=1', 'ManagedElement=rome'])"));
}

TEST_F(Version1, Set_Struct_IsConvertedAndTheClientsRecordUntouched) {
    const auto* container = records.container(structs({{member("to", refs({cell("1")}))}}));
    EXPECT_EQ(old().table->setMoAttribute(1, unit("7").c_str(), "s", container), OrvOk);
    EXPECT_EQ(host.calls().back(), "Router1.setMoAttribute(1, 'ManagedElement=1,Unit=7', 's', "
                                   "Struct[{to: MoRef['ManagedElement=1,Cell=1']}])");
    EXPECT_EQ(readValue(container), structs({{member("to", refs({cell("1")}))}}));
}

TEST_F(Version1, Set_NetworkId_NoValue_IsInvalidAndDoesNotReachTheRouter) {
    EXPECT_EQ(old().set(1, unit("7"), kNetworkId), OrvInvalidArgument);
    EXPECT_EQ(old().set(1, unit("7"), kNetworkId, strings({})), OrvInvalidArgument);
    EXPECT_EQ(old().set(1, unit("7"), kNetworkId, nullText(OrvMoAttributeTypeString_3)),
              OrvInvalidArgument);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Version1, Set_NetworkId_EmptyText_ReachesTheRouter) {
    EXPECT_EQ(old().set(1, unit("7"), kNetworkId, strings({""})), OrvOk);
    EXPECT_EQ(host.calls("Router1.").size(), 1U);
}

TEST_F(Version1, Set_NetworkId_Bad_IsInvalid) {
    EXPECT_EQ(old().set(1, unit("7"), kNetworkId, strings({"a,b"})), OrvInvalidArgument);
    EXPECT_EQ(old().set(1, unit("7"), kNetworkId, strings({"a,b"}).counting(0)),
              OrvInvalidArgument);
    EXPECT_EQ(old().set(1, unit("7"), kNetworkId, refs({"a,b"})), OrvInvalidArgument);
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_EQ(old().set(1, unit("7"), kNetworkId, strings({"oslo"})), OrvOk);
}

TEST_F(Version1, Set_NetworkId_Level8_BothRefusalsAreTraces) {
    host.logLevel(8);
    old().set(1, unit("7"), kNetworkId);
    old().set(1, unit("7"), kNetworkId, strings({"a,b"}));
    EXPECT_THAT(host.logs(),
                Contains("trace 0 setMoAttribute: networkManagedElementId had no value"));
    EXPECT_THAT(host.logs(),
                Contains("trace2 ExtCm 14 setMoAttribute: networkManagedElementId had no value"));
    EXPECT_THAT(host.logs(),
                Contains("trace 0 setMoAttribute: Validation of networkManagedElementId failed: "
                         "a,b"));
    host.logLevel(7).forget();
    old().set(1, unit("7"), kNetworkId);
    EXPECT_THAT(host.logs(), IsEmpty());
}

// createMo, deleteMo.

TEST_F(Version1, CreateAndDelete_NeverJoin) {
    EXPECT_EQ(old().create(1, kRoot, "Unit", "unitId", "ManagedElement=paris"), OrvOk);
    EXPECT_EQ(old().remove(1, unit("7")), OrvOk);
    EXPECT_THAT(host.calls(),
                ElementsAre("Router1.createMo(1, 'ManagedElement=1', 'Unit', 'unitId', "
                            "'ManagedElement=paris')",
                            "Router1.deleteMo(1, 'ManagedElement=1,Unit=7')"));
}

// action.

TEST_F(Version1, Action_NoParameters_TheRouterGetsAnArrayOfOneNull) {
    OrvMoAttributeValueContainer* none[] = {nullptr};
    OrvMoAttributeValueContainer* result = nullptr;
    EXPECT_EQ(old().table->action(1, unit("7").c_str(), "go", none, &result), OrvOk);
    EXPECT_THAT(host.calls(),
                ElementsAre("Router1.action(1, 'ManagedElement=1,Unit=7', 'go', [])"));
    EXPECT_NE(host.callRecords().at(0).arguments.at(3).address, static_cast<const void*>(none));
}

TEST_F(Version1, Action_ParametersGoInInternalAndTheResultComesOutExternal) {
    const auto got =
        old().action(1, unit("7"), "go", {refs({cell("1")}), strings({"x"}), refs({})});
    EXPECT_EQ(got.code, OrvOk);
    EXPECT_EQ(readValue(got.thing), refs({cell("1")})); // the router answers the first parameter
    EXPECT_THAT(host.calls(),
                ElementsAre(kJoin, "Router1.action(1, 'ManagedElement=1,Unit=7', 'go', "
                                   "[MoRef['ManagedElement=1,Cell=1'], String['x'], MoRef[]])"));
}

TEST_F(Version1, Action_RouterRefuses_TheResultIsStillSetAndUnconverted) {
    host.when("Router1.action").returns(-42);
    const auto got = old().action(1, unit("7"), "go", {refs({cell("1")})});
    EXPECT_EQ(got.code, -42);
    EXPECT_EQ(readValue(got.thing), refs({cellInside("1")}));
}

TEST_F(Version1, Action_RouterRefusesUntouched_TheResultIsNull) {
    host.when("Router1.action").fails(-42);
    OrvMoAttributeValueContainer mine = {0, 0, nullptr};
    OrvMoAttributeValueContainer* none[] = {nullptr};
    OrvMoAttributeValueContainer* result = &mine;
    EXPECT_EQ(old().table->action(1, unit("7").c_str(), "go", none, &result), -42);
    EXPECT_NE(result, &mine);
}

TEST_F(Version1, Action_RootIdByName_HasNoSpecialCase) {
    const auto got = old().action(1, kRoot, "managedElementId", {strings({"1"})});
    EXPECT_EQ(readValue(got.thing), strings({"1"}));
}

// Iteration.

TEST_F(Version1, Iterator_WalksTheChildrenWithTheRoutersHandle) {
    const auto iterator = old().open(1, kRoot, "Unit");
    ASSERT_EQ(iterator.code, OrvOk);
    EXPECT_EQ(old().next(iterator.thing).thing, "7");
    EXPECT_EQ(old().next(iterator.thing).thing, "8");
    EXPECT_EQ(old().next(iterator.thing).thing, "(null)");
    const std::string next = "Router1.nextMo(" + std::to_string(0x1122334400000001ULL) + ")";
    EXPECT_THAT(host.calls(), ElementsAre("Router1.newMoIterator(1, 'ManagedElement=1', 'Unit')",
                                          kJoin, next, next, next));
}

TEST_F(Version1, Iterator_FromTheRoot_ShowsTheIdentity) {
    const auto iterator = old().open(1, "", "ManagedElement");
    EXPECT_EQ(old().next(iterator.thing).thing, "paris");
    EXPECT_EQ(old().next(iterator.thing).thing, "(null)");
}

TEST_F(Version1, Iterator_MadeUpHandles_AreNotActive) {
    const auto living = old().open(1, kRoot, "Unit");
    const auto newer = client().open(1, kRoot, "Unit");
    char* bytes = static_cast<char*>(living.thing);
    for (void* handle :
         std::vector<void*>{nullptr, bytes + 1, &host, reinterpret_cast<void*>(newer.thing)}) {
        const auto step = old().next(handle);
        EXPECT_EQ(step.code, OrvNotActive);
        EXPECT_EQ(step.thing, "(untouched)");
    }
    EXPECT_THAT(host.calls("Router1.nextMo"), IsEmpty());
}

TEST_F(Version1, Iterator_TransactionFinished_IsNotActive) {
    const auto iterator = old().open(1, kRoot, "Unit");
    EXPECT_EQ(host.resource().finish(1), OrvOk);
    EXPECT_EQ(old().next(iterator.thing).code, OrvNotActive);
}

TEST_F(Version1, Iterator_RouterRefuses_NothingIsJoined) {
    host.when("Router1.newMoIterator").fails(-42);
    EXPECT_EQ(old().open(1, kRoot, "Unit").code, -42);
    EXPECT_THAT(host.calls("Transaction."), IsEmpty());
}
