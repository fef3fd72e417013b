// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TransactionView.h"

#include <utility>

namespace OrvHost {

namespace {

TouchedObject::Kind kindOf(ObjectChange::Kind kind) {
    switch (kind) {
    case ObjectChange::Kind::Deleted:
        return TouchedObject::Kind::Deleted;
    case ObjectChange::Kind::Created:
        return TouchedObject::Kind::Created;
    default:
        return TouchedObject::Kind::Changed;
    }
}

}

std::vector<std::string> TransactionView::namesOf(const std::string& parentDn,
                                                  const std::string& className) const {
    std::vector<std::string> names;
    ChildCursor cursor = mTransaction.children(parentDn, className);
    for (std::string name; mTransaction.next(cursor, name);) {
        names.push_back(name);
    }
    return names;
}

std::vector<TouchedObject> touchedBy(const StoreTransaction& transaction) {
    std::vector<TouchedObject> touched;
    for (ObjectChange& change : transaction.changes().objects) {
        TouchedObject& object = touched.emplace_back();
        object.dn = std::move(change.dn);
        object.kind = kindOf(change.kind);
        for (AttributeChange& attribute : change.attributes) {
            object.attributes.push_back(std::move(attribute.name));
        }
    }
    return touched;
}

}
