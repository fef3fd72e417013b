// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "PlainJsonValue.h"

#include "yang/source/Utf8.h"
#include "yang/types/TypeFacts.h"
#include "yang/types/ValueCodec.h"

#include <libyang/plugins_types.h>

#include <charconv>
#include <cstdint>
#include <limits>
#include <string_view>
#include <system_error>
#include <type_traits>

namespace OrvHost::PlainJsonValue {

namespace {

// What the library's parser says about the form of a value in JSON.
constexpr std::uint32_t kQuoted = LYD_VALHINT_STRING | LYD_VALHINT_NUM64;
constexpr std::uint32_t kNumber = LYD_VALHINT_DECNUM;

/// A value that the library's own function for the type reads, as its parser lets it do.
std::optional<Value> readByType(std::string_view text, std::uint32_t form, const ly_ctx* context,
                                const lysc_node* node, ValueKind kind) {
    const lysc_type* const type = typeOfLeaf(node);
    lyd_value stored{};
    ly_err_item* error = nullptr;
    const LY_ERR code =
        type->plugin->store(context, type, text.data(), text.size(), 0, LY_VALUE_JSON, nullptr,
                            form, node, &stored, nullptr, &error);
    ly_err_free(error);
    if (code != LY_SUCCESS && code != LY_EINCOMPLETE) {
        return std::nullopt;
    }
    std::optional<Value> value;
    if (code == LY_SUCCESS) { // or else the value depends on data elsewhere
        value = decodeValue(context, stored, kind);
    }
    type->plugin->free(context, &stored);
    return value;
}

template <class Number>
bool isWithin(Number number, const lysc_range* range) {
    if (range == nullptr) {
        return true;
    }
    for (LY_ARRAY_COUNT_TYPE at = 0; at < LY_ARRAY_COUNT(range->parts); ++at) {
        const auto& part = range->parts[at];
        if constexpr (std::is_signed_v<Number>) {
            if (part.min_64 <= number && number <= part.max_64) {
                return true;
            }
        } else if (part.min_u64 <= number && number <= part.max_u64) {
            return true;
        }
    }
    return false;
}

/// True if the type permits the text. False also if only the library can say so.
bool isPermitted(const lysc_type_str& type, std::string_view text) {
    const bool isLengthKnown = type.length == nullptr || plainPrefix(text) == text.size();
    return type.patterns == nullptr && isLengthKnown &&
           isWithin(std::uint64_t{text.size()}, type.length);
}

/// True for a name of the enumeration.
bool isEnumerator(const lysc_type_enum& type, std::string_view text) {
    for (LY_ARRAY_COUNT_TYPE at = 0; at < LY_ARRAY_COUNT(type.enums); ++at) {
        if (text == type.enums[at].name) {
            return true;
        }
    }
    return false;
}

/// A number in decimal digits, without a zero before them: that would be another number to the
/// library.
template <class Number>
std::optional<Number> wholeNumber(std::string_view text) {
    const std::string_view digits = text.substr(text.starts_with('-') ? 1 : 0);
    Number number{};
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    const bool isWhole = result.ec == std::errc() && result.ptr == end &&
                         (!digits.starts_with('0') || text.size() == 1);
    return isWhole ? std::optional(number) : std::nullopt;
}

/// The whole number, if the type permits it. Those of 64 bits are quoted in JSON, and others not.
template <class Number>
std::optional<Value> readWhole(std::string_view text, std::uint32_t form, const lysc_type* type) {
    const int bits = bitsOf(type->basetype);
    const auto number = wholeNumber<Number>(text);
    if (!number || (bits == 64) != (form == kQuoted)) {
        return std::nullopt;
    }
    using Limits = std::numeric_limits<Number>;
    const auto most = static_cast<Number>(Limits::max() >> (64 - bits));
    const auto least = static_cast<Number>(Limits::min() >> (64 - bits));
    const bool fits = least <= *number && *number <= most && isWithin(*number, rangeOf(type));
    return fits ? std::optional<Value>(*number) : std::nullopt;
}

/// The usual types, without the texts and the table of texts that the library makes for each value.
std::optional<Value> readUsual(std::string_view text, std::uint32_t form, const lysc_type* type) {
    const auto store = type->plugin->store; // a module may have brought a function of its own
    if (store == &lyplg_type_store_int) {
        return readWhole<std::int64_t>(text, form, type);
    }
    if (store == &lyplg_type_store_uint) {
        return readWhole<std::uint64_t>(text, form, type);
    }
    const bool isText =
        (store == &lyplg_type_store_string && isPermitted(*as<lysc_type_str>(type), text)) ||
        (store == &lyplg_type_store_enum && isEnumerator(*as<lysc_type_enum>(type), text));
    return form == kQuoted && isText ? std::optional<Value>(std::string(text)) : std::nullopt;
}

std::optional<Value> readWritten(std::string_view text, std::uint32_t form, const ly_ctx* context,
                                 const lysc_node* node, ValueKind kind) {
    auto value = readUsual(text, form, typeOfLeaf(node));
    return value ? value : readByType(text, form, context, node, kind);
}

}

std::optional<Value> read(JsonCursor& text, const ly_ctx* context, const lysc_node* node,
                          ValueKind kind) {
    if (text.isAtString()) {
        const auto quoted = text.string();
        return quoted ? readWritten(*quoted, kQuoted, context, node, kind) : std::nullopt;
    }
    const LY_DATA_TYPE base = typeOfLeaf(node)->basetype;
    if (base == LY_TYPE_BOOL) {
        const bool isTrue = text.takeWord("true");
        return isTrue || text.takeWord("false") ? std::optional<Value>(isTrue) : std::nullopt;
    }
    if (base == LY_TYPE_EMPTY) {
        const bool isThere = text.take('[') && text.takeWord("null") && text.take(']');
        return isThere ? std::optional<Value>(true) : std::nullopt;
    }
    const auto number = text.wholeNumber();
    return number ? readWritten(*number, kNumber, context, node, kind) : std::nullopt;
}

}
