// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "model/ModelFingerprint.h"
#include "SampleStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

TEST(ModelFingerprint, Description_IsLeftOut) {
    Model other = sampleStoreModel();
    other.classes[1].description = "something";
    EXPECT_EQ(firstDifference(modelFacts(sampleStoreModel()), modelFacts(other)), "");
    EXPECT_EQ(fingerprintOf(modelFacts(sampleStoreModel())), fingerprintOf(modelFacts(other)));
}

TEST(ModelFingerprint, Differences_AreNamed) {
    const auto difference = [](const std::function<void(Model&)>& change) {
        Model other = sampleStoreModel();
        change(other);
        EXPECT_NE(fingerprintOf(modelFacts(sampleStoreModel())), fingerprintOf(modelFacts(other)));
        return firstDifference(modelFacts(sampleStoreModel()), modelFacts(other));
    };
    const auto node = [](Model& model) -> ClassDef& {
        return model.classes[*model.findClass("Node")];
    };
    const auto attribute = [&](Model& model, const char* name) -> AttributeDef& {
        return node(model).attributes[*node(model).findAttributeIndex(name)];
    };
    EXPECT_EQ(difference([&](Model& model) { node(model).name = "m.Node"; }),
              "class 'Node' is not there any more");
    EXPECT_EQ(difference([&](Model& model) {
                  node(model).attributes.push_back(node(model).attributes.back());
                  node(model).attributes.back().name = "more";
              }),
              "attribute 'more' of class 'Node' is new");
    EXPECT_THAT(
        difference([&](Model& model) { attribute(model, "mode").type.enumerators.pop_back(); }),
        AllOf(StartsWith("attribute 'mode' of class 'Node' was: "),
              HasSubstr("'red' 'green' 'blue'"),
              EndsWith("one of: 'red' 'green', by default: 'green'")));
    EXPECT_THAT(
        difference([&](Model& model) { attribute(model, "height").defaultValue = integer(9); }),
        AllOf(StartsWith("attribute 'height' of class 'Node' was: "), EndsWith("by default: '9'")));
    EXPECT_THAT(difference([&](Model& model) {
                    attribute(model, "tags").multiplicity = Bounds{0, 4};
                }),
                StartsWith("attribute 'tags' of class 'Node' was: "));
    EXPECT_THAT(difference([&](Model& model) {
                    std::swap(node(model).attributes[1], node(model).attributes[2]);
                }),
                StartsWith("attribute "));
    EXPECT_THAT(difference([&](Model& model) {
                    node(model).instances = Bounds{0, 7};
                }),
                StartsWith("class 'Node' was: "));
}

TEST(ModelFingerprint, NamesWithBlanks_AreNotMixedUp) {
    const auto fingerprintWith = [](const std::vector<std::string>& enumerators) {
        Model model = sampleStoreModel();
        ClassDef& node = model.classes[*model.findClass("Node")];
        node.attributes[*node.findAttributeIndex("mode")].type.enumerators = enumerators;
        return fingerprintOf(modelFacts(model));
    };
    EXPECT_NE(fingerprintWith({"a b", "c"}), fingerprintWith({"a", "b c"}));
}

}
}
