// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_TREEPICTURE_H
#define ORV_HOST_CLI_GRAPH_TREEPICTURE_H

#include "audit/InstanceSource.h"
#include "client/CancellationToken.h"
#include "client/ReadValue.h"

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace OrvHost {

/// A value of a reference attribute.
struct PicturedLink {
    std::string attribute; ///< inside a struct: "position.nearest"
    std::string target;    ///< external DN; empty: one that clients cannot name
};

/// One object as a client reads it.
struct PicturedObject {
    std::string dn; ///< external
    std::string className;
    std::optional<std::size_t> parent;  ///< position in TreePicture::objects
    unsigned long long hiddenBelow = 0; ///< objects on all levels that are not shown
    std::vector<NamedValue> references; ///< the reference attributes of the class
    std::vector<PicturedLink> links;    ///< the same and those in structs, value by value
    std::vector<NamedReadValue> values; ///< all attributes, if they were wanted
};

/// A part of the MO tree to be drawn: what was read of it, all in one transaction. As a source for
/// an audit it shows the objects and those that they refer to.
struct TreePicture : InstanceSource {
    std::string title;
    unsigned long long hiddenBelow = 0;  ///< at the top level, if no object was read from there
    std::vector<PicturedObject> objects; ///< parents first
    /// Targets of references that are not among `objects`, without the objects below them.
    std::vector<PicturedObject> outside;
    /// Targets that were not read, because there were too many.
    std::unordered_set<std::string> unread;

    /// Ends long work on the picture, which asks it at each object and each reference; null:
    /// nothing does. Borrowed.
    const CancellationToken* token = nullptr;

    /// Throws CancelledError if the token says so. Virtual, so that a test can end the work at any
    /// of these looks.
    virtual void throwIfCancelled() const {
        if (token != nullptr) {
            token->throwIfCancelled();
        }
    }

    /// Throws CancelledError.
    void visit(const Visitor& visitor) const override;
};

}

#endif
