// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_GRAPHLOOK_H
#define ORV_HOST_CLI_GRAPH_GRAPHLOOK_H

#include "DotText.h"

namespace OrvHost {

// The colours of lines in all pictures.
constexpr const char* kContainmentColour = "#9aa5b1";
constexpr const char* kReferenceColour = "#2f6f9f";
constexpr const char* kViolationColour = "#d00000";
constexpr const char* kOutsideColour = "#7a7a7a";

/// The look that all pictures share. Call it first: it applies to what is drawn after it.
inline void setLook(DotText& dot) {
    dot.set("graph", {{"rankdir", "LR"}, {"ranksep", "0.8"}});
    dot.set("node", {{"shape", "box"},
                     {"style", "rounded,filled"},
                     {"fillcolor", "#f4f7fa"},
                     {"color", "#56728f"},
                     {"fontname", "Helvetica"},
                     {"fontsize", "10"}});
    dot.set("edge", {{"color", kContainmentColour}, {"fontname", "Helvetica"}, {"fontsize", "8"}});
}

/// Sets the text below the picture.
inline void setCaption(DotText& dot, const std::string& text, const char* colour = "") {
    dot.set("graph", {{"label", text},
                      {"labelloc", "b"},
                      {"labeljust", "l"},
                      {"fontname", "Helvetica"},
                      {"fontsize", "10"},
                      {"fontcolor", colour}});
}

}

#endif
