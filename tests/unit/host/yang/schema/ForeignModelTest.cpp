// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "YangTestSupport.h"
#include "model/ValueCheck.h"

#include <gmock/gmock.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kData = R"({
  "foreign-network:Element": [{
    "id": "1",
    "attributes": {"name": "e"},
    "CounterJob": [{"id": "c", "attributes": {"period": 60}}],
    "Unit": [{
      "id": "u",
      "attributes": {"priority": 3},
      "Cell": [{
        "id": "1",
        "attributes": {
          "localId": 17,
          "carrierRef": ["Element=1,Unit=u,Carrier=1"],
          "area": [{"index": 1, "code": "x", "ownerRef": "Element=1,Unit=u"}, {"index": 2}],
          "limits": {"power": -5}
        }
      }],
      "Carrier": [{
        "id": "1",
        "attributes": {"cellRef": ["Element=1,Unit=u,Cell=1"], "plainRef": "Element=1"}
      }]
    }]
  }]
})";

TEST(ForeignModel, AttributesContainer_IsTransparent) {
    const ClassDef& cell = classOf(foreignModel(), "Cell");
    EXPECT_EQ(cell.findAttribute("attributes"), nullptr);
    ASSERT_NE(cell.findAttribute("localId"), nullptr);
    EXPECT_EQ(cell.findAttribute("localId")->multiplicity.lower, 1);
}

TEST(ForeignModel, ListsInIt_AreStructs) {
    EXPECT_EQ(attributeOf(foreignModel(), "Cell", "area").type.kind, ValueKind::Struct);
    EXPECT_FALSE(foreignModel().model.findClass("area"));
}

// The pattern of the public type permits no "_" in the name of a class, and classes have it.
TEST(ForeignModel, PatternOfDistinguishedName_DoesNotCount) {
    const YangModel model = modelOfBody(R"(
      typedef DistinguishedName { type string { pattern "[a-zA-Z][a-zA-Z0-9-]*=[^,]*"; } }
      list EP_N6 {
        key id;
        leaf id { type string; }
        leaf endRef { type DistinguishedName; }
        leaf code { type string { pattern "[a-z]"; } }
      })");
    EXPECT_EQ(whyRefused(attributeOf(model, "EP_N6", "endRef").type, Value(std::string("EP_N6=1"))),
              "");
    EXPECT_NE(whyRefused(attributeOf(model, "EP_N6", "code").type, Value(std::string("A"))), "");
    const auto objects = readObjectsOf(model, R"({"m:EP_N6": [{"id": "1", "endRef": "EP_N6=1"}]})");
    EXPECT_EQ(valueOf(objects.at(0), "endRef"), "[EP_N6=1]");
}

TEST(ForeignModel, DistinguishedName_IsAReference) {
    EXPECT_EQ(attributeOf(foreignModel(), "Cell", "frequencyRef").type.kind, ValueKind::MoRef);
    const AttributeDef& area = attributeOf(foreignModel(), "Cell", "area");
    EXPECT_EQ(area.type.members.at(2).type.kind, ValueKind::MoRef);
}

TEST(ForeignModel, SharedGrouping_IsOneClassWithAllParents) {
    EXPECT_EQ(classOf(foreignModel(), "CounterJob").parents.size(), 2U);
}

TEST(ForeignModel, AssociationsOfAnotherModule_Hold) {
    const Model& model = foreignModel().model;
    ASSERT_EQ(model.biDirAssociations.size(), 1U);
    const BiDirAssociation& association = model.biDirAssociations[0];
    EXPECT_EQ(association.ends[0].name, "cellRef");
    EXPECT_EQ(association.ends[0].cardinality.upper, 2);
    EXPECT_TRUE(association.ends[0].keepAtDelete);
    EXPECT_EQ(association.ends[1].name, "carrierRef");
    EXPECT_EQ(association.ends[1].role, "carriers");
    EXPECT_EQ(association.source.line, 14);
    EXPECT_EQ(model.uniDirAssociations.size(), 2U);
    // The statement has turned a plain text into a reference.
    EXPECT_EQ(attributeOf(foreignModel(), "Carrier", "plainRef").type.kind, ValueKind::MoRef);
}

TEST(ForeignModel, Data_IsReadAndWrittenInItsStyle) {
    const std::vector<DataObject> objects = readObjectsOf(foreignModel(), kData);
    ASSERT_EQ(objects.size(), 5U);
    const DataObject& cell = objectOf(objects, "Element=1,Unit=u,Cell=1");
    EXPECT_EQ(valueOf(cell, "localId"), "[17]");
    EXPECT_THAT(valueOf(cell, "area"), HasSubstr("code=x"));
    EXPECT_EQ(problemsOf(foreignModel(), objects), "");
    for (const DataFormat format : {DataFormat::Json, DataFormat::Xml}) {
        const std::string text = writeObjects(foreignModel(), format, objects);
        EXPECT_EQ(differenceOf(readObjectsOf(foreignModel(), text), objects), "") << text;
    }
}

TEST(ForeignModel, EmptyAttributesContainer_MakesAnObjectWithoutAttributes) {
    const std::vector<DataObject> objects = readObjectsOf(
        foreignModel(), R"({"foreign-network:Element": [{"id": "1", "attributes": {}}]})");
    ASSERT_EQ(objects.size(), 1U);
    EXPECT_TRUE(objects[0].attributes.empty());
    EXPECT_FALSE(objects[0].isBare);
}

}
}
