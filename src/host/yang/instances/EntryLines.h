// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_ENTRYLINES_H
#define ORV_HOST_YANG_INSTANCES_ENTRYLINES_H

#include "yang/schema/YangSchema.h"

#include <libyang/libyang.h>

#include <string_view>
#include <unordered_map>

namespace OrvHost {

/// Where the objects of a tree stand in the text that it was made from. The YANG library's trees do
/// not know it, so the text is gone through again.
///
/// It does not change; it holds addresses of the tree's nodes.
class EntryLines {
public:
    /// Knows no line.
    EntryLines() = default;
    /// \p tree is what the library made of \p text, all of it or without some entries; null if
    /// there is nothing in it. The text is used during the call only.
    EntryLines(std::string_view text, LYD_FORMAT format, const YangSchema& schema,
               const lyd_node* tree);

    /// The line, from 1, of the last key of the object that \p node belongs to; 0 if that is not
    /// known.
    int lineOf(const lyd_node* node) const;

private:
    std::unordered_map<const lyd_node*, int> mLines;
};

}

#endif
