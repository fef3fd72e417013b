// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_OUTPUT_VALUEJSON_H
#define ORV_HOST_CLI_OUTPUT_VALUEJSON_H

#include "cli/output/JsonValue.h"
#include "client/ReadValue.h"

#include <string>
#include <vector>

namespace OrvHost {

/// The value as JSON: texts, references and enumerations as strings, numbers as numbers, structs as
/// objects. An attribute that may hold several values gives an array; one that may hold only one
/// gives that value or null. A value of a type that the client does not know is an object with the
/// type code and the 8 bytes as a number.
JsonValue toJson(const ReadValue& value);
/// An object with a member for each attribute.
JsonValue toJson(const std::vector<NamedReadValue>& values);

/// The same for a value in the model's form. \p def defines it.
JsonValue toJson(const AttributeValue& value, const AttributeDef& def);

}

#endif
