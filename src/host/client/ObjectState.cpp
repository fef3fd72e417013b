// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ObjectState.h"

namespace OrvHost {

bool isUnsetOrDefault(const AttributeDef& def, const AttributeValue& value) {
    return value.values.empty() || (def.defaultValue && def.defaultValue->values == value.values);
}

std::vector<NamedValue> valuesToSave(const ObjectState& object, bool onlyConfig) {
    std::vector<NamedValue> values;
    for (std::size_t at = 0; at < object.values.size(); ++at) {
        const AttributeDef& def = object.moc->attributes[at];
        const AttributeValue& value = object.values[at];
        const bool isWanted = def.isWritable || !onlyConfig;
        if (!def.isGivenByName() && isWanted && !isUnsetOrDefault(def, value)) {
            values.emplace_back(def.name, value);
        }
    }
    return values;
}

}
