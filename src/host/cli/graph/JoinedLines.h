// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_JOINEDLINES_H
#define ORV_HOST_CLI_GRAPH_JOINEDLINES_H

#include "PictureBoxes.h"
#include "ReferenceLines.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// The attributes at one end of a line, each with how many of its references the line stands for,
/// in the order of their names, so that ends with the same attributes look the same.
struct LineEnd {
    std::vector<std::pair<std::string, std::size_t>> attributes;

    void add(const std::string& attribute, std::size_t count);
    /// Those with several references with their number: "antennas ×3, mast".
    std::string text() const;
};

/// All references of one kind between two boxes.
struct JoinedLine {
    std::size_t from; ///< position of a box
    std::size_t to;
    LineKind kind;
    bool isWrong; ///< each of them violates an association
    /// What stands at the ends. Empty at `to` unless the line leads both ways.
    LineEnd fromEnd;
    LineEnd toEnd;
};

/// \p lines from box to box, parallel ones as one. Lines that differ in kind or in being wrong, and
/// one-way lines of different directions, stay apart. Throws CancelledError, see
/// TreePicture::token.
std::vector<JoinedLine> joinLines(const TreePicture& picture, const PictureBoxes& boxes,
                                  const ReferenceLines& lines);

}

#endif
