// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "model/Model.h"

#include "SampleModel.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvHost {

namespace {

std::string classOf(const Model& model, std::string_view dn) {
    const auto found = model.findClassOfDn(dn);
    return found ? model.classes[*found].name : "none";
}

}

TEST(Model, LookUpsByName_FindWhatIsThere) {
    const Model model = sampleModel();
    const auto cell = model.findClass("Cell");
    ASSERT_TRUE(cell.has_value());
    const ClassDef& moc = model.classes[*cell];
    EXPECT_EQ(moc.name, "Cell");
    EXPECT_EQ(moc.namingAttribute, "cellId");
    EXPECT_EQ(moc.findAttribute("id")->name, "cellId");
    EXPECT_EQ(moc.findAttribute("offset")->name, "offset");
    EXPECT_EQ(moc.findAttributeIndex("locked"), 1U);
    EXPECT_EQ(moc.findAction("restart")->parameters.front().name, "delay");
}

TEST(Model, LookUpsByName_AnswerNothingForUnknownNames) {
    const Model model = sampleModel();
    EXPECT_FALSE(model.findClass("cell").has_value());
    EXPECT_FALSE(model.findClass("").has_value());
    const ClassDef& moc = model.classes.front();
    EXPECT_EQ(moc.findAttribute("nothing"), nullptr);
    EXPECT_EQ(moc.findAction("nothing"), nullptr);
    EXPECT_FALSE(moc.findAttributeIndex("nothing").has_value());
}

TEST(ModelClassOfDn, LegalPaths_GiveTheLastClass) {
    const Model model = sampleModel();
    EXPECT_EQ(classOf(model, "Network=1"), "Network");
    EXPECT_EQ(classOf(model, "Network=1,Node=a b"), "Node");
    EXPECT_EQ(classOf(model, "Network=1,Node=1,Node=2,Node=3,Cell=4"), "Cell");
    EXPECT_EQ(classOf(model, "Network.id=1,Node.id=2"), "Node");
    EXPECT_EQ(classOf(model, "Network=a=b"), "Network");
    EXPECT_EQ(classOf(model, "Network=1.5,Node=2.5"), "Node");
}

TEST(ModelClassOfDn, PathsThatTheModelDoesNotPermit_GiveNothing) {
    const Model model = sampleModel();
    EXPECT_EQ(classOf(model, "Node=1"), "none");
    EXPECT_EQ(classOf(model, "Network=1,Cell=1"), "none");
    EXPECT_EQ(classOf(model, "Network=1,Network=1"), "none");
    EXPECT_EQ(classOf(model, "Network=1,Node=1,Cell=1,Node=1"), "none");
    EXPECT_EQ(classOf(model, "ManagedObject=1"), "none");
    EXPECT_EQ(classOf(model, "network=1"), "none");
    EXPECT_EQ(classOf(model, " Network=1"), "none");
}

TEST(ModelClassOfDn, MalformedDns_GiveNothing) {
    const Model model = sampleModel();
    for (const char* dn :
         {"", ",", "=", "Network", "Network=", "=1", ".id=1", "Network=1,", ",Network=1",
          "Network=1,,Node=1", "Network=1,Node", "Network=1,Node="}) {
        EXPECT_EQ(classOf(model, dn), "none") << dn;
    }
}

TEST(ModelClassOfDn, ManySteps_AreReadToTheEnd) {
    const Model model = sampleModel();
    std::string dn = "Network=1";
    for (int step = 0; step < 100000; ++step) {
        dn += ",Node=" + std::to_string(step);
    }
    EXPECT_EQ(classOf(model, dn), "Node");
    EXPECT_EQ(classOf(model, dn + ",Antenna=1"), "Antenna");
    EXPECT_EQ(classOf(model, dn + ",Network=1"), "none");
}

}
