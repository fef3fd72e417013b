// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_NEWOBJECT_H
#define ORV_HOST_CLIENT_NEWOBJECT_H

#include "model/Model.h"

#include <string>

namespace OrvHost {

/// The place and the name of a new object.
struct NewObject {
    std::string parentDn; ///< external; empty: the top level
    std::string className;
    std::string namingAttribute;
    std::string name;
};

/// What \p dn, external, says of the object to create: its last step is Class=value or
/// Class.attribute=value, where the key's own name is the
/// naming attribute, too. Classes that \p model does not have are left to the component. Throws
/// RequestError if the step has another form.
NewObject parseNewObject(const Model& model, const std::string& dn);

/// Throws RequestError for an element at the root that no client could name afterwards.
void requireReachable(const NewObject& object);

}

#endif
