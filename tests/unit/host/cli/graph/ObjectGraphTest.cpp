// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "cli/graph/ObjectGraph.h"

#include "GraphModel.h"

#include <gmock/gmock.h>

#include <string>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class ObjectGraphTest : public GraphTest {
protected:
    std::string dot(std::size_t most = 0) const {
        const auto violations = violationsIn(mModel, mPicture);
        const ReferenceLines lines(mClasses, mPicture, violations);
        return ObjectGraph(mPicture, lines, violations, most).dot();
    }

    std::string noteOf(std::size_t most) const {
        const ReferenceLines lines(mClasses, mPicture, {});
        return ObjectGraph(mPicture, lines, {}, most).foldNote();
    }

    /// The line of DOT with the box whose title has that text.
    static std::string rowOf(const std::string& dot, const std::string& title) {
        const std::size_t at = dot.find("<B>" + title);
        if (at == std::string::npos) {
            return "no box " + title;
        }
        const std::size_t begin = dot.rfind('\n', at) + 1;
        return dot.substr(begin, dot.find('\n', at) - begin);
    }

    void addAntennas(const std::string& parent, int count, std::vector<PicturedLink> links = {}) {
        for (int number = 0; number < count; ++number) {
            add(parent + ",Antenna=" + std::to_string(number), links);
        }
    }
};

TEST_F(ObjectGraphTest, ObjectWithChildren_StandsInAFrameWithThem) {
    add("Site=1");
    add("Site=1,Antenna=x");
    mPicture.title = "/";
    EXPECT_THAT(dot(), AllOf(HasSubstr("  subgraph cluster_n0 {\n"), HasSubstr("\n    n0 [label=<"),
                             HasSubstr("<B>Site=1</B>"), HasSubstr("tooltip=\"Site=1\"]"),
                             HasSubstr("\n    n1 [label=<"), HasSubstr("<B>Antenna=x</B>"),
                             HasSubstr("tooltip=\"Site=1,Antenna=x\"]"),
                             HasSubstr("n0 -> n1 [style=\"invis\""),
                             HasSubstr("/: 2 objects, 0 references, 0 violations"),
                             HasSubstr("and its children"), Not(HasSubstr("#d00000"))));
}

TEST_F(ObjectGraphTest, ObjectWithChildren_AloneHasAThickBorder) {
    add("Site=1");
    add("Site=1,Mast=x");
    add("Site=1,Mast=x,Antenna=1");
    const std::string drawn = dot();
    const std::string thick = "BORDER=\"2\"";
    EXPECT_THAT(rowOf(drawn, "Site=1"), HasSubstr(thick));
    EXPECT_THAT(rowOf(drawn, "Mast=x"), HasSubstr(thick));
    EXPECT_THAT(rowOf(drawn, "Antenna=1"), Not(HasSubstr(thick)));
}

TEST_F(ObjectGraphTest, CutObject_TellsWhatIsBelow) {
    add("Site=1");
    mPicture.objects[0].hiddenBelow = 12;
    EXPECT_THAT(dot(), AllOf(HasSubstr("Site=1<BR ALIGN=\"LEFT\"/>(12 below)"),
                             HasSubstr(">3 objects below it are not drawn<")));
}

TEST_F(ObjectGraphTest, BothWays_IsOneLineBetweenTheRowsOfItsEnds) {
    add("Site=1,Mast=a", {{"antennas", "Site=1,Antenna=1"}});
    add("Site=1,Antenna=1", {{"mast", "Site=1,Mast=a"}});
    EXPECT_THAT(dot(), AllOf(HasSubstr("PORT=\"p0\"><FONT COLOR=\"#2f6f9f\" "
                                       "POINT-SIZE=\"8\">antennas<"),
                             HasSubstr("POINT-SIZE=\"8\">mast<"),
                             HasSubstr("n0:p0 -> n1:p0 [style=\"solid\", dir=\"both\"]"),
                             HasSubstr("2 objects, 2 references"), HasSubstr("both ways")));
}

TEST_F(ObjectGraphTest, ParallelReferences_AreOneLineWithTheirNumber) {
    add("Site=1,Mast=a");
    add("Site=1,Antenna=1",
        {{"any", "Site=1,Mast=a"}, {"any", "Site=1,Mast=b"}, {"other", "Site=1,Mast=a"}});
    addAntennas("Site=1,Mast=a", 3, {{"seen", "Site=1,Mast=b"}});
    add("Site=1,Mast=b");
    const std::string folded = dot(4);
    EXPECT_THAT(dot(), HasSubstr(">any, other<"));
    EXPECT_THAT(folded, AllOf(HasSubstr(">seen ×3<"), HasSubstr("<B>Antenna × 3</B>"),
                              HasSubstr("a line from this row stands for 3 references")));
}

