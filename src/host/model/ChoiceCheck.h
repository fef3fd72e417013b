// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_CHOICECHECK_H
#define ORV_HOST_MODEL_CHOICECHECK_H

#include "Model.h"

#include <functional>
#include <string>
#include <vector>

namespace OrvHost {

/// What is wrong with the choices of an object or a struct: values of two cases of one choice, a
/// case without what it requires, a mandatory choice without a case. One text for each, without the
/// name of the object; empty if all is well. `hasValue` is asked for attributes or members by their
/// name. Any thread.
std::vector<std::string> wrongChoices(const std::vector<ChoiceDef>& choices,
                                      const std::function<bool(const std::string&)>& hasValue);

/// True if the default of that attribute or member applies: it is in no case of a choice, or in one
/// that is taken, or in the default case of a choice without a case that is taken. `hasValue` as
/// above. Any thread.
bool isDefaultInUse(const std::vector<ChoiceDef>& choices, const std::string& name,
                    const std::function<bool(const std::string&)>& hasValue);

/// True if values make an attribute of that type present. Any thread.
bool isPresent(const TypeDef& type, const AttributeValue& value);

}

#endif
