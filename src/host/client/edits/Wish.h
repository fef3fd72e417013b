// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_EDITS_WISH_H
#define ORV_HOST_CLIENT_EDITS_WISH_H

#include "model/Value.h"

#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// An object as somebody wants it, with the attributes that are named.
struct WishedObject {
    std::string dn; ///< external; here and in values, steps can be Class.key=value, too
    /// References are external DNs. An attribute without values is named as empty.
    std::vector<NamedValue> attributes;
};

/// What an edit does to its objects.
enum class EditKind {
    Create,  ///< none of the objects may exist
    Set,     ///< all must exist, or be created by the same wish
    Merge,   ///< creates the objects that do not exist and sets the named attributes of all
    Replace, ///< the subtree is as the edit says: what it does not name goes, see EditPlanner
    Delete,  ///< the subtree must exist and goes
    Remove   ///< the subtree goes, if it exists
};

/// One change of a subtree.
struct Edit {
    EditKind kind = EditKind::Merge;
    /// The top of the subtree, external. Empty: the whole tree; not with Delete and Remove.
    std::string dn;
    /// At \c dn or below it, in any order. None with Delete and Remove.
    std::vector<WishedObject> objects;
};

/// What a client wants, to be planned as a whole. The order of the edits, of their objects and of
/// the attributes does not matter, with one exception: new siblings of one class are created in the
/// order in which the wish names them, and keep it.
struct Wish {
    /// What it means if a side of a bidirectional association is named with the values that it has
    /// already.
    enum class Repeated {
        /// The same as not naming it, in another order too: it follows the other side. Only what it
        /// says of objects that the wish creates counts.
        IsNoEdit,
        IsWished ///< it must come out so; if the other side wants something else, that contradicts
    };

    std::vector<Edit> edits;
    Repeated repeated = Repeated::IsNoEdit;
};

/// The wish that the subtree of \p dn (external; empty: the whole tree) is as \p objects say, for
/// saved files: what they say of associations must agree.
inline Wish wishedState(std::string dn, std::vector<WishedObject> objects) {
    return {{{EditKind::Replace, std::move(dn), std::move(objects)}}, Wish::Repeated::IsWished};
}

}

#endif
