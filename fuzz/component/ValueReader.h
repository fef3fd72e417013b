// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_COMPONENT_VALUEREADER_H
#define ORV_FUZZ_COMPONENT_VALUEREADER_H

#include "OrvMoAttributeValue.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace Fuzz {

/// Reads all that there is of a value, as a client does who got it, so that a text or a record that
/// is gone is seen. Gives a number made of it.
template <class Container>
std::size_t readAll(const Container* value) {
    std::size_t read = 0;
    std::vector<const Container*> left = {value};
    while (!left.empty()) {
        const Container* const each = left.back();
        left.pop_back();
        if (each == nullptr || each->values == nullptr) {
            continue;
        }
        for (std::uint32_t at = 0; at < each->count; ++at) {
            const auto& slot = each->values[at];
            read = read * 31 + static_cast<std::size_t>(each->type);
            switch (each->type) {
            case OrvMoAttributeTypeMoRef_3:
            case OrvMoAttributeTypeString_3:
            case OrvMoAttributeTypeEnumeration_3:
                read += slot.string != nullptr ? std::strlen(slot.string) : 0;
                break;
            case OrvMoAttributeTypeStruct_3:
                for (const auto* member = slot.structValue; member != nullptr;
                     member = member->next) {
                    read += member->name != nullptr ? std::strlen(member->name) : 0;
                    left.push_back(member->value);
                }
                break;
            default:
                read += slot.uint64;
            }
        }
    }
    return read;
}

}

#endif
