// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_ATTRIBUTEBYTES_H
#define ORV_HOST_STORE_ATTRIBUTEBYTES_H

#include "model/Model.h"

#include <optional>
#include <string>
#include <string_view>

namespace OrvHost {

/// The attributes of one object as a string of bytes. The store keeps them in this form. For each
/// attribute that has values there is its index in the class, the length of the rest of the entry,
/// and the values. All numbers are written in groups of seven bits, lowest first. No name is
/// written, since the class has the names. An enumeration is the index of its enumerator; texts and
/// references are written out.
///
/// Only these functions make such bytes, from values that fit the model, so the bytes are trusted
/// when they are read.
class AttributeBytes {
public:
    /// The values of the attribute \p index of \p moc, or nothing if it has none.
    static std::optional<AttributeValue> read(const ClassDef& moc, std::string_view bytes,
                                              AttributeIndex index);
    /// Replaces the values of the attribute \p index, which must fit the model; writing no values
    /// removes the attribute.
    static void write(const ClassDef& moc, std::string& bytes, AttributeIndex index,
                      const AttributeValue& value);
    /// True if the attribute has values.
    static bool has(std::string_view bytes, AttributeIndex index);
};

}

#endif
