// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_REPOSITORY_REPOSITORYHANDLE_H
#define ORV_HOST_REPOSITORY_REPOSITORYHANDLE_H

#include <cstdint>

namespace OrvHost {

/// The kind of object that a handle of the model repository names. The kinds begin at 1, so that no
/// handle is zero.
enum class HandleKind : std::uint8_t {
    Moc = 1,     ///< first: the class, or kAnyClassPosition
    Attribute,   ///< first: its number among the attributes of all classes
    Type,        ///< as Attribute
    Containment, ///< first: its number among the containments of all classes
    BiDir,       ///< first: the association
    UniDir,      ///< first: the association
    BiDirEnd,    ///< first: twice the association, one more for its second end
    UniDirEnd    ///< first: the association
};

// `second` is 0 where nothing is said about it.

/// The position of the class that means "any class".
constexpr std::uint32_t kAnyClassPosition = (1U << 28U) - 1;

/// The parts of a handle. Its 64 bits, from the highest: 3 bits of zero, a bit that is set for the
/// block of general properties of an object, 4 bits of kind, and two positions of 28 bits. So
/// handles of different kinds are never equal, and the positions can be checked against the model:
/// an invalid handle can never lead outside it.
struct RepositoryHandle {
    HandleKind kind;
    std::uint32_t first = 0;
    std::uint32_t second = 0;
};

constexpr std::uint64_t kPropertiesBit = 1ULL << 60U;

constexpr std::uint64_t encode(RepositoryHandle handle) {
    return static_cast<std::uint64_t>(handle.kind) << 56U |
           static_cast<std::uint64_t>(handle.first) << 28U | handle.second;
}

/// Splits any number into these parts; the kind can then be none of the above.
constexpr RepositoryHandle decode(std::uint64_t number) {
    constexpr std::uint64_t kPosition = (1U << 28U) - 1;
    return {static_cast<HandleKind>(number >> 56U),
            static_cast<std::uint32_t>(number >> 28U & kPosition),
            static_cast<std::uint32_t>(number & kPosition)};
}

}

#endif
