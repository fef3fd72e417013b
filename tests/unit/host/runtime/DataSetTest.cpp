// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "runtime/DataSet.h"

#include "MeIdTranslator.h"
#include "model/building/ModelBuilder.h"
#include "store/MoStore.h"

#include <gmock/gmock.h>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

AttributeValue text(const std::string& value) {
    return {ValueKind::String, {value}};
}

AttributeValue references(std::vector<std::string> dns) {
    AttributeValue value{ValueKind::MoRef, {}};
    for (std::string& dn : dns) {
        value.values.emplace_back(std::move(dn));
    }
    return value;
}

class DataSetTest : public testing::Test {
protected:
    static Model makeModel() {
        return ModelBuilder()
            .add(ClassDraft("Site").topLevel().key("id").attribute(AttributeDraft::text("label")))
            .add(ClassDraft("Mast").key("id").attribute(
                AttributeDraft::reference("antennas").many()))
            .add(ClassDraft("Antenna").key("id").attribute(AttributeDraft::reference("mast")))
            .contain("Site", "Mast")
            .contain("Site", "Antenna")
            .biDir(ReferenceDraft("Mast", "antennas"), ReferenceDraft("Antenna", "mast"))
            .build();
    }

    void add(const std::string& dn, std::vector<NamedValue> attributes = {}, int line = 0) {
        mData.add({dn, std::move(attributes), {"data.json", line}});
    }

    Model mModel = makeModel();
    MoStore mStore{mModel};
    DataSet mData{mModel};
};

TEST_F(DataSetTest, MoveInto_ChildrenGivenFirst_ParentsAreStoredFirst) {
    add("Site=1,Mast=a");
    add("Site=1", {{"label", text("one")}});
    EXPECT_THAT(mData.check().problems, IsEmpty());
    EXPECT_THAT(mData.moveInto(mStore), IsEmpty());
    EXPECT_EQ(mStore.size(), 2u);
    EXPECT_EQ(mData.size(), 0u);
}

TEST_F(DataSetTest, Add_MentionsOfAnObject_AreOneObjectWithTheAttributesGiven) {
    add("Site=1");
    add("Site=1", {{"id", text("1")}, {"label", text("one")}});
    add("Site=1");
    EXPECT_THAT(mData.check().problems, IsEmpty());
    mData.moveInto(mStore);
    EXPECT_EQ(mStore.size(), 1u);
    EXPECT_EQ(mStore.begin(1)->get("Site=1", "label"), text("one"));
}

TEST_F(DataSetTest, Check_ObjectGivenTwice_IsAProblem) {
    add("Site=1", {{"label", text("one")}}, 3);
    add("Site=1", {{"label", text("two")}}, 9);
    EXPECT_THAT(mData.check().problems,
                ElementsAre("data.json:9: Site=1: there is more than one object of this name; the "
                            "first one is at data.json:3."));
}

TEST_F(DataSetTest, Check_VeryManyObjectsGivenTwice_TellsTheFirstAndTheNumber) {
    add("Site=1");
    for (int line = 1; line <= 30; ++line) {
        add("Site=1,Mast=" + std::to_string(line % 15), {{"antennas", references({})}}, line);
    }
    const auto problems = mData.check().problems;
    ASSERT_THAT(problems, SizeIs(11));
    EXPECT_THAT(problems[9], StartsWith("data.json:25: Site=1,Mast=10: there is more than one"));
    EXPECT_EQ(problems[10], "5 more objects of a name that is there already.");
}

TEST_F(DataSetTest, Check_OneSidedAssociation_NamesBothObjectsAndTheAttribute) {
    add("Site=1");
    add("Site=1,Mast=a", {{"antennas", references({"Site=1,Antenna=1"})}});
    add("Site=1,Antenna=1", {}, 7);
    EXPECT_THAT(mData.check().problems,
                ElementsAre(AllOf(HasSubstr("Site=1,Mast=a"), HasSubstr("Site=1,Antenna=1"),
                                  HasSubstr("antennas"))));
}

TEST_F(DataSetTest, Check_OneSidedAssociationAsItIs_IsANote) {
    add("Site=1");
    add("Site=1,Mast=a", {{"antennas", references({"Site=1,Antenna=1"})}});
    add("Site=1,Antenna=1", {}, 7);
    EXPECT_TRUE(mData.check().isAboutAssociations);
    const DataReport report = mData.check(Associations::AsTheyAre);
    EXPECT_THAT(report.problems, IsEmpty());
    EXPECT_THAT(report.notes, ElementsAre(HasSubstr("Site=1,Antenna=1")));
    EXPECT_FALSE(report.isAboutAssociations);
}

TEST_F(DataSetTest, Check_WhatClientsCanLeave_IsANote) {
    add("Site=1");
    add("Site=1,Mast=a", {{"antennas", references({"Site=1,Antenna=9"})}}, 4);
    const DataReport report = mData.check();
    EXPECT_THAT(report.problems, IsEmpty());
    EXPECT_THAT(report.notes,
                ElementsAre(AllOf(StartsWith("data.json:4: "), HasSubstr("Site=1,Antenna=9"))));
}

