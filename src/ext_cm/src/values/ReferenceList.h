// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_REFERENCELIST_H
#define ORV_EXT_CM_REFERENCELIST_H

#include "OrvMoAttributeValue.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// The references that a value holds, compared and copied as texts. A router may answer with
/// something else where the model has references, so areReferences is to be asked first.

namespace OrvExtCmRouterService {

/// True if every value that \p value counts is a reference that can be read. A value without any is
/// one of no references, whatever its type.
bool areReferences(const VekMoAttributeValueContainer_3& value);

/// The texts of all references, sorted, so that values of many thousand are not compared pair by
/// pair. They point into \p references.
std::vector<std::string_view> sortedTexts(const VekMoAttributeValueContainer_3& references);

/// Calls \p visit with each reference of \p one that \p other does not hold, in the order of \p one
/// and as often as it stands there. The texts point into \p one.
template <class Visit>
void forEachMissing(const VekMoAttributeValueContainer_3& one,
                    const VekMoAttributeValueContainer_3& other, const Visit& visit) {
    if (one.count == 0) {
        return;
    }
    const std::vector<std::string_view> known = sortedTexts(other);
    for (std::uint32_t i = 0; i < one.count; ++i) {
        const char* const reference = one.values[i].moRef;
        if (!std::binary_search(known.begin(), known.end(), std::string_view(reference))) {
            visit(reference);
        }
    }
}

/// Copies of all references, in their order, in a vector with room for \p room.
std::vector<std::string> copyReferences(const VekMoAttributeValueContainer_3& references,
                                        std::size_t room);

}

#endif
