// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_GRAPHLOOK_H
#define ORV_HOST_CLI_GRAPH_GRAPHLOOK_H

#include "DotText.h"

#include <string>

namespace OrvHost {

// The colours in all pictures.
constexpr const char* kContainmentColour = "#9aa5b1";
constexpr const char* kReferenceColour = "#2f6f9f";
constexpr const char* kViolationColour = "#d00000";
constexpr const char* kOutsideColour = "#7a7a7a";
constexpr const char* kBoxColour = "#56728f";
constexpr const char* kTextColour = "#000000";
constexpr const char* kFillColour = "#f4f7fa";
constexpr const char* kFoldedFillColour = "#e3ebd8";

/// The look that all pictures share. Call it first: it applies to what is drawn after it. No line
/// has a text of its own: Graphviz would put texts of many lines upon each other. What there is to
/// say about the end of a line stands in the box where it ends.
inline void setLook(DotText& dot) {
    dot.set("graph", {{"rankdir", "LR"},
                      {"ranksep", "0.6"},
                      {"nodesep", "0.15"},
                      {"fontname", "Helvetica"},
                      {"fontsize", "10"}});
    dot.set("node", {{"shape", "plain"}, {"fontname", "Helvetica"}, {"fontsize", "10"}});
    dot.set("edge", {{"color", kReferenceColour}, {"arrowsize", "0.7"}});
}

/// The row of a box for a line from the box to itself, which is not drawn: it would lead far out
/// and through what stands there. \p to is empty if it leads one way.
inline std::string loopText(const std::string& from, const std::string& to) {
    return to.empty() ? from + " ↺" : from + " ↔ " + to;
}

/// Opens the frame of what \p box, which is drawn next, contains.
inline void openFrameOf(DotText& dot, const std::string& box) {
    dot.openFrame(box, {{"style", "rounded"}, {"color", kContainmentColour}, {"margin", "6"}});
}

/// Puts \p box at the right of the one that its frame belongs to.
inline void placeInFrame(DotText& dot, const std::string& parent, const std::string& box) {
    dot.edge(parent, box, {{"style", "invis"}, {"weight", "0"}});
}

}

#endif
