// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Each step of a picture can take seconds if it has 100,000 objects, and must end when the user
// does not want it any more.

#include "GraphModel.h"
#include "cli/graph/ObjectGraph.h"
#include "cli/graph/ObjectPage.h"

#include <gmock/gmock.h>

namespace OrvHost {
namespace {

class PictureCancellationTest : public GraphTest {
protected:
    PictureCancellationTest() {
        add("Site=1");
        add("Site=1,Mast=a", {{"antennas", "Site=1,Antenna=1"}});
        add("Site=1,Antenna=1", {{"mast", "Site=1,Mast=a"}});
        mPicture.token = &mToken;
        mViolations = violationsIn(mModel, mPicture);
    }

    CancellationToken mToken;
    std::vector<InstanceProblem> mViolations;
};

TEST_F(PictureCancellationTest, Violations_AreNotLookedForAnyMore) {
    mToken.cancel();
    EXPECT_THROW(violationsIn(mModel, mPicture), CancelledError);
}

TEST_F(PictureCancellationTest, Lines_AreNotMadeAnyMore) {
    mToken.cancel();
    EXPECT_THROW(ReferenceLines(mClasses, mPicture, mViolations), CancelledError);
}

TEST_F(PictureCancellationTest, FoldedAndUnfoldedGraphs_AreNotMadeAnyMore) {
    const ReferenceLines lines(mClasses, mPicture, mViolations);
    const ObjectGraph whole(mPicture, lines, mViolations, {});
    EXPECT_THAT(whole.dot(), testing::HasSubstr("Mast"));
    mToken.cancel();
    for (const std::size_t boxes : {0U, 1U}) {
        GraphOffer offer;
        offer.boxes = boxes;
        EXPECT_THROW(ObjectGraph(mPicture, lines, mViolations, offer), CancelledError) << boxes;
    }
}

TEST_F(PictureCancellationTest, LinesBetweenBoxes_AreNotJoinedAnyMore) {
    const ReferenceLines lines(mClasses, mPicture, mViolations);
    const PictureBoxes boxes(mPicture, lines, 0);
    mToken.cancel();
    EXPECT_THROW(joinLines(mPicture, boxes, lines), CancelledError);
    EXPECT_THROW(PictureBoxes(mPicture, lines, 1), CancelledError);
}

TEST_F(PictureCancellationTest, Page_IsNotWrittenAnyMore) {
    const ReferenceLines lines(mClasses, mPicture, mViolations);
    EXPECT_THAT(objectPage(mPicture, lines, mViolations), testing::HasSubstr("Site=1,Mast=a"));
    mToken.cancel();
    EXPECT_THROW(objectPage(mPicture, lines, mViolations), CancelledError);
}

}
}
