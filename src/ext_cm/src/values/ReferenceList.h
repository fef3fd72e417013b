// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_REFERENCELIST_H
#define ORV_EXT_CM_REFERENCELIST_H

#include "OrvMoAttributeValue.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

/// \file
/// The references that a value holds, compared and copied as texts. A router may answer with
/// something else where the model has references, so areReferences is to be asked first.

namespace OrvExtCmRouterService {

/// True if every value that \p value counts is a reference that can be read. A value without any is
/// one of no references, whatever its type.
bool areReferences(const VekMoAttributeValueContainer_3& value);

/// Finds texts among references, one after the other. What is asked for mostly stands behind what
/// was found last, since values are changed at a few places. Otherwise a few references are gone
/// through, and of more an order is made once, so that values of many thousand are not compared
/// pair by pair.
class ReferenceSearch {
public:
    /// \p references is kept and must not change.
    explicit ReferenceSearch(const VekMoAttributeValueContainer_3& references)
        : mReferences(references) {}

    bool contains(const char* text) {
        return (mNext < mReferences.count && isAt(mNext, text)) ? (++mNext, true) : search(text);
    }

private:
    // Hashes are faster to compare than texts, which often begin with the same parents.
    struct Hashed {
        std::size_t hash;
        std::uint32_t position;
    };

    bool isAt(std::uint32_t position, const char* text) const {
        return std::strcmp(mReferences.values[position].moRef, text) == 0;
    }
    bool search(const char* text);
    bool searchFew(const char* text);
    void order();

    const VekMoAttributeValueContainer_3& mReferences;
    std::uint32_t mNext = 0;      ///< behind the one that was found last
    std::vector<Hashed> mOrdered; ///< empty until it is needed
};

/// Calls \p visit with each reference of \p one that \p other does not hold, in the order of \p one
/// and as often as it stands there. The texts point into \p one.
template <class Visit>
void forEachMissing(const VekMoAttributeValueContainer_3& one,
                    const VekMoAttributeValueContainer_3& other, const Visit& visit) {
    if (one.count == 0) {
        return;
    }
    ReferenceSearch known(other);
    for (std::uint32_t i = 0; i < one.count; ++i) {
        const char* const reference = one.values[i].moRef;
        if (!known.contains(reference)) {
            visit(reference);
        }
    }
}

/// Copies of all references, in their order, in a vector with room for \p room.
std::vector<std::string> copyReferences(const VekMoAttributeValueContainer_3& references,
                                        std::size_t room);

}

#endif
