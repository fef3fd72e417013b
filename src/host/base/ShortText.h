// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_SHORTTEXT_H
#define ORV_HOST_BASE_SHORTTEXT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// \file
/// Comparing and keeping texts as short as names and DNs mostly are: a call of a function would
/// take longer than what it does.

namespace OrvHost {

/// True if the \p size bytes at both places are the same.
inline bool isSameText(const char* one, const char* other, std::size_t size) {
    const auto differ = [&]<class Part>(Part, std::size_t at) {
        Part left = 0;
        Part right = 0;
        std::memcpy(&left, one + at, sizeof(Part));
        std::memcpy(&right, other + at, sizeof(Part));
        return left != right;
    };
    if (size >= sizeof(std::uint64_t)) {
        for (std::size_t at = 0; at + sizeof(std::uint64_t) < size; at += sizeof(std::uint64_t)) {
            if (differ(std::uint64_t{}, at)) {
                return false;
            }
        }
        return !differ(std::uint64_t{}, size - sizeof(std::uint64_t)); // overlaps those before
    }
    if (size >= sizeof(std::uint32_t)) {
        return !differ(std::uint32_t{}, 0) &&
               !differ(std::uint32_t{}, size - sizeof(std::uint32_t));
    }
    if (size >= sizeof(std::uint16_t)) {
        return !differ(std::uint16_t{}, 0) &&
               !differ(std::uint16_t{}, size - sizeof(std::uint16_t));
    }
    return size == 0 || *one == *other;
}

inline bool isSameText(std::string_view one, std::string_view other) {
    return one.size() == other.size() && isSameText(one.data(), other.data(), one.size());
}

/// Copies \p size bytes to a place that does not overlap them.
inline void copyText(char* to, const char* from, std::size_t size) {
    constexpr std::size_t kStep = sizeof(std::uint64_t);
    if (size < kStep) {
        for (; size > 0; --size) {
            to[size - 1] = from[size - 1];
        }
        return;
    }
    for (std::size_t at = 0; at + kStep < size; at += kStep) {
        std::memcpy(to + at, from + at, kStep);
    }
    std::memcpy(to + size - kStep, from + size - kStep, kStep); // overlaps those before
}

/// A copy of a text of at most \p Longest bytes that needs no other memory and no destructor.
template <std::size_t Longest>
class ShortText {
public:
    /// A text that is too long is not kept: the object is empty then.
    void keep(std::string_view text) {
        mSize = text.size() <= Longest ? text.size() : 0;
        copyText(mText.data(), text.data(), mSize);
    }
    void clear() { mSize = 0; }

    bool operator==(std::string_view text) const {
        return isSameText(std::string_view(mText.data(), mSize), text);
    }

private:
    std::size_t mSize = 0;
    std::array<char, Longest> mText{};
};

}

#endif
