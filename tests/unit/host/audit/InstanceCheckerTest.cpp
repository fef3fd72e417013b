// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "audit/InstanceChecker.h"

#include "SampleModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// The objects to be checked, together with the parents that all of them need.
class Data : public InstanceSource {
public:
    Data() { add("Network=1").add("Network=1,Node=1"); }

    Data& add(std::string dn, std::vector<NamedValue> attributes = {}) {
        mObjects.emplace_back(std::move(dn), std::move(attributes));
        return *this;
    }

    void visit(const Visitor& visitor) const override {
        for (const auto& [dn, attributes] : mObjects) {
            visitor({dn, attributes});
        }
    }

private:
    std::deque<std::pair<std::string, std::vector<NamedValue>>> mObjects;
};

std::string cell(const std::string& name) {
    return "Network=1,Node=1,Cell=" + name;
}

std::string antenna(const std::string& name) {
    return "Network=1,Node=1,Antenna=" + name;
}

NamedValue refs(std::string attribute, std::vector<Value> dns) {
    return {std::move(attribute), {ValueKind::MoRef, std::move(dns)}};
}

InstanceReport check(const InstanceSource& source) {
    const Model model = sampleModel();
    return InstanceChecker(model).check(source);
}

std::vector<std::string> textsOf(const InstanceReport& report) {
    std::vector<std::string> texts;
    for (const InstanceProblem& problem : report.problems) {
        texts.push_back(problem.text);
    }
    return texts;
}

std::vector<InstanceProblemKind> kindsOf(const InstanceReport& report) {
    std::vector<InstanceProblemKind> kinds;
    for (const InstanceProblem& problem : report.problems) {
        kinds.push_back(problem.kind);
    }
    return kinds;
}

/// A model of top-level classes for the few rules that the sample model does not cover.
Model edgeModel() {
    return ModelBuilder()
        .add(ClassDraft("A").topLevel().key("id").attribute(
            AttributeDraft::text("must").mandatory()))
        .add(ClassDraft("B")
                 .topLevel()
                 .key("id")
                 .attribute(AttributeDraft::text("given").mandatory().defaultsTo("x"))
                 .attribute(AttributeDraft::text("status").mandatory().readOnly())
                 .attribute(AttributeDraft::reference("peers").many()))
        .add(ClassDraft("C").topLevel().key("id").attribute(AttributeDraft::reference("up").many()))
        .biDir(ReferenceDraft("B", "peers").counts(0, kUnbounded),
               ReferenceDraft("C", "up").counts(0, 1))
        .build();
}

}

TEST(InstanceChecker, ValuesOfTwoCases_AreReported) {
    const Model model =
        ModelBuilder()
            .add(ClassDraft("Port")
                     .topLevel()
                     .key("id")
                     .attribute(AttributeDraft::text("name"))
                     .attribute(AttributeDraft::text("number"))
                     .choice({"address",
                              {{"by-name", {"name"}, {}}, {"by-number", {"number"}, {}}},
                              false,
                              {}}))
            .build();
    const AttributeValue value{ValueKind::String, {Value("x")}};
    const std::vector<NamedValue> both{{"name", value}, {"number", value}};
    const std::vector<Instance> objects{{"Port=1", both}};
    const InstanceReport report = InstanceChecker(model).check(InstanceSpan(objects));
    ASSERT_EQ(report.problems.size(), 1U);
    EXPECT_EQ(report.problems[0].kind, InstanceProblemKind::WrongChoice);
    EXPECT_EQ(report.problems[0].text, "Port=1: 'name' and 'number' are of two cases of the choice "
                                       "'address', expected one case.");
}

TEST(InstanceChecker, NoObjects_HaveNoProblems) {
    EXPECT_THAT(check(InstanceSpan({})).problems, IsEmpty());
}

