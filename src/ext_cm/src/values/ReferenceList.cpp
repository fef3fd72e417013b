// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "values/ReferenceList.h"

#include "values/ValueCheck.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace OrvExtCmRouterService {

namespace {

// Sorted for a search, so that values of many thousand references are not compared pair by pair.
std::vector<std::string_view> sortedTexts(const VekMoAttributeValueContainer_3& references) {
    std::vector<std::string_view> texts;
    texts.reserve(references.count);
    for (std::uint32_t i = 0; i < references.count; ++i) {
        texts.emplace_back(references.values[i].moRef);
    }
    std::sort(texts.begin(), texts.end());
    return texts;
}

}

// An empty value needs no type: routers answer so for an attribute that is not set.
bool areReferences(const VekMoAttributeValueContainer_3& value) {
    return value.count == 0 || (value.type == OrvMoAttributeTypeMoRef_3 && isReadable(value));
}

std::vector<const char*> missingReferences(const VekMoAttributeValueContainer_3& one,
                                           const VekMoAttributeValueContainer_3& other) {
    const std::vector<std::string_view> known = sortedTexts(other);
    std::vector<const char*> missing;
    for (std::uint32_t i = 0; i < one.count; ++i) {
        const char* const reference = one.values[i].moRef;
        if (!std::binary_search(known.begin(), known.end(), std::string_view(reference))) {
            missing.push_back(reference);
        }
    }
    return missing;
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
