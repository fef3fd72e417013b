// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_EDITS_REFERENCELIST_H
#define ORV_HOST_CLIENT_EDITS_REFERENCELIST_H

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace OrvHost {

/// The DNs of a reference attribute in order, each any number of times. To find, add and take away
/// one takes the same time in a long list as in a short one. One thread.
class ReferenceList {
public:
    ReferenceList() = default;
    explicit ReferenceList(const std::vector<std::string>& dns);

    bool isEmpty() const { return mSize == 0; }
    bool holds(const std::string& dn) const { return mPlaces.count(dn) != 0; }
    std::size_t count(const std::string& dn) const;
    std::vector<std::string> dns() const;

    /// At the end.
    void add(const std::string& dn);
    /// Takes away the first one; nothing if there is none.
    void removeFirst(const std::string& dn);
    /// Makes the list hold \p dn once, at its first place or at the end, or not at all.
    void setHeld(const std::string& dn, bool isHeld);

    /// The same DNs equally often.
    bool hasSameAs(const ReferenceList& other) const;
    /// The same DNs in the same order.
    bool isEqualTo(const ReferenceList& other) const { return dns() == other.dns(); }

private:
    std::vector<std::optional<std::string>> mDns; ///< without a value: taken away
    std::unordered_map<std::string, std::vector<std::size_t>> mPlaces; ///< in mDns, ascending
    std::size_t mSize = 0;
};

}

#endif
