// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Call.h"

namespace Scripted {

namespace {

Argument numberArgument(std::uint64_t number) {
    Argument made;
    made.text = std::to_string(number);
    made.number = number;
    return made;
}

template <class Container>
Argument valueArgument(const Container* value) {
    Argument made;
    made.value = readValue(value);
    made.text = made.value ? made.value->text() : "null";
    made.address = value;
    made.slots = value == nullptr ? nullptr : value->values;
    return made;
}

}

Argument arg(unsigned long number) {
    return numberArgument(number);
}

Argument arg(unsigned long long number) {
    return numberArgument(number);
}

Argument arg(int number) {
    Argument made = numberArgument(static_cast<std::uint64_t>(number));
    made.text = std::to_string(number);
    return made;
}

Argument arg(const char* text) {
    Argument made;
    made.text = quoted(text);
    made.address = text;
    return made;
}

Argument arg(const char* const* names) {
    Argument made;
    made.address = names;
    made.text = names == nullptr ? "null" : "[";
    for (const char* const* name = names; name != nullptr && *name != nullptr; ++name) {
        made.text += (made.text.size() > 1 ? ", " : "") + quoted(*name);
    }
    made.text += names == nullptr ? "" : "]";
    return made;
}

Argument arg(const VekMgmtSpiInterface_1& id) {
    Argument made;
    made.text = quoted(id.componentName) + ", " + quoted(id.interfaceName) + ", " +
                quoted(id.interfaceVersion);
    return made;
}

Argument arg(const OrvMoAttributeValueContainer_3* value) {
    return valueArgument(value);
}

Argument arg(const OrvMoAttributeValueContainer* value) {
    return valueArgument(value);
}

Argument arg(OrvMoAttributeValueContainer* const* values) {
    Argument made;
    made.address = values;
    made.text = values == nullptr ? "null" : "[";
    for (OrvMoAttributeValueContainer* const* each = values; each != nullptr && *each != nullptr;
         ++each) {
        made.text += (made.text.size() > 1 ? ", " : "") + readValue(*each)->text();
    }
    made.text += values == nullptr ? "" : "]";
    return made;
}

Argument arg(OrvMoNamedAttributeValueContainer_3* const* attributes) {
    Argument made;
    made.address = attributes;
    made.named = readNamed(attributes);
    made.text = attributes == nullptr ? "null" : textOf(made.named);
    return made;
}

Argument arg(const void* address, std::string text) {
    Argument made;
    made.address = address;
    made.text = std::move(text);
    return made;
}

std::string Call::text() const {
    std::string text = name + "(";
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        text += (i > 0 ? ", " : "") + arguments[i].text;
    }
    return text + ")";
}

}
