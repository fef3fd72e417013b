// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_OBJECTSTATE_H
#define ORV_HOST_CLIENT_OBJECTSTATE_H

#include "model/Model.h"

#include <string>
#include <vector>

namespace OrvHost {

/// An object with all its values, as a client sees them.
struct ObjectState {
    std::string dn;                ///< external
    const ClassDef* moc = nullptr; ///< of the model; borrowed
    /// In the order of moc->attributes. What is not set has its default, or no values. References
    /// are external DNs.
    std::vector<AttributeValue> values;
};

/// True if an attribute with that value holds nothing that saved data must name: no values, or its
/// default, which reads do not tell from an attribute that is not set.
bool isUnsetOrDefault(const AttributeDef& def, const AttributeValue& value);

/// The values that saved data names: without what the DN gives, and without those that are not set
/// or have their default. If a default belonged to a choice, writing it would take its case. With
/// \p onlyConfig only what clients can set.
std::vector<NamedValue> valuesToSave(const ObjectState& object, bool onlyConfig);

}

#endif
