// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "repository/ModelDescription.h"

#include "OrvException.h"
#include "SampleModel.h"
#include "repository/ModelRepository.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace OrvHost {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class ModelDescriptionTest : public testing::Test {
protected:
    const Model mModel = sampleModel();
    ModelRepository mRepository{mModel};
    RepositoryReader mReader{*mRepository.getInterface()};
};

std::vector<std::string> namesOf(const std::vector<ClassDescription>& classes) {
    std::vector<std::string> names;
    for (const ClassDescription& each : classes) {
        names.push_back(each.name);
    }
    return names;
}

const AttributeDescription& find(const ClassDescription& moc, const std::string& name) {
    for (const AttributeDescription& attribute : moc.attributes) {
        if (attribute.name == name) {
            return attribute;
        }
    }
    throw std::out_of_range(name);
}

const ReferenceDescription& find(const std::vector<ClassDescription>& classes,
                                 const std::string& owner, const std::string& attribute) {
    for (const ReferenceDescription& reference : findDescription(classes, owner)->references) {
        if (reference.attribute == attribute) {
            return reference;
        }
    }
    throw std::out_of_range(attribute);
}

/// "attribute:target:opposite" for each reference.
std::vector<std::string> referencesOf(const std::vector<ClassDescription>& classes,
                                      const std::string& owner) {
    std::vector<std::string> texts;
    for (const ReferenceDescription& reference : findDescription(classes, owner)->references) {
        texts.push_back(reference.attribute + ":" + reference.target + ":" + reference.opposite);
    }
    return texts;
}

/// The text of the Orv::OrvException that `call` throws.
std::string failureOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const Orv::OrvException& exception) {
        return exception.what();
    }
    return "no failure";
}

OrvReturnT firstIsSeven(unsigned long long /*moc*/, unsigned long long* attribute) {
    *attribute = 7;
    return OrvOk;
}

OrvReturnT failing(unsigned long long /*handle*/, unsigned long long* /*out*/) {
    return -42;
}

OrvReturnT textIsNull(unsigned long long /*properties*/, int /*identifier*/, const char** text) {
    *text = nullptr;
    return OrvOk;
}

}

TEST_F(ModelDescriptionTest, AllClasses_AreListedOnceParentsFirst) {
    const auto classes = describeClasses(mReader, topLevelClasses(mModel));
    EXPECT_THAT(namesOf(classes), ElementsAre("Network", "Node", "Cell", "Antenna"));
    EXPECT_THAT(classes[1].children, ElementsAre("Node", "Cell", "Antenna"));
}

TEST_F(ModelDescriptionTest, UnknownTopLevelClass_IsRefused) {
    EXPECT_EQ(failureOf([&] { describeClasses(mReader, {"Cell"}); }),
              "The model repository has no top-level class Cell.");
}

TEST_F(ModelDescriptionTest, Attributes_AreListedWithTypeBoundsAndClass) {
    const auto moc = mReader.findClass("Network=1,Node=1,Cell=1");
    ASSERT_TRUE(moc.has_value());
    const ClassDescription cell = describeClass(mReader, *moc);
    EXPECT_EQ(cell.attributes.size(), mModel.classes[2].attributes.size());
    EXPECT_EQ(find(cell, "offset").typeCode, 2);
    EXPECT_EQ(find(cell, "offset").referencedClass, "");
    EXPECT_EQ(find(cell, "antennas").multiplicity.upper, 4);
    EXPECT_EQ(find(cell, "antennas").referencedClass, "Antenna");
    EXPECT_EQ(find(cell, "source").referencedClass, "ManagedObject");
    EXPECT_EQ(find(cell, "labels").multiplicity.upper, kUnbounded);
}

TEST_F(ModelDescriptionTest, BiDirectionalReference_IsListedWithItsOpposite) {
    const auto classes = describeClasses(mReader, topLevelClasses(mModel));
    const ReferenceDescription& antennas = find(classes, "Cell", "antennas");
    EXPECT_EQ(antennas.owner, "Cell");
    EXPECT_EQ(antennas.target, "Antenna");
    EXPECT_EQ(antennas.role, "antennas");
    EXPECT_EQ(antennas.cardinality.lower, 0);
    EXPECT_EQ(antennas.cardinality.upper, 2);
    EXPECT_TRUE(antennas.keepAtDelete);
    EXPECT_EQ(antennas.opposite, "cell");
    const ReferenceDescription& cell = find(classes, "Antenna", "cell");
    EXPECT_EQ(cell.target, "Cell");
    EXPECT_EQ(cell.cardinality.lower, 1);
    EXPECT_FALSE(cell.keepAtDelete);
    EXPECT_EQ(cell.opposite, "antennas");
}

