// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The scripted host tried on its own: a test that uses it relies on what stands here.

#include "Host.h"
#include "Records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

using namespace Scripted;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Value, Text_ReadsLikeTheValue) {
    EXPECT_EQ(strings({"a", "b"}).text(), "String['a', 'b']");
    EXPECT_EQ(refs({}).text(), "MoRef[]");
    EXPECT_EQ(nullText(OrvMoAttributeTypeMoRef_3).text(), "MoRef[null]");
    EXPECT_EQ(opaque(200, {1, 2}).text(), "Type200[1, 2]");
    EXPECT_EQ(andEmptyStruct(structs({{member("to", refs({"A=1"})), bareMember("note")}})).text(),
              "Struct[{to: MoRef['A=1'], note: null}, null]");
}

TEST(Value, RoundTripThroughRecords_IsEqual) {
    const Value value =
        andEmptyStruct(structs({{member("to", refs({"A=1", "B=2"})), bareMember("note"),
                                 member("in", structs({{member("n", opaque(2, {7}))}}))}}));
    Records records;
    Records1 records1;
    EXPECT_EQ(readValue(records.container(value)), value);
    EXPECT_EQ(readValue(records1.container(value)), value);
}

TEST(Value, DifferentMembers_AreNotEqual) {
    const Value left = structs({{member("a", strings({"x"}))}});
    EXPECT_FALSE(left == structs({{member("a", strings({"y"}))}}));
    EXPECT_FALSE(left == structs({{bareMember("a")}}));
    EXPECT_FALSE(left == andEmptyStruct(none(OrvMoAttributeTypeStruct_3)));
    EXPECT_FALSE(refs({"x"}) == strings({"x"}));
}

TEST(Value, EmptyWithArray_HasAnArrayInTheRecord) {
    Records records;
    EXPECT_EQ(records.container(refs({}))->values, nullptr);
    EXPECT_NE(records.container(refs({}).withArray())->values, nullptr);
    EXPECT_EQ(records.container(strings({"x"}).counting(0))->count, 0U);
}

TEST(Departure, UnknownCall_IsRefused) {
    Host host;
    EXPECT_THROW(host.when("Router3.getMoAtribute"), std::logic_error);
}

TEST(Departure, NthCall_OnlyThatOneFails) {
    Host host;
    host.when("Router3.existsMo").nth(2).fails(-7);
    bool exists = false;
    EXPECT_EQ(router3Table()->existsMo(1, "A=1", &exists), OrvOk);
    EXPECT_EQ(router3Table()->existsMo(1, "A=1", &exists), -7);
    EXPECT_EQ(router3Table()->existsMo(1, "A=1", &exists), OrvOk);
}

TEST(Departure, OnText_OnlyCallsWithItFail) {
    Host host;
    host.when("Router3.existsMo").on("'A=2'").fails(-7);
    bool exists = false;
    EXPECT_EQ(router3Table()->existsMo(1, "A=1", &exists), OrvOk);
    EXPECT_EQ(router3Table()->existsMo(1, "A=2", &exists), -7);
}

TEST(Departure, Throws_TheExceptionComesOut) {
    Host host;
    host.when("Router3.existsMo").once().throws(std::runtime_error("boom"));
    bool exists = false;
    EXPECT_THROW(router3Table()->existsMo(1, "A=1", &exists), std::runtime_error);
    EXPECT_THAT(host.calls(), ElementsAre("Router3.existsMo(1, 'A=1')"));
}

TEST(Departure, Returns_TheEffectHappensAllTheSame) {
    Host host;
    host.when("Router3.deleteMo").returns(-4);
    host.mo("A=1");
    EXPECT_EQ(router3Table()->deleteMo(1, "A=1"), -4);
    EXPECT_FALSE(host.world().exists("A=1"));
}

TEST(Results, NotReleased_IsAComplaint) {
    Host host;
    OrvMoAttributeValueResult_3 result = {nullptr, nullptr};
    host.results().give("A=1.label", strings({"x"}), result);
    EXPECT_THAT(host.results().complaints(), ElementsAre("never released: A=1.label"));
    result.release(result.container);
    EXPECT_THAT(host.results().complaints(), IsEmpty());
}

TEST(Results, ReleasedWithAnotherPointer_IsAComplaint) {
    Script script;
    Results results(script);
    OrvMoAttributeValueResult_3 result = {nullptr, nullptr};
    results.give("A=1.label", strings({"x"}), result);
    OrvMoAttributeValueContainer_3 other = *result.container;
    result.release(&other);
    EXPECT_THAT(results.complaints(), ElementsAre("Producer.release of something that is not out",
                                                  "never released: A=1.label"));
}

TEST(World, Children_KeepTheOrderOfCreation) {
    Host host;
    host.mo("P=1");
    host.mo("P=1,B=2");
    host.mo("P=1,C=1");
    host.mo("P=1,B.label=1");
    EXPECT_THAT(host.world().children("P=1", "B"), ElementsAre("2", "1"));
    EXPECT_THAT(host.world().children("", "P"), ElementsAre("1"));
}

