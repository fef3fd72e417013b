// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "cli/graph/ClassGraph.h"

#include "GraphModel.h"
#include "model/building/ModelBuilder.h"

#include <gmock/gmock.h>

#include <cstdint>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class ClassGraphTest : public GraphTest {
protected:
    ClassGraph graph(const std::string& from = {}, std::uint64_t depth = 100) const {
        return ClassGraph(mModel, mClasses, from, depth);
    }
};

TEST_F(ClassGraphTest, WholeModel_HasEachClassAndEachAssociationOnce) {
    const ClassGraph all = graph();
    EXPECT_EQ(all.classes(), 3U);
    EXPECT_EQ(all.associations(), 3U);
    EXPECT_THAT(all.dot(),
                AllOf(HasSubstr("c0 [label=\"Site\"]"), HasSubstr("c1 [label=\"Mast\"]"),
                      HasSubstr("c0 -> c1 [arrowhead=\"none\", label=\"0..4\"]"),
                      HasSubstr("c0 -> c2 [arrowhead=\"none\"]"),
                      HasSubstr("c1 -> c2 [label=\"antennas 1..9\\nmast 0..1\", dir=\"both\""),
                      HasSubstr("c2 -> c2 [label=\"near 0..*\", dir=\"both\""),
                      HasSubstr("c2 -> c1 [label=\"seen 0..*\", style=\"dashed\""),
                      HasSubstr("3 classes, 3 associations")));
}

TEST_F(ClassGraphTest, FromAClass_DrawsWhatIsBelowAndWhatItRefersTo) {
    const ClassGraph mast = graph("Mast");
    EXPECT_EQ(mast.classes(), 1U);
    EXPECT_THAT(mast.dot(), AllOf(HasSubstr("c1 [label=\"Antenna\", style=\"dashed\""),
                                  HasSubstr("c0 -> c1 [label=\"antennas"), Not(HasSubstr("Site"))));
}

TEST_F(ClassGraphTest, Depth_CutsLevelsOff) {
    EXPECT_EQ(graph({}, 1).classes(), 1U);
    EXPECT_EQ(graph({}, 2).classes(), 3U);
    EXPECT_EQ(graph("Site", 0).classes(), 1U);
    EXPECT_EQ(graph("Site", 1).classes(), 3U);
}

TEST_F(ClassGraphTest, ClassThatContainsItself_IsDrawnOnce) {
    const Model model =
        ModelBuilder().add(ClassDraft("Box").topLevel().key("id")).contain("Box", "Box").build();
    const std::vector<ClassDescription> classes{{"Box", {}, {"Box"}, {}}};
    const ClassGraph box(model, classes, "", UINT64_MAX);
    EXPECT_EQ(box.classes(), 1U);
    EXPECT_THAT(box.dot(), HasSubstr("c0 -> c0 [arrowhead=\"none\"]"));
}

}
}
