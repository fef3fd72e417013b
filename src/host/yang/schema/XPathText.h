// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_XPATHTEXT_H
#define ORV_HOST_YANG_SCHEMA_XPATHTEXT_H

#include <cstddef>
#include <set>
#include <string>
#include <string_view>

namespace OrvHost {

/// In which directions an XPath expression can leave its context node, as its text shows.
struct XPathMoves {
    /// No path in it leads further up than this many nodes.
    std::size_t climbs = 0;
    /// It can lead up to any ancestor.
    bool climbsFar = false;
    /// It can lead anywhere: absolute paths, "//", wildcards, deref().
    bool isUnbounded = false;
    /// The names, without prefix, of nodes to which it can lead downwards.
    std::set<std::string> descends;
};

/// \p expression is one that the YANG library has accepted.
XPathMoves movesOf(std::string_view expression);

}

#endif