TEST_F(ObjectGraphTest, Violation_IsRedWithItsMessageInTheBoxAndBelow) {
    add("Site=1,Antenna=1", {{"seen", "Site=1,Mast=gone"}});
    EXPECT_THAT(dot(),
                AllOf(HasSubstr("<B>Site=1,Mast=gone<BR ALIGN=\"LEFT\"/>is not there"),
                      HasSubstr("COLOR=\"#d00000\" BGCOLOR=\"#f4f7fa\" STYLE=\"DASHED\""),
                      HasSubstr("n0:p0 -> n1:title [style=\"dashed\", color=\"#d00000\"]"),
                      HasSubstr("<FONT COLOR=\"#d00000\" POINT-SIZE=\"8\">attribute seen names "
                                "Site=1,Mast=gone, which <BR ALIGN=\"LEFT\"/>"),
                      HasSubstr("1 violation<"), HasSubstr(">Site=1,Antenna=1: attribute seen"),
                      HasSubstr("red: a violation")));
}

TEST_F(ObjectGraphTest, WrongNumber_ReddensTheObject) {
    add("Site=1,Mast=a");
    mPicture.objects[0].references.emplace_back("antennas", AttributeValue{ValueKind::MoRef, {}});
    EXPECT_THAT(dot(), AllOf(HasSubstr("<FONT COLOR=\"#d00000\"><B>Mast=a</B>"),
                             HasSubstr(">attribute antennas names 0 of class Antenna, <BR "
                                       "ALIGN=\"LEFT\"/>expected 1..9.<")));
}

TEST_F(ObjectGraphTest, WrongNumber_ReddensTheRowAndNotItsLines) {
    add("Site=1,Antenna=1", {{"mast", "Site=1,Mast=a"}, {"mast", "Site=1,Mast=b"}});
    add("Site=1,Mast=a", {{"antennas", "Site=1,Antenna=1"}});
    add("Site=1,Mast=b", {{"antennas", "Site=1,Antenna=1"}});
    EXPECT_THAT(dot(), AllOf(HasSubstr("1 violation"),
                             HasSubstr("<FONT COLOR=\"#d00000\" POINT-SIZE=\"8\">mast<"),
                             HasSubstr("<FONT COLOR=\"#2f6f9f\" POINT-SIZE=\"8\">antennas<"),
                             HasSubstr("n0:p0 -> n1:p0 [style=\"solid\", dir=\"both\"]")));
}

TEST_F(ObjectGraphTest, MessageOfAFoldedBox_NamesTheObject) {
    add("Site=1");
    addAntennas("Site=1", 5, {{"seen", "Site=1,Mast=gone"}});
    const std::string drawn = dot(3);
    EXPECT_THAT(drawn, AllOf(HasSubstr("<B>Antenna × 5</B>"),
                             HasSubstr("POINT-SIZE=\"8\">Site=1,Antenna=0: attribute seen ")));
}

// The advice is followed: that part is drawn without folding.
TEST_F(ObjectGraphTest, FoldNote_NamesTheLargestPartThatFits) {
    add("Site=1");
    for (const char* mast : {"Site=1,Mast=a", "Site=1,Mast=b", "Site=1,Mast=c d"}) {
        add(mast);
    }
    addAntennas("Site=1,Mast=a", 9);
    addAntennas("Site=1,Mast=b", 4, {{"near", "Site=1,Mast=a,Antenna=1"}, {"near", "Site=1"}});
    addAntennas("Site=1,Mast=c d", 3, {{"near", "Site=1"}});
    EXPECT_THAT(noteOf(7), HasSubstr("To see more: 'graph Site=1,Mast=b' draws that part"));
    EXPECT_THAT(noteOf(6), HasSubstr("'graph \"Site=1,Mast=c d\"' draws that part"))
        << "what the antennas of b refer to outside has boxes, too";
    EXPECT_THAT(noteOf(5), HasSubstr("'graph \"Site=1,Mast=c d\"' draws that part"));
    mPicture.objects[3].hiddenBelow = 10;
    EXPECT_THAT(noteOf(5), Not(HasSubstr("c d")));
    EXPECT_THAT(noteOf(5), HasSubstr("--unfold draws all"));
    addAntennas("Site=2", 300);
    EXPECT_THAT(noteOf(5), AllOf(Not(HasSubstr("--unfold")), HasSubstr("--html")));
}

