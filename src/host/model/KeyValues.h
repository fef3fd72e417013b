// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_KEYVALUES_H
#define ORV_HOST_MODEL_KEYVALUES_H

#include "Model.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// Objects of a class with several keys are named by all key values together, in the order of the
/// keys and with "|" between them: `bgp|main`. Inside a key value, what cannot be in a naming
/// value,
/// "|" and "%" are written as "%" and two hexadecimal digits for each byte, and so is a space at
/// the beginning or the end of a key value. So any key values have exactly one naming value, and a
/// naming value has exactly one list of key values.

namespace OrvHost {

/// The naming value of the object with these keys.
std::string joinKeys(const std::vector<std::string>& keys);

/// The key values in a naming value. Nothing if there are not \p count of them, or if it is not
/// what joinKeys writes for them.
std::optional<std::vector<std::string>> splitKeys(std::string_view name, std::size_t count);

/// Why \p name cannot name an object with these keys, which are in order; empty if it can. The
/// text says what was expected.
std::string whyNoKeys(const std::vector<AttributeDef>& keys, const std::string& name);

}

#endif
