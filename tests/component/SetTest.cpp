// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// setMoAttribute of version 3.

#include "Network.h"
#include "Records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

using namespace Scripted;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

const std::string kJoin = "Transaction.join(1, OrvOamSpiTransactionalResource)";
const std::string kNetworkId = "networkManagedElementId";

}

class Set : public Network {};

TEST_F(Set, PlainValue_JoinsAndReachesTheRouter) {
    EXPECT_EQ(client().set(1, unit("7"), "label", strings({"y"})), OrvOk);
    EXPECT_THAT(host.calls(), ElementsAre(kJoin, "Router3.setMoAttribute(1, "
                                                 "'ManagedElement=1,Unit=7', 'label', "
                                                 "String['y'])"));
}

TEST_F(Set, NotStarted_IsNotActiveAndDoesNotJoin) {
    ASSERT_EQ(host.stopComponent(), OrvOk);
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("1")})), OrvNotActive);
    EXPECT_EQ(client().set(1, kForeignDn, kNetworkId, strings({"a,b"})), OrvNotActive);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Set, ForeignOrEmptyDn_DoesNotExistAndDoesNotJoin) {
    EXPECT_EQ(client().set(1, kForeignDn, "cells", refs({cell("1")})), OrvNotExist);
    EXPECT_EQ(client().set(1, "", "cells", refs({cell("1")})), OrvNotExist);
    EXPECT_EQ(client().set(1, kForeignDn, kNetworkId, strings({"a,b"})), OrvNotExist);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Set, Reference_TheBookkeepingComesBeforeTheRouter) {
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("1")})), OrvOk);
    EXPECT_THAT(milestones(),
                ElementsAre(kJoin, "Model.getFirstBiDirAssociation('Unit')",
                            "VekRouter3.getMoAttribute(1, 'ManagedElement=1,Unit=7', 'cells')",
                            "VekRouter3.existsMo(1, 'ManagedElement=1,Cell=1')",
                            "VekRouter3.getMoAttribute(1, 'ManagedElement=1,Cell=1', 'unit')",
                            "VekRouter3.setMoAttribute(1, 'ManagedElement=1,Cell=1', 'unit', "
                            "MoRef['ManagedElement=1,Unit=7'])",
                            "Producer.release('ManagedElement=1,Cell=1.unit')",
                            "Producer.release('ManagedElement=1,Unit=7.cells')",
                            "Model.getFirstUniDirAssociation('Unit')",
                            "Router3.setMoAttribute(1, 'ManagedElement=1,Unit=7', 'cells', "
                            "MoRef['ManagedElement=1,Cell=1'])"));
}

TEST_F(Set, Reference_TheFarSideFollows) {
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("1"), cell("2")})), OrvOk);
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("2"), cell("3")})), OrvOk);
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), IsEmpty());
    EXPECT_THAT(host.world().references(cellInside("2"), "unit"), ElementsAre(unitInside("7")));
    EXPECT_THAT(host.world().references(cellInside("3"), "unit"), ElementsAre(unitInside("7")));
}

TEST_F(Set, NullValueOnAReference_SkipsTheBookkeepingAndTheRouterGetsAnEmptyContainer) {
    EXPECT_EQ(client().set(1, unit("7"), "cells"), OrvOk);
    EXPECT_THAT(host.calls(), ElementsAre(kJoin, "Router3.setMoAttribute(1, "
                                                 "'ManagedElement=1,Unit=7', 'cells', Type0[])"));
}

TEST_F(Set, ReferenceWithoutValues_RunsTheBookkeeping) {
    client().set(1, unit("7"), "cells", refs({cell("1")}));
    host.forget();
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({})), OrvOk);
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), IsEmpty());
    EXPECT_THAT(host.calls(), Contains("Model.getFirstUniDirAssociation('Unit')"));
    EXPECT_EQ(host.calls().back(),
              "Router3.setMoAttribute(1, 'ManagedElement=1,Unit=7', 'cells', MoRef[])");
}

TEST_F(Set, UntranslatableReference_PassesAsItIs) {
    EXPECT_EQ(client().set(1, unit("7"), "label", refs({"ManagedElement=rome,Cell=1"})), OrvOk);
    EXPECT_EQ(host.calls().back(), "Router3.setMoAttribute(1, 'ManagedElement=1,Unit=7', 'label', "
                                   "MoRef['ManagedElement=rome,Cell=1'])");
}

