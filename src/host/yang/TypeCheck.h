// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_TYPECHECK_H
#define ORV_HOST_YANG_TYPECHECK_H

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost::TypeCheck {

/// Gives the reason why a text is refused, or an empty text. Holds all that it needs; any number
/// of threads may call it at once.
using Function = std::function<std::string(const std::string& text)>;

/// Lowest and highest value of one part of a range.
using SignedPart = std::pair<std::int64_t, std::int64_t>;
using UnsignedPart = std::pair<std::uint64_t, std::uint64_t>;

Function ofInteger(std::vector<SignedPart> parts);
Function ofUnsigned(std::vector<UnsignedPart> parts);

/// The parts are in units of the last of `fractionDigits` digits behind the point; none stands for
/// whatever fits into 64 bits.
Function ofDecimal(std::vector<SignedPart> parts, int fractionDigits);

/// The characters of a text, not its bytes, are counted; no parts stand for any length. Refuses
/// what no YANG text may hold: malformed UTF-8, and control characters but for tab and line ends.
Function ofText(std::vector<UnsignedPart> lengths);

/// "1..4 | 7", for people.
std::string describe(const std::vector<SignedPart>& parts, int fractionDigits);
std::string describe(const std::vector<UnsignedPart>& parts);

}

#endif