TEST(InstanceChecker, ConsistentData_HasNoProblems) {
    Data data;
    data.add(cell("1"),
             {refs("antennas", {antenna("1"), antenna("2")}), refs("next", {cell("2")}),
              refs("friends", {cell("2"), cell("1")}),
              refs("source", {antenna("1"), "Network=1,Node=1"}), refs("any", {"Network=1"})})
        .add(cell("2"), {refs("previous", {cell("1")}), refs("friends", {cell("1")})})
        .add(antenna("1"), {refs("cell", {cell("1")}), refs("power", {"Network=1,Node=1"})})
        .add(antenna("2"), {refs("cell", {cell("1")})});
    const InstanceReport report = check(data);
    EXPECT_THAT(textsOf(report), IsEmpty());
    EXPECT_THAT(report.repairs, IsEmpty());
}

TEST(InstanceChecker, MissingBackPointer_IsReportedWithBothDnsAndCanBeRepaired) {
    Data data;
    data.add(cell("1")).add(antenna("1"), {refs("cell", {cell("1")})});
    const InstanceReport report = check(data);
    ASSERT_THAT(textsOf(report), ElementsAre("Network=1,Node=1,Antenna=1: attribute cell names "
                                             "Network=1,Node=1,Cell=1, but attribute antennas of "
                                             "Network=1,Node=1,Cell=1 does not name it back."));
    const InstanceProblem& problem = report.problems.front();
    EXPECT_EQ(problem.kind, InstanceProblemKind::MissingBackPointer);
    EXPECT_EQ(problem.dn, antenna("1"));
    EXPECT_EQ(problem.attribute, "cell");
    EXPECT_EQ(problem.otherDn, cell("1"));
    ASSERT_EQ(report.repairs.size(), 1U);
    EXPECT_EQ(report.repairs[0].dn, cell("1"));
    EXPECT_EQ(report.repairs[0].attribute, "antennas");
    EXPECT_EQ(report.repairs[0].value, antenna("1"));
}

TEST(InstanceChecker, MissingBackPointerOnTheOtherSide_IsReportedToo) {
    Data data;
    data.add(cell("1"), {refs("antennas", {antenna("1")})})
        .add(antenna("1"), {refs("cell", {cell("2")})})
        .add(cell("2"), {refs("antennas", {antenna("1")})});
    const InstanceReport report = check(data);
    ASSERT_EQ(report.repairs.size(), 1U);
    EXPECT_EQ(report.repairs[0].dn, antenna("1"));
    EXPECT_EQ(report.repairs[0].attribute, "cell");
    EXPECT_EQ(report.repairs[0].value, cell("1"));
}

TEST(InstanceChecker, ClassWithItself_IsComparedDirectionByDirection) {
    Data data;
    data.add(cell("1"), {refs("next", {cell("2")}), refs("previous", {cell("2")})})
        .add(cell("2"), {refs("next", {cell("1")})});
    const InstanceReport report = check(data);
    ASSERT_EQ(report.repairs.size(), 1U);
    EXPECT_EQ(report.repairs[0].dn, cell("2"));
    EXPECT_EQ(report.repairs[0].attribute, "previous");
    EXPECT_EQ(report.repairs[0].value, cell("1"));
}

TEST(InstanceChecker, ClassWithItselfThroughOneAttribute_IsReportedOnce) {
    Data data;
    data.add(cell("1"), {refs("friends", {cell("1"), cell("2")})})
        .add(cell("2"))
        .add(cell("3"), {refs("friends", {cell("1")})});
    const InstanceReport report = check(data);
    std::vector<std::pair<std::string, std::string>> repairs;
    for (const MissingReference& repair : report.repairs) {
        EXPECT_EQ(repair.attribute, "friends");
        repairs.emplace_back(repair.dn, repair.value);
    }
    EXPECT_THAT(repairs, UnorderedElementsAre(std::pair(cell("2"), cell("1")),
                                              std::pair(cell("1"), cell("3"))));
    EXPECT_EQ(report.problems.size(), 2U);
}

