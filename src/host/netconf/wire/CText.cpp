// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "CText.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace OrvHost {

void CTextDeleter::operator()(char* text) const {
    std::free(text); // NOLINT(cppcoreguidelines-no-malloc)
}

CText toCText(std::string_view text) {
    CTextBuffer buffer;
    buffer.sputn(text.data(), static_cast<std::streamsize>(text.size()));
    return buffer.take();
}

CText CTextBuffer::take() {
    reserve(1);
    mText.get()[mLength] = '\0';
    mLength = 0;
    mCapacity = 0;
    return std::move(mText);
}

CTextBuffer::int_type CTextBuffer::overflow(int_type letter) {
    if (!traits_type::eq_int_type(letter, traits_type::eof())) {
        const char one = traits_type::to_char_type(letter);
        append(&one, 1);
    }
    return traits_type::not_eof(letter);
}

std::streamsize CTextBuffer::xsputn(const char* text, std::streamsize length) {
    append(text, static_cast<std::size_t>(length));
    return length;
}

void CTextBuffer::append(const char* text, std::size_t length) {
    reserve(length);
    std::copy_n(text, length, mText.get() + mLength);
    mLength += length;
}

void CTextBuffer::reserve(std::size_t more) {
    constexpr std::size_t kFirst = 256;
    // Memory that is not written to costs nothing, and with large steps little is copied.
    constexpr std::size_t kGrowth = 4;
    if (more <= mCapacity - mLength) {
        return;
    }
    const std::size_t capacity = std::max({kFirst, mLength + more, kGrowth * mCapacity});
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc)
    char* const moved = static_cast<char*>(std::realloc(mText.get(), capacity));
    if (moved == nullptr) {
        throw std::bad_alloc();
    }
    static_cast<void>(mText.release()); // it is a part of the new one, or freed
    mText.reset(moved);
    mCapacity = capacity;
}

}
