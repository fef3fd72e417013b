// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_WIRE_CTEXT_H
#define ORV_HOST_NETCONF_WIRE_CTEXT_H

#include <cstddef>
#include <memory>
#include <streambuf>
#include <string_view>

namespace OrvHost {

struct CTextDeleter {
    void operator()(char* text) const;
};

/// A text that ends with a zero, in memory as libraries of C give it away and take it over. Null:
/// none.
using CText = std::unique_ptr<char, CTextDeleter>;

/// Throws std::bad_alloc.
CText toCText(std::string_view text);

/// Where a stream writes such a text, which can be handed over as it is then: a large one is there
/// once.
class CTextBuffer : public std::streambuf {
public:
    /// What was written, which must not hold a zero; the buffer is empty then. Throws
    /// std::bad_alloc.
    CText take();

protected:
    int_type overflow(int_type letter) override;
    std::streamsize xsputn(const char* text, std::streamsize length) override;

private:
    void reserve(std::size_t more);
    void append(const char* text, std::size_t length);

    CText mText;
    std::size_t mLength = 0;
    std::size_t mCapacity = 0;
};

}

#endif
