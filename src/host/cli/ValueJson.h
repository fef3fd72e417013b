// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_VALUEJSON_H
#define ORV_HOST_CLI_VALUEJSON_H

#include "OrvMoAttributeValue.h"
#include "model/Model.h"

#include <nlohmann/json.hpp>

#include <string>

namespace OrvHost {

using JsonValue = nlohmann::ordered_json;

/// The value in a record as JSON: texts, references and enumerations as strings, numbers as
/// numbers, structs as objects. An attribute that may hold several values gives an array; one that
/// may hold only one gives that value or null. \p def says which of these it is; if it is null (an
/// attribute that the model does not know), the number of values decides. A value of a type that
/// this client does not know is an object with the type code and the 8 bytes as a number.
///
/// Copies what it needs: \p container, which may be null, can be released afterwards.
JsonValue toJson(const OrvMoAttributeValueContainer_3* container, const AttributeDef* def);
/// The same for the records of version 1.
JsonValue toJson(const OrvMoAttributeValueContainer* container, const AttributeDef* def);

/// The document as text in one line. In texts that are not UTF-8, replacement characters stand for
/// the wrong bytes.
std::string toLine(const JsonValue& document);

}

#endif
