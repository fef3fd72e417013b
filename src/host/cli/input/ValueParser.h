// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_INPUT_VALUEPARSER_H
#define ORV_HOST_CLI_INPUT_VALUEPARSER_H

#include "cli/output/ValueJson.h"
#include "model/Model.h"

#include <string>

namespace OrvHost {

/// The JSON of an attribute's value, as a user types it. The model decides how to read it:
///
/// - `null` is no value;
/// - what begins with `"` is JSON, and so is what begins with `{` or `[`, unless it is for a single
///   text, enumeration or reference;
/// - texts, enumerations and references are taken as they are;
/// - anything else is a number, true or false, or if it is none of these, a text.
///
/// \p def is null for an attribute that the model does not know. Throws UsageError for JSON that
/// cannot be read.
JsonValue parseValue(const std::string& text, const AttributeDef* def);

/// The value in the type that the model gives the attribute if it fits, or else in the type that
/// the JSON has: the component must refuse what does not fit. Throws UsageError for what no record
/// can hold, such as values of several types in one list.
AttributeValue toAttributeValue(const JsonValue& json, const AttributeDef* def);

}

#endif
