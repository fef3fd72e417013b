// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_VALUECHECK_H
#define ORV_HOST_MODEL_VALUECHECK_H

#include "Model.h"

#include <string>

namespace OrvHost {

/// The reason why `value` cannot be the value of an attribute `def`: wrong kind, too few or too
/// many values, an unknown enumerator, a text that the type's check refuses, a struct with unknown,
/// repeated or missing members. An empty text if it can. The targets of references are not checked.
/// Any thread.
std::string whyRefused(const AttributeDef& def, const AttributeValue& value);

/// The same for one value of the type `type`; the number of values is not checked.
std::string whyRefused(const TypeDef& type, const Value& value);

}

#endif