TEST(World, Remove_TakesTheSubtreeAndNoNeighbour) {
    Host host;
    host.mo("P=1,B=2,C=3");
    host.mo("P=1,B=2");
    host.mo("P=1,B=20");
    EXPECT_EQ(router3Table()->deleteMo(1, "P=1,B=2"), OrvOk);
    EXPECT_FALSE(host.world().exists("P=1,B=2,C=3"));
    EXPECT_TRUE(host.world().exists("P=1,B=20"));
}

TEST(Model, BiDir_EndsAreNamedAfterTheAttributesThatPointAtThem) {
    Host host;
    host.model().biDir({"X", "toY", 0, 3, "ys"}, {"Y", "toX", 1, 2, "xs"});
    const VekOamSpiModelRepository_4& table = *modelRepositoryTable();
    VekOamSpiMrMocHandle_4T moc = 0;
    VekOamSpiMrBiDirAssociationHandle_4T association = 0;
    VekOamSpiMrAssociationEndHandle_4T end = 0;
    const char* name = nullptr;
    long long upper = 0;
    ASSERT_EQ(table.dnLookup->getMocFromDn("A=1,X=1", 1, &moc), OrvOk);
    ASSERT_EQ(table.mocQueries->getFirstBiDirAssociation(moc, &association), OrvOk);
    ASSERT_EQ(table.biDirAssociation->getFirstEnd(association, &end), OrvOk);
    ASSERT_EQ(table.associationEnd->getEndStringProperty(end, 0, &name), OrvOk);
    ASSERT_EQ(table.associationEnd->getEndIntProperty(end, 1, &upper), OrvOk);
    EXPECT_STREQ(name, "toX");
    EXPECT_EQ(upper, 2);
    EXPECT_EQ(table.biDirAssociation->getNextBiDirAssociation(association, moc, &association),
              OrvNotExist);
    EXPECT_THAT(
        host.calls("Model."),
        ElementsAre("Model.getMocFromDn('A=1,X=1', 1)", "Model.getFirstBiDirAssociation('X')",
                    "Model.getFirstEnd('X.toY<->Y.toX')", "Model.getEndStringProperty('toX@X', 0)",
                    "Model.getEndIntProperty('toX@X', 1)",
                    "Model.getNextBiDirAssociation('X.toY<->Y.toX', 'X')"));
}

TEST(Model, Attributes_AreWalkedInOrderWithTheirTypes) {
    Host host;
    host.model().moc("X").attribute("label").reference("site", "Site", 1, 4);
    const VekOamSpiModelRepository_4& table = *modelRepositoryTable();
    VekOamSpiMrMocHandle_4T moc = 0;
    VekOamSpiMrAttributeHandle_4T attribute = 0;
    VekOamSpiMrTypeHandle_4T type = 0;
    VekOamSpiMrMocHandle_4T target = 0;
    int code = 0;
    long long upper = 0;
    ASSERT_EQ(table.dnLookup->getMocFromDn("X=1", 1, &moc), OrvOk);
    ASSERT_EQ(table.mocQueries->getFirstAttribute(moc, &attribute), OrvOk);
    ASSERT_EQ(table.attribute->getNextAttribute(attribute, &attribute), OrvOk);
    ASSERT_EQ(table.attribute->getAttributeType(attribute, &type), OrvOk);
    ASSERT_EQ(table.attributeType->getTypeCode(type, &code), OrvOk);
    ASSERT_EQ(table.attributeType->getTypeIntProperty(type, 1, &upper), OrvOk);
    ASSERT_EQ(table.referenceType->getReferencedMoc(type, &target), OrvOk);
    EXPECT_EQ(code, OrvMoAttributeTypeMoRef_3);
    EXPECT_EQ(upper, 4);
    EXPECT_EQ(host.model().nameOf(target), "Site");
    EXPECT_EQ(table.attribute->getNextAttribute(attribute, &attribute), OrvNotExist);
}

TEST(Model, UniDir_OneEndForEachPermittedClass) {
    Host host;
    host.model().uniDir("X", "site", "Site", 1, 2).uniDir("X", "site", "Hut");
    const VekOamSpiModelRepository_4& table = *modelRepositoryTable();
    VekOamSpiMrMocHandle_4T moc = 0;
    VekOamSpiMrUniDirAssociationHandle_4T association = 0;
    VekOamSpiMrAssociationEndHandle_4T end = 0;
    VekOamSpiMrMocHandle_4T target = 0;
    ASSERT_EQ(table.dnLookup->getMocFromDn("X=1", 1, &moc), OrvOk);
    ASSERT_EQ(table.mocQueries->getFirstUniDirAssociation(moc, &association), OrvOk);
    ASSERT_EQ(table.uniDirAssociation->getNextUniDirAssociation(association, &association), OrvOk);
    ASSERT_EQ(table.uniDirAssociation->getUniDirEnd(association, &end), OrvOk);
    ASSERT_EQ(table.associationEnd->getEndMoc(end, &target), OrvOk);
    EXPECT_EQ(host.model().nameOf(target), "Hut");
    EXPECT_EQ(table.uniDirAssociation->getNextUniDirAssociation(association, &association),
              OrvNotExist);
}
