// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_TEXTHASH_H
#define ORV_HOST_BASE_TEXTHASH_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace OrvHost {

/// A hash for tables of texts such as DNs. It depends on the machine: it is not to be kept.
///
/// Eight bytes at a time; the last eight overlap those before them.
inline std::uint64_t hashOf(std::string_view text) {
    constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15U;
    constexpr std::size_t kStep = sizeof(std::uint64_t);
    std::uint64_t hash = text.size();
    const auto mix = [&hash](const char* at, std::size_t size) {
        std::uint64_t part = 0;
        std::memcpy(&part, at, size);
        hash ^= part;
        // A product carries what differs to the left only, and the last characters are at the left.
        hash = (hash ^ hash >> 32U) * kSpread;
        hash ^= hash >> 32U;
    };
    if (text.size() < kStep) {
        if (!text.empty()) {
            mix(text.data(), text.size());
        }
        return hash;
    }
    for (std::size_t at = 0; at + kStep < text.size(); at += kStep) {
        mix(text.data() + at, kStep);
    }
    mix(text.data() + text.size() - kStep, kStep);
    // Once more, so that texts that differ in their last characters only do not lie close together.
    hash *= 0xBF58476D1CE4E5B9U;
    return hash ^ hash >> 32U;
}

/// A text with its hash, for those who look one text up in several tables. A view.
struct HashedText {
    explicit HashedText(std::string_view view) : text(view), hash(hashOf(view)) {}

    std::string_view text;
    std::uint64_t hash;

    bool operator==(std::string_view other) const { return text == other; }
};

/// Hash of texts for tables of std::string in which one looks up by std::string_view and
/// HashedText, too.
struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
        return static_cast<std::size_t>(hashOf(text));
    }
    std::size_t operator()(const HashedText& text) const {
        return static_cast<std::size_t>(text.hash);
    }
};

}

#endif