TEST_F(Set, Struct_IsConvertedAndSkipsTheBookkeeping) {
    EXPECT_EQ(client().set(1, unit("7"), "cells", structs({{member("to", refs({cell("1")}))}})),
              OrvOk);
    EXPECT_THAT(host.calls(),
                ElementsAre(kJoin, "Router3.setMoAttribute(1, "
                                   "'ManagedElement=1,Unit=7', 'cells', "
                                   "Struct[{to: MoRef['ManagedElement=1,Cell=1']}])"));
}

TEST_F(Set, ValuesWithoutDns_ReachTheRouterOnTheClientsArray) {
    Records records;
    int attribute = 0;
    for (const Value& value :
         {strings({"y"}), opaque(200, {1, 2}), opaque(1, {1}), none(OrvMoAttributeTypeMoRef_3),
          none(OrvMoAttributeTypeStruct_3), none(200), refs({}).withArray()}) {
        const std::string name = "attribute" + std::to_string(++attribute);
        const auto* container = records.container(value);
        EXPECT_EQ(client().table->setMoAttribute(1, unit("7").c_str(), name.c_str(), container),
                  OrvOk);
        const Argument seen = host.callRecords("Router3.").back().arguments.at(3);
        EXPECT_EQ(seen.value, value);
        EXPECT_EQ(seen.slots, container->values);
        EXPECT_NE(seen.address, container);
    }
}

TEST_F(Set, ClientsContainer_IsNotWrittenTo) {
    Records records;
    const auto* container = records.container(refs({cell("1")}));
    const auto* slots = container->values;
    EXPECT_EQ(client().table->setMoAttribute(1, unit("7").c_str(), "cells", container), OrvOk);
    EXPECT_EQ(container->values, slots);
    EXPECT_EQ(readValue(container), refs({cell("1")}));
}

TEST_F(Set, RouterRefuses_TheBookkeepingStays) {
    host.when("Router3.setMoAttribute").fails(-42);
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("1")})), -42);
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), ElementsAre(unitInside("7")));
    EXPECT_THAT(host.world().references(unitInside("7"), "cells"), IsEmpty());
}

TEST_F(Set, RouterThrows_IsAFailureAndTheBookkeepingStays) {
    host.when("Router3.setMoAttribute").throws(std::runtime_error("router"));
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("1")})), OrvFailure);
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), ElementsAre(unitInside("7")));
}

TEST_F(Set, BookkeepingFails_TheWriteGoesOnAllTheSame) {
    host.when("Model.getMocFromDn").fails(-42);
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("1")})), OrvOk);
    EXPECT_EQ(host.calls().back(), "Router3.setMoAttribute(1, 'ManagedElement=1,Unit=7', 'cells', "
                                   "MoRef['ManagedElement=1,Cell=1'])");
}

TEST_F(Set, BookkeepingThrows_IsAFailureAndTheRouterIsNotCalled) {
    host.when("Model.getMocFromDn").once().throws(std::runtime_error("model"));
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("1")})), OrvFailure);
    EXPECT_THAT(host.calls("Router3."), IsEmpty());
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("1")})), OrvOk);
}

TEST_F(Set, JoinThrows_IsAFailureAndNothingElseHappens) {
    host.when("Transaction.join").once().throws(std::runtime_error("host"));
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("1")})), OrvFailure);
    EXPECT_THAT(host.calls(), ElementsAre(kJoin));
    EXPECT_EQ(client().set(1, unit("7"), "label", strings({"y"})), OrvOk);
    EXPECT_THAT(host.calls("Transaction."), ElementsAre(kJoin));
}

// The id that the component knows by name.

TEST_F(Set, NetworkId_Valid_ReachesTheRouter) {
    EXPECT_EQ(client().set(1, unit("7"), kNetworkId, strings({"oslo"})), OrvOk);
    EXPECT_EQ(host.calls("Router3.").size(), 1U);
}

TEST_F(Set, NetworkId_Bad_JoinsAndChangesNothing) {
    for (const std::string text : {"a,b", "a=b", " a", "a\"b", "\n"}) {
        EXPECT_EQ(client().set(1, unit("7"), kNetworkId, strings({text})), OrvValidationFailed);
    }
    EXPECT_THAT(host.calls(), ElementsAre(kJoin));
}

TEST_F(Set, NetworkId_BadOnAnyDn_IsRefused) {
    EXPECT_EQ(client().set(1, kRoot, kNetworkId, strings({"a,b"})), OrvValidationFailed);
    EXPECT_EQ(client().set(1, "Plant=1", kNetworkId, strings({"a,b"})), OrvValidationFailed);
}

