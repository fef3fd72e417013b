// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Show.h"

#include "Values.h"

#include <bit>

namespace OrvRecord {

namespace {

void appendText(const char* from, std::string& text) {
    text += from != nullptr ? quoted(from) : "null";
}

void appendContainer(const OrvMoAttributeValueContainer_3& container, std::string& text);

void appendStruct(const OrvMoStructMember_3* member, std::string& text) {
    text += '{';
    for (const char* separator = ""; member != nullptr; member = member->next, separator = ", ") {
        text += separator;
        appendText(member->name, text);
        text += ": ";
        if (member->value != nullptr) {
            appendContainer(*member->value, text);
        } else {
            text += "null";
        }
    }
    text += '}';
}

void appendSlot(std::int32_t type, const OrvMoAttributeValue_3& value, std::string& text) {
    switch (type) {
    case OrvMoAttributeTypeBool_3:
        text += (std::bit_cast<std::uint64_t>(value) & 0xFFU) != 0 ? "true" : "false";
        return;
    case OrvMoAttributeTypeInt64_3:
        text += std::to_string(value.int64);
        return;
    case OrvMoAttributeTypeDouble_3:
        text += std::to_string(value.real);
        return;
    case OrvMoAttributeTypeEnumeration_3:
    case OrvMoAttributeTypeString_3:
    case OrvMoAttributeTypeMoRef_3:
        appendText(value.string, text);
        return;
    case OrvMoAttributeTypeStruct_3:
        appendStruct(value.structValue, text);
        return;
    default:
        text += std::to_string(value.uint64);
    }
}

void appendContainer(const OrvMoAttributeValueContainer_3& container, std::string& text) {
    text += "type " + std::to_string(container.type) + " [";
    if (container.values == nullptr && container.count > 0) {
        text += std::to_string(container.count) + " values, which are null";
    }
    for (std::uint32_t at = 0; container.values != nullptr && at < container.count; ++at) {
        text += at == 0 ? "" : ", ";
        appendSlot(container.type, container.values[at], text);
    }
    text += ']';
}

template <class Entry, class Append>
void appendList(Entry* const* list, std::string& text, const Append& append) {
    if (list == nullptr) {
        text += "null";
        return;
    }
    text += '(';
    for (Entry* const* at = list; *at != nullptr; ++at) {
        text += at == list ? "" : ", ";
        append(*at);
    }
    text += ')';
}

}

std::string quoted(std::string_view text) {
    constexpr char digits[] = "0123456789abcdef";
    std::string result = "\"";
    for (const char one : text) {
        const auto byte = static_cast<unsigned char>(one);
        if (one == '"' || one == '\\') {
            result += '\\';
        }
        if (byte >= 0x20 && byte < 0x7F) {
            result += one;
        } else {
            result += {'\\', 'x', digits[byte >> 4U], digits[byte & 15U]};
        }
    }
    return result + '"';
}

void showText(ByteReader& in, std::string& text) {
    std::string_view read;
    text += in.text(read) ? quoted(read) : "null";
}

void showTexts(ByteReader& in, std::string& text) {
    Arena arena;
    appendList(readTexts(in, arena), text, [&](const char* one) { appendText(one, text); });
}

void showContainer(ByteReader& in, std::string& text) {
    Arena arena;
    if (const auto* const container = readContainer(in, arena)) {
        appendContainer(*container, text);
    } else {
        text += "null";
    }
}

void showContainers(ByteReader& in, std::string& text) {
    Arena arena;
    appendList(readContainers(in, arena), text,
               [&](const auto* one) { appendContainer(*one, text); });
}

void showNamed(ByteReader& in, std::string& text) {
    Arena arena;
    appendList(readNamed(in, arena), text, [&](const auto* one) {
        appendText(one->name, text);
        text += " = ";
        appendContainer(one->value, text);
    });
}

}
