// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "model/ChoiceCheck.h"

#include "model/ValueCheck.h"
#include "model/building/ModelBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Address: a name, or a number with a zone; and with a number, one of two kinds.
std::vector<ChoiceDef> address() {
    const ChoiceDef outer{"address",
                          {{"by-name", {"name"}, {"name"}},
                           {"by-number", {"number", "zone", "own", "lent"}, {"number"}}},
                          true,
                          {}};
    const ChoiceDef inner{
        "origin", {{"own", {"own"}, {}}, {"lent", {"lent"}, {}}}, true, outer.cases[1].attributes};
    return {outer, inner};
}

std::vector<std::string> wrong(const std::vector<std::string>& given) {
    return wrongChoices(address(), [&](const std::string& name) {
        return std::find(given.begin(), given.end(), name) != given.end();
    });
}

TEST(ChoiceCheck, OneCaseWithWhatItRequires_IsRight) {
    EXPECT_THAT(wrong({"name"}), IsEmpty());
    EXPECT_THAT(wrong({"number", "own", "zone"}), IsEmpty());
}

TEST(ChoiceCheck, ValuesOfTwoCases_AreNamed) {
    EXPECT_THAT(
        wrong({"name", "number", "own"}),
        ElementsAre("'name' and 'number' are of two cases of the choice 'address', expected "
                    "one case"));
}

TEST(ChoiceCheck, MandatoryChoiceWithoutCase_NamesTheCases) {
    EXPECT_THAT(wrong({}), ElementsAre("the choice 'address' is mandatory and no case of it has a "
                                       "value, expected one of: by-name, by-number"));
}

TEST(ChoiceCheck, CaseWithoutWhatItRequires_IsIncomplete) {
    EXPECT_THAT(wrong({"zone", "own"}),
                ElementsAre("the case 'by-number' of the choice 'address' requires 'number', which "
                            "has no value"));
}

TEST(ChoiceCheck, ChoiceInACase_CountsOnlyInThatCase) {
    EXPECT_THAT(wrong({"number"}), ElementsAre("the choice 'origin' is mandatory and no case of it "
                                               "has a value, expected one of: own, lent"));
}

TEST(ChoiceCheck, ConditionalAttribute_CanLoseItsValues) {
    const AttributeDraft mandatory = AttributeDraft::text("name").mandatory();
    AttributeDraft conditional = mandatory;
    conditional.conditional();
    const AttributeValue none{ValueKind::String, {}};
    EXPECT_NE(whyRefused(mandatory.def, none), "");
    EXPECT_EQ(whyRefused(conditional.def, none), "");
    EXPECT_TRUE(mandatory.def.isRequired());
    EXPECT_FALSE(conditional.def.isRequired());
}

TEST(ChoiceCheck, StructWithTwoCases_IsRefused) {
    AttributeDraft place =
        AttributeDraft::structure("place", {AttributeDraft::text("name").conditional(),
                                            AttributeDraft::integer("number").conditional()});
    place.def.type.choices = {
        {"address", {{"by-name", {"name"}, {}}, {"by-number", {"number"}, {}}}, false, {}}};
    const Model model =
        ModelBuilder().add(ClassDraft("A").topLevel().key("id").attribute(place)).build();
    const AttributeDef& def = *model.classes[0].findAttribute("place");
    StructValue value;
    value.members.emplace_back("name", AttributeValue{ValueKind::String, {Value("x")}});
    EXPECT_EQ(whyRefused(def.type, Value(value)), "");
    value.members.emplace_back("number", AttributeValue{ValueKind::Int, {Value(std::int64_t{1})}});
    EXPECT_EQ(whyRefused(def.type, Value(value)),
              "'name' and 'number' are of two cases of the choice 'address', expected one case");
}

TEST(ChoiceCheck, ChoiceOfWhatTheClassLacks_IsAProblemOfTheModel) {
    const auto build = [] {
        return ModelBuilder()
            .add(ClassDraft("A").topLevel().key("id").choice(
                {"address", {{"by-name", {"name"}, {}}}, false, {}}))
            .build();
    };
    EXPECT_THROW(build(), ModelError);
}

}
}
