// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_OBJECTGRAPH_H
#define ORV_HOST_CLI_GRAPH_OBJECTGRAPH_H

#include "DotText.h"
#include "ReferenceLines.h"
#include "TreePicture.h"
#include "model/InstanceReport.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace OrvHost {

/// A part of the MO tree with its references as DOT text; what violates an association is red.
///
/// A bidirectional association is one line with a head at either end if both sides are there. A
/// reference without an association is dotted. What is referred to and stands outside of the part,
/// or nowhere, is dashed. One thread.
class ObjectGraph {
public:
    /// Everything is borrowed and outlives the graph.
    ObjectGraph(const TreePicture& picture, const ReferenceLines& lines,
                const std::vector<InstanceProblem>& violations);

    const std::string& dot() const { return mDot; }

private:
    std::string draw();
    std::string caption() const;
    void drawObjects(DotText& dot);
    void drawLine(DotText& dot, const ReferenceLine& line);
    /// The node of an object; one that is not there yet is drawn.
    std::string nodeOf(DotText& dot, const std::string& dn, bool isWrong);

    const TreePicture& mPicture;
    const ReferenceLines& mLines;
    const std::vector<InstanceProblem>& mViolations;
    std::unordered_set<std::string> mOutside; ///< those that exist
    std::unordered_map<std::string, std::string> mNodes;
    std::string mDot;
};

}

#endif
