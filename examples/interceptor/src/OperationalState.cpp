// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OperationalState.h"

#include <cstring>

namespace {

constexpr const char* locked = "LOCKED";

const char* textOf(const OrvMoAttributeValueContainer_3* state) {
    if (state == nullptr || state->type != OrvMoAttributeTypeEnumeration_3 || state->count == 0) {
        return locked;
    }
    // A client may leave out what it likes.
    const char* const text = state->values == nullptr ? nullptr : state->values[0].string;
    return text == nullptr ? "" : text;
}

}

bool isServed(const char* attrName) {
    return std::strcmp(attrName, servedAttribute) == 0;
}

bool isShutdown(const char* attrName, const OrvMoAttributeValueContainer_3* value) {
    return std::strcmp(attrName, sourceAttribute) == 0 &&
           std::strcmp(textOf(value), "SHUTTINGDOWN") == 0;
}

bool isLocked(const OrvMoAttributeValueContainer_3* administrative) {
    return std::strcmp(textOf(administrative), locked) == 0;
}

const char* operationalState(const OrvMoAttributeValueContainer_3* administrative) {
    return isLocked(administrative) ? "DISABLED" : "ENABLED";
}
