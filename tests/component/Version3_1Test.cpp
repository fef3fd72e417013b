// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// setMoAttributes, the one operation of version 3_1.

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

namespace {

const std::string kJoin = "Transaction.join(1, OrvOamSpiTransactionalResource)";
const std::string kNetworkId = "networkManagedElementId";

}

class SetMany : public Network {
protected:
    OrvReturnT set(const std::string& dn, const NamedValues& attributes) const {
        return host.client3_1().set(1, dn, attributes);
    }
};

TEST_F(SetMany, NotStarted_IsNotActive) {
    ASSERT_EQ(host.stopComponent(), OrvOk);
    EXPECT_EQ(set(unit("7"), {{"cells", refs({cell("1")})}}), OrvNotActive);
    EXPECT_EQ(set(kForeignDn, {}), OrvNotActive);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(SetMany, ForeignOrEmptyDn_DoesNotExistAndDoesNotJoin) {
    EXPECT_EQ(set(kForeignDn, {{kNetworkId, strings({"a,b"})}}), OrvNotExist);
    EXPECT_EQ(set("", {{"label", strings({"y"})}}), OrvNotExist);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(SetMany, PlainValues_JoinAndReachTheRouterInOrder) {
    EXPECT_EQ(set(unit("7"), {{"b", strings({"y"})}, {"a", opaque(200, {1})}}), OrvOk);
    EXPECT_THAT(host.calls(),
                ElementsAre(kJoin, "Router3_1.setMoAttributes(1, 'ManagedElement=1,Unit=7', "
                                   "{b: String['y'], a: Type200[1]})"));
}

TEST_F(SetMany, EmptyArray_TheRouterGetsAnEmptyArrayOfTheComponents) {
    OrvMoNamedAttributeValueContainer_3* empty[] = {nullptr};
    EXPECT_EQ(host.client3_1().table->setMoAttributes(1, unit("7").c_str(), empty), OrvOk);
    EXPECT_THAT(host.calls(), ElementsAre(kJoin, "Router3_1.setMoAttributes(1, "
                                                 "'ManagedElement=1,Unit=7', {})"));
    const Argument seen = host.callRecords("Router3_1.").at(0).arguments.at(2);
    EXPECT_NE(seen.address, nullptr);
    EXPECT_NE(seen.address, static_cast<const void*>(empty));
}

TEST_F(SetMany, Values_AreConvertedToInternal) {
    EXPECT_EQ(set(unit("7"), {{"s", structs({{member("to", refs({cell("1")}))}})},
                              {"r", refs({"ManagedElement=rome,Cell=1", cell("2")})},
                              {"n", none(OrvMoAttributeTypeMoRef_3)}}),
              OrvOk);
    EXPECT_THAT(host.calls("Router3_1."),
                ElementsAre("Router3_1.setMoAttributes(1, 'ManagedElement=1,Unit=7', "
                            "{s: Struct[{to: MoRef['ManagedElement=1,Cell=1']}], "
                            "r: MoRef['ManagedElement=rome,Cell=1', 'ManagedElement=1,Cell=2'], "
                            "n: MoRef[]})"));
}

TEST_F(SetMany, ClientsRecords_AreNotWrittenTo) {
    Records records;
    auto** attributes = records.named({{"cells", refs({cell("1")})}});
    const auto* first = attributes[0];
    EXPECT_EQ(host.client3_1().table->setMoAttributes(1, unit("7").c_str(), attributes), OrvOk);
    EXPECT_EQ(attributes[0], first);
    EXPECT_EQ(readValue(&first->value), refs({cell("1")}));
}

TEST_F(SetMany, References_AreHandledOneAfterTheOtherBeforeTheRouter) {
    EXPECT_EQ(
        set(unit("7"),
            {{"cells", refs({cell("1")})}, {"label", strings({"y"})}, {"site", refs({site("1")})}}),
        OrvOk);
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
                            "Model.getFirstBiDirAssociation('Unit')",
                            "VekRouter3.getMoAttribute(1, 'ManagedElement=1,Unit=7', 'site')",
                            "Producer.release('ManagedElement=1,Unit=7.site')",
                            "Model.getFirstUniDirAssociation('Unit')",
                            "Router3_1.setMoAttributes(1, 'ManagedElement=1,Unit=7', "
                            "{cells: MoRef['ManagedElement=1,Cell=1'], label: String['y'], "
                            "site: MoRef['ManagedElement=1,Site=1']})"));
}

