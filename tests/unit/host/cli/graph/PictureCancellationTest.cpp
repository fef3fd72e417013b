// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Each step of a picture can take seconds if it has 100,000 objects, and must end when the user
// does not want it any more.

#include "GraphModel.h"
#include "cli/graph/ObjectGraph.h"
#include "cli/graph/ObjectPage.h"

#include <gmock/gmock.h>

#include <functional>
#include <limits>

namespace OrvHost {
namespace {

/// Counts the looks whether the work is to go on, and ends it after some of them.
struct CountingPicture : TreePicture {
    explicit CountingPicture(const TreePicture& picture) : TreePicture(picture) {}

    void throwIfCancelled() const override {
        if (looks == mostLooks) {
            throw CancelledError();
        }
        ++looks;
    }

    mutable std::size_t looks = 0;
    std::size_t mostLooks = std::numeric_limits<std::size_t>::max();
};

class PictureCancellationTest : public GraphTest {
protected:
    using Work = std::function<void(const TreePicture&)>;

    PictureCancellationTest() {
        add("Site=1");
        add("Site=1,Mast=a", {{"antennas", "Site=1,Antenna=1"}});
        add("Site=1,Antenna=1", {{"mast", "Site=1,Mast=a"}});
    }

    std::vector<InstanceProblem> violations() const { return violationsIn(mModel, mPicture); }
    ReferenceLines lines() const { return {mClasses, mPicture, violations()}; }

    /// The looks of \p work at the picture as it is, after trying that it ends at each of them.
    std::size_t looksOf(const Work& work) const {
        CountingPicture whole(mPicture);
        work(whole);
        for (std::size_t looks = 0; looks < whole.looks; ++looks) {
            CountingPicture ended(mPicture);
            ended.mostLooks = looks;
            EXPECT_THROW(work(ended), CancelledError) << "after " << looks;
        }
        return whole.looks;
    }

    /// How many more looks \p work takes for each of the things that \p addOne adds, of which it
    /// makes ten: one for each loop over such things, or less if a loop takes none.
    std::size_t looksForEach(const std::function<Work()>& work,
                             const std::function<void(int)>& addOne) {
        const std::size_t before = looksOf(work());
        for (int number = 0; number < 10; ++number) {
            addOne(number);
        }
        return (looksOf(work()) - before) / 10;
    }

    /// All steps of a picture with at most that many boxes.
    std::function<Work()> graph(std::size_t boxes) {
        return [this, boxes]() -> Work {
            return [boxes, lines = lines(), violations = violations()](const TreePicture& picture) {
                GraphOffer offer;
                offer.boxes = boxes;
                ObjectGraph(picture, lines, violations, offer);
            };
        };
    }

    std::function<Work()> page() {
        return [this]() -> Work {
            return [lines = lines(), violations = violations()](const TreePicture& picture) {
                objectPage(picture, lines, violations);
            };
        };
    }

    std::function<Work()> makingLines() {
        return [this]() -> Work {
            return [this, violations = violations()](const TreePicture& picture) {
                ReferenceLines(mClasses, picture, violations);
            };
        };
    }

    void addObject(int number) { add("Site=1,Antenna=x" + std::to_string(number)); }
    void addLink(int number) {
        addOutside("Site=far" + std::to_string(number));
        mPicture.objects[2].links.push_back({"any", "Site=far" + std::to_string(number)});
    }
    /// An object with a wrong reference, to the same object that is not there.
    void addWrong(int number) {
        add("Site=1,Antenna=w" + std::to_string(number), {{"seen", "Site=1,Mast=gone"}});
    }
};

TEST_F(PictureCancellationTest, Token_EndsTheWork) {
    CancellationToken token;
    mPicture.token = &token;
    EXPECT_NO_THROW(violations());
    token.cancel();
    EXPECT_THROW(violations(), CancelledError);
}

// Two walks of the audit, and the list of what is drawn.
TEST_F(PictureCancellationTest, Violations_LookAtEachObjectInEachLoop) {
    const auto work = [this]() -> Work {
        return [this](const TreePicture& picture) { violationsIn(mModel, picture); };
    };
    EXPECT_GE(looksForEach(work, [this](int number) { addObject(number); }), 3U);
    const std::size_t ofObject =
        looksForEach(work, [this](int number) { addObject(100 + number); });
    const std::size_t ofWrong = looksForEach(work, [this](int number) { addWrong(number); });
    EXPECT_GE(ofWrong, ofObject + 1) << "what is of others is left out";
}

// The references of objects are collected, and their lines made; problems are kept by reference.
TEST_F(PictureCancellationTest, Lines_LookAtEachObjectReferenceAndViolation) {
    EXPECT_GE(looksForEach(makingLines(), [this](int number) { addObject(number); }), 1U);
    EXPECT_GE(looksForEach(makingLines(), [this](int number) { addLink(number); }), 2U);
    EXPECT_GE(looksForEach(makingLines(), [this](int number) { addWrong(number); }), 3U);
}

// Two loops to collect the objects, two to count siblings, one each to make boxes, labels, messages
// and the text.
TEST_F(PictureCancellationTest, Graph_LooksAtEachObjectInEachLoop) {
    EXPECT_GE(looksForEach(graph(0), [this](int number) { addObject(number); }), 8U);
}

// One loop each: the objects outside, the lines between objects, their class names, siblings twice,
// boxes, joined lines, what is wrong, labels, ends, messages, boxes and lines as text.
TEST_F(PictureCancellationTest, Graph_LooksAtEachLineInEachLoop) {
    EXPECT_GE(looksForEach(graph(0), [this](int number) { addLink(number); }), 13U);
}

// For an object eight, for its line five, for the violation one.
TEST_F(PictureCancellationTest, Graph_LooksAtEachViolation) {
    EXPECT_GE(looksForEach(graph(0), [this](int number) { addWrong(number); }), 14U);
}

// Siblings that are one box take two loops to collect them, two to be counted, one or more to be
// put into boxes; the largest part takes two for the subtrees, one for the candidates, two for the
// targets.
TEST_F(PictureCancellationTest, FoldedGraph_LooksAtEachObjectInEachLoop) {
    addObject(100);
    addObject(101);
    EXPECT_GE(looksForEach(graph(3), [this](int number) { addObject(number); }), 11U);
    const auto addPart = [this](int number) {
        const std::string site = "Site=p" + std::to_string(number);
        add(site);
        add(site + ",Antenna=1");
    };
    EXPECT_GE(looksForEach(graph(3), addPart), 23U) << "parts of two objects are sorted by size";
}

TEST_F(PictureCancellationTest, Page_LooksAtEachObjectAndViolation) {
    EXPECT_GE(looksForEach(page(), [this](int number) { addObject(number); }), 1U);
    EXPECT_GE(looksForEach(page(), [this](int number) { addWrong(number); }), 2U);
}

}
}
