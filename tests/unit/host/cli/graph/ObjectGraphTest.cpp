// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "cli/graph/ObjectGraph.h"
#include "cli/graph/JoinedLines.h"

#include "GraphModel.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <regex>
#include <set>
#include <string>
#include <vector>

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
        return ObjectGraph(mPicture, lines, violations, offer(most, "graph", 100000)).dot();
    }

    std::string noteOf(std::size_t most, const std::string& command = "graph",
                       std::size_t mostOnPage = 100000) const {
        const ReferenceLines lines(mClasses, mPicture, {});
        return ObjectGraph(mPicture, lines, {}, offer(most, command, mostOnPage)).foldNote();
    }

    static GraphOffer offer(std::size_t most, const std::string& command, std::size_t mostOnPage) {
        return {most, command, command + " --unfold", 300, command + " --html", mostOnPage};
    }

    /// Takes the advice on folding: keeps the named part of the picture, with all that it refers to
    /// outside, as the command would read it.
    void drawPart(const std::string& dn) {
        TreePicture part;
        part.title = dn;
        std::set<std::string> drawn;
        for (const PicturedObject& object : mPicture.objects) {
            if (object.dn == dn || object.dn.rfind(dn + ',', 0) == 0) {
                drawn.insert(object.dn);
            }
        }
        std::vector<PicturedObject> all = mPicture.objects;
        all.insert(all.end(), mPicture.outside.begin(), mPicture.outside.end());
        mPicture = {};
        for (const PicturedObject& object : all) {
            if (drawn.count(object.dn) > 0) {
                add(object.dn, object.links);
            }
        }
        std::set<std::string> known = drawn;
        for (const PicturedObject& object : mPicture.objects) {
            for (const PicturedLink& link : object.links) {
                const auto target = std::find_if(
                    all.begin(), all.end(), [&](const auto& one) { return one.dn == link.target; });
                if (known.insert(link.target).second && target != all.end()) {
                    addOutside(target->dn, target->links);
                }
            }
        }
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

TEST(LineEndTest, TheSameAttributesInAnotherOrder_HaveTheSameText) {
    LineEnd one;
    LineEnd other;
    for (const char* name : {"mast", "antennas", "unit", "antennas"}) {
        one.add(name, 1);
    }
    for (const char* name : {"unit", "antennas", "mast"}) {
        other.add(name, name == std::string("antennas") ? 2 : 1);
    }
    EXPECT_EQ(one.text(), "antennas ×2, mast, unit");
    EXPECT_EQ(other.text(), one.text());
}

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
                              HasSubstr("3 references of the attribute, for each line")));
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

// The references to masts and those to sites are two associations of one attribute.
TEST_F(ObjectGraphTest, WrongNumber_ReddensOnlyTheRowOfItsAssociation) {
    add("Site=1");
    add("Site=1,Mast=a");
    add("Site=1,Mast=b");
    add("Site=1,Antenna=1",
        {{"heard", "Site=1,Mast=a"}, {"heard", "Site=1,Mast=b"}, {"heard", "Site=1"}});
    const std::string drawn = dot();
    EXPECT_THAT(drawn,
                AllOf(HasSubstr("heard names 2 of class Mast"), HasSubstr("n3:p0 -> n1:title"),
                      HasSubstr("n3:p0 -> n2:title"), HasSubstr("n3:p1 -> n0:title")));
    const std::string row = rowOf(drawn, "Antenna=1");
    EXPECT_THAT(row, HasSubstr("PORT=\"p0\"><FONT COLOR=\"#d00000\" POINT-SIZE=\"8\">heard<"));
    EXPECT_THAT(row, HasSubstr("PORT=\"p1\"><FONT COLOR=\"#2f6f9f\" POINT-SIZE=\"8\">heard<"));
}

TEST_F(ObjectGraphTest, MessageOfAFoldedBox_NamesTheObject) {
    add("Site=1");
    addAntennas("Site=1", 5, {{"seen", "Site=1,Mast=gone"}});
    const std::string drawn = dot(3);
    EXPECT_THAT(drawn, AllOf(HasSubstr("<B>Antenna × 5</B>"),
                             HasSubstr("POINT-SIZE=\"8\">Site=1,Antenna=0: attribute seen ")));
}

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
    EXPECT_THAT(noteOf(5), Not(HasSubstr("c d")))
        << "what is below it, and what that refers to, is not known";
    EXPECT_THAT(noteOf(5), HasSubstr("'graph --unfold' draws each object"));
    addAntennas("Site=2", 300);
    EXPECT_THAT(noteOf(5),
                AllOf(Not(HasSubstr("--unfold")), HasSubstr("'graph --html' makes a page")));
}

