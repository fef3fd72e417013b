// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_LAYOUT_H
#define ORV_HOST_CLI_LAYOUT_H

#include "ValueJson.h"

#include <string>
#include <vector>

namespace OrvHost {

/// An object for people: a line for each value, names and values aligned, structs nested by
/// indentation, several values below each other. What is not set shows as "-".
std::string layOut(const JsonValue& object, std::size_t indent = 0);

/// A value without its name: bare, or a line for each of several; nothing for an empty list.
std::string layOutValue(const JsonValue& value);

/// One scalar for people: texts as they are, with control characters as escapes.
std::string scalarText(const JsonValue& scalar);

/// Rows of texts as aligned columns, with a line of headings. The last column is not padded.
std::string layOutTable(const std::vector<std::string>& headings,
                        const std::vector<std::vector<std::string>>& rows);

}

#endif
