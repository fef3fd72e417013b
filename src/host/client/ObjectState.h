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

}

#endif
