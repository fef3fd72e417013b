// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_OUTPUT_ALIGNEDTEXT_H
#define ORV_HOST_CLI_OUTPUT_ALIGNEDTEXT_H

#include "ValueJson.h"

#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

/// An object for people: one line for each value, names and values aligned, structs nested by
/// indentation, several values one below the other. A value that is not set is shown as "-".
std::string layOut(const JsonValue& object, std::size_t indent = 0);

/// A value without its name: one line, or a line for each of several values; nothing for an empty
/// list.
std::string layOutValue(const JsonValue& value);

/// One scalar for people: texts as they are, with control characters as escapes.
std::string scalarText(const JsonValue& scalar);

/// Rows of texts as aligned columns, with a line of headings. The last column is not padded.
std::string layOutTable(const std::vector<std::string>& headings,
                        const std::vector<std::vector<std::string>>& rows);

/// Texts in columns of one width, row by row, in lines of at most \p columns where they fit. A
/// single one that does not has a line of its own.
std::string layOutColumns(const std::vector<std::string>& texts, std::size_t columns);

/// How many columns of a terminal \p text, UTF-8, takes.
std::size_t shownColumns(std::string_view text);

/// \p text, UTF-8, as it can be shown on a terminal: a control character, which it would obey, is
/// replaced by \xNN or \n, except for those in \p kept.
std::string withoutControls(std::string_view text, std::string_view kept = "\n\t");

/// \p text in lines of at most \p columns, broken at blanks. Lines that begin with a blank stay as
/// they are; others are joined to paragraphs first. Lines of a paragraph after its first one are
/// indented by \p indent.
std::string wrapped(const std::string& text, std::size_t columns, std::size_t indent = 0);

}

#endif
