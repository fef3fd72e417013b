// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "model/building/ModelBuilder.h"

#include "SampleModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OrvHost {

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// The messages of a builder; none if it succeeds.
std::vector<std::string> problemsOf(const ModelBuilder& builder) {
    std::vector<std::string> texts;
    try {
        builder.build();
    } catch (const ModelError& error) {
        for (const Problem& problem : error.problems()) {
            texts.push_back(toText(problem));
        }
    }
    return texts;
}

ClassDraft topClass(const char* name) {
    return ClassDraft(name).topLevel().key("id");
}

/// One top-level class with that attribute.
ModelBuilder withAttribute(const AttributeDraft& attribute) {
    return ModelBuilder().add(topClass("Top").attribute(attribute));
}

std::vector<std::string> namesOf(const Model& model, const std::vector<ClassIndex>& classes) {
    std::vector<std::string> names;
    for (const ClassIndex index : classes) {
        names.push_back(model.classes[index].name);
    }
    return names;
}

}

TEST(ModelBuilder, ElementAtTheRoot_MustPermitItsNameInTheHost) {
    const auto rootWith = [](const AttributeDraft& key) {
        return problemsOf(
            ModelBuilder().add(ClassDraft("ManagedElement").topLevel().attribute(key)));
    };
    EXPECT_THAT(rootWith(AttributeDraft::enumeration("id", {"0", "1"}).naming()), IsEmpty());
    EXPECT_THAT(
        rootWith(AttributeDraft::enumeration("id", {"a", "b"}).naming()),
        ElementsAre(AllOf(HasSubstr("Class ManagedElement: this is the element at the root"),
                          HasSubstr("expected a single key that permits 1: "),
                          HasSubstr("permitted names: a, b"))));
    EXPECT_THAT(problemsOf(ModelBuilder().add(
                    ClassDraft("ManagedElement")
                        .topLevel()
                        .keys({AttributeDraft::text("a"), AttributeDraft::text("b")}))),
                ElementsAre(HasSubstr("the 2 key values a|b")));
}

TEST(ModelBuilder, ElementThatIsNotAtTheRoot_MayHaveAnyKey) {
    EXPECT_THAT(
        problemsOf(ModelBuilder()
                       .add(topClass("Network"))
                       .add(ClassDraft("ManagedElement")
                                .attribute(AttributeDraft::enumeration("id", {"a"}).naming()))
                       .contain("Network", "ManagedElement")),
        IsEmpty());
}

TEST(ModelBuilder, SampleModel_KeepsWhatWasSaid) {
    const Model model = sampleModel();
    ASSERT_EQ(model.classes.size(), 4U);
    const ClassDef& node = model.classes[1];
    EXPECT_THAT(namesOf(model, node.children), ElementsAre("Node", "Cell", "Antenna"));
    EXPECT_THAT(namesOf(model, node.parents), ElementsAre("Network", "Node"));
    EXPECT_FALSE(node.isTopLevel);
    EXPECT_TRUE(model.classes[0].isTopLevel);
    const ClassDef& cell = model.classes[2];
    EXPECT_EQ(cell.findAttribute("id")->isNaming, true);
    EXPECT_EQ(cell.findAttribute("load")->isWritable, false);
    EXPECT_EQ(cell.findAttribute("locked")->defaultValue,
              (AttributeValue{ValueKind::Bool, {Value(false)}}));
    const AttributeDef& place = *cell.findAttribute("place");
    ASSERT_EQ(place.type.members.size(), 2U);
    EXPECT_THAT(namesOf(model, place.type.members[1].type.targets), ElementsAre("Node"));
    EXPECT_EQ(cell.actions.front().result->name, "report");
}

TEST(ModelBuilder, Key_OfAnyName_MakesTheDefaultNamingAttribute) {
    const Model model = ModelBuilder()
                            .add(topClass("NRCellDU").attribute(AttributeDraft::text("label")))
                            .add(ClassDraft("Mast").topLevel().key("mastId"))
                            .build();
    const ClassDef& cell = model.classes[0];
    EXPECT_EQ(cell.namingAttribute, "nRCellDUId");
    EXPECT_THAT(cell.keys, ElementsAre("id"));
    EXPECT_EQ(cell.attributes[0].name, "nRCellDUId");
    EXPECT_EQ(cell.findAttribute("id"), &cell.attributes[0]);
    EXPECT_EQ(cell.findAttribute("nRCellDUId"), &cell.attributes[0]);
    EXPECT_EQ(cell.findAttributeIndex("id"), 0U);
    EXPECT_EQ(model.classes[1].namingAttribute, "mastId");
    EXPECT_THAT(model.classes[1].keys, ElementsAre("mastId"));
    EXPECT_EQ(model.classes[1].findAttribute("id"), nullptr);
}

