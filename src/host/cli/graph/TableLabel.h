// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_TABLELABEL_H
#define ORV_HOST_CLI_GRAPH_TABLELABEL_H

#include "GraphLook.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// The text of a box as a table in Graphviz's markup: a title, and rows at which lines can end.
/// Long texts are wrapped. One thread.
class TableLabel {
public:
    struct Look {
        std::string border = kBoxColour; ///< empty: neither border nor colour
        std::string fill = kFillColour;
        bool isDashed = false;
        bool isThick = false; ///< the border
    };

    explicit TableLabel(const std::string& title, const std::string& colour = kTextColour);

    /// A row in small letters.
    void note(const std::string& text, const std::string& colour);
    /// The name of the row at which lines with that text end. The same text in the same colour is
    /// one row.
    std::string port(const std::string& text, const std::string& colour);

    /// The table. The port "title" is its first row.
    std::string markup(const Look& look) const;

private:
    std::string mTitle;                                      ///< markup
    std::string mNotes;                                      ///< markup
    std::vector<std::pair<std::string, std::string>> mPorts; ///< text and colour
};

/// \p text in lines of at most \p columns letters, more than 0, and further blanks. A line ends
/// after a blank or a comma if there is one in its second half. What is not UTF-8 becomes U+FFFD,
/// and control characters are left out, except line ends.
std::vector<std::string> wrapped(const std::string& text, std::size_t columns);

/// A text in markup, wrapped, in lines that begin at the left.
std::string markupText(const std::string& text, std::size_t columns);
/// A row of a table with one cell that has that markup.
std::string markupRow(const std::string& markup, const std::string& colour, int size);

}

#endif
