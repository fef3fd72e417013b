// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RawText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <type_traits>

#include <sys/uio.h>
#include <unistd.h>

namespace Scripted {

namespace {

constexpr int kMostItems = 10;
constexpr int kDeepest = 4;
constexpr std::size_t kLongestText = 200;
constexpr std::uintptr_t kPage = 4096; ///< what lies in one can be read whole, or not at all
constexpr char kUnreadable[] = "?";
constexpr char kMore[] = "...";

// The kernel refuses what this process could not read.
bool peek(std::uintptr_t address, void* to, std::size_t size) {
    iovec here = {to, size};
    iovec there = {reinterpret_cast<void*>(address), size}; // NOLINT(performance-no-int-to-ptr)
    return process_vm_readv(getpid(), &here, 1, &there, 1, 0) == static_cast<ssize_t>(size);
}

template <class Thing>
bool peek(const Thing* address, Thing& to) {
    return peek(reinterpret_cast<std::uintptr_t>(address), &to, sizeof to);
}

// Reads to the end of a page at a time. False if it comes to one that cannot be read.
bool peekText(const char* from, std::string& text) {
    auto address = reinterpret_cast<std::uintptr_t>(from);
    char bytes[kLongestText];
    while (text.size() < kLongestText) {
        const std::size_t size =
            std::min<std::size_t>(kLongestText - text.size(), kPage - address % kPage);
        if (!peek(address, bytes, size)) {
            return false;
        }
        const std::size_t length = strnlen(bytes, size);
        text.append(bytes, length);
        if (length < size) {
            return true;
        }
        address += size;
    }
    text += kMore;
    return true;
}

// Names stand without quotes.
std::string nameText(const char* name) {
    std::string read;
    return name == nullptr ? "null" : peekText(name, read) ? read : kUnreadable;
}

bool holdsText(std::int32_t type) {
    return type == OrvMoAttributeTypeString_3 || type == OrvMoAttributeTypeMoRef_3 ||
           type == OrvMoAttributeTypeEnumeration_3;
}

std::string typeText(std::int32_t type) {
    switch (type) {
    case OrvMoAttributeTypeString_3:
        return "String";
    case OrvMoAttributeTypeMoRef_3:
        return "MoRef";
    case OrvMoAttributeTypeStruct_3:
        return "Struct";
    default:
        return "Type" + std::to_string(type);
    }
}

template <class Container>
std::string valueText(const Container* value, int depth);

template <class StructMember>
std::string membersText(const StructMember* first, int depth) {
    std::string text = "{";
    int count = 0;
    for (const StructMember* each = first; each != nullptr; ++count) {
        text += count > 0 ? ", " : "";
        StructMember member = {};
        if (count == kMostItems || !peek(each, member)) {
            return text + (count == kMostItems ? kMore : kUnreadable) + "}";
        }
        text += nameText(member.name) + ": " + valueText(member.value, depth + 1);
        each = member.next;
    }
    return text + "}";
}

template <class Container>
std::string slotText(const Container& container, std::uint32_t index, int depth) {
    std::remove_pointer_t<decltype(container.values)> slot = {};
    if (!peek(container.values + index, slot)) {
        return kUnreadable;
    }
    if (holdsText(container.type)) {
        return rawText(slot.string);
    }
    if (container.type == OrvMoAttributeTypeStruct_3) {
        return slot.structValue == nullptr ? "null" : membersText(slot.structValue, depth);
    }
    return std::to_string(slot.uint64);
}

template <class Container>
std::string valueText(const Container* value, int depth) {
    if (value == nullptr) {
        return "null";
    }
    Container container = {};
    if (depth > kDeepest || !peek(value, container)) {
        return depth > kDeepest ? kMore : kUnreadable;
    }
    std::string text = typeText(container.type) + "[";
    if (container.values == nullptr && container.count != 0) {
        return text + std::to_string(container.count) + " without an array]";
    }
    for (std::uint32_t i = 0; i < container.count; ++i) {
        text += i > 0 ? ", " : "";
        if (i == kMostItems) {
            text += kMore;
            break;
        }
        text += slotText(container, i, depth);
    }
    return text + "]";
}

// The items of an array that a null pointer ends, each as \p textOf gives it.
template <class Item, class TextOf>
std::string itemsText(Item* const* items, const TextOf& textOf) {
    std::string text;
    for (int count = 0;; ++count) {
        Item* item = nullptr;
        const bool isReadable = peek<Item*>(items + count, item);
        if (isReadable && item == nullptr) {
            return text;
        }
        text += count > 0 ? ", " : "";
        if (!isReadable || count == kMostItems) {
            return text + (isReadable ? kMore : kUnreadable);
        }
        text += textOf(item);
    }
}

std::string namedText(const OrvMoNamedAttributeValueContainer_3* attribute) {
    OrvMoNamedAttributeValueContainer_3 named = {};
    return peek(attribute, named) ? nameText(named.name) + ": " + valueText(&named.value, 0)
                                  : kUnreadable;
}

}

std::string rawText(unsigned long number) {
    return std::to_string(number);
}

std::string rawText(unsigned long long number) {
    return std::to_string(number);
}

std::string rawText(void* handle) {
    char text[32];
    std::snprintf(text, sizeof text, "%p", handle);
    return text;
}

std::string rawText(const char* text) {
    std::string read;
    return text == nullptr ? "null" : peekText(text, read) ? "'" + read + "'" : kUnreadable;
}

std::string rawText(const char** texts) {
    return texts == nullptr
               ? "null"
               : "[" + itemsText(texts, [](const char* text) { return rawText(text); }) + "]";
}

std::string rawText(const OrvMoAttributeValueContainer_3* value) {
    return valueText(value, 0);
}

std::string rawText(const OrvMoAttributeValueContainer* value) {
    return valueText(value, 0);
}

std::string rawText(OrvMoAttributeValueContainer** values) {
    return values == nullptr
               ? "null"
               : "[" + itemsText(values, [](const auto* each) { return valueText(each, 0); }) + "]";
}

std::string rawText(OrvMoNamedAttributeValueContainer_3** attributes) {
    return attributes == nullptr ? "null" : "{" + itemsText(attributes, &namedText) + "}";
}

}