TEST(ModelBuilder, AttributeWithTheNameOfTheNamingAttribute_IsRefused) {
    EXPECT_THAT(problemsOf(withAttribute(AttributeDraft::text("topId"))),
                ElementsAre("Attribute Top.topId: this is the name of the naming attribute, which "
                            "is the class's name and \"Id\"; expected another name."));
}

TEST(ModelBuilder, SeveralKeys_NameObjectsThroughOneAttribute) {
    const Model model =
        ModelBuilder()
            .add(ClassDraft("Route")
                     .topLevel()
                     .attribute(AttributeDraft::text("cost"))
                     .keys({AttributeDraft::text("prefix"),
                            AttributeDraft::enumeration("side", {"left", "right"})}))
            .build();
    const ClassDef& route = model.classes[0];
    EXPECT_EQ(route.namingAttribute, "routeId");
    EXPECT_THAT(route.keys, ElementsAre("prefix", "side"));
    const AttributeDef& naming = *route.findAttribute("routeId");
    EXPECT_TRUE(naming.isNaming);
    EXPECT_EQ(naming.type.check("10.0.0.0/8|left"), "");
    EXPECT_NE(naming.type.check("10.0.0.0/8|up"), "");
    const AttributeDef& side = *route.findAttribute("side");
    EXPECT_EQ(side.keyPosition, 1U);
    EXPECT_FALSE(side.isRequired());
}

TEST(ModelBuilder, WrongKeys_AreRefused) {
    const auto withKeys = [](std::vector<AttributeDraft> keys) {
        return ModelBuilder().add(ClassDraft("Top").topLevel().keys(std::move(keys)));
    };
    EXPECT_THAT(problemsOf(withKeys({AttributeDraft::text("a")})),
                Contains("Class Top has one of several keys, a, and no other: a single key is "
                         "declared with key()."));
    EXPECT_THAT(problemsOf(withKeys({AttributeDraft::text("a"), AttributeDraft::integer("b")})),
                ElementsAre("Attribute Top.b: a key is a text or an enumeration, this is a whole "
                            "number."));
    EXPECT_THAT(problemsOf(withKeys({AttributeDraft::text("a"), AttributeDraft::text("topId")})),
                ElementsAre("Attribute Top.topId: this is the name of the naming attribute, which "
                            "is the class's name and \"Id\"; expected another name."));
}

TEST(ModelBuilder, EmptyModel_IsOne) {
    EXPECT_THAT(problemsOf(ModelBuilder()), IsEmpty());
}

TEST(ModelBuilder, ClassThatContainsItselfAtTop_IsPermitted) {
    const Model model = ModelBuilder().add(topClass("Folder")).contain("Folder", "Folder").build();
    EXPECT_THAT(model.classes[0].children, ElementsAre(0U));
    EXPECT_THAT(model.classes[0].parents, ElementsAre(0U));
}

TEST(ModelBuilder, ContainmentSaidTwice_CountsOnce) {
    const Model model = ModelBuilder()
                            .add(topClass("Top"))
                            .add(ClassDraft("Leaf").key("id").instances(1, 3))
                            .contain("Top", "Leaf")
                            .contain("Top", "Leaf")
                            .build();
    EXPECT_EQ(model.classes[0].children.size(), 1U);
    EXPECT_EQ(model.classes[1].parents.size(), 1U);
    EXPECT_EQ(model.classes[1].instances.upper, 3);
}

TEST(ModelBuilder, SameClassTwice_IsRefusedWithBothPlaces) {
    const auto problems = problemsOf(ModelBuilder()
                                         .add(topClass("Top").at({"a.yang", 3}))
                                         .add(topClass("Top").at({"b.yang", 4})));
    EXPECT_THAT(problems,
                ElementsAre("b.yang:4: Class Top is defined more than once, first in a.yang:3."));
}

