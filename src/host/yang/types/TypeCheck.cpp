// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TypeCheck.h"

#include "yang/source/Utf8.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string_view>

namespace OrvHost::TypeCheck {
namespace {

std::string quote(const std::string& text) {
    return "\"" + text + "\"";
}

template <class Number>
std::optional<Number> parse(const std::string& text) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end) {
        return std::nullopt;
    }
    return number;
}

template <class Number>
bool isWithin(Number number, const std::vector<std::pair<Number, Number>>& parts) {
    return std::any_of(parts.begin(), parts.end(), [number](const std::pair<Number, Number>& part) {
        return part.first <= number && number <= part.second;
    });
}

/// `number` with a point before its last `fractionDigits` digits.
std::string withPoint(std::int64_t number, int fractionDigits) {
    std::string digits = std::to_string(number);
    const bool isNegative = digits.front() == '-';
    digits.erase(0, isNegative ? 1 : 0);
    const auto places = static_cast<std::size_t>(fractionDigits);
    if (places > 0) {
        digits.insert(0, digits.size() <= places ? places + 1 - digits.size() : 0, '0');
        digits.insert(digits.size() - places, ".");
        digits.erase(std::max(digits.find_last_not_of('0') + 1, digits.find('.') + 2));
    }
    return (isNegative ? "-" : "") + digits;
}

template <class Part, class ToText>
std::string join(const std::vector<Part>& parts, const ToText& toText) {
    std::string text;
    for (const Part& part : parts) {
        const std::string first = toText(part.first);
        const std::string last = toText(part.second);
        text += (text.empty() ? "" : " | ") + first + (first == last ? "" : ".." + last);
    }
    return text;
}

std::optional<std::uint64_t> countCharacters(std::string_view text) {
    std::uint64_t count = 0;
    while (!text.empty()) {
        const std::size_t plain = plainPrefix(text);
        if (plain > 0) {
            text.remove_prefix(plain);
            count += plain;
            continue;
        }
        const std::size_t length = lengthOfCharacter(text);
        if (length == 0) {
            return std::nullopt;
        }
        text.remove_prefix(length);
        ++count;
    }
    return count;
}

/// An identifier of YANG.
bool isIdentifier(std::string_view text) {
    const auto isLetter = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
    };
    const auto isInside = [&](char c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
    };
    return !text.empty() && isLetter(text.front()) &&
           std::all_of(text.begin(), text.end(), isInside);
}

std::string refuseDecimal(const std::string& text, const std::vector<SignedPart>& parts,
                          int fractionDigits) {
    const std::optional<double> number = parse<double>(text);
    if (!number || !std::isfinite(*number)) {
        return quote(text) + " is not a decimal number";
    }
    const double scaled = *number * std::pow(10, fractionDigits);
    const double rounded = std::round(scaled);
    // The type has at most 18 digits, but a double has only 15 exact ones, so more are not
    // compared.
    if (std::fabs(scaled - rounded) > 1e-6 * std::max(1.0, std::fabs(scaled) * 1e-9)) {
        return text + " has more than " + std::to_string(fractionDigits) +
               " digits after the point";
    }
    constexpr double kTooLarge = 9223372036854775808.0; // 2 to the power of 63
    const bool fits = rounded >= -kTooLarge && rounded < kTooLarge;
    if (!fits || (!parts.empty() && !isWithin(static_cast<std::int64_t>(rounded), parts))) {
        return text + " is not in the range " +
               (parts.empty() ? "of the type" : describe(parts, fractionDigits));
    }
    return "";
}

}

Function ofInteger(std::vector<SignedPart> parts) {
    return [parts = std::move(parts)](const std::string& text) -> std::string {
        const std::optional<std::int64_t> number = parse<std::int64_t>(text);
        if (!number) {
            return quote(text) + " is not a whole number";
        }
        return isWithin(*number, parts) ? "" : text + " is not in the range " + describe(parts, 0);
    };
}

Function ofUnsigned(std::vector<UnsignedPart> parts) {
    return [parts = std::move(parts)](const std::string& text) -> std::string {
        const std::optional<std::uint64_t> number = parse<std::uint64_t>(text);
        if (!number) {
            return quote(text) + " is not a whole number of 0 or more";
        }
        return isWithin(*number, parts) ? "" : text + " is not in the range " + describe(parts);
    };
}

Function ofDecimal(std::vector<SignedPart> parts, int fractionDigits) {
    return [parts = std::move(parts), fractionDigits](const std::string& text) {
        return refuseDecimal(text, parts, fractionDigits);
    };
}

Function ofText(std::vector<UnsignedPart> lengths) {
    return [lengths = std::move(lengths)](const std::string& text) -> std::string {
        const std::optional<std::uint64_t> length = countCharacters(text);
        if (!length) {
            return "the text holds a control character or is not valid UTF-8";
        }
        if (lengths.empty() || isWithin(*length, lengths)) {
            return "";
        }
        return quote(text) + " has a length of " + std::to_string(*length) + ", not of " +
               describe(lengths);
    };
}

Function ofIdentityName() {
    return [](const std::string& text) -> std::string {
        std::string_view rest = text;
        const std::size_t colon = rest.find(':');
        const bool isName =
            colon == std::string_view::npos
                ? isIdentifier(rest)
                : isIdentifier(rest.substr(0, colon)) && isIdentifier(rest.substr(colon + 1));
        return isName ? "" : quote(text) + " is not the name of an identity, \"module:name\"";
    };
}

Function anyOf(Function one, Function other) {
    return [one = std::move(one), other = std::move(other)](const std::string& text) {
        std::string refusal = one(text);
        return refusal.empty() || other(text).empty() ? std::string() : refusal;
    };
}

std::string describe(const std::vector<SignedPart>& parts, int fractionDigits) {
    return join(
        parts, [fractionDigits](std::int64_t number) { return withPoint(number, fractionDigits); });
}

std::string describe(const std::vector<UnsignedPart>& parts) {
    return join(parts, [](std::uint64_t number) {
        return number == UINT64_MAX ? std::string("max") : std::to_string(number);
    });
}

}
