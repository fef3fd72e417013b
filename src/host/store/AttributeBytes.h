// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_ATTRIBUTEBYTES_H
#define ORV_HOST_STORE_ATTRIBUTEBYTES_H

#include "model/Model.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
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
///
/// The changes of an object are bytes of the same form, with those attributes only that were
/// written; an attribute that lost its values has an entry without values.
class AttributeBytes {
public:
    /// The values of the attribute \p index of \p moc, or nothing if it has none.
    static std::optional<AttributeValue> read(const ClassDef& moc, std::string_view bytes,
                                              AttributeIndex index);
    /// Replaces the values of the attribute \p index, which must fit the model; writing no values
    /// removes the attribute. If memory runs out, \p bytes are unchanged.
    static void write(const ClassDef& moc, std::string& bytes, AttributeIndex index,
                      const AttributeValue& value);
    /// True if the attribute has values.
    static bool has(std::string_view bytes, AttributeIndex index);

    /// The values of an attribute, to be read by valuesOf or with a BytesReader: their number, then
    /// each of them. Nothing if the attribute has no entry.
    static std::optional<std::string_view> find(std::string_view bytes, AttributeIndex index);
    static AttributeValue valuesOf(const TypeDef& type, std::string_view values);

    /// As write, for the changes of an object.
    static void writeChange(const ClassDef& moc, std::string& changes, AttributeIndex index,
                            const AttributeValue& value);
    /// As find, for an object with changes; nothing also for an attribute that lost its values.
    static std::optional<std::string_view> find(std::string_view bytes, std::string_view changes,
                                                AttributeIndex index);
    /// Writes what an object with changes has to \p merged.
    static void merge(std::string_view bytes, std::string_view changes, std::string& merged);

private:
    static void replace(const ClassDef& moc, std::string& bytes, AttributeIndex index,
                        const AttributeValue& value, bool keepsEmpty);
};

/// Reads attribute values from front to back, in the form in which AttributeBytes writes them.
class BytesReader {
public:
    explicit BytesReader(std::string_view bytes) : mRest(bytes) {}

    bool atEnd() const { return mRest.empty(); }
    std::string_view rest() const { return mRest; }

    std::uint64_t number() {
        std::uint64_t result = byte();
        if (result < 0x80U) {
            return result; // almost all are so small
        }
        result &= 0x7FU;
        for (unsigned shift = 7;; shift += 7) {
            const unsigned char part = byte();
            result |= std::uint64_t{part & 0x7FU} << shift;
            if (part < 0x80U) {
                return result;
            }
        }
    }
    std::int64_t signedNumber() {
        const std::uint64_t folded = number();
        return static_cast<std::int64_t>((folded >> 1U) ^ ((folded & 1U) != 0 ? UINT64_MAX : 0));
    }
    bool flag() { return bytes(1).front() != 0; }
    double real() {
        double result = 0;
        std::memcpy(&result, bytes(sizeof result).data(), sizeof result);
        return result;
    }
    std::string_view text() { return bytes(number()); }

private:
    unsigned char byte() {
        const auto first = static_cast<unsigned char>(mRest.front());
        mRest.remove_prefix(1);
        return first;
    }
    std::string_view bytes(std::size_t length) {
        const std::string_view result = mRest.substr(0, length);
        mRest.remove_prefix(length);
        return result;
    }

    std::string_view mRest;
};

}

#endif
