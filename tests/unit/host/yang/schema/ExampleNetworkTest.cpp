// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "YangTestSupport.h"
#include "model/ValueCheck.h"

#include <gmock/gmock.h>

#include <set>

namespace OrvHost {
namespace {

std::vector<DataObject> harbour(const char* file) {
    return readObjects(ranModel(), {exampleFile(std::string("data/") + file)});
}

TEST(ExampleNetwork, Model_LeavesNothingOut) {
    for (const Problem& note : ranModel().notes) {
        ADD_FAILURE() << toText(note);
    }
    EXPECT_TRUE(classOf(ranModel(), "ManagedElement").isTopLevel);
    EXPECT_EQ(classOf(ranModel(), "ManagedElement").namingAttribute, "managedElementId");
}

TEST(ExampleNetwork, EverythingIsDescribed) {
    for (const ClassDef& moc : ranModel().model.classes) {
        EXPECT_NE(moc.description, "") << moc.name;
        for (const AttributeDef& attribute : moc.attributes) {
            EXPECT_NE(attribute.description, "") << moc.name << "." << attribute.name;
        }
    }
}

TEST(ExampleNetwork, Associations_AreOfEverySort) {
    const Model& model = ranModel().model;
    std::set<std::string> sorts;
    for (const BiDirAssociation& association : model.biDirAssociations) {
        const bool isManyFirst = association.ends[0].cardinality.upper > 1;
        const bool isManySecond = association.ends[1].cardinality.upper > 1;
        sorts.insert(isManyFirst && isManySecond   ? "many to many"
                     : isManyFirst || isManySecond ? "one to many"
                                                   : "one to one");
        if (association.ends[0].moc == association.ends[1].moc) {
            sorts.insert("self");
        }
        if (association.ends[0].keepAtDelete || association.ends[1].keepAtDelete) {
            sorts.insert("keep");
        }
    }
    EXPECT_THAT(sorts,
                testing::ElementsAre("keep", "many to many", "one to many", "one to one", "self"));
    EXPECT_EQ(attributeOf(ranModel(), "NRCellRelation", "adjacentNRCellRef").type.targets.size(),
              2U);
}

TEST(ExampleNetwork, Harbour_IsConsistent) {
    const std::vector<DataObject> objects = harbour("harbour.json");
    EXPECT_EQ(objects.size(), 37U);
    EXPECT_EQ(problemsOf(ranModel(), objects), "");
}

TEST(ExampleNetwork, Harbour_EveryValueIsPermitted) {
    for (const DataObject& object : harbour("harbour.json")) {
        const ClassDef& moc = ranModel().model.classes[object.moc];
        for (const NamedValue& value : object.attributes) {
            EXPECT_EQ(whyRefused(*moc.findAttribute(value.first), value.second), "")
                << object.dn << " " << value.first;
        }
    }
}

TEST(ExampleNetwork, Harbour_IsTheSameInXml) {
    EXPECT_EQ(differenceOf(harbour("harbour.json"), harbour("harbour.xml")), "");
}

TEST(ExampleNetwork, Harbour_ComesBackFromBothFormats) {
    const std::vector<DataObject> objects = harbour("harbour.json");
    for (const DataFormat format : {DataFormat::Json, DataFormat::Xml}) {
        const std::string text = writeObjects(ranModel(), format, objects);
        EXPECT_EQ(differenceOf(readObjectsOf(ranModel(), text), objects), "");
    }
}

TEST(ExampleNetwork, MissingBackPointer_WouldBeSeen) {
    std::vector<DataObject> objects = harbour("harbour.json");
    for (DataObject& object : objects) {
        for (NamedValue& value : object.attributes) {
            if (value.first == "neighbourOfRef") {
                value.second.values.pop_back();
            }
        }
    }
    EXPECT_EQ(checkObjects(ranModel(), objects).repairs.size(), 3U);
}

}
}
