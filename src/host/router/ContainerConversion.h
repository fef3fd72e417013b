// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_ROUTER_CONTAINERCONVERSION_H
#define ORV_HOST_ROUTER_CONTAINERCONVERSION_H

#include "AutoMemory.h"
#include "OrvMoAttributeValue.h"
#include "base/HostError.h"
#include "model/Value.h"

#include <string_view>
#include <vector>

namespace OrvHost {

/// The value records of version 1.
struct Records1 {
    using Container = OrvMoAttributeValueContainer;
    using Slot = OrvMoAttributeValue;
    using Member = OrvMoStructMember;
};

/// The value records of versions 3 and 3_1.
struct Records3 {
    using Container = OrvMoAttributeValueContainer_3;
    using Slot = OrvMoAttributeValue_3;
    using Member = OrvMoStructMember_3;
};

/// Turns value records into values and back, for \p Records1 and \p Records3. No state.
template <class Records>
class ContainerConversion {
public:
    using Container = typename Records::Container;
    using Slot = typename Records::Slot;
    using Member = typename Records::Member;

    /// The values of a record. A struct member without a record, or with type code 0 and no values,
    /// counts as not given. Throws HostError with OrvInvalidArgument for a null text or array, a
    /// type code that the host does not use, or structs nested too deep.
    static AttributeValue toValue(const Container& container) {
        AttributeValue value;
        read(container, value);
        return value;
    }
    /// The same; \p value keeps the memory that it has. It is in an unknown state after an error.
    static void read(const Container& container, AttributeValue& value);

    /// Fills \p container; \p memory owns everything that the container points at.
    static void fill(Container& container, const AttributeValue& value, Orv::AutoMemory& memory);

private:
    static void read(const Container& container, AttributeValue& value, int depth);
    static void read(const Slot& slot, ValueKind kind, Value& value, int depth);
    static StructValue toStruct(const Member* first, int depth);
    static void fill(Slot& slot, const Value& value, ValueKind kind, Orv::AutoMemory& memory);
    static Member* makeMembers(const StructValue& value, Orv::AutoMemory& memory);
};

/// The named values of an array that ends with a null pointer. The array itself may be null.
std::vector<NamedValue> toNamedValues(OrvMoNamedAttributeValueContainer_3** attributes);

/// Throws HostError with OrvInvalidArgument: \p what is null.
[[noreturn]] void refuseNull(const char* what);

/// Refuses a null argument; \p what names it in the error (OrvInvalidArgument).
inline void requireGiven(const void* argument, const char* what) {
    if (argument == nullptr) {
        refuseNull(what);
    }
}

/// The text of a pointer that must not be null; \p what names it in the error (OrvInvalidArgument).
inline std::string_view requireText(const char* text, const char* what) {
    requireGiven(text, what);
    return text;
}

}

#endif
