// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_LOGCHANGE_H
#define ORV_HOST_STORE_LOGCHANGE_H

#include "ChangeSet.h"
#include "MoTree.h"
#include "model/Model.h"

#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

/// What one commit changes, by internal DNs, so that it means the same in every store that holds
/// the same objects.
struct LogChange {
    struct Object {
        std::string dn;
        std::string attributes; ///< as AttributeBytes; of a changed object: its changes
    };

    std::vector<std::string> deleted; ///< children before their parents
    std::vector<Object> created;      ///< parents before their children
    std::vector<Object> changed;      ///< by DN, each once

    /// As bytes, for the entry of a commit log.
    std::string encoded() const;
    /// Throws BytesError if \p bytes are not of that form.
    static LogChange decoded(std::string_view bytes);
};

/// The change of \p tree, which holds what was committed before. Throws BytesError if it does not
/// fit to the objects there: an object that must be there is not, or one that must not be is; one
/// is named twice; an object would lose its parent; the model does not allow one at its place.
TreeChange toTreeChange(const LogChange& change, const Model& model, const MoTree& tree);

/// What \p change does to the objects of \p tree, for watchers. Call it before the change is
/// applied, for a change that toTreeChange accepts.
std::vector<ObjectChange> describe(const LogChange& change, const Model& model, const MoTree& tree);

}

#endif
