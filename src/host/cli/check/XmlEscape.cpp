// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "XmlEscape.h"

#include "base/JsonText.h"
#include "cli/output/JsonValue.h"
#include "yang/instances/XmlEntity.h"

namespace OrvHost {

namespace {

constexpr const char* kReplacement = "\xef\xbf\xbd";

// The same text, with replacement characters for what is not UTF-8.
std::string asUtf8(const std::string& text) {
    return JsonValue::parse(jsonText(text)).get<std::string>();
}

std::string escapedByte(char character) {
    if (character == '\t') {
        return "&#9;";
    }
    if (const char* const entity = xmlEntity(character)) {
        return entity;
    }
    const bool isControl = static_cast<unsigned char>(character) < 0x20U;
    return isControl ? std::string(kReplacement) : std::string(1, character);
}

// U+FFFE and U+FFFF are valid UTF-8, but XML forbids them.
bool isForbidden(const std::string& text, std::size_t at) {
    return text.compare(at, 2, "\xef\xbf") == 0 && at + 2 < text.size() &&
           (text[at + 2] == '\xbe' || text[at + 2] == '\xbf');
}

}

std::string escapeXml(const std::string& text) {
    const std::string valid = asUtf8(text);
    std::string result;
    for (std::size_t at = 0; at < valid.size(); ++at) {
        if (isForbidden(valid, at)) {
            result += kReplacement;
            at += 2;
        } else {
            result += escapedByte(valid[at]);
        }
    }
    return result;
}

}
