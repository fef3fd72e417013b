// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_WIRE_LARGEREPLIES_H
#define ORV_HOST_NETCONF_WIRE_LARGEREPLIES_H

#include "CText.h"
#include "OwnedTree.h"

#include <memory>

struct ly_ctx;

namespace OrvHost {

/// Makes nodes of large texts without keeping other threads from theirs.
///
/// The YANG library keeps each text of a context in one table, which nobody else can use while it
/// goes through the text: a tenth of a second for 50 MB. So large texts stand in a context of their
/// own. In that each node at the top of a module is an anyxml, whose text is printed as it is.
///
/// Immutable, any thread.
class LargeReplies {
public:
    /// For data of the modules of \p context, which is borrowed during the call. Throws
    /// std::runtime_error if that cannot be set up.
    explicit LargeReplies(const ly_ctx* context);

    /// Nodes that are printed as \p text, but for blanks between them and their order: elements in
    /// XML one after the other, each with its namespace and without other attributes or a prefix.
    /// Null if it is something else, or empty; \p text is as before then, and else null. Throws
    /// std::bad_alloc.
    OwnedTree take(CText& text) const;

private:
    struct ContextDeleter {
        void operator()(ly_ctx* context) const;
    };

    std::unique_ptr<ly_ctx, ContextDeleter> mContext;
};

}

#endif