TEST_F(Set, NetworkId_NoText_GoesOnUnchecked) {
    EXPECT_EQ(client().set(1, unit("7"), kNetworkId), OrvOk);
    EXPECT_EQ(client().set(1, unit("7"), kNetworkId, strings({})), OrvOk);
    EXPECT_EQ(client().set(1, unit("7"), kNetworkId, strings({""})), OrvOk);
    EXPECT_EQ(client().set(1, unit("7"), kNetworkId, nullText(OrvMoAttributeTypeString_3)), OrvOk);
    EXPECT_EQ(host.calls("Router3.").size(), 4U);
}

TEST_F(Set, NetworkId_BadAfterACountOfZero_IsRefusedAllTheSame) {
    EXPECT_EQ(client().set(1, unit("7"), kNetworkId, strings({"a,b"}).counting(0)),
              OrvValidationFailed);
}

TEST_F(Set, NetworkId_BadWhateverTheType_IsRefused) {
    EXPECT_EQ(client().set(1, unit("7"), kNetworkId, refs({"a,b"})), OrvValidationFailed);
    EXPECT_THAT(host.calls("Model."), IsEmpty());
}

TEST_F(Set, NetworkId_OnlyTheFirstValueIsChecked) {
    EXPECT_EQ(client().set(1, unit("7"), kNetworkId, strings({"a", "b,c"})), OrvOk);
}

TEST_F(Set, NetworkId_OtherNamesAreNotChecked) {
    for (const std::string name :
         {"NetworkManagedElementId", "networkManagedElementId2", "managedElementId"}) {
        EXPECT_EQ(client().set(1, unit("7"), name, strings({"a,b"})), OrvOk);
    }
}

TEST_F(Set, NetworkId_Bad_Level8_IsTracedAndNotLogged) {
    host.logLevel(8);
    client().set(1, unit("7"), kNetworkId, strings({"a,b"}));
    const std::string text = "setMoAttribute: Validation of networkManagedElementId failed: a,b";
    EXPECT_THAT(host.logs(), Contains("trace 0 " + text));
    EXPECT_THAT(host.logs(), Contains("trace2 ExtCm 14 " + text));
}

// Interceptors.

TEST_F(Set, Interceptor_IsTheOnlyCalleeAndTheBookkeepingHasRun) {
    host.interceptor("ManagedElement,Unit");
    host.when("Interceptor.setMoAttribute").fails(-42);
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("1")})), -42);
    EXPECT_EQ(host.calls().back(),
              "Interceptor.setMoAttribute('ManagedElement,Unit', 1, 'ManagedElement=1,Unit=7', "
              "'cells', MoRef['ManagedElement=1,Cell=1'])");
    EXPECT_THAT(host.calls("Router3."), IsEmpty());
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), ElementsAre(unitInside("7")));
}

TEST_F(Set, Interceptor_NullValue_ArrivesAsAnEmptyContainer) {
    host.interceptor("ManagedElement,Unit");
    EXPECT_EQ(client().set(1, unit("7"), "label"), OrvOk);
    EXPECT_THAT(host.calls("Interceptor."),
                ElementsAre("Interceptor.setMoAttribute('ManagedElement,Unit', 1, "
                            "'ManagedElement=1,Unit=7', 'label', Type0[])"));
}

TEST_F(Set, Interceptor_ThatOverridesReadsOnly_WritesReachTheRouterThroughTheBase) {
    host.interceptor("ManagedElement,Unit");
    EXPECT_EQ(client().set(1, unit("7"), "label", strings({"y"})), OrvOk);
    EXPECT_EQ(host.calls().back(),
              "VekRouter3.setMoAttribute(1, 'ManagedElement=1,Unit=7', 'label', String['y'])");
}

TEST_F(Set, Interceptor_Throws_IsAFailureAndTheBookkeepingStays) {
    host.interceptor("ManagedElement,Unit");
    host.when("Interceptor.setMoAttribute").once().throws(std::runtime_error("mine"));
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("1")})), OrvFailure);
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), ElementsAre(unitInside("7")));
}

TEST_F(Set, Interceptor_RefusedId_IsNotAsked) {
    host.interceptor("ManagedElement,Unit");
    EXPECT_EQ(client().set(1, unit("7"), kNetworkId, strings({"a,b"})), OrvValidationFailed);
    EXPECT_THAT(host.calls("Interceptor."), IsEmpty());
}
