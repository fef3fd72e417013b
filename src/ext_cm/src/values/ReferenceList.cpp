// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "values/ReferenceList.h"

#include "values/ValueCheck.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string_view>

namespace OrvExtCmRouterService {

namespace {

constexpr std::uint32_t kFew = 8;

std::size_t hashOf(std::string_view text) {
    return std::hash<std::string_view>()(text);
}

}

bool ReferenceSearch::search(const char* text) {
    if (mReferences.count <= kFew) {
        return searchFew(text);
    }
    order();
    const std::size_t hash = hashOf(text);
    const auto first =
        std::lower_bound(mOrdered.begin(), mOrdered.end(), hash,
                         [](const Hashed& one, std::size_t wanted) { return one.hash < wanted; });
    const auto found = std::find_if(first, mOrdered.end(), [&](const Hashed& one) {
        return one.hash != hash || isAt(one.position, text);
    });
    if (found == mOrdered.end() || found->hash != hash) {
        return false;
    }
    mNext = found->position + 1;
    return true;
}

bool ReferenceSearch::searchFew(const char* text) {
    std::uint32_t at = 0;
    while (at < mReferences.count && !isAt(at, text)) {
        ++at;
    }
    if (at == mReferences.count) {
        return false;
    }
    mNext = at + 1;
    return true;
}

void ReferenceSearch::order() {
    if (!mOrdered.empty()) {
        return;
    }
    mOrdered.reserve(mReferences.count);
    for (std::uint32_t i = 0; i < mReferences.count; ++i) {
        mOrdered.push_back({hashOf(mReferences.values[i].moRef), i});
    }
    std::sort(mOrdered.begin(), mOrdered.end(),
              [](const Hashed& left, const Hashed& right) { return left.hash < right.hash; });
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
