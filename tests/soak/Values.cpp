// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Values.h"

#include <utility>

namespace Soak {

using namespace OrvHost;

AttributeValue text(const std::string& value) {
    return {ValueKind::String, {value}};
}

AttributeValue refs(const std::vector<std::string>& dns) {
    return {ValueKind::MoRef, {dns.begin(), dns.end()}};
}

AttributeValue natural(std::uint64_t value) {
    return {ValueKind::Uint, {value}};
}

AttributeValue integer(std::int64_t value) {
    return {ValueKind::Int, {value}};
}

AttributeValue structure(StructValue::Members members) {
    return {ValueKind::Struct, {StructValue(std::move(members))}};
}

std::vector<std::string> textsOf(const ReadValue& value) {
    std::vector<std::string> texts;
    for (const ReadSlot& slot : value.slots) {
        const auto* const text = std::get_if<std::string>(&slot);
        texts.push_back(text != nullptr ? *text : "(null)");
    }
    return texts;
}

std::optional<std::int64_t> integerOf(const ReadValue& value) {
    const bool isOne = value.slots.size() == 1;
    const auto* const number = isOne ? std::get_if<std::int64_t>(value.slots.data()) : nullptr;
    return number != nullptr ? std::optional<std::int64_t>(*number) : std::nullopt;
}

}
