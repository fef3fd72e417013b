// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "cli/graph/ReferenceLines.h"

#include "GraphModel.h"

#include <gmock/gmock.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kMast = "Site=1,Mast=a";
const std::string kFirst = "Site=1,Antenna=1";
const std::string kSecond = "Site=1,Antenna=2";

class ReferenceLinesTest : public GraphTest {
protected:
    std::vector<InstanceProblem> violations() const { return violationsIn(mModel, mPicture); }

    /// "from label to" with the mark of its kind, and "!" if there is a violation.
    std::vector<std::string> lines() const {
        std::vector<std::string> texts;
        const ReferenceLines all(mClasses, mPicture, violations());
        for (const ReferenceLine& line : all.all()) {
            const char* mark = line.kind == LineKind::BothWays
                                   ? " <-> "
                                   : (line.kind == LineKind::OneWay ? " -> " : " ... ");
            texts.push_back(
                line.from + mark + line.to + ": " + line.attribute +
                (line.back.empty() || line.back == line.attribute ? "" : " / " + line.back) +
                (line.violation.empty() ? "" : " !"));
        }
        return texts;
    }
};

TEST_F(ReferenceLinesTest, BothSides_AreOneLine) {
    add(kMast, {{"antennas", kFirst}});
    add(kFirst, {{"mast", kMast}});
    EXPECT_THAT(lines(), ElementsAre(kMast + " <-> " + kFirst + ": antennas / mast"));
    EXPECT_THAT(violations(), IsEmpty());
}

TEST_F(ReferenceLinesTest, OneSide_IsWrongAndReportedWithTheOther) {
    add(kMast, {{"antennas", kFirst}});
    add(kFirst);
    EXPECT_THAT(lines(), ElementsAre(kMast + " -> " + kFirst + ": antennas !"));
    ASSERT_EQ(violations().size(), 1U);
    EXPECT_THAT(violations()[0].text, HasSubstr("attribute mast of " + kFirst));
}

TEST_F(ReferenceLinesTest, AttributeThatIsItsOwnOpposite_IsOneLine) {
    add(kFirst, {{"near", kSecond}});
    add(kSecond, {{"near", kFirst}, {"near", kSecond}});
    EXPECT_THAT(lines(), ElementsAre(kFirst + " <-> " + kSecond + ": near",
                                     kSecond + " <-> " + kSecond + ": near"));
}

TEST_F(ReferenceLinesTest, OneWayAndPlainReferences_AreNotMissedBack) {
    add(kMast, {{"antennas", kFirst}});
    add(kFirst, {{"mast", kMast}, {"seen", kMast}, {"any", "Site=1"}});
    addOutside("Site=1");
    EXPECT_THAT(lines(),
                ElementsAre(kMast + " <-> " + kFirst + ": antennas / mast",
                            kFirst + " -> " + kMast + ": seen", kFirst + " ... Site=1: any"));
}

TEST_F(ReferenceLinesTest, DanglingReference_IsWrongIfItIsOfAnAssociation) {
    add(kFirst, {{"seen", "Site=1,Mast=gone"}, {"any", "Site=1,Mast=lost"}});
    EXPECT_THAT(lines(), ElementsAre(kFirst + " -> Site=1,Mast=gone: seen !",
                                     kFirst + " ... Site=1,Mast=lost: any"));
}

TEST_F(ReferenceLinesTest, TargetWithoutAName_IsWrong) {
    add(kFirst, {{"seen", ""}});
    EXPECT_THAT(lines(), ElementsAre(kFirst + " ... : seen !"));
}

TEST_F(ReferenceLinesTest, RepeatedReference_IsOneWrongLine) {
    add(kMast, {{"antennas", kFirst}, {"antennas", kFirst}});
    add(kFirst, {{"mast", kMast}});
    EXPECT_THAT(lines(), ElementsAre(kMast + " <-> " + kFirst + ": antennas / mast !"));
}

TEST_F(ReferenceLinesTest, ObjectsOutside_CompleteLinesButAreNotJudged) {
    add(kFirst, {{"mast", kMast}});
    addOutside(kMast, {{"antennas", kFirst}, {"antennas", "Site=1,Antenna=gone"}});
    EXPECT_THAT(lines(), ElementsAre(kFirst + " <-> " + kMast + ": mast / antennas"));
    EXPECT_THAT(violations(), IsEmpty());
}

TEST_F(ReferenceLinesTest, ObjectOutsideNamesOneInside_WithoutBeingNamedBack_IsWrong) {
    add(kFirst, {{"seen", kMast}});
    addOutside(kMast, {{"antennas", kFirst}});
    EXPECT_THAT(lines(), ElementsAre(kFirst + " -> " + kMast + ": seen",
                                     kMast + " -> " + kFirst + ": antennas !"));
}

TEST_F(ReferenceLinesTest, ObjectsNotRead_AreCountedAndNotJudged) {
    add(kFirst, {{"seen", kMast}, {"mast", kMast}});
    mPicture.unread.insert(kMast);
    EXPECT_THAT(lines(), IsEmpty());
    EXPECT_THAT(violations(), IsEmpty());
    EXPECT_EQ(ReferenceLines(mClasses, mPicture, {}).unread(), 2U);
}

TEST_F(ReferenceLinesTest, NumberOutOfBounds_IsReportedForTheObject) {
    add(kMast, {});
    mPicture.objects[0].references.emplace_back("antennas", AttributeValue{ValueKind::MoRef, {}});
    ASSERT_EQ(violations().size(), 1U);
    EXPECT_EQ(violations()[0].text,
              kMast + ": attribute antennas names 0 of class Antenna, expected 1..9.");
}

}
}
