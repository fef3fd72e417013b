// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "values/ReferenceList.h"

#include "values/ValueCheck.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace OrvExtCmRouterService {

std::vector<std::string_view> sortedTexts(const VekMoAttributeValueContainer_3& references) {
    std::vector<std::string_view> texts;
    texts.reserve(references.count);
    for (std::uint32_t i = 0; i < references.count; ++i) {
        texts.emplace_back(references.values[i].moRef);
    }
    std::sort(texts.begin(), texts.end());
    return texts;
}

// An empty value needs no type: routers answer so for an attribute that is not set.
bool areReferences(const VekMoAttributeValueContainer_3& value) {
    return value.count == 0 || (value.type == OrvMoAttributeTypeMoRef_3 && isReadable(value));
}

std::vector<std::string> copyReferences(const VekMoAttributeValueContainer_3& references,
                                        std::size_t room) {
    std::vector<std::string> copies;
    copies.reserve(room);
    for (std::uint32_t i = 0; i < references.count; ++i) {
        copies.emplace_back(references.values[i].moRef);
    }
    return copies;
}

}
