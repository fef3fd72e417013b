// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_CHANGESET_H
#define ORV_HOST_STORE_CHANGESET_H

#include "StoreTypes.h"
#include "model/Model.h"
#include "model/Value.h"

#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

/// One attribute whose stored values differ. Without values the attribute is unset, and a reader
/// gets its default.
struct AttributeChange {
    std::string name;
    AttributeValue before;
    AttributeValue after;
};

/// One object that a transaction has changed.
struct ObjectChange {
    enum class Kind { Deleted, Created, Changed };

    Kind kind = Kind::Changed;
    std::string dn; ///< internal
    std::string className;
    /// In the order of the class's definition, without the naming attribute. A created object has
    /// all its values in `after`, a deleted one all that it had in `before`.
    std::vector<AttributeChange> attributes;
};

/// \p before and \p after: the object's attributes, as AttributeBytes writes them.
ObjectChange describeChange(ObjectChange::Kind kind, std::string dn, const ClassDef& moc,
                            std::string_view before, std::string_view after);

/// All that one transaction has changed, as the difference between what was committed before it and
/// what it leaves. It does not matter who wrote: values that the component wrote to keep an
/// association in step are in it like those of the client. What was written and changed back is not
/// in it, nor an object that was created and deleted again.
struct ChangeSet {
    TransactionId transaction = kNoTransaction; ///< also of a commit of another host
    /// Who began the transaction, for people; empty if nobody said. Of a commit of another host its
    /// whole name: "transaction 1 of alice on a".
    std::string author;
    /// The commit; kNever while the transaction is open.
    CommitNumber number = kNever;
    /// Deleted objects first, children before their parents; then created ones, parents before
    /// their children; then changed ones, by DN. An object that was deleted and created again is in
    /// it twice.
    std::vector<ObjectChange> objects;
};

}

#endif
