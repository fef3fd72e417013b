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

using testing::ElementsAre;
using testing::IsEmpty;

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

/// Top-level classes X, Y and Z, each with references "a", "b" and "c" (0..*) and a text "t".
ModelBuilder threeClasses() {
    ModelBuilder builder;
    for (const char* name : {"X", "Y", "Z"}) {
        builder.add(ClassDraft(name)
                        .topLevel()
                        .key("id")
                        .attribute(AttributeDraft::reference("a").many())
                        .attribute(AttributeDraft::reference("b").many())
                        .attribute(AttributeDraft::reference("c").many())
                        .attribute(AttributeDraft::text("t")));
    }
    return builder;
}

}

TEST(BiDirAssociation, EndsAreNamedAfterTheAttributesThatPointAtThem) {
    const Model model =
        threeClasses()
            .biDir(ReferenceDraft("X", "a").counts(0, 3).role("things").keepAtDelete(),
                   ReferenceDraft("Y", "b").counts(1, 2))
            .build();
    ASSERT_EQ(model.biDirAssociations.size(), 1U);
    const AssociationEnd& first = model.biDirAssociations[0].ends[0];
    const AssociationEnd& second = model.biDirAssociations[0].ends[1];
    EXPECT_EQ(model.classes[first.moc].name, "X");
    EXPECT_EQ(first.name, "b");
    EXPECT_EQ(first.cardinality.lower, 1);
    EXPECT_EQ(first.cardinality.upper, 2);
    EXPECT_EQ(first.role, "X");
    EXPECT_FALSE(first.keepAtDelete);
    EXPECT_EQ(model.classes[second.moc].name, "Y");
    EXPECT_EQ(second.name, "a");
    EXPECT_EQ(second.cardinality.upper, 3);
    EXPECT_EQ(second.role, "things");
    EXPECT_TRUE(second.keepAtDelete);
}

TEST(BiDirAssociation, HalvesDeclaredSeparately_AreJoinedWithTheFirstMentionedEndFirst) {
    const Model model =
        threeClasses()
            .add(ReferenceDraft("Y", "b").to("X").pointedBackBy("a").at({"y.yang", 2}))
            .add(ReferenceDraft("X", "c").to("Z").pointedBackBy("a"))
            .add(ReferenceDraft("X", "a").to("Y").pointedBackBy("b").at({"x.yang", 5}))
            .add(ReferenceDraft("Z", "a").to("X").pointedBackBy("c"))
            .build();
    ASSERT_EQ(model.biDirAssociations.size(), 2U);
    const BiDirAssociation& first = model.biDirAssociations[0];
    EXPECT_EQ(model.classes[first.ends[0].moc].name, "Y");
    EXPECT_EQ(first.ends[0].name, "a");
    EXPECT_EQ(first.source.file, "y.yang");
    EXPECT_EQ(model.classes[model.biDirAssociations[1].ends[0].moc].name, "X");
    EXPECT_EQ(model.biDirAssociations[1].ends[1].name, "c");
}

TEST(BiDirAssociation, AttributeWithSeveralFarClasses_PermitsThemAll) {
    const Model model = threeClasses()
                            .biDir(ReferenceDraft("X", "a").counts(0, 1), ReferenceDraft("Y", "b"))
                            .biDir(ReferenceDraft("X", "a").counts(1, 2), ReferenceDraft("Z", "c"))
                            .build();
    EXPECT_EQ(model.biDirAssociations.size(), 2U);
    EXPECT_THAT(model.classes[0].findAttribute("a")->type.targets, ElementsAre(1U, 2U));
    EXPECT_THAT(model.classes[1].findAttribute("b")->type.targets, ElementsAre(0U));
}

TEST(BiDirAssociation, ClassWithItself_TellsItsEndsApartByName) {
    const Model model =
        threeClasses().biDir(ReferenceDraft("X", "a"), ReferenceDraft("X", "b")).build();
    ASSERT_EQ(model.biDirAssociations.size(), 1U);
    const auto& ends = model.biDirAssociations[0].ends;
    EXPECT_EQ(ends[0].moc, ends[1].moc);
    EXPECT_EQ(ends[0].name, "b");
    EXPECT_EQ(ends[1].name, "a");
}

TEST(BiDirAssociation, ClassWithItselfThroughOneAttribute_IsOneAssociation) {
    const Model model =
        threeClasses()
            .biDir(ReferenceDraft("X", "a").counts(0, 2), ReferenceDraft("X", "a").counts(0, 2))
            .build();
    ASSERT_EQ(model.biDirAssociations.size(), 1U);
    EXPECT_EQ(model.biDirAssociations[0].ends[0].name, "a");
    EXPECT_EQ(model.biDirAssociations[0].ends[1].name, "a");
    EXPECT_EQ(model.biDirAssociations[0].ends[0].cardinality.upper, 2);

    const Model declaredOnce =
        threeClasses().add(ReferenceDraft("X", "a").to("X").pointedBackBy("a")).build();
    EXPECT_EQ(declaredOnce.biDirAssociations.size(), 1U);
}

