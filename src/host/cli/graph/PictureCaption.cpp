// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "PictureCaption.h"

#include "TableLabel.h"

namespace OrvHost {

namespace {

constexpr std::size_t kColumns = 100;
// Graphviz widens a table to the place that it has, each column by as much. The sample is one
// column of many, so that it stays small; the meaning has all others.
constexpr const char* kMeaningSpan = " COLSPAN=\"40\" CELLPADDING=\"3\"";
constexpr const char* kSampleSize = "\" WIDTH=\"24\" HEIGHT=\"9\"";

std::string boxSample(const std::string& border, const std::string& fill, const char* style) {
    return "<TD BORDER=\"1\" COLOR=\"" + border + (fill.empty() ? "" : "\" BGCOLOR=\"" + fill) +
           "\" STYLE=\"" + style + kSampleSize + "></TD>";
}

/// A line in the middle: the border between two halves.
std::string lineSample(const std::string& colour, const char* style) {
    return "<TD CELLPADDING=\"0\"><TABLE BORDER=\"0\" CELLBORDER=\"0\" CELLSPACING=\"0\" "
           "CELLPADDING=\"0\"><TR><TD BORDER=\"1\" SIDES=\"B\" COLOR=\"" +
           colour + "\" STYLE=\"" + style +
           "\" WIDTH=\"24\" HEIGHT=\"6\"></TD></TR><TR><TD WIDTH=\"24\" "
           "HEIGHT=\"6\"></TD></TR></TABLE></TD>";
}

std::string textCell(const std::string& text, const std::string& colour,
                     const std::string& span = {}) {
    return "<TD ALIGN=\"LEFT\"" + span + "><FONT COLOR=\"" + colour + "\">" +
           markupText(text, kColumns) + "</FONT></TD>";
}

}

const char* styleOf(LineKind kind) {
    switch (kind) {
    case LineKind::BothWays:
        return "solid";
    case LineKind::OneWay:
        return "dashed";
    case LineKind::Plain:
        return "dotted";
    }
    return "";
}

void PictureCaption::text(const std::string& text, const char* colour) {
    mTexts += "<TR>" + textCell(text, colour) + "</TR>";
}

void PictureCaption::line(LineKind kind, const std::string& meaning) {
    row(lineSample(kReferenceColour, styleOf(kind)), meaning);
}

void PictureCaption::plainLine(const std::string& meaning) {
    row(lineSample(kContainmentColour, "solid"), meaning);
}

void PictureCaption::box(const char* border, const char* fill, bool isDashed,
                         const std::string& meaning) {
    row(boxSample(border, fill, isDashed ? "dashed" : "solid"), meaning);
}

void PictureCaption::frame(const std::string& meaning) {
    row(boxSample(kContainmentColour, "", "rounded"), meaning);
}

void PictureCaption::mark(const std::string& mark, const std::string& meaning) {
    row("<TD><FONT COLOR=\"" + std::string(kReferenceColour) + "\" POINT-SIZE=\"8\">" +
            markupText(mark, kColumns) + "</FONT></TD>",
        meaning);
}

void PictureCaption::red(const std::string& meaning) {
    row(lineSample(kViolationColour, "solid"), meaning);
}

void PictureCaption::row(const std::string& sample, const std::string& meaning) {
    mLegend += "<TR>" + sample + textCell(meaning, kTextColour, kMeaningSpan) + "</TR>";
}

// The legend is a table of its own: long texts would widen its samples.
void PictureCaption::setIn(DotText& dot) const {
    const std::string head =
        "<TABLE BORDER=\"0\" CELLBORDER=\"0\" CELLPADDING=\"1\" CELLSPACING=\"";
    const std::string legend = mLegend.empty() ? ""
                                               : "<TR><TD ALIGN=\"LEFT\">" + head + "0\">" +
                                                     mLegend + "</TABLE></TD></TR>";
    dot.set("graph",
            {{"label", head + "1\">" + mTexts + legend + "</TABLE>", DotText::Form::Markup},
             {"labelloc", "b"},
             {"labeljust", "l"}});
}

}
