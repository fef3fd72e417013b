// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_TYPES_TYPECHECK_H
#define ORV_HOST_YANG_TYPES_TYPECHECK_H

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost::TypeCheck {

/// Returns the reason why a text is refused, or an empty text. Owns all data that it needs; any
/// number of threads may call it at once.
using Function = std::function<std::string(const std::string& text)>;

/// Lowest and highest value of one part of a range.
using SignedPart = std::pair<std::int64_t, std::int64_t>;
using UnsignedPart = std::pair<std::uint64_t, std::uint64_t>;

Function ofInteger(std::vector<SignedPart> parts);
Function ofUnsigned(std::vector<UnsignedPart> parts);

/// The numbers of the parts count units of the last of `fractionDigits` digits after the point.
/// Without parts, everything that fits into 64 bits is accepted.
Function ofDecimal(std::vector<SignedPart> parts, int fractionDigits);

/// Counts the characters of a text, not its bytes; without parts, every length is accepted. Refuses
/// what no YANG text may contain: malformed UTF-8, and control characters except tab and line ends.
Function ofText(std::vector<UnsignedPart> lengths);

/// Accepts the name of an identity, with or without its module: "module:name".
Function ofIdentityName();

/// Accepts what one of the two accepts; the refusal is the first one's.
Function anyOf(Function one, Function other);

/// "1..4 | 7", for people.
std::string describe(const std::vector<SignedPart>& parts, int fractionDigits);
std::string describe(const std::vector<UnsignedPart>& parts);

}

#endif