TEST(BiDirAssociation, OneAttributeWithTwoOpinions_IsRefused) {
    EXPECT_THAT(
        problemsOf(threeClasses().biDir(ReferenceDraft("X", "a").counts(0, 2),
                                        ReferenceDraft("X", "a").counts(0, 3))),
        ElementsAre("Association end X.a: both ends are this one attribute, so they must have the "
                    "same cardinality, role and flags."));
}

TEST(BiDirAssociation, EqualNamesInDifferentClasses_AreRefused) {
    EXPECT_THAT(
        problemsOf(threeClasses().biDir(ReferenceDraft("X", "a"), ReferenceDraft("Y", "a"))),
        ElementsAre("Association end Y.a: both ends of an association between different "
                    "classes are named a, expected two names."));
}

TEST(BiDirAssociation, OppositeThatDoesNotExist_IsRefused) {
    const auto half = ReferenceDraft("X", "a").to("Y").at({"m.yang", 9});
    const auto problem = [&](ReferenceDraft draft, const char* opposite) {
        return problemsOf(threeClasses().add(draft.pointedBackBy(opposite)));
    };
    EXPECT_THAT(
        problem(half, "gone"),
        ElementsAre("m.yang:9: Association end X.a: names Y.gone as its opposite, but class "
                    "Y has no attribute gone."));
    EXPECT_THAT(problem(half, "t"),
                ElementsAre("m.yang:9: Association end X.a: names Y.t as its opposite, but that "
                            "attribute is a text, expected a reference."));
    EXPECT_THAT(problem(half, "b"),
                ElementsAre("m.yang:9: Association end X.a: names Y.b as its opposite, but that "
                            "attribute is not declared as an end of an association with class X."));
}

TEST(BiDirAssociation, OppositeThatDoesNotAgree_IsRefused) {
    EXPECT_THAT(
        problemsOf(threeClasses()
                       .add(ReferenceDraft("X", "a").to("Y").pointedBackBy("b"))
                       .add(ReferenceDraft("Y", "b").to("X").pointedBackBy("c"))
                       .add(ReferenceDraft("X", "c").to("Y").pointedBackBy("b"))),
        ElementsAre("Association end X.a: names Y.b as its opposite, but that one names X.c "
                    "as its opposite."));
    EXPECT_THAT(problemsOf(threeClasses()
                               .add(ReferenceDraft("X", "a").to("Y").pointedBackBy("b"))
                               .add(ReferenceDraft("Y", "b").to("X"))),
                ElementsAre("Association end X.a: names Y.b as its opposite, but that one names no "
                            "opposite at all."));
    EXPECT_THAT(problemsOf(threeClasses()
                               .add(ReferenceDraft("X", "a").to("Y").pointedBackBy("b"))
                               .add(ReferenceDraft("Y", "b").to("Z"))),
                ElementsAre("Association end X.a: names Y.b as its opposite, but that attribute is "
                            "not declared as an end of an association with class X."));
}

TEST(UniDirAssociation, SeveralClasses_AreOneAssociationEach) {
    const Model model =
        threeClasses().uniDir(ReferenceDraft("X", "a").counts(0, 2), {"Y", "Z"}).build();
    ASSERT_EQ(model.uniDirAssociations.size(), 2U);
    EXPECT_EQ(model.uniDirAssociations[0].owner, 0U);
    EXPECT_EQ(model.uniDirAssociations[0].end.moc, 1U);
    EXPECT_EQ(model.uniDirAssociations[1].end.moc, 2U);
    EXPECT_EQ(model.uniDirAssociations[1].end.name, "a");
    EXPECT_EQ(model.uniDirAssociations[1].end.role, "Z");
    EXPECT_EQ(model.uniDirAssociations[1].end.cardinality.upper, 2);
    EXPECT_THAT(model.classes[0].findAttribute("a")->type.targets, ElementsAre(1U, 2U));
}

