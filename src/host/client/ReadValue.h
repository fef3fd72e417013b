// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_READVALUE_H
#define ORV_HOST_CLIENT_READVALUE_H

#include "OrvMoAttributeValue.h"
#include "model/Model.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace OrvHost {

struct ReadValue;

/// A value of a type that this client does not know: the type code and the 8 bytes as a number.
struct UnknownValue {
    std::int32_t type = 0;
    std::uint64_t bytes = 0;
};

/// The members of a struct value in their order.
///
/// A member may be a struct again, so ReadValue is still incomplete here. For that reason the
/// special member functions are defined in the source file.
struct ReadStruct {
    using Members = std::vector<std::pair<std::string, ReadValue>>;

    ReadStruct();
    explicit ReadStruct(Members values);
    ReadStruct(const ReadStruct& other);
    ReadStruct(ReadStruct&& other) noexcept;
    ReadStruct& operator=(const ReadStruct& other);
    ReadStruct& operator=(ReadStruct&& other) noexcept;
    ~ReadStruct();

    Members members;
};

/// One value. std::monostate stands for a null text.
using ReadSlot = std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double,
                              std::string, ReadStruct, UnknownValue>;

/// The answer to a read of one attribute, or the result of an action. It can hold what no attribute
/// of the model may hold, because a component is free to answer so; toAttributeValue gives the
/// value of the model's form.
struct ReadValue {
    bool isList = false; ///< may hold several values, or does
    std::int32_t type = 0;
    std::vector<ReadSlot> slots; ///< empty: no value
};

/// An attribute with the answer.
using NamedReadValue = std::pair<std::string, ReadValue>;

/// The values of a record. \p def says whether the attribute may hold several values, and its
/// members; if it is null (an attribute that the model does not know), the number of values
/// decides.
///
/// Copies what it needs: \p container, which may be null, can be released afterwards.
ReadValue toReadValue(const OrvMoAttributeValueContainer_3* container, const AttributeDef* def);
/// The same for the records of version 1.
ReadValue toReadValue(const OrvMoAttributeValueContainer* container, const AttributeDef* def);

/// The value in the model's form: without members that are not set. Nothing if it holds null texts
/// or values of unknown types. An answer without values gets the kind \p kind.
std::optional<AttributeValue> toAttributeValue(const ReadValue& value, ValueKind kind);

}

#endif
