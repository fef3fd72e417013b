// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_VALUECHECK_H
#define ORV_EXT_CM_VALUECHECK_H

#include "OrvMoAttributeValue.h"

#include <cstddef>

namespace OrvExtCmRouterService {

/// False if \p value holds no references, nor structs in which they could stand: then its slots are
/// neither read nor converted.
template <class Container>
bool mayHoldReferences(const Container& value) {
    return value.type == OrvMoAttributeTypeMoRef_3 || value.type == OrvMoAttributeTypeStruct_3;
}

/// isReadable for a value that may hold references.
bool areReferencesReadable(const OrvMoAttributeValueContainer_3& value);
bool areReferencesReadable(const OrvMoAttributeValueContainer& value);

/// True if everything is there that a conversion of \p value reads: the slots of references and of
/// structs; the values of the first struct's members, up to the first reference; and if there is
/// one, all members' names and values and the texts of all references. Values of other types are
/// not looked into, whatever their fields say.
///
/// To be asked of a client's values before anything is done with them, so that a refusal has
/// changed nothing, and of a router's before they are converted. Structs of any depth are looked at
/// without recursion. A struct of more than four million pieces (members, slots and texts) counts
/// as not readable: only a struct that contains itself, or the same part again and again, has so
/// many.
///
/// Once a struct has shown a reference, a member without a value is an empty one in versions 3 and
/// 3_1. In version 1 it cannot be read.
template <class Container>
bool isReadable(const Container& value) {
    return !mayHoldReferences(value) || areReferencesReadable(value);
}
inline bool isReadable(const OrvMoNamedAttributeValueContainer_3& attribute) {
    return isReadable(attribute.value);
}

/// True if \p holds is true for each of \p records, whose last is a null pointer. A null array
/// counts as empty.
template <class Record, class Predicate>
bool allOf(Record* const* records, const Predicate& holds) {
    for (; records != nullptr && *records != nullptr; ++records) {
        if (!holds(**records)) {
            return false;
        }
    }
    return true;
}

/// The same for each of \p values, plain or named.
template <class Value>
bool areReadable(Value* const* values) {
    return allOf(values, [](const Value& value) { return isReadable(value); });
}

/// How many \p records there are before the null pointer that ends them.
template <class Record>
std::size_t lengthOf(Record* const* records) {
    std::size_t length = 0;
    while (records[length] != nullptr) {
        ++length;
    }
    return length;
}

/// True if \p value holds structs and the first one has a member that is a reference. The others,
/// and structs below the first, are not asked: a producer shows by its first value whether a struct
/// holds references. For readable values only.
template <class Container>
bool isStructWithReferences(const Container& value) {
    if (value.type != OrvMoAttributeTypeStruct_3 || value.count == 0) {
        return false;
    }
    for (auto* member = value.values[0].structValue; member != nullptr; member = member->next) {
        if (member->value->type == OrvMoAttributeTypeMoRef_3) {
            return true;
        }
    }
    return false;
}

}

#endif