TEST_F(DataSetTest, Repair_OneSidedAssociations_CompletesBothDirections) {
    add("Site=1");
    add("Site=1,Mast=a", {{"antennas", references({"Site=1,Antenna=1"})}});
    add("Site=1,Antenna=1", {}, 7);
    add("Site=1,Antenna=2", {{"mast", references({"Site=1,Mast=a"})}});
    EXPECT_THAT(mData.repair(),
                Contains("data.json:7: Site=1,Antenna=1: added Site=1,Mast=a to mast"));
    EXPECT_THAT(mData.check().problems, IsEmpty());
    EXPECT_THAT(mData.moveInto(mStore), IsEmpty());
    const auto transaction = mStore.begin(1);
    EXPECT_EQ(transaction->get("Site=1,Antenna=1", "mast"), references({"Site=1,Mast=a"}));
    EXPECT_EQ(transaction->get("Site=1,Mast=a", "antennas"),
              references({"Site=1,Antenna=1", "Site=1,Antenna=2"}));
}

TEST_F(DataSetTest, Repair_WouldExceedTheBound_IsReportedByCheck) {
    add("Site=1");
    add("Site=1,Mast=a", {{"antennas", references({"Site=1,Antenna=1"})}});
    add("Site=1,Mast=b", {{"antennas", references({"Site=1,Antenna=1"})}});
    add("Site=1,Antenna=1");
    EXPECT_THAT(mData.repair(), SizeIs(2));
    EXPECT_THAT(mData.check().problems, Contains(HasSubstr("Site=1,Antenna=1")));
}

class DataSetAtTheTopTest : public testing::Test {
protected:
    ~DataSetAtTheTopTest() override { Orv::MeIdTranslator::instance()->configure("", ""); }

    void add(const std::string& dn, int line) { mData.add({dn, {}, {"data.json", line}}); }

    Model mModel = ModelBuilder()
                       .add(ClassDraft("ManagedElement").topLevel().key("id"))
                       .add(ClassDraft("Site").topLevel().key("id"))
                       .add(ClassDraft("Mast").key("id"))
                       .contain("ManagedElement", "Mast")
                       .build();
    DataSet mData{mModel};
};

TEST_F(DataSetAtTheTopTest, Unreachable_ElementNotNamedOne_IsReportedOnceForItsTree) {
    Orv::MeIdTranslator::instance()->configure("east", "1");
    add("ManagedElement=1", 2);
    add("ManagedElement=east", 3);
    add("ManagedElement=east,Mast=a", 4);
    add("Site=east", 5);
    EXPECT_THAT(mData.unreachable(),
                ElementsAre(StartsWith("data.json:3: ManagedElement=east: no client can name")));
}

TEST_F(DataSetAtTheTopTest, Unreachable_NoIdentity_TellsTheElement) {
    Orv::MeIdTranslator::instance()->configure("", "");
    add("ManagedElement=1", 2);
    EXPECT_THAT(mData.unreachable(), ElementsAre(StartsWith("data.json:2: ManagedElement=1: ")));
}

TEST_F(DataSetAtTheTopTest, MisnamedInLists_AreThoseNotNamedLikeTheElement) {
    Orv::MeIdTranslator::instance()->configure("east", "1");
    add("ManagedElement=1", 2);
    add("ManagedElement=x", 3);
    add("Site=east", 4);
    add("Site=west", 5);
    EXPECT_THAT(mData.misnamedInLists(),
                ElementsAre(AllOf(StartsWith("data.json:5: Site=west: "), HasSubstr("Site=east"))));
}

TEST_F(DataSetTest, MoveInto_RefusedObjects_AreAllReportedButNotWhatIsBelowThem) {
    add("Site=1");
    add("Site=1,Nothing=x", {}, 4);
    add("Site=1,Nothing=x,Mast=a");
    add("Site=2,Mast=a", {}, 6);
    const auto problems = mData.moveInto(mStore);
    EXPECT_THAT(problems, ElementsAre(HasSubstr("Nothing"), StartsWith("data.json:6: ")));
    EXPECT_EQ(mStore.size(), 1u);
}

TEST_F(DataSetTest, MoveInto_Progress_ComesForEachObject) {
    add("Site=1");
    add("Site=1,Mast=a");
    std::vector<std::size_t> seen;
    mData.moveInto(mStore, [&](std::size_t done, std::size_t all) {
        EXPECT_EQ(all, 2u);
        seen.push_back(done);
    });
    EXPECT_THAT(seen, ElementsAre(1u, 2u));
}

/// Names the objects that it finds below the top.
class NamingRules : public RuleCheck {
public:
    RuleReport check(const ObjectView&, const std::vector<TouchedObject>&) const override {
        return {};
    }
    RuleReport checkAll(const ObjectView& view) const override {
        RuleReport report;
        for (const std::string& name : view.namesOf("", "Site")) {
            const std::string dn = "Site=" + name;
            report.violations.push_back(
                {dn, "label",
                 std::to_string(view.valuesOf(dn).size()) + " values, " +
                     std::to_string(view.namesOf(dn, "Mast").size()) + " masts" +
                     (view.exists(dn) && !view.exists(dn + ",Mast=z") ? "" : ", wrong"),
                 ""});
        }
        return report;
    }
};

TEST_F(DataSetTest, CheckRules_ShowsTheObjectsAndNamesTheirFile) {
    add("Site=1", {{"label", text("one")}}, 3);
    add("Site=1,Mast=a");
    add("Site=1,Mast=b");
    EXPECT_THAT(mData.checkRules(NamingRules()),
                ElementsAre("data.json:3: Site=1: attribute 'label': 1 values, 2 masts"));
}

}
}
