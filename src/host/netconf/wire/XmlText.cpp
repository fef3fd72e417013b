// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "XmlText.h"

#include "yang/instances/XmlEntity.h"

namespace OrvHost {

std::string xmlEscaped(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        if (c == '\n' || c == '\t') {
            escaped += c; // people read messages of several lines
        } else if (const char* const entity = xmlEntity(c)) {
            escaped += entity;
        } else {
            escaped += static_cast<unsigned char>(c) < 0x20 ? '?' : c;
        }
    }
    return escaped;
}

std::string xmlElement(std::string_view name, std::string_view text) {
    std::string element = "<";
    element.append(name).append(">").append(xmlEscaped(text)).append("</").append(name);
    return element + ">";
}

}