TEST_F(ModelDescriptionTest, References_OfOneClass_AreListedAttributeByAttribute) {
    const auto classes = describeClasses(mReader, topLevelClasses(mModel));
    EXPECT_THAT(referencesOf(classes, "Cell"),
                ElementsAre("antennas:Antenna:cell", "previous:Cell:next", "next:Cell:previous",
                            "friends:Cell:friends", "source:Antenna:", "source:Node:"));
    EXPECT_THAT(referencesOf(classes, "Antenna"), ElementsAre("cell:Cell:antennas", "power:Node:"));
    EXPECT_THAT(referencesOf(classes, "Node"), ElementsAre());
}

TEST_F(ModelDescriptionTest, DescriptionOfAClass_IsFoundByItsName) {
    const auto classes = describeClasses(mReader, topLevelClasses(mModel));
    ASSERT_NE(findDescription(classes, "Node"), nullptr);
    EXPECT_EQ(findDescription(classes, "Node")->name, "Node");
    EXPECT_EQ(findDescription(classes, "ManagedObject"), nullptr);
}

TEST_F(ModelDescriptionTest, UnknownDn_HasNoClass) {
    EXPECT_FALSE(mReader.findClass("Cell=1").has_value());
}

TEST_F(ModelDescriptionTest, HandleOfNothing_IsAFailureWithTheCode) {
    EXPECT_EQ(failureOf([&] { mReader.nameOfClass(0); }),
              "The model repository answered getMocGeneralProperties with code -2.");
    EXPECT_EQ(failureOf([&] { mReader.typeCodeOf(1); }),
              "The model repository answered getTypeCode with code -8.");
}

TEST(RepositoryReader, MissingSubTableOrEntry_IsReported) {
    VekOamSpiModelRepository_4 table{};
    const RepositoryReader reader(table);
    EXPECT_EQ(failureOf([&] { reader.findClass("A=1"); }),
              "The model repository has no entry getMocFromDn.");
    const VekOamSpiMrDnLookup_4 lookup{};
    table.dnLookup = &lookup;
    EXPECT_EQ(failureOf([&] { reader.findClass("A=1"); }),
              "The model repository has no entry getMocFromDn.");
}

TEST(RepositoryReader, FailureWithinAList_IsReported) {
    VekOamSpiMrMocQueries_4 queries{};
    queries.getFirstAttribute = &firstIsSeven;
    VekOamSpiMrAttribute_4 attribute{};
    attribute.getNextAttribute = &failing;
    VekOamSpiModelRepository_4 table{};
    table.mocQueries = &queries;
    table.attribute = &attribute;
    EXPECT_EQ(failureOf([&] { RepositoryReader(table).attributesOf(1); }),
              "The model repository answered getNextAttribute with code -42.");
}

TEST(RepositoryReader, ListThatStandsStill_IsReported) {
    VekOamSpiMrMocQueries_4 queries{};
    queries.getFirstAttribute = &firstIsSeven;
    VekOamSpiMrAttribute_4 attribute{};
    attribute.getNextAttribute = &firstIsSeven;
    VekOamSpiModelRepository_4 table{};
    table.mocQueries = &queries;
    table.attribute = &attribute;
    EXPECT_EQ(failureOf([&] { RepositoryReader(table).attributesOf(1); }),
              "The model repository stands still in getNextAttribute.");
}

TEST(RepositoryReader, NullText_ReadsAsEmpty) {
    VekOamSpiMrMocQueries_4 queries{};
    queries.getMocGeneralProperties = &firstIsSeven;
    const VekOamSpiMrGeneralProperties_4 properties{&textIsNull};
    VekOamSpiModelRepository_4 table{};
    table.mocQueries = &queries;
    table.generalProperties = &properties;
    EXPECT_EQ(RepositoryReader(table).nameOfClass(1), "");
}

}