TEST(ModelBuilder, UnusableNames_AreRefused) {
    for (const char* name : {"", "A.b", "A=b", "A,b", "A b", "A\tb", "A\"b", "A;b"}) {
        EXPECT_EQ(problemsOf(ModelBuilder().add(topClass(name))).size(), 1U) << name;
    }
    EXPECT_THAT(
        problemsOf(ModelBuilder().add(topClass("ManagedObject"))),
        ElementsAre("Class ManagedObject: the name stands for any class and cannot be given "
                    "to one."));
    EXPECT_EQ(problemsOf(withAttribute(AttributeDraft::text("a b"))).size(), 1U);
    EXPECT_THAT(problemsOf(withAttribute(AttributeDraft::text("a.b-c_d"))), IsEmpty());
    EXPECT_EQ(problemsOf(ModelBuilder().add(topClass("Top").action(ActionDraft("")))).size(), 1U);
}

TEST(ModelBuilder, NamesThatAreNotUnique_AreRefused) {
    using Attribute = AttributeDraft;
    EXPECT_THAT(problemsOf(withAttribute(Attribute::text("id"))),
                ElementsAre("Attribute Top.id is defined more than once."));
    EXPECT_THAT(problemsOf(withAttribute(
                    Attribute::structure("s", {Attribute::text("m"), Attribute::text("m")}))),
                ElementsAre("Attribute Top.s.m is defined more than once."));
    EXPECT_THAT(problemsOf(ModelBuilder().add(
                    topClass("Top").action(ActionDraft("run")).action(ActionDraft("run")))),
                ElementsAre("Action Top.run is defined more than once."));
    EXPECT_THAT(
        problemsOf(ModelBuilder().add(topClass("Top").action(
            ActionDraft("run").parameter(Attribute::text("p")).parameter(Attribute::text("p"))))),
        ElementsAre("Action Top.run, parameter p is defined more than once."));
    EXPECT_THAT(problemsOf(withAttribute(Attribute::enumeration("e", {"x", "x"}))),
                ElementsAre("Attribute Top.e: the enumerator x is there more than once."));
}

TEST(ModelBuilder, NamingAttribute_MustBeOneSingleText) {
    EXPECT_THAT(problemsOf(ModelBuilder().add(ClassDraft("Top").topLevel())),
                ElementsAre("Class Top has no naming attribute."));
    EXPECT_THAT(problemsOf(withAttribute(AttributeDraft::text("other").naming())),
                ElementsAre("Class Top has more than one naming attribute."));
    EXPECT_THAT(problemsOf(ModelBuilder().add(ClassDraft("Top").topLevel().attribute(
                    AttributeDraft::integer("number").naming()))),
                ElementsAre("Attribute Top.number: a naming attribute is a text or an enumeration, "
                            "this is a whole number."));
    EXPECT_THAT(
        problemsOf(ModelBuilder().add(
            ClassDraft("Top").topLevel().attribute(AttributeDraft::text("id").naming().many()))),
        ElementsAre("Attribute Top.id: a naming attribute has exactly one value, not 0..*."));
}

TEST(ModelBuilder, Bounds_MustBeBounds) {
    EXPECT_THAT(problemsOf(withAttribute(AttributeDraft::text("a").multiplicity(2, 1))),
                ElementsAre("Attribute Top.a: the upper bound of 2..1 is below the lower bound, "
                            "expected lower <= upper."));
    EXPECT_THAT(problemsOf(withAttribute(AttributeDraft::text("a").multiplicity(-1, 1))),
                ElementsAre("Attribute Top.a: the lower bound of -1..1 is negative, expected 0 or "
                            "more."));
    EXPECT_EQ(problemsOf(withAttribute(AttributeDraft::text("a").multiplicity(-2, -3))).size(), 2U);
    EXPECT_THAT(problemsOf(withAttribute(AttributeDraft::text("a").multiplicity(0, 0))), IsEmpty());
    EXPECT_THAT(problemsOf(ModelBuilder().add(topClass("Top").instances(3, 2))),
                ElementsAre("Class Top, number of objects: the upper bound of 3..2 is below the "
                            "lower bound, expected lower <= upper."));
}

TEST(ModelBuilder, DefaultsThatDoNotFit_AreRefused) {
    EXPECT_THAT(problemsOf(withAttribute(AttributeDraft::integer("a").defaultsTo("x"))),
                ElementsAre("Attribute Top.a: the default does not fit: \"x\" is not a whole "
                            "number."));
    EXPECT_THAT(problemsOf(withAttribute(
                    AttributeDraft::text("a").defaultsTo(std::vector<Value>{"x", "y"}))),
                ElementsAre("Attribute Top.a: the default does not fit: 2 values, expected 0..1."));
    EXPECT_THAT(problemsOf(withAttribute(AttributeDraft::text("a").defaultsTo("x").checkedBy(
                    [](const std::string& text) { return text + " is too short"; }))),
                ElementsAre("Attribute Top.a: the default does not fit: x is too short."));
    EXPECT_THAT(
        problemsOf(withAttribute(AttributeDraft::enumeration("a", {"on"}).defaultsTo("on"))),
        IsEmpty());
}