TEST(InstanceChecker, RepairedData_HasNoProblems) {
    std::map<std::string, std::map<std::string, std::vector<Value>>> objects;
    objects[cell("1")]["friends"] = {cell("2"), cell("3")};
    objects[cell("2")]["next"] = {cell("3")};
    objects[cell("3")];
    objects[antenna("1")]["cell"] = {cell("3")};
    const auto toData = [&] {
        Data data;
        for (const auto& [dn, attributes] : objects) {
            std::vector<NamedValue> values;
            for (const auto& [name, dns] : attributes) {
                values.push_back(refs(name, dns));
            }
            data.add(dn, values);
        }
        return data;
    };
    const InstanceReport broken = check(toData());
    EXPECT_EQ(broken.repairs.size(), 4U);
    for (const MissingReference& repair : broken.repairs) {
        objects[repair.dn][repair.attribute].emplace_back(repair.value);
    }
    EXPECT_THAT(textsOf(check(toData())), IsEmpty());
}

TEST(InstanceChecker, TargetThatIsNotThere_IsReportedForBothKindsOfAssociation) {
    Data data;
    data.add(cell("1"), {refs("antennas", {antenna("9")}), refs("source", {antenna("8")}),
                         refs("any", {antenna("7")})});
    EXPECT_THAT(textsOf(check(data)),
                ElementsAre("Network=1,Node=1,Cell=1: attribute antennas names "
                            "Network=1,Node=1,Antenna=9, which does not exist.",
                            "Network=1,Node=1,Cell=1: attribute source names "
                            "Network=1,Node=1,Antenna=8, which does not exist."));
}

TEST(InstanceChecker, TargetOfAnotherClass_IsReportedWithThoseExpected) {
    Data data;
    data.add(cell("1"), {refs("next", {"Network=1,Node=1"}), refs("source", {cell("1")})});
    const InstanceReport report = check(data);
    EXPECT_THAT(textsOf(report),
                ElementsAre("Network=1,Node=1,Cell=1: attribute next names Network=1,Node=1 of "
                            "class Node, expected Cell.",
                            "Network=1,Node=1,Cell=1: attribute source names "
                            "Network=1,Node=1,Cell=1 of class Cell, expected Antenna or Node."));
    EXPECT_THAT(kindsOf(report), ElementsAre(InstanceProblemKind::ForbiddenClass,
                                             InstanceProblemKind::ForbiddenClass));
}

TEST(InstanceChecker, TargetThatTheModelDoesNotKnow_IsReported) {
    Data data;
    data.add(cell("1"), {refs("any", {"nonsense"}), refs("next", {"Foreign=1"})});
    EXPECT_THAT(textsOf(check(data)),
                ElementsAre("Network=1,Node=1,Cell=1: attribute any names nonsense, but the model "
                            "has no such path of classes.",
                            "Network=1,Node=1,Cell=1: attribute next names Foreign=1, but the "
                            "model has no such path of classes."));
}

// What clients can write must be data, too.
TEST(InstanceChecker, TargetThatTheModelDoesNotKnow_OfAReferenceToAnyClass_IsPermitted) {
    Data data;
    data.add(cell("1"), {refs("any", {"Foreign=1,Other=2"})});
    EXPECT_THAT(textsOf(check(data)), IsEmpty());
}

TEST(InstanceChecker, ReferencesInStructs_AreJudgedByTheirClass) {
    Data data;
    const StructValue place{{refs("node", {"Network=1"})}};
    data.add(cell("1"), {{"place", {ValueKind::Struct, {place}}}});
    EXPECT_THAT(
        textsOf(check(data)),
        ElementsAre("Network=1,Node=1,Cell=1: attribute place.node names Network=1 of class "
                    "Network, expected Node."));
}

TEST(InstanceChecker, TooManyValues_AreReportedForAttributeAndAssociation) {
    Data data;
    std::vector<Value> antennas;
    for (const char* name : {"1", "2", "3", "4", "5"}) {
        antennas.emplace_back(antenna(name));
        data.add(antenna(name), {refs("cell", {cell("1")})});
    }
    data.add(cell("1"), {refs("antennas", antennas)});
    EXPECT_THAT(textsOf(check(data)),
                ElementsAre("Network=1,Node=1,Cell=1: attribute antennas has 5 values, expected "
                            "0..4.",
                            "Network=1,Node=1,Cell=1: attribute antennas names 5 of class Antenna, "
                            "expected 0..2."));
}

