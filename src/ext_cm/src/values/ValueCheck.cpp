// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "values/ValueCheck.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <vector>

namespace OrvExtCmRouterService {

namespace {

// More than any value of a network has.
constexpr std::size_t mostPieces = 4000000;

/// Looks at one value, a container at a time.
template <class Container>
class ValueReader {
public:
    bool reads(const Container& value) {
        // References outside a struct are not counted: an array has an end, a list of members may
        // have none.
        if (value.type == OrvMoAttributeTypeMoRef_3) {
            return value.count == 0 || (value.values != nullptr && hasAllTexts(value));
        }
        if (!enter(value)) {
            return false;
        }
        while (!mStructs.empty()) {
            const Container& next = *mStructs.back();
            mStructs.pop_back();
            if (!readsMembers(next)) {
                return false;
            }
        }
        return true;
    }

private:
    using Slot = std::remove_pointer_t<decltype(Container::values)>;
    using Member = std::remove_pointer_t<decltype(Slot::structValue)>;

    static constexpr bool membersNeedValues =
        std::is_same_v<Container, OrvMoAttributeValueContainer>;

    /// Looks at a container itself; a struct whose members will be read waits in mStructs.
    bool enter(const Container& value) {
        const bool isReference = value.type == OrvMoAttributeTypeMoRef_3;
        if (value.count == 0 || (!isReference && value.type != OrvMoAttributeTypeStruct_3)) {
            return true;
        }
        if (value.values == nullptr) {
            return false;
        }
        return isReference ? readsTexts(value) : entersStruct(value);
    }

    static bool hasAllTexts(const Container& value) {
        return std::all_of(value.values, value.values + value.count,
                           [](const Slot& slot) { return slot.moRef != nullptr; });
    }

    bool readsTexts(const Container& value) {
        return std::all_of(value.values, value.values + value.count, [this](const Slot& slot) {
            return takesPiece() && slot.moRef != nullptr;
        });
    }

    /// Only the first value decides whether a struct is converted (see isStructWithReferences), so
    /// only its members are read here, and those after its first reference not yet.
    bool entersStruct(const Container& value) {
        for (const Member* member = value.values[0].structValue; member != nullptr;
             member = member->next) {
            if (!takesPiece() || member->value == nullptr) {
                return false;
            }
            if (member->value->type == OrvMoAttributeTypeMoRef_3) {
                mStructs.push_back(&value);
                return true;
            }
        }
        return true;
    }

    bool readsMembers(const Container& value) {
        return std::all_of(value.values, value.values + value.count, [this](const Slot& slot) {
            return takesPiece() && readsMembers(slot.structValue);
        });
    }

    bool readsMembers(const Member* first) {
        for (const Member* member = first; member != nullptr; member = member->next) {
            if (!takesPiece() || member->name == nullptr) {
                return false;
            }
            if (member->value == nullptr ? membersNeedValues : !enter(*member->value)) {
                return false;
            }
        }
        return true;
    }

    bool takesPiece() { return ++mPieces <= mostPieces; }

    std::vector<const Container*> mStructs;
    std::size_t mPieces = 0;
};

}

bool areReferencesReadable(const OrvMoAttributeValueContainer_3& value) {
    return ValueReader<OrvMoAttributeValueContainer_3>().reads(value);
}

bool areReferencesReadable(const OrvMoAttributeValueContainer& value) {
    return ValueReader<OrvMoAttributeValueContainer>().reads(value);
}

}
