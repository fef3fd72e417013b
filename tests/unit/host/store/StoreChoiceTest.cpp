// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SampleStore.h"
#include "model/building/ModelBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

AttributeDraft flag() {
    AttributeDraft draft = AttributeDraft::boolean("flag").conditional();
    draft.def.type.isFalseAbsent = true;
    return draft;
}

Model buildModel() {
    return ModelBuilder()
        .add(ClassDraft("Port")
                 .topLevel()
                 .key("id")
                 .attribute(AttributeDraft::text("state").mandatory().readOnly())
                 .attribute(AttributeDraft::text("name").mandatory().conditional())
                 .attribute(AttributeDraft::text("number").mandatory().conditional())
                 .attribute(AttributeDraft::text("zone").conditional())
                 .attribute(AttributeDraft::text("colour").conditional().defaultsTo(
                     Value(std::string("red"))))
                 .attribute(AttributeDraft::text("weight").conditional().defaultsTo(
                     Value(std::string("light"))))
                 .attribute(AttributeDraft::text("way").conditional().defaultsTo(
                     Value(std::string("road"))))
                 .attribute(AttributeDraft::text("rail").conditional())
                 .attribute(flag())
                 .choice({"address",
                          {{"by-name", {"name", "colour"}, {"name"}},
                           {"by-number", {"number", "zone", "weight"}, {"number"}},
                           {"by-flag", {"flag"}, {}}},
                          true,
                          {}})
                 .choice(
                     {"travel", {{"road", {"way"}, {}, true}, {"rail", {"rail"}, {}}}, false, {}}))
        .build();
}

class StoreChoiceTest : public testing::Test {
protected:
    void create(const std::vector<NamedValue>& attributes) {
        tx->create("", "Port", "id", "1", attributes);
    }
    void set(const std::string& attribute, const AttributeValue& value) {
        tx->set("Port=1", {{attribute, value}});
    }

    const Model model = buildModel();
    MoStore store{model};
    std::unique_ptr<StoreTransaction> tx = store.begin(1);
};

TEST_F(StoreChoiceTest, Create_OneCase_NeedsNeitherTheOtherNorState) {
    create({{"name", text("x")}});
    EXPECT_THAT(tx->check(), IsEmpty());
}

TEST_F(StoreChoiceTest, Create_WithoutACase_IsAViolation) {
    create({});
    EXPECT_THAT(tx->check(), ElementsAre(HasSubstr("Port=1: the choice 'address' is mandatory")));
}

TEST_F(StoreChoiceTest, Set_FromOneCaseToTheOther_IsJudgedAtTheEnd) {
    create({{"name", text("x")}});
    tx->commit();
    tx = store.begin(2);
    set("zone", text("y"));
    EXPECT_THAT(tx->check(), ElementsAre(HasSubstr("'name' and 'zone' are of two cases")));
    set("number", text("7"));
    set("name", none(ValueKind::String));
    EXPECT_THAT(tx->check(), IsEmpty());
}

TEST_F(StoreChoiceTest, Default_OfACaseThatIsNotTaken_IsNoValue) {
    create({{"name", text("x")}});
    EXPECT_TRUE(tx->get("Port=1", "weight").values.empty());
    EXPECT_EQ(tx->get("Port=1", "colour"), text("red"));
    set("number", text("7"));
    EXPECT_EQ(tx->get("Port=1", "weight"), text("light"));
}

TEST_F(StoreChoiceTest, Default_OfTheDefaultCase_AppliesUntilAnotherIsTaken) {
    create({{"name", text("x")}});
    EXPECT_EQ(tx->get("Port=1", "way"), text("road"));
    set("rail", text("r"));
    EXPECT_TRUE(tx->get("Port=1", "way").values.empty());
}

TEST_F(StoreChoiceTest, Default_InACaseOfACommittedObject_FollowsTheTransaction) {
    create({{"name", text("x")}});
    tx->commit();
    tx = store.begin(2);
    EXPECT_EQ(tx->get("Port=1", "colour"), text("red"));
    set("name", none(ValueKind::String));
    EXPECT_TRUE(tx->get("Port=1", "colour").values.empty());
    set("number", text("7"));
    EXPECT_EQ(tx->get("Port=1", "weight"), text("light"));
    set("rail", text("r"));
    EXPECT_TRUE(tx->get("Port=1", "way").values.empty());
    set("rail", none(ValueKind::String));
    EXPECT_EQ(tx->get("Port=1", "way"), text("road"));
}

TEST_F(StoreChoiceTest, FalseThatIsAbsent_TakesNoCase) {
    create({{"name", text("x")}, {"flag", {ValueKind::Bool, {Value(false)}}}});
    EXPECT_THAT(tx->check(), IsEmpty());
    set("flag", {ValueKind::Bool, {Value(true)}});
    EXPECT_THAT(tx->check(), ElementsAre(HasSubstr("'name' and 'flag' are of two cases")));
}

// The repository gives the component no lower bound for these, so the store counts them.
TEST(StoreConditionalReferences, TooFew_AreAViolation_NoneAreNot) {
    const Model model =
        ModelBuilder()
            .add(ClassDraft("Mast").topLevel().key("id"))
            .add(ClassDraft("Site").topLevel().key("id"))
            .add(ClassDraft("Port")
                     .topLevel()
                     .key("id")
                     .attribute(AttributeDraft::reference("pair").multiplicity(2, 3).conditional())
                     .attribute(AttributeDraft::reference("mixed").many().conditional()))
            .add(ReferenceDraft("Port", "pair").to("Mast").counts(0, 3))
            .add(ReferenceDraft("Port", "mixed").to("Mast").counts(1, 2))
            .add(ReferenceDraft("Port", "mixed").to("Site").counts(0, 9))
            .build();
    MoStore store(model);
    const auto tx = store.begin(1);
    tx->create("", "Port", "id", "1", {});
    EXPECT_THAT(tx->check(), IsEmpty());
    tx->set("Port=1", {{"pair", refs({"Mast=1"})}, {"mixed", refs({"Site=1"})}});
    EXPECT_THAT(tx->check(),
                ElementsAre("Port=1: attribute 'pair': 1 value, expected none at all or 2..3",
                            "Port=1: attribute 'mixed': 0 of class Mast, expected none at all or "
                            "1..2"));
    tx->set("Port=1", {{"pair", refs({"Mast=1", "Mast=2"})}, {"mixed", refs({"Mast=1"})}});
    EXPECT_THAT(tx->check(), IsEmpty());
}

}
}
