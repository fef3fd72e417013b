// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SampleStore.h"
#include "store/AttributeBytes.h"

#include <gtest/gtest.h>

namespace OrvHost {
namespace {

/// An object with two attributes that are set, and changes to it.
class AttributeChangesTest : public testing::Test {
protected:
    AttributeChangesTest() {
        AttributeBytes::write(moc, bytes, index("label"), text("old"));
        AttributeBytes::write(moc, bytes, index("height"), integer(5));
    }

    AttributeIndex index(const char* name) const { return *moc.findAttributeIndex(name); }
    void change(const char* name, const AttributeValue& value) {
        AttributeBytes::writeChange(moc, changes, index(name), value);
    }
    std::optional<AttributeValue> found(const char* name) const {
        const auto values = AttributeBytes::find(bytes, changes, index(name));
        return values ? std::optional(
                            AttributeBytes::valuesOf(moc.attributes[index(name)].type, *values))
                      : std::nullopt;
    }
    std::optional<AttributeValue> merged(const char* name) const {
        std::string all = "what was there before";
        AttributeBytes::merge(bytes, changes, all);
        return AttributeBytes::read(moc, all, index(name));
    }

    const ClassDef& moc = sampleStoreModel().classes[*sampleStoreModel().findClass("Node")];
    std::string bytes;
    std::string changes;
};

TEST_F(AttributeChangesTest, WithoutChanges_TheObjectIsAsItWas) {
    EXPECT_EQ(found("label"), text("old"));
    EXPECT_EQ(found("port"), std::nullopt);
    EXPECT_EQ(merged("label"), text("old"));
    EXPECT_EQ(merged("height"), integer(5));
}

TEST_F(AttributeChangesTest, AChange_HidesTheFormerValue) {
    change("label", text("new"));
    change("port", natural(80));
    EXPECT_EQ(found("label"), text("new"));
    EXPECT_EQ(found("height"), integer(5));
    EXPECT_EQ(found("port"), natural(80));
    EXPECT_EQ(merged("label"), text("new"));
    EXPECT_EQ(merged("height"), integer(5));
    EXPECT_EQ(merged("port"), natural(80));
}

TEST_F(AttributeChangesTest, TheLastChangeCounts) {
    change("label", text("new"));
    change("label", text("newest"));
    EXPECT_EQ(found("label"), text("newest"));
    EXPECT_EQ(merged("label"), text("newest"));
}

TEST_F(AttributeChangesTest, LostValues_AreNotThoseFromBefore) {
    change("label", none(ValueKind::String));
    EXPECT_EQ(found("label"), std::nullopt);
    EXPECT_EQ(merged("label"), std::nullopt);
    EXPECT_EQ(merged("height"), integer(5));
    change("label", text("again"));
    EXPECT_EQ(found("label"), text("again"));
    EXPECT_EQ(merged("label"), text("again"));
}

}
}
