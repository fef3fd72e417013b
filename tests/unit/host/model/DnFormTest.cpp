// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "model/DnForm.h"

#include "model/building/ModelBuilder.h"

#include <gtest/gtest.h>

namespace {

using namespace OrvHost;

const Model& model() {
    static const Model model =
        ModelBuilder()
            .add(ClassDraft("Site").topLevel().key("id").attribute(AttributeDraft::text("label")))
            .add(ClassDraft("Route").keys(
                {AttributeDraft::text("prefix"), AttributeDraft::text("next")}))
            .contain("Site", "Site")
            .contain("Site", "Route")
            .build();
    return model;
}

std::string shortOf(const std::string& dn) {
    return shortDn(model(), dn);
}

TEST(DnForm, StepsWithTheNamingAttribute_BecomeShort) {
    EXPECT_EQ(shortOf("Site.id=1"), "Site=1");
    EXPECT_EQ(shortOf("Site.siteId=1"), "Site=1");
    EXPECT_EQ(shortOf("Site.id=1,Site=2,Site.siteId=3.5"), "Site=1,Site=2,Site=3.5");
    EXPECT_EQ(shortOf("Site=1,Route.routeId=a|b"), "Site=1,Route=a|b");
}

TEST(DnForm, OtherTexts_StayAsTheyAre) {
    for (const char* dn : {"", "Site=1", "Site=1.2", "Site.label=1", "Site.other=1", "Other.id=1",
                           "Site=1,Route.prefix=a", ".id=1", "Site.=1", "Site.id", "Site.id.id=1",
                           "Site=a.id=1", ",", "Site.label=1,", "."}) {
        EXPECT_EQ(shortOf(dn), dn);
    }
    EXPECT_EQ(shortOf("Site.id=1,"), "Site=1,");
    EXPECT_EQ(shortOf("Site.id="), "Site=");
}

TEST(DnForm, ShortDn_OfAShortText_IsThatText) {
    for (const char* dn : {"", "Site=1", "Site=1.2", "Site.label=1"}) {
        const std::string_view text = ShortDn(model(), dn);
        EXPECT_EQ(text.data(), dn);
        EXPECT_EQ(text, dn);
    }
}

TEST(DnForm, ShortDn_OfAnotherText_HasItsShortForm) {
    const ShortDn dn(model(), "Site.id=1,Route.routeId=a|b");
    const ShortDn copy = dn;
    EXPECT_EQ(std::string_view(dn), "Site=1,Route=a|b");
    EXPECT_EQ(std::string_view(copy), "Site=1,Route=a|b");
}

TEST(DnForm, References_InValuesAndStructs_BecomeShort) {
    const AttributeValue inner{ValueKind::MoRef, {std::string("Site.id=1")}};
    const AttributeValue text{ValueKind::String, {std::string("Site.id=1")}};
    AttributeValue value{ValueKind::Struct, {StructValue({{"reference", inner}, {"text", text}})}};
    shortenReferences(model(), value);
    const auto& members = std::get<StructValue>(value.values[0]).members;
    EXPECT_EQ(members[0].second.values[0], Value(std::string("Site=1")));
    EXPECT_EQ(members[1].second.values[0], Value(std::string("Site.id=1")));
}

}