TEST(ModelBuilder, WordsThatDoNotBelongToTheKind_AreRefused) {
    AttributeDraft enumerated = AttributeDraft::text("a");
    enumerated.def.type.enumerators = {"x"};
    EXPECT_THAT(
        problemsOf(withAttribute(enumerated)),
        ElementsAre("Attribute Top.a: only an enumeration has enumerators, this is a text."));
    EXPECT_THAT(problemsOf(withAttribute(AttributeDraft::enumeration("a", {}))),
                ElementsAre("Attribute Top.a: the enumeration has no names to choose from."));
    AttributeDraft withMember = AttributeDraft::text("a");
    withMember.members.push_back(AttributeDraft::text("m"));
    EXPECT_THAT(problemsOf(withAttribute(withMember)),
                ElementsAre("Attribute Top.a: only a struct has members, this is a text."));
    AttributeDraft withTarget = AttributeDraft::text("a");
    withTarget.targets = {"Top"};
    EXPECT_THAT(
        problemsOf(withAttribute(withTarget)),
        ElementsAre("Attribute Top.a: only a reference has target classes, this is a text."));
}

TEST(ModelBuilder, UnknownClasses_AreRefusedWhereverTheyAreNamed) {
    EXPECT_THAT(
        problemsOf(withAttribute(AttributeDraft::reference("a", {"Top", "Nowhere"}))),
        ElementsAre("Attribute Top.a: the target class Nowhere does not exist in the model."));
    EXPECT_THAT(problemsOf(withAttribute(
                    AttributeDraft::structure("s", {AttributeDraft::reference("r", {"Nowhere"})}))),
                ElementsAre("Attribute Top.s.r: the target class Nowhere does not exist in the "
                            "model."));
    EXPECT_THAT(
        problemsOf(ModelBuilder().add(topClass("Top")).contain("Top", "Nowhere", {"f", 1})),
        ElementsAre("f:1: Containment of Nowhere in Top: the class Nowhere does not exist in "
                    "the model."));
    EXPECT_THAT(problemsOf(ModelBuilder().add(topClass("Top")).contain("A", "B")),
                ElementsAre("Containment of B in A: the class A does not exist in the model.",
                            "Containment of B in A: the class B does not exist in the model."));
}

TEST(ModelBuilder, ClassesThatNoTopLevelClassLeadsTo_AreRefused) {
    const auto problems = problemsOf(ModelBuilder()
                                         .add(topClass("Top"))
                                         .add(ClassDraft("Egg").key("id").at({"m.yang", 0}))
                                         .add(ClassDraft("Hen").key("id"))
                                         .contain("Egg", "Hen")
                                         .contain("Hen", "Egg"));
    EXPECT_THAT(
        problems,
        ElementsAre("m.yang: Class Egg can have no objects: it is neither a top-level class "
                    "nor contained, directly or through others, in one.",
                    "Class Hen can have no objects: it is neither a top-level class nor "
                    "contained, directly or through others, in one."));
}

TEST(ModelBuilder, ManyProblems_AreAllReportedAtOnce) {
    ModelBuilder builder;
    builder.add(topClass("Top").attribute(AttributeDraft::text("a").multiplicity(3, 2)))
        .add(ClassDraft("Lost").key("id"))
        .contain("Top", "Nowhere")
        .add(ReferenceDraft("Top", "a").to("Elsewhere"));
    try {
        builder.build();
        FAIL() << "built";
    } catch (const ModelError& error) {
        EXPECT_EQ(error.problems().size(), 5U);
        const std::string text = error.what();
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 4);
        for (const Problem& problem : error.problems()) {
            EXPECT_NE(text.find(problem.text), std::string::npos);
        }
    }
}

TEST(ModelBuilder, PlaceOfTheClass_StandsInForThatOfItsAttributes) {
    const auto problems = problemsOf(ModelBuilder().add(
        topClass("Top").at({"m.yang", 7}).attribute(AttributeDraft::text("a").multiplicity(2, 1))));
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems.front().rfind("m.yang:7: ", 0), 0U);
}

}
