// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_UNDOING_H
#define ORV_HOST_NETCONF_CORE_UNDOING_H

#include "client/edits/Wish.h"
#include "model/Model.h"
#include "store/ChangeSet.h"

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// What was before a row of commits: of each object that they have changed, whether it was there,
/// and the values of the attributes that they have changed. It grows with the objects, not with the
/// commits.
///
/// One thread.
class Undoing {
public:
    /// Adds a commit, which came after those that were added before.
    void add(const ChangeSet& changes);

    /// The wish that all is again as it was. Values that only the system sets are not in it: a
    /// deleted object gets back what clients can set. Without edits: nothing has changed.
    Wish wish(const Model& model) const;

    /// How many objects are not as they were, and the first of them, for people.
    std::string summary() const;

private:
    /// What became of an object, all its entries together.
    struct Fate {
        std::size_t number = 0; ///< in the order in which the objects were changed first
        std::string className;
        bool wasThere = true;
        bool isThere = true;
        std::map<std::string, AttributeValue> before;
    };

    void add(const ObjectChange& change);
    /// In the order in which the objects were changed first.
    std::vector<const std::pair<const std::string, Fate>*> inOrder() const;

    std::map<std::string, Fate> mFates; ///< by DN (internal)
    std::size_t mNext = 0;
};

}

#endif
