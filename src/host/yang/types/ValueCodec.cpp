// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ValueCodec.h"

#include "yang/types/TypeCheck.h"
#include "yang/types/TypeFacts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace OrvHost {
namespace {

/// For a value of a union, the value of its member.
const lyd_value& effective(const lyd_value& value) {
    const lyd_value* inner = &value;
    while (inner->realtype->basetype == LY_TYPE_UNION) {
        inner = &inner->subvalue->value;
    }
    return *inner;
}

std::int64_t readSigned(const lyd_value& value) {
    switch (value.realtype->basetype) {
    case LY_TYPE_INT8:
        return value.int8;
    case LY_TYPE_INT16:
        return value.int16;
    case LY_TYPE_INT32:
        return value.int32;
    default:
        return value.int64;
    }
}

std::uint64_t readUnsigned(const lyd_value& value) {
    switch (value.realtype->basetype) {
    case LY_TYPE_UINT8:
        return value.uint8;
    case LY_TYPE_UINT16:
        return value.uint16;
    case LY_TYPE_UINT32:
        return value.uint32;
    default:
        return value.uint64;
    }
}

double readDecimal(const lyd_value& value) {
    const auto* type = reinterpret_cast<const lysc_type_dec*>(value.realtype);
    return static_cast<double>(value.dec64) / std::pow(10, type->fraction_digits);
}

/// The number with a point and at most so many digits behind it: the shortest text that reads back
/// as the same number. At the bounds of decimal64 a number can be a little beyond them.
std::string decimalText(double number, int fractionDigits) {
    const double units = number * std::pow(10, fractionDigits);
    constexpr double kBeyond = 9223372036854775808.0; // 2 to the power of 63
    if (units >= kBeyond || units <= -kBeyond) {
        const std::int64_t bound = units > 0 ? INT64_MAX : INT64_MIN;
        return TypeCheck::describe({{bound, bound}}, fractionDigits);
    }
    std::array<char, 64> buffer{};
    char* const end = buffer.data() + buffer.size();
    auto result = std::to_chars(buffer.data(), end, number, std::chars_format::fixed);
    const char* const point = std::find(buffer.data(), result.ptr, '.');
    if (result.ec != std::errc() || result.ptr - point > fractionDigits + 1) {
        result =
            std::to_chars(buffer.data(), end, number, std::chars_format::fixed, fractionDigits);
    }
    std::string text(buffer.data(), result.ptr);
    if (text.find('.') == std::string::npos) {
        return text + ".0";
    }
    // The canonical form has no unnecessary zeros, but at least one digit after the point.
    text.erase(std::max(text.find_last_not_of('0') + 1, text.find('.') + 2));
    return text;
}

EncodedValue::Form formOf(LY_DATA_TYPE base) {
    switch (base) {
    case LY_TYPE_BOOL:
    case LY_TYPE_INT8:
    case LY_TYPE_INT16:
    case LY_TYPE_INT32:
    case LY_TYPE_UINT8:
    case LY_TYPE_UINT16:
    case LY_TYPE_UINT32:
        return EncodedValue::Form::Bare;
    case LY_TYPE_EMPTY:
        return EncodedValue::Form::Empty;
    default:
        return EncodedValue::Form::Quoted; // numbers of 64 bits do not fit into a JSON number
    }
}

/// The type that decides the form of a value.
const lysc_type* formingType(const lysc_node* node, const std::string& text,
                             const YangContext& context) {
    const lysc_type* type = followLeafrefs(typeOfLeaf(node));
    if (type->basetype != LY_TYPE_UNION) {
        return type;
    }
    const lysc_type* member = context.typeOf(node, text);
    return member != nullptr ? followLeafrefs(member) : type;
}

}

Value decodeValue(const ly_ctx* context, const lyd_value& value, ValueKind kind) {
    const lyd_value& inner = effective(value);
    switch (kind) {
    case ValueKind::Bool:
        return inner.realtype->basetype == LY_TYPE_EMPTY || inner.boolean != 0;
    case ValueKind::Int:
        return readSigned(inner);
    case ValueKind::Uint:
        return readUnsigned(inner);
    case ValueKind::Double:
        return readDecimal(inner);
    default:
        return std::string(lyd_value_get_canonical(context, &value));
    }
}

EncodedValue encodeValue(const Value& value, const lysc_node* node, const YangContext& context) {
    const lysc_type* declared = followLeafrefs(typeOfLeaf(node));
    EncodedValue encoded;
    if (const auto* number = std::get_if<double>(&value); number != nullptr) {
        const bool isDecimal = declared->basetype == LY_TYPE_DEC64;
        encoded.text =
            isDecimal
                ? decimalText(*number,
                              reinterpret_cast<const lysc_type_dec*>(declared)->fraction_digits)
                : toText(value);
    } else {
        encoded.text = toText(value);
    }
    const lysc_type* type = formingType(node, encoded.text, context);
    encoded.form = formOf(type->basetype);
    encoded.isIdentity = type->basetype == LY_TYPE_IDENT;
    encoded.isPath = type->basetype == LY_TYPE_INST;
    return encoded;
}

}