TEST(InstanceChecker, CardinalitiesOfSeveralClasses_AreCountedApart) {
    Data data;
    data.add(antenna("1"), {refs("cell", {cell("1")})})
        .add(antenna("2"), {refs("cell", {cell("1")})})
        .add(cell("1"), {refs("antennas", {antenna("1"), antenna("2")}),
                         refs("source", {antenna("1"), antenna("2"), "Network=1,Node=1"})});
    EXPECT_THAT(textsOf(check(data)),
                ElementsAre("Network=1,Node=1,Cell=1: attribute source names 2 of class Antenna, "
                            "expected 0..1."));
}

TEST(InstanceChecker, AbsentReferenceWithALowerBound_CountsAsEmpty) {
    Data data;
    data.add(antenna("1"));
    EXPECT_THAT(textsOf(check(data)),
                ElementsAre("Network=1,Node=1,Antenna=1: attribute cell names 0 of class Cell, "
                            "expected 1."));
}

TEST(InstanceChecker, AbsentMandatoryAttribute_IsReportedUnlessItMayBeAbsent) {
    const Model model = edgeModel();
    const std::vector<Instance> instances = {{"A=1", {}}, {"B=1", {}}};
    EXPECT_THAT(textsOf(InstanceChecker(model).check(InstanceSpan(instances))),
                ElementsAre("A=1: attribute must has 0 values, expected 1."));
}

TEST(InstanceChecker, ObjectsOutsideTheModel_AreReported) {
    Data data;
    data.add("Cell=1", {refs("next", {"Cell=2"})})
        .add("Network=1,Node=7,Cell=1")
        .add(cell("1"), {refs("nothing", {})})
        .add(cell("1"), {refs("nothing", {})});
    const InstanceReport report = check(data);
    EXPECT_THAT(textsOf(report),
                ElementsAre("Cell=1: the model has no such path of classes.",
                            "Network=1,Node=1,Cell=1: there is more than one object of this name.",
                            "Network=1,Node=7,Cell=1: its parent Network=1,Node=7 does not exist.",
                            "Network=1,Node=1,Cell=1: class Cell has no attribute nothing."));
}

TEST(InstanceChecker, ObjectNamedTwiceInOneAttribute_IsReportedOnce) {
    const Model model = edgeModel();
    const std::vector<NamedValue> peers = {refs("peers", {"C=1", "C=1", "C=2", "C=1"})};
    const std::vector<NamedValue> up = {refs("up", {"B=1"})};
    const std::vector<Instance> instances = {{"B=1", peers}, {"C=1", up}, {"C=2", up}};
    const InstanceReport report = InstanceChecker(model).check(InstanceSpan(instances));
    EXPECT_THAT(textsOf(report), ElementsAre("B=1: attribute peers names C=1 more than once, "
                                             "expected once."));
    EXPECT_THAT(report.repairs, IsEmpty());
}

TEST(InstanceChecker, ValuesThatAreNoReferences_AreLeftToTheValueCheck) {
    Data data;
    data.add(cell("1"), {{"next", {ValueKind::Int, {std::int64_t{5}}}},
                         {"place", {ValueKind::String, {"here"}}}});
    EXPECT_THAT(textsOf(check(data)), IsEmpty());
}

// One object with as many references as there are other objects: comparing the two sides one by one
// would take very long.
TEST(InstanceChecker, ObjectWithVeryManyReferences_IsComparedInReasonableTime) {
    constexpr int kCount = 100000;
    const Model model = edgeModel();
    const std::vector<NamedValue> up = {refs("up", {"B=1"})};
    std::vector<NamedValue> peers = {refs("peers", {})};
    std::deque<std::string> names;
    std::vector<Instance> instances;
    for (int index = 0; index < kCount; ++index) {
        names.push_back("C=" + std::to_string(index));
        instances.push_back({names.back(), up});
        if (index != 500) {
            peers[0].second.values.emplace_back(names.back());
        }
    }
    instances.push_back({"B=1", peers});
    const InstanceReport report = InstanceChecker(model).check(InstanceSpan(instances));
    ASSERT_EQ(report.repairs.size(), 1U);
    EXPECT_EQ(report.repairs[0].value, "C=500");
    EXPECT_EQ(report.problems.size(), 1U);
}

