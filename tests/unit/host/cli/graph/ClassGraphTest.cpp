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
using testing::ContainsRegex;
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
    EXPECT_EQ(all.associations(), 5U);
    EXPECT_THAT(all.dot(),
                AllOf(HasSubstr("<B>Site</B>"), HasSubstr("  subgraph cluster_c0 {\n"),
                      HasSubstr(">0..4 in one parent<"), HasSubstr(">antennas 1..9<"),
                      HasSubstr(">mast 0..1<"), HasSubstr(">seen 0..*<"),
                      HasSubstr(">near 0..* ↔ near 0..*<"),
                      HasSubstr("c1:p0 -> c2:p0 [style=\"solid\", dir=\"both\"]"),
                      ContainsRegex("c2:p[1-4] -> c1:title \\[style=\"dashed\"\\]"),
                      HasSubstr("3 classes, 5 associations"), HasSubstr("how many values")));
}

TEST_F(ClassGraphTest, FromAClass_DrawsWhatIsBelowAndWhatItRefersTo) {
    const ClassGraph mast = graph("Mast");
    EXPECT_EQ(mast.classes(), 1U);
    EXPECT_THAT(mast.dot(), AllOf(HasSubstr("<B>Antenna</B>"), HasSubstr("STYLE=\"DASHED\""),
                                  HasSubstr("c0:p0 -> c1:p0"), Not(HasSubstr("Site"))));
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
    EXPECT_THAT(box.dot(), HasSubstr(">contains itself<"));
}

TEST_F(ClassGraphTest, ClassWithSeveralParents_HasALineFromEach) {
    const Model model = ModelBuilder()
                            .add(ClassDraft("Hall").topLevel().key("id"))
                            .add(ClassDraft("Yard").topLevel().key("id"))
                            .add(ClassDraft("Lamp").key("id"))
                            .contain("Hall", "Lamp")
                            .contain("Yard", "Lamp")
                            .build();
    const std::vector<ClassDescription> classes{
        {"Hall", {}, {"Lamp"}, {}}, {"Yard", {}, {"Lamp"}, {}}, {"Lamp", {}, {}, {}}};
    EXPECT_THAT(ClassGraph(model, classes, "", UINT64_MAX).dot(),
                AllOf(Not(HasSubstr("subgraph")),
                      HasSubstr("c0:title -> c2:title [arrowhead=\"none\""),
                      HasSubstr("c1:title -> c2:title [arrowhead=\"none\""),
                      HasSubstr("the class at the left contains")));
}

}
}
