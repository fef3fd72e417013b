// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_AUDIT_INSTANCETABLE_H
#define ORV_HOST_AUDIT_INSTANCETABLE_H

#include "model/Model.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace OrvHost {

/// Numbers objects and finds them by DN.
class InstanceTable {
public:
    using Index = std::uint32_t;

    struct Entry {
        Index index = 0;
        ClassIndex moc = 0;
    };

    /// False if there is already an object with that DN.
    bool add(std::string_view dn, ClassIndex moc) {
        const Index index = size();
        const auto [entry, isNew] = mEntries.emplace(std::string(dn), Entry{index, moc});
        if (isNew) {
            mObjects.push_back(&*entry);
        }
        return isNew;
    }

    /// Null if there is no such object.
    const Entry* find(std::string_view dn) const {
        const auto found = mEntries.find(dn);
        return found == mEntries.end() ? nullptr : &found->second;
    }

    Index size() const { return static_cast<Index>(mObjects.size()); }
    const std::string& dn(Index index) const { return mObjects[index]->first; }
    ClassIndex moc(Index index) const { return mObjects[index]->second.moc; }

private:
    using Entries = std::unordered_map<std::string, Entry, TextHash, std::equal_to<>>;

    Entries mEntries;
    std::vector<const Entries::value_type*> mObjects; ///< in mEntries, which never moves them
};

}

#endif