TEST_F(SetMany, RouterRefuses_EveryReferenceStaysRecorded) {
    host.when("Router3_1.setMoAttributes").fails(-42);
    EXPECT_EQ(
        set(unit("7"), {{"cells", refs({cell("1")})}, {"site", refs({site("1"), site("1")})}}),
        -42);
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), ElementsAre(unitInside("7")));
    EXPECT_FALSE(validate(1));
}

TEST_F(SetMany, RouterThrows_IsAFailure) {
    host.when("Router3_1.setMoAttributes").throws(std::runtime_error("router"));
    EXPECT_EQ(set(unit("7"), {{"cells", refs({cell("1")})}}), OrvFailure);
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), ElementsAre(unitInside("7")));
}

TEST_F(SetMany, BookkeepingOfTheSecondThrows_TheFirstStaysRecorded) {
    host.when("VekRouter3.getMoAttribute").on("'site'").throws(std::runtime_error("router"));
    EXPECT_EQ(set(unit("7"), {{"cells", refs({cell("1")})}, {"site", refs({site("1")})}}),
              OrvFailure);
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), ElementsAre(unitInside("7")));
    EXPECT_THAT(host.calls("Router3_1."), IsEmpty());
}

TEST_F(SetMany, BookkeepingFails_TheWriteGoesOn) {
    host.when("Model.getMocFromDn").fails(-42);
    EXPECT_EQ(set(unit("7"), {{"cells", refs({cell("1")})}}), OrvOk);
    EXPECT_EQ(host.calls("Router3_1.").size(), 1U);
}

// The id that the component knows by name.

TEST_F(SetMany, NetworkId_BadAsTheLast_JoinsAndTouchesNothingBeforeIt) {
    EXPECT_EQ(set(unit("7"), {{"cells", refs({cell("1")})},
                              {"label", strings({"y"})},
                              {kNetworkId, strings({"a,b"})}}),
              OrvInvalidArgument);
    EXPECT_THAT(host.calls(), ElementsAre(kJoin));
}

TEST_F(SetMany, NetworkId_SecondOfTwoBad_IsRefused) {
    EXPECT_EQ(set(unit("7"), {{kNetworkId, strings({"ok"})}, {kNetworkId, strings({"a,b"})}}),
              OrvInvalidArgument);
}

TEST_F(SetMany, NetworkId_BadAfterACountOfZero_GoesOnUnchecked) {
    EXPECT_EQ(set(unit("7"), {{kNetworkId, strings({"a,b"}).counting(0)}}), OrvOk);
    EXPECT_EQ(host.calls("Router3_1.").size(), 1U);
}

TEST_F(SetMany, NetworkId_NoText_GoesOnUnchecked) {
    EXPECT_EQ(set(unit("7"), {{kNetworkId, strings({""})}}), OrvOk);
    EXPECT_EQ(set(unit("7"), {{kNetworkId, strings({})}}), OrvOk);
    EXPECT_EQ(set(unit("7"), {{kNetworkId, nullText(OrvMoAttributeTypeString_3)}}), OrvOk);
    EXPECT_EQ(set(unit("7"), {{kNetworkId, strings({"oslo"})}}), OrvOk);
    EXPECT_EQ(host.calls("Router3_1.").size(), 4U);
}

