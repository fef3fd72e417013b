// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "client/StateComparison.h"

#include "model/building/ModelBuilder.h"

#include <gmock/gmock.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class StateComparisonTest : public testing::Test {
protected:
    static Model makeModel() {
        return ModelBuilder()
            .add(ClassDraft("Mast")
                     .topLevel()
                     .key("mastId")
                     .attribute(AttributeDraft::integer("height"))
                     .attribute(AttributeDraft::text("colour").many())
                     .attribute(AttributeDraft::structure(
                         "place", {AttributeDraft::integer("x"), AttributeDraft::integer("y")})))
            .build();
    }

    ObjectState mast(const std::string& name, std::int64_t height, std::vector<Value> colours = {},
                     std::vector<Value> places = {}) const {
        return {"Mast=" + name,
                &mModel.classes.front(),
                {{ValueKind::String, {name}},
                 {ValueKind::Int, {height}},
                 {ValueKind::String, std::move(colours)},
                 {ValueKind::Struct, std::move(places)}}};
    }

    static NamedValue member(const std::string& name, std::int64_t value) {
        return {name, {ValueKind::Int, {value}}};
    }

    static std::vector<std::string> textsOf(const std::vector<ObjectDifference>& differences) {
        std::vector<std::string> texts;
        for (const ObjectDifference& object : differences) {
            const char* const signs[] = {"-", "+", "~"};
            std::string text = signs[static_cast<int>(object.kind)] + object.dn;
            for (const AttributeDifference& attribute : object.attributes) {
                text += " " + attribute.def->name;
            }
            texts.push_back(text);
        }
        return texts;
    }

    Model mModel = makeModel();
    StateComparison mComparison;
};

TEST_F(StateComparisonTest, SameObjectsInAnotherOrder_DoNotDiffer) {
    mComparison.addBefore(mast("a", 1));
    mComparison.addBefore(mast("b", 2, {std::string("red")}));
    mComparison.addAfter(mast("b", 2, {std::string("red")}));
    mComparison.addAfter(mast("a", 1));
    EXPECT_THAT(mComparison.take(), IsEmpty());
}

TEST_F(StateComparisonTest, EachKindOfDifference_ComesInOrder) {
    mComparison.addBefore(mast("z", 1));
    mComparison.addBefore(mast("gone", 2));
    mComparison.addBefore(mast("a", 3));
    mComparison.addAfter(mast("new", 4, {std::string("red")}));
    mComparison.addAfter(mast("a", 5));
    mComparison.addAfter(mast("z", 1, {std::string("red")}));
    EXPECT_THAT(textsOf(mComparison.take()),
                ElementsAre("~Mast=z colour", "-Mast=gone height", "~Mast=a height",
                            "+Mast=new height colour"));
}

TEST_F(StateComparisonTest, ChangedValue_HasBothSides) {
    mComparison.addBefore(mast("a", 3));
    mComparison.addAfter(mast("a", 5));
    const std::vector<ObjectDifference> differences = mComparison.take();
    ASSERT_EQ(differences.size(), 1U);
    EXPECT_EQ(differences[0].attributes[0].before.values[0], Value(std::int64_t{3}));
    EXPECT_EQ(differences[0].attributes[0].after.values[0], Value(std::int64_t{5}));
}

TEST_F(StateComparisonTest, OrderOfValues_CountsAndThatOfMembersDoesNot) {
    mComparison.addBefore(mast("a", 1, {}, {StructValue({member("x", 1), member("y", 2)})}));
    mComparison.addBefore(mast("b", 1, {std::string("red"), std::string("white")}));
    mComparison.addAfter(mast("a", 1, {}, {StructValue({member("y", 2), member("x", 1)})}));
    mComparison.addAfter(mast("b", 1, {std::string("white"), std::string("red")}));
    EXPECT_THAT(textsOf(mComparison.take()), ElementsAre("~Mast=b colour"));
}

}
}
