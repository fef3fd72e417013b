// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_CONDITIONALREFERENCES_H
#define ORV_HOST_MODEL_CONDITIONALREFERENCES_H

#include "Model.h"

#include <functional>
#include <string>
#include <vector>

namespace OrvHost {

/// Which conditional reference attributes of an object have values, but fewer than the attribute or
/// an association demands. One text for each, without the name of the object; empty if all is well.
/// The component counts the references of all other attributes, but of these it gets no lower bound
/// (see ModelRepository): without a value they can be as they should. `valuesOf` is asked for
/// attributes by their name. Any thread.
std::vector<std::string>
tooFewReferences(const Model& model, ClassIndex moc,
                 const std::function<AttributeValue(const std::string&)>& valuesOf);

}

#endif
