// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_OBJECTGRAPH_H
#define ORV_HOST_CLI_GRAPH_OBJECTGRAPH_H

#include "DotText.h"
#include "JoinedLines.h"
#include "PictureBoxes.h"
#include "PictureCaption.h"
#include "ReferenceLines.h"
#include "TableLabel.h"
#include "TreePicture.h"
#include "audit/InstanceReport.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// What a picture may be, and the commands that show more of it.
struct GraphOffer {
    std::size_t boxes = 0;        ///< at most, if folding achieves that; 0: any number
    std::string part;             ///< draws, with a DN after it, another part
    std::string unfolded;         ///< draws the same with a box for each object
    std::size_t mostUnfolded = 0; ///< objects that can be
    std::string page;             ///< makes a page of the same
    std::size_t mostOnPage = 0;   ///< objects that it has without --limit
};

/// "4 objects, 3 references, 0 violations": of the objects of \p picture and what they refer to. It
/// also tells what was not read.
std::string pictureSummary(const TreePicture& picture, const ReferenceLines& lines,
                           const std::vector<InstanceProblem>& violations);

/// A part of the MO tree with its references as DOT text; violations of associations are red.
///
/// An object is a box with a row for each of its reference attributes that a line leads from or to.
/// An object with children, in a box with a thick border, stands in a frame with them. References
/// of one kind between the same two boxes are one line; one that leads both ways has an arrowhead
/// at each end. Large pictures are folded, see PictureBoxes. One thread.
class ObjectGraph {
public:
    /// All arguments but the offer are borrowed and must outlive the graph. Throws CancelledError,
    /// see TreePicture::token.
    ObjectGraph(const TreePicture& picture, const ReferenceLines& lines,
                const std::vector<InstanceProblem>& violations, GraphOffer offer);

    const std::string& dot() const { return mDot; }
    /// See pictureSummary.
    std::string summary() const;
    /// What was folded, and how to see more; empty: nothing.
    std::string foldNote() const;

private:
    void findWhatIsWrong();
    void makeLabels();
    void addEnds();
    std::string rowOf(std::size_t box, const LineEnd& end, std::size_t far, bool isWrong);
    bool isWrongCount(std::size_t box, const LineEnd& end, const std::string& farClass) const;
    void addMessages();
    void draw();
    void drawBox(DotText& dot, std::size_t position);
    void drawNode(DotText& dot, std::size_t position);
    PictureCaption caption() const;
    void explainBoxes(PictureCaption& caption) const;
    void explainLines(PictureCaption& caption) const;

    const TreePicture& mPicture;
    const ReferenceLines& mReferences;
    const std::vector<InstanceProblem>& mViolations;
    GraphOffer mOffer;
    PictureBoxes mBoxes;
    std::vector<JoinedLine> mLines;
    std::vector<std::vector<const InstanceProblem*>> mProblems; ///< of each box
    std::vector<bool> mIsRed;                                   ///< each box
    std::vector<std::pair<std::string, std::string>> mEnds;     ///< of each line
    std::vector<TableLabel> mLabels;                            ///< of each box
    std::string mDot;
};

}

#endif
