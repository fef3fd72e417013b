// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_REPOSITORY_RECENTCLASSPATHS_H
#define ORV_HOST_REPOSITORY_RECENTCLASSPATHS_H

#include "base/ShortText.h"
#include "model/Model.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace OrvHost {

/// The classes that were found last, by the part of the DN that decides: everything but the last
/// value. A component asks for the classes of many siblings one after the other, and this part is
/// the same for all of them.
///
/// Keeps nothing in the heap and needs no destructor, so that each thread can have its own.
class RecentClassPaths {
public:
    /// The part of \p dn up to its last "=". Empty if the value after it is not there, or if the
    /// last step has no "=".
    static std::string_view pathOf(std::string_view dn) {
        std::size_t size = dn.size();
        while (size > 0 && dn[size - 1] != '=' && dn[size - 1] != ',') {
            --size;
        }
        const bool hasValue = size > 0 && size < dn.size() && dn[size - 1] == '=';
        return dn.substr(0, hasValue ? size : 0);
    }

    /// The class of all DNs with that path in the model with that number; null if it is not known
    /// here. That of the empty path, and of the number 0, is not.
    const ClassIndex* find(std::uint64_t model, std::string_view path) const {
        const Entry& entry = mEntries[placeOf(path)];
        return entry.model == model && entry.path == path && !path.empty() ? &entry.moc : nullptr;
    }

    /// Takes the place of an older one. \p model is not 0. A path that is too long is not kept.
    void note(std::uint64_t model, std::string_view path, ClassIndex moc) {
        if (path.size() <= kLongest) {
            Entry& entry = mEntries[placeOf(path)];
            entry.model = model;
            entry.moc = moc;
            entry.path.keep(path);
        }
    }

private:
    static constexpr std::size_t kLongest = 104;
    static constexpr std::size_t kPlaces = 8;

    struct Entry {
        std::uint64_t model = 0; ///< 0: none
        ClassIndex moc = 0;
        ShortText<kLongest> path;
    };

    /// Paths of different classes differ in their length, or in the last letter of the class.
    static std::size_t placeOf(std::string_view path) {
        const std::size_t letter = path.size() < 2 ? 0 : path.size() - 2;
        return (path.size() + (path.empty() ? 0U : static_cast<unsigned char>(path[letter]))) %
               kPlaces;
    }

    std::array<Entry, kPlaces> mEntries{};
};

}

#endif