TEST_F(ObjectGraphTest, FoldNote_NamesAPartAsItIsTyped) {
    add("Site=1");
    add("Site=1,Mast=a;$b");
    addAntennas("Site=1,Mast=a;$b", 3);
    add("Site=1,Mast=c");
    addAntennas("Site=1,Mast=c", 9);
    EXPECT_THAT(noteOf(5), HasSubstr("'graph \"Site=1,Mast=a;\\$b\"' draws that part"));
}

TEST_F(ObjectGraphTest, FoldNote_CountsOnlyWhatThatPartRefersTo) {
    add("Site=1");
    add("Site=1,Mast=a");
    addAntennas("Site=1,Mast=a", 4);
    add("Site=1,Mast=b");
    for (int number = 0; number < 9; ++number) {
        add("Site=1,Mast=b,Antenna=" + std::to_string(number),
            {{"seen", "Site=1,Mast=a"}, {"any", "Site=1,Mast=a,Antenna=1"}});
    }
    EXPECT_THAT(noteOf(5), HasSubstr("'graph Site=1,Mast=a' draws that part"))
        << "nine antennas refer to it, and are not in its picture";
}

// Of many parts, those that are larger refer to too much, and so do most of its own size.
TEST_F(ObjectGraphTest, FoldNote_FindsTheOnePartThatFits) {
    add("Site=1");
    for (int mast = 0; mast < 150; ++mast) {
        const std::string dn = "Site=1,Mast=" + std::to_string(mast);
        add(dn);
        for (int number = 0; number < 3; ++number) {
            std::vector<PicturedLink> links;
            for (int far = 0; mast != 149 && far < 3; ++far) {
                links.push_back({"any", "Site=" + std::to_string(10 * number + far)});
            }
            add(dn + ",Antenna=" + std::to_string(number), links);
        }
    }
    const std::string note = noteOf(10);
    ASSERT_THAT(note, HasSubstr("'graph Site=1,Mast=149' draws that part"));
    drawPart("Site=1,Mast=149");
    EXPECT_EQ(noteOf(10), "");
}

TEST_F(ObjectGraphTest, PartThatIsNamed_IsDrawnWithoutFolding) {
    add("Site=1");
    for (const char* mast : {"Site=1,Mast=a", "Site=1,Mast=b", "Site=1,Mast=c"}) {
        add(mast, {{"antennas", "Site=1,Antenna=gone"}});
        addAntennas(mast, 6, {{"near", "Site=1,Mast=a,Antenna=1"}, {"any", "Site=7"}});
    }
    addAntennas("Site=1,Mast=b", 1, {{"near", "Site=1"}});
    addOutside("Site=7");
    ASSERT_THAT(noteOf(9), HasSubstr("'graph Site=1,Mast=a' draws that part"));
    drawPart("Site=1,Mast=a");
    EXPECT_EQ(noteOf(9), "");
    EXPECT_NE(noteOf(8), "") << "the part has just as many boxes as the advice counted";
}

TEST_F(ObjectGraphTest, FoldNote_NamesNoPartOfOneObject) {
    add("Site=1");
    addAntennas("Site=1", 20);
    EXPECT_THAT(noteOf(5), AllOf(HasSubstr("folded"), Not(HasSubstr("draws that part"))));
}

TEST_F(ObjectGraphTest, FoldNote_OffersOnlyWhatShowsEverything) {
    add("Site=1");
    addAntennas("Site=1", 20);
    EXPECT_THAT(noteOf(5), HasSubstr("--unfold"));
    EXPECT_THAT(noteOf(5, "graph", 20), HasSubstr("'graph --html --limit 21' makes a page"));
    mPicture.objects[1].links.push_back({"any", "Site=9"});
    mPicture.unread.insert("Site=9");
    EXPECT_THAT(noteOf(5), Not(HasSubstr("--unfold")));
    mPicture.unread.clear();
    for (int number = 0; number < 301; ++number) {
        addOutside("Site=far" + std::to_string(number));
    }
    EXPECT_THAT(noteOf(5), Not(HasSubstr("--unfold")));
}

