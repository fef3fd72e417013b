// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_CHECKEDBYTES_H
#define ORV_HOST_STORE_CHECKEDBYTES_H

#include "model/Model.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace OrvHost {

/// Bytes that do not have the form in which the store writes them.
class BytesError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads bytes that come from outside of this process, in the form of BytesReader. Each function
/// throws BytesError if the bytes end before what is read. A number has one form only.
class CheckedReader {
public:
    explicit CheckedReader(std::string_view bytes) : mRest(bytes) {}

    bool atEnd() const { return mRest.empty(); }
    std::uint64_t number();
    /// A number below \p end.
    std::uint64_t numberBelow(std::uint64_t end);
    std::string_view text() { return bytes(number()); }
    std::string_view bytes(std::uint64_t length);

private:
    std::string_view mRest;
};

/// Throws BytesError if \p bytes are not attributes of \p moc as AttributeBytes writes them. What
/// follows this form can be read; whether the values follow the model is not checked.
void requireAttributes(const ClassDef& moc, std::string_view bytes);

/// Throws BytesError if no object of class \p moc can have that name, or stand under one of class
/// \p parent (null: at the top level).
void requirePlace(const Model& model, const ClassDef* parent, ClassIndex moc,
                  const std::string& name);

}

#endif
