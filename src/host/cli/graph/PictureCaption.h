// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_PICTURECAPTION_H
#define ORV_HOST_CLI_GRAPH_PICTURECAPTION_H

#include "DotText.h"
#include "GraphLook.h"
#include "ReferenceLines.h"

#include <string>

namespace OrvHost {

/// What stands below a picture: texts, and a legend. One thread.
class PictureCaption {
public:
    /// Texts stand above the legend.
    void text(const std::string& text, const char* colour = kTextColour);
    /// What a mark in a row of a box means.
    void mark(const std::string& mark, const std::string& meaning);
    /// What a line of that kind means.
    void line(LineKind kind, const std::string& meaning);
    /// What a grey line without arrowheads means.
    void plainLine(const std::string& meaning);
    void box(const char* border, const char* fill, bool isDashed, const std::string& meaning);
    void frame(const std::string& meaning);
    /// What red means.
    void red(const std::string& meaning);

    /// Sets it below the picture. Call it after all frames: they would get it, too.
    void setIn(DotText& dot) const;

private:
    void row(const std::string& sample, const std::string& meaning);

    std::string mTexts;  ///< markup
    std::string mLegend; ///< markup
};

/// The style of a line of that kind in Graphviz's words.
const char* styleOf(LineKind kind);

}

#endif