namespace {

/// 1..2 of class Rack under a Hall, 0..1 of class Hall at the top level, any number of Shelves.
Model boundedModel() {
    return ModelBuilder()
        .add(ClassDraft("Hall").topLevel().key("id").instances(0, 1))
        .add(ClassDraft("Yard").topLevel().key("id"))
        .add(ClassDraft("Rack").key("id").instances(1, 2))
        .add(ClassDraft("Shelf").key("id"))
        .contain("Hall", "Rack")
        .contain("Yard", "Shelf")
        .contain("Rack", "Shelf")
        .build();
}

std::vector<std::string> textsOfBounded(const std::vector<std::string>& dns) {
    const Model model = boundedModel();
    std::vector<Instance> instances;
    for (const std::string& dn : dns) {
        instances.push_back({dn, {}});
    }
    return textsOf(InstanceChecker(model).check(InstanceSpan(instances)));
}

}

TEST(InstanceCheckerNumbers, WithinBounds_HaveNoProblems) {
    EXPECT_THAT(
        textsOfBounded({"Hall=1", "Hall=1,Rack=a", "Hall=1,Rack=b", "Yard=1", "Yard=2",
                        "Hall=1,Rack=a,Shelf=1", "Hall=1,Rack=a,Shelf=2", "Hall=1,Rack=a,Shelf=3"}),
        IsEmpty());
}

TEST(InstanceCheckerNumbers, NoObjectsAtAll_MissNothing) {
    const Model model =
        ModelBuilder().add(ClassDraft("Hall").topLevel().key("id").instances(1, 1)).build();
    EXPECT_THAT(InstanceChecker(model).check(InstanceSpan({})).problems, IsEmpty());
}

TEST(InstanceCheckerNumbers, TooFewAndTooManyUnderAParent_AreReportedForTheParent) {
    EXPECT_THAT(textsOfBounded({"Hall=1", "Yard=1"}),
                ElementsAre("Hall=1: 0 of class Rack stand there, expected 1..2."));
    EXPECT_THAT(textsOfBounded({"Hall=1,Rack=c", "Hall=1,Rack=a", "Hall=1", "Hall=1,Rack=b"}),
                ElementsAre("Hall=1: 3 of class Rack stand there, expected 1..2."));
}

TEST(InstanceCheckerNumbers, TooManyAtTheTopLevel_AreReportedForIt) {
    EXPECT_THAT(textsOfBounded({"Hall=1", "Hall=2", "Hall=1,Rack=a", "Hall=2,Rack=a"}),
                ElementsAre("the top level: 2 of class Hall stand there, expected 0..1."));
}

TEST(InstanceCheckerNumbers, SeveralParents_AreCountedApart) {
    const Model model = ModelBuilder()
                            .add(ClassDraft("Hall").topLevel().key("id"))
                            .add(ClassDraft("Rack").key("id").instances(0, 1))
                            .contain("Hall", "Rack")
                            .contain("Rack", "Rack")
                            .build();
    const std::vector<Instance> instances{{"Hall=2", {}},        {"Hall=1", {}},
                                          {"Hall=1,Rack=a", {}}, {"Hall=2,Rack=a", {}},
                                          {"Hall=2,Rack=b", {}}, {"Hall=2,Rack=b,Rack=a", {}}};
    const InstanceReport report = InstanceChecker(model).check(InstanceSpan(instances));
    EXPECT_THAT(kindsOf(report), ElementsAre(InstanceProblemKind::WrongNumber));
    EXPECT_EQ(report.problems[0].dn, "Hall=2");
    EXPECT_EQ(report.problems[0].text, "Hall=2: 2 of class Rack stand there, expected 0..1.");
}

TEST(InstanceCheckerNumbers, RepeatedObject_CountsOnce) {
    EXPECT_THAT(textsOfBounded({"Hall=1", "Hall=1", "Hall=1,Rack=a"}),
                ElementsAre("Hall=1: there is more than one object of this name."));
}

}