TEST_F(ObjectGraphTest, Legend_TellsWhatIsInThePicture) {
    add("Site=1,Antenna=1", {{"any", "Site=1,Mast=a"}});
    EXPECT_THAT(dot(), AllOf(HasSubstr("leads from the row of an attribute"),
                             HasSubstr("no such object exists"),
                             Not(HasSubstr("outside of what is drawn")),
                             Not(HasSubstr("of both attributes"))));
    addOutside("Site=1,Mast=a");
    mPicture.objects[0].links.push_back({"other", "Site=1,Mast=a"});
    EXPECT_THAT(dot(), AllOf(HasSubstr("outside of what is drawn"),
                             Not(HasSubstr("no such object")), HasSubstr("of both attributes")));
}

TEST_F(ObjectGraphTest, PlainReferenceToNothing_IsNotRed) {
    add("Site=1,Antenna=1", {{"any", "Site=1,Mast=gone"}});
    EXPECT_THAT(dot(), AllOf(HasSubstr("is not there"), HasSubstr("style=\"dotted\""),
                             Not(HasSubstr("#d00000"))));
}

TEST_F(ObjectGraphTest, ManyViolations_AreNotAllListedBelow) {
    addAntennas("Site=1", 30, {{"seen", "Site=1,Mast=gone"}});
    EXPECT_THAT(dot(), AllOf(HasSubstr("30 violations"), HasSubstr(">Site=1,Antenna=19: "),
                             Not(HasSubstr(">Site=1,Antenna=20: ")),
                             HasSubstr(">and 10 more violations<")));
}

TEST_F(ObjectGraphTest, ManyViolationsOfOneBox_AreCounted) {
    add("Site=1,Antenna=1", {{"seen", "Site=1,Mast=a"},
                             {"seen", "Site=1,Mast=b"},
                             {"seen", "Site=1,Mast=c"},
                             {"seen", "Site=1,Mast=d"},
                             {"seen", "Site=1,Mast=e"}});
    EXPECT_THAT(dot(), HasSubstr(">and 2 more violations<"));
}

TEST_F(ObjectGraphTest, TooManyBoxes_AreFoldedWithWhatIsBelowThem) {
    add("Site=1");
    for (const char* mast : {"Site=1,Mast=a", "Site=1,Mast=b", "Site=1,Mast=c"}) {
        add(mast);
        addAntennas(mast, 2, {{"near", "Site=1,Mast=a,Antenna=0"}});
    }
    const std::string folded = dot(5);
    EXPECT_THAT(folded,
                AllOf(HasSubstr("<B>Mast × 3</B>"), HasSubstr("<B>Antenna × 6</B>"),
                      HasSubstr("<B>Site=1</B>"), Not(HasSubstr("Antenna=1")),
                      HasSubstr("more than 2 objects"), HasSubstr("10 objects, 6 references"),
                      HasSubstr(">near ↺<"), HasSubstr(">near ×5 ↺<"),
                      HasSubstr("tooltip=\"3 objects, the first: Site=1,Mast=a\"")));
    EXPECT_THAT(dot(10), AllOf(HasSubstr("<B>Mast=c</B>"), Not(HasSubstr("folded"))));
}

TEST_F(ObjectGraphTest, LargestNumberThatFits_StaysUnfolded) {
    add("Site=1");
    add("Site=1,Mast=a");
    addAntennas("Site=1,Mast=a", 2);
    add("Site=1,Mast=b");
    addAntennas("Site=1,Mast=b", 5);
    EXPECT_THAT(dot(6), AllOf(HasSubstr("<B>Antenna=1</B>"), HasSubstr("<B>Antenna × 5</B>"),
                              Not(HasSubstr("Antenna=4"))));
}

TEST_F(ObjectGraphTest, NamesThatMeanSomethingToGraphviz_StayAsTheyAre) {
    const std::string name = "Site=<b>&amp; \"Höhe\\N\"\xff";
    add(name);
    EXPECT_THAT(dot(), HasSubstr("<B>Site=&lt;b&gt;&amp;amp; &quot;Höhe\\N&quot;\uFFFD</B>"));
}

}
}