TEST_F(SetMany, NetworkId_BadWhateverTheType_IsRefused) {
    EXPECT_EQ(set(unit("7"), {{kNetworkId, refs({"a,b"})}}), OrvInvalidArgument);
    EXPECT_THAT(host.calls("Model."), IsEmpty());
}

TEST_F(SetMany, NetworkId_Bad_Level8_IsTraced) {
    host.logLevel(8);
    set(unit("7"), {{kNetworkId, strings({"a,b"})}});
    const std::string text = "setMoAttributes: Validation of networkManagedElementId failed: a,b";
    EXPECT_THAT(host.logs(), Contains("trace 0 " + text));
    EXPECT_THAT(host.logs(), Contains("trace2 ExtCm 14 " + text));
}

// Interceptors.

TEST_F(SetMany, Interceptor_IsTheOnlyCalleeAndGetsInternalDns) {
    host.interceptor("ManagedElement,Unit");
    host.when("Interceptor.setMoAttributes").fails(-42);
    EXPECT_EQ(set(unit("7"), {{"cells", refs({cell("1")})}}), -42);
    EXPECT_EQ(host.calls().back(),
              "Interceptor.setMoAttributes('ManagedElement,Unit', 1, 'ManagedElement=1,Unit=7', "
              "{cells: MoRef['ManagedElement=1,Cell=1']})");
    EXPECT_THAT(host.calls("Router3_1."), IsEmpty());
    EXPECT_THAT(host.world().references(cellInside("1"), "unit"), ElementsAre(unitInside("7")));
}

TEST_F(SetMany, Interceptor_EmptyArray_ArrivesEmpty) {
    host.interceptor("ManagedElement,Unit");
    EXPECT_EQ(set(unit("7"), {}), OrvOk);
    EXPECT_THAT(host.calls("Interceptor."),
                ElementsAre("Interceptor.setMoAttributes('ManagedElement,Unit', 1, "
                            "'ManagedElement=1,Unit=7', {})"));
}

TEST_F(SetMany, Interceptor_NothingOverridden_TheRouterOfVersion3_1Answers) {
    host.interceptor("ManagedElement,Unit");
    EXPECT_EQ(set(unit("7"), {{"label", strings({"y"})}}), OrvOk);
    EXPECT_EQ(host.calls().back(), "Router3_1.setMoAttributes(1, 'ManagedElement=1,Unit=7', "
                                   "{label: String['y']})");
}

TEST_F(SetMany, Interceptor_OfASingleStep_IsFoundUnderItsClass) {
    host.interceptor("ManagedElement");
    EXPECT_EQ(set(kRoot, {{"label", strings({"y"})}}), OrvOk);
    EXPECT_EQ(host.calls("Interceptor.").size(), 1U);
}

TEST_F(SetMany, Interceptor_OfAStepWithNamingAttribute_IsFoundUnderItsClass) {
    host.mo("ManagedElement=1,Unit.label=7");
    host.interceptor("ManagedElement,Unit");
    EXPECT_EQ(set(kRoot + ",Unit.label=7", {{"label", strings({"y"})}}), OrvOk);
    EXPECT_EQ(host.calls("Interceptor.").size(), 1U);
}

TEST_F(SetMany, Interceptor_OfAnotherPath_IsNotAsked) {
    host.interceptor("Unit");
    host.interceptor("ManagedElement");
    host.interceptor(",ManagedElement,Unit");
    EXPECT_EQ(set(unit("7"), {{"label", strings({"y"})}}), OrvOk);
    EXPECT_THAT(host.calls("Interceptor."), IsEmpty());
}

TEST_F(SetMany, Interceptor_Throws_IsAFailure) {
    host.interceptor("ManagedElement,Unit");
    host.when("Interceptor.setMoAttributes").once().throws(std::runtime_error("mine"));
    EXPECT_EQ(set(unit("7"), {{"label", strings({"y"})}}), OrvFailure);
    EXPECT_EQ(set(unit("7"), {{"label", strings({"y"})}}), OrvOk);
}
