// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SOAK_VALUES_H
#define ORV_TESTS_SOAK_VALUES_H

#include "client/ClientErrors.h"
#include "client/ReadValue.h"
#include "model/Value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Soak {

/// The values that writers write.
OrvHost::AttributeValue text(const std::string& value);
OrvHost::AttributeValue refs(const std::vector<std::string>& dns);
OrvHost::AttributeValue natural(std::uint64_t value);
OrvHost::AttributeValue integer(std::int64_t value);
/// One struct.
OrvHost::AttributeValue structure(OrvHost::StructValue::Members members);

/// The texts or references of an answer. A null text, which no model allows, is "(null)".
std::vector<std::string> textsOf(const OrvHost::ReadValue& value);
/// The number in an answer that holds one integer.
std::optional<std::int64_t> integerOf(const OrvHost::ReadValue& value);

/// The code with which the component answered what \p call asked it.
template <class Call>
OrvReturnT codeOf(const Call& call) {
    try {
        call();
    } catch (const OrvHost::OperationError& refusal) {
        return refusal.code();
    }
    return OrvOk;
}

}

#endif