TEST_F(ObjectGraphTest, FoldNote_HasTheCommandThatWasUsed) {
    add("Site=1");
    for (const char* mast : {"Site=1,Mast=a", "Site=1,Mast=b"}) {
        add(mast);
        addAntennas(mast, 9);
    }
    EXPECT_THAT(noteOf(11, "graph --dot"), HasSubstr("'graph --dot Site=1,Mast=a' draws"));
}

TEST_F(ObjectGraphTest, RepeatedReferences_AreAllCounted) {
    add("Site=1,Mast=a", {{"antennas", "Site=1,Antenna=1"}, {"antennas", "Site=1,Antenna=1"}});
    add("Site=1,Antenna=1",
        {{"mast", "Site=1,Mast=a"}, {"any", "Site=1"}, {"any", "Site=1"}, {"any", "Site=1"}});
    add("Site=1,Antenna=2", {{"near", "Site=1,Antenna=2"}, {"near", "Site=1,Antenna=2"}});
    EXPECT_THAT(dot(), AllOf(HasSubstr("3 objects, 8 references"), HasSubstr(">antennas ×2<"),
                             HasSubstr(">mast<"), HasSubstr(">any ×3<"), HasSubstr(">near ×2 ↺<")));
}

TEST_F(ObjectGraphTest, ReferencesThatWereNotRead_AreToldInTheSummary) {
    add("Site=1,Antenna=1", {{"any", "Site=1"}, {"any", "Site=2"}, {"any", "Site=2"}});
    mPicture.unread.insert("Site=2");
    const ReferenceLines lines(mClasses, mPicture, {});
    EXPECT_EQ(pictureSummary(mPicture, lines, {}),
              "1 object, 1 reference, 0 violations; not drawn and not checked: 2 more references, "
              "to outside objects beyond the limit");
}

// Objects whose DNs end in the same way, and an error at the beginning of one.
TEST_F(ObjectGraphTest, MessagesOfBoxes_HaveWholeDns) {
    const std::string end = "-name-of-a-site-that-is-long,Mast=gone";
    add("Site=1,Antenna=1", {{"seen", "Site=a" + end}});
    add("Site=1,Antenna=2", {{"seen", "Site=b" + end}, {"seen", "Siet=b" + end}});
    const std::string drawn = std::regex_replace(dot(), std::regex("<BR ALIGN=\"LEFT\"/>"), "");
    for (const std::string& dn : {"Site=a" + end, "Site=b" + end, "Siet=b" + end}) {
        EXPECT_THAT(drawn, HasSubstr("\"8\">attribute seen names " + dn + ", "));
    }
}

TEST_F(ObjectGraphTest, NothingRead_TellsWhatIsThere) {
    mPicture.title = "/";
    mPicture.hiddenBelow = 5;
    EXPECT_THAT(dot(), HasSubstr("/: 0 objects (5 below), 0 references"));
}

TEST_F(ObjectGraphTest, Legend_TellsWhatIsInThePicture) {
    add("Site=1,Antenna=1", {{"any", "Site=1,Mast=a"}});
    EXPECT_THAT(dot(), AllOf(HasSubstr("leads from the row of an attribute"),
                             HasSubstr("no such object exists"),
                             Not(HasSubstr("outside of what is drawn")),
                             Not(HasSubstr("of all these attributes"))));
    addOutside("Site=1,Mast=a");
    mPicture.objects[0].links.push_back({"other", "Site=1,Mast=a"});
    EXPECT_THAT(dot(),
                AllOf(HasSubstr("outside of what is drawn"), Not(HasSubstr("no such object")),
                      HasSubstr("of all these attributes")));
}

TEST_F(ObjectGraphTest, Legend_TellsOfNoLinesWhereThereAreOnlyRows) {
    add("Site=1,Antenna=1", {{"near", "Site=1,Antenna=1"}});
    EXPECT_THAT(dot(), AllOf(HasSubstr("of the same box"), Not(HasSubstr("both ways<")),
                             Not(HasSubstr("leads from the row"))));
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
