// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ChangeSet.h"

#include "AttributeBytes.h"

#include <utility>

namespace OrvHost {

ObjectChange describeChange(ObjectChange::Kind kind, std::string dn, const ClassDef& moc,
                            std::string_view before, std::string_view after) {
    ObjectChange change{kind, std::move(dn), moc.name, {}};
    for (AttributeIndex index = 0; index < moc.attributes.size(); ++index) {
        const AttributeDef& def = moc.attributes[index];
        const AttributeValue none{def.type.kind, {}};
        AttributeValue old = AttributeBytes::read(moc, before, index).value_or(none);
        AttributeValue now = AttributeBytes::read(moc, after, index).value_or(none);
        if (!(old == now)) {
            change.attributes.push_back({def.name, std::move(old), std::move(now)});
        }
    }
    return change;
}

}
