// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_OBJECTGRAPH_H
#define ORV_HOST_CLI_GRAPH_OBJECTGRAPH_H

#include "DotText.h"
#include "ReferenceLines.h"
#include "TreePicture.h"
#include "audit/InstanceReport.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace OrvHost {

/// A part of the MO tree with its references as DOT text; violations of associations are red.
///
/// A bidirectional association is one line with an arrowhead at each end if both sides have their
/// reference. A reference without an association is dotted. A target outside the chosen part, or
/// one that does not exist, is dashed. One thread.
class ObjectGraph {
public:
    /// All arguments are borrowed and must outlive the graph.
    ObjectGraph(const TreePicture& picture, const ReferenceLines& lines,
                const std::vector<InstanceProblem>& violations);

    const std::string& dot() const { return mDot; }

private:
    std::string draw();
    std::string caption() const;
    void drawObjects(DotText& dot);
    void drawLine(DotText& dot, const ReferenceLine& line);
    /// The node of an object; draws the object if it is not drawn yet.
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
