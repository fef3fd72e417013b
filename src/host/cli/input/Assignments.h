// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_INPUT_ASSIGNMENTS_H
#define ORV_HOST_CLI_INPUT_ASSIGNMENTS_H

#include "model/Model.h"

#include <functional>
#include <string>
#include <vector>

namespace OrvHost {

/// Finds the definition of an attribute or a parameter; null for one that the model does not know.
using FindDefinition = std::function<const AttributeDef*(const std::string& name)>;

/// Reads the words after a command that sets something. Each is either NAME=VALUE (see parseValue),
/// where a repeated name adds its value to the earlier ones; or a JSON object with several names.
/// Returns the names in their order. Throws UsageError for anything else.
std::vector<NamedValue> parseAssignments(const std::vector<std::string>& words,
                                         const FindDefinition& find);

}

#endif