TEST(UniDirAssociation, NoCardinality_FollowsTheAttribute) {
    ModelBuilder builder;
    builder
        .add(ClassDraft("X")
                 .topLevel()
                 .key("id")
                 .attribute(AttributeDraft::reference("one").multiplicity(1, 3))
                 .attribute(AttributeDraft::reference("two").multiplicity(1, 3)))
        .add(ClassDraft("Y").topLevel().key("id"))
        .uniDir(ReferenceDraft("X", "one"), {"Y"})
        .uniDir(ReferenceDraft("X", "two"), {"X", "Y"});
    const Model model = builder.build();
    EXPECT_EQ(model.uniDirAssociations[0].end.cardinality.lower, 1);
    EXPECT_EQ(model.uniDirAssociations[0].end.cardinality.upper, 3);
    EXPECT_EQ(model.uniDirAssociations[1].end.cardinality.lower, 0);
    EXPECT_EQ(model.uniDirAssociations[1].end.cardinality.upper, 3);
}

TEST(Association, NamesThatDoNotExist_AreRefused) {
    EXPECT_THAT(problemsOf(threeClasses().add(ReferenceDraft("Q", "a").to("Y"))),
                ElementsAre("Association end Q.a: the class Q does not exist in the model."));
    EXPECT_THAT(problemsOf(threeClasses().add(ReferenceDraft("X", "gone").to("Y"))),
                ElementsAre("Association end X.gone: class X has no attribute gone."));
    EXPECT_THAT(problemsOf(threeClasses().add(ReferenceDraft("X", "t").to("Y"))),
                ElementsAre("Association end X.t: the attribute is a text, expected a reference."));
    EXPECT_THAT(problemsOf(threeClasses().add(ReferenceDraft("X", "a").to("Q"))),
                ElementsAre("Association end X.a: the target class \"Q\" does not exist in the "
                            "model."));
    EXPECT_THAT(problemsOf(threeClasses().add(ReferenceDraft("X", "a"))),
                ElementsAre("Association end X.a: the target class \"\" does not exist in the "
                            "model."));
}

TEST(Association, DeclaredTwice_IsRefused) {
    EXPECT_THAT(problemsOf(threeClasses()
                               .uniDir(ReferenceDraft("X", "a"), {"Y"})
                               .uniDir(ReferenceDraft("X", "a").at({"m", 4}), {"Y"})),
                ElementsAre("m:4: Association end X.a: the association with class Y is declared "
                            "more than once."));
}

TEST(Association, AttributeOfBothDirections_IsRefused) {
    EXPECT_THAT(problemsOf(threeClasses()
                               .biDir(ReferenceDraft("X", "a"), ReferenceDraft("Y", "b"))
                               .uniDir(ReferenceDraft("X", "a"), {"Z"})),
                ElementsAre("Association end X.a: the attribute has an opposite for one of the "
                            "classes Y and Z and none for the other; expected the same for all."));
}

TEST(Association, ClassOutsideThoseOfTheAttribute_IsRefused) {
    const auto problems = problemsOf(ModelBuilder()
                                         .add(ClassDraft("X").topLevel().key("id").attribute(
                                             AttributeDraft::reference("a", {"X"})))
                                         .add(ClassDraft("Y").topLevel().key("id"))
                                         .uniDir(ReferenceDraft("X", "a"), {"X", "Y"}));
    EXPECT_THAT(problems, ElementsAre("Association end X.a: the class Y is none of the target "
                                      "classes of the attribute."));
}

TEST(Association, CardinalityThatIsNone_IsRefused) {
    EXPECT_THAT(problemsOf(threeClasses().uniDir(ReferenceDraft("X", "a").counts(3, 1), {"Y"})),
                testing::Contains("Association end X.a, cardinality: the upper bound of 3..1 is "
                                  "below the lower bound, expected lower <= upper."));
}

TEST(Association, CardinalitiesAgainstTheMultiplicity_AreRefused) {
    const auto problemsWith = [](Bounds attribute, Bounds end) {
        return problemsOf(
            ModelBuilder()
                .add(ClassDraft("X").topLevel().key("id").attribute(
                    AttributeDraft::reference("a").multiplicity(attribute.lower, attribute.upper)))
                .uniDir(ReferenceDraft("X", "a").counts(end.lower, end.upper), {"X"}));
    };
    EXPECT_THAT(
        problemsWith({0, 1}, {2, 3}),
        ElementsAre("Association end X.a: the attribute holds 0..1 values, its associations "
                    "together ask for 2..3: no number of values can satisfy both."));
    EXPECT_EQ(problemsWith({4, kUnbounded}, {0, 3}).size(), 1U);
    EXPECT_THAT(problemsWith({3, 5}, {0, kUnbounded}), IsEmpty());
    EXPECT_THAT(problemsWith({3, 5}, {5, 9}), IsEmpty());
}

TEST(Association, OpenBoundsOfSeveralClasses_StayOpenWhenAdded) {
    EXPECT_THAT(problemsOf(threeClasses().uniDir(ReferenceDraft("X", "a").counts(1, kUnbounded),
                                                 {"X", "Y", "Z"})),
                IsEmpty());
}

}
