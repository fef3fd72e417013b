// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DnUtil.h"

#include <cstddef>
#include <cstring>
#include <string_view>

namespace Orv {

namespace {

// The class stands before the first "=", and before the first "." of that part: a value may hold
// both characters.
std::string_view classOfStep(std::string_view step) {
    const std::string_view left = step.substr(0, step.find('='));
    return left.substr(0, left.find('.'));
}

bool isContinuation(unsigned char byte) {
    return (byte & 0xC0U) == 0x80U;
}

// Length of the sequence that a lead byte opens; 0 for a byte that opens none.
std::size_t sequenceLength(unsigned char lead) {
    if (lead < 0x80U) {
        return 1;
    }
    if (lead >= 0xC2U && lead <= 0xDFU) {
        return 2;
    }
    if (lead >= 0xE0U && lead <= 0xEFU) {
        return 3;
    }
    return lead >= 0xF0U && lead <= 0xF4U ? 4 : 0;
}

// The second byte shows overlong forms, surrogates and what lies beyond U+10FFFF.
bool secondByteFits(unsigned char lead, unsigned char second) {
    switch (lead) {
    case 0xE0U:
        return second >= 0xA0U;
    case 0xEDU:
        return second <= 0x9FU;
    case 0xF0U:
        return second >= 0x90U;
    case 0xF4U:
        return second <= 0x8FU;
    default:
        return true;
    }
}

// Length of the well-formed UTF-8 sequence at the start of `text`, 0 if there is none.
std::size_t wellFormedLength(std::string_view text) {
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const std::size_t length = sequenceLength(byte(0));
    if (length > text.size()) {
        return 0;
    }
    for (std::size_t index = 1; index < length; ++index) {
        if (!isContinuation(byte(index))) {
            return 0;
        }
    }
    return length < 2 || secondByteFits(byte(0), byte(1)) ? length : 0;
}

// C0, DEL and, as two bytes, C1.
bool isControl(std::string_view sequence) {
    const auto first = static_cast<unsigned char>(sequence.front());
    if (sequence.size() == 1) {
        return first < 0x20U || first == 0x7FU;
    }
    return first == 0xC2U && static_cast<unsigned char>(sequence[1]) < 0xA0U;
}

bool isReserved(std::string_view sequence) {
    return sequence.size() == 1 && std::strchr(",=+\"\\<>;", sequence.front()) != nullptr;
}

bool holdsPermittedCharactersOnly(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = wellFormedLength(text);
        const std::string_view sequence = text.substr(0, length);
        if (length == 0 || isControl(sequence) || isReserved(sequence)) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

}

bool DnUtil::validateMoNamingAttr(const char* value) {
    if (value == nullptr || *value == '\0') {
        return false;
    }
    const std::string_view text(value);
    return text.front() != ' ' && text.back() != ' ' && holdsPermittedCharactersOnly(text);
}

std::string DnUtil::getMocPath(const std::string& dn) {
    std::string_view rest(dn);
    // The empty text before a leading comma is not a step: popLeafClass, which takes steps from
    // the end, stops when nothing is left, and the paths of both must be equal.
    if (!rest.empty() && rest.front() == ',') {
        rest.remove_prefix(1);
    }
    std::string path;
    path.reserve(rest.size());
    for (;;) {
        const std::size_t comma = rest.find(',');
        path.append(classOfStep(rest.substr(0, comma)));
        if (comma == std::string_view::npos) {
            return path;
        }
        path.push_back(',');
        rest.remove_prefix(comma + 1);
    }
}

bool DnUtil::popLeafClass(std::string& dn, std::string& leaf) {
    if (dn.empty()) {
        return false;
    }
    const std::size_t comma = dn.rfind(',');
    const std::size_t start = comma == std::string::npos ? 0 : comma + 1;
    leaf = classOfStep(std::string_view(dn).substr(start));
    dn.resize(comma == std::string::npos ? 0 : comma);
    return true;
}

}
