// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SOAK_CAST_H
#define ORV_TESTS_SOAK_CAST_H

#include "model/Value.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Soak {

/// The root of the network as clients name it.
inline const std::string kRoot = "ManagedElement=north";

/// A reference attribute of a bidirectional association, seen from one side.
struct Slot {
    std::string attribute;
    std::string back;        ///< the attribute at the far side
    std::size_t target = 0;  ///< role at the far side
    std::size_t most = 1;    ///< how many references writers put into it
    std::size_t farMost = 1; ///< how many the far side may hold
    /// The far side keeps the DN of a deleted holder, so writers empty the attribute before.
    bool isKeptAtDelete = false;
};

/// Objects of one class that writers create, change and delete.
struct Role {
    std::string className;
    std::string naming;
    std::string parent; ///< below the root; "*" stands for the cast's name
    std::size_t count = 0;
    std::vector<OrvHost::NamedValue> mandatory;
    std::vector<Slot> slots;
};

const std::vector<Role>& roles();

/// The objects of one writer, or those that all writers compete for. They only refer to each other,
/// so writers with different casts never conflict. All DNs are external.
class Cast {
public:
    explicit Cast(std::string name) : mName(std::move(name)) {}

    const std::string& name() const { return mName; }
    /// The unit that contains the cells of this cast.
    std::string distributedUnit() const { return kRoot + ",GNBDUFunction=" + mName; }
    std::string antennaUnit() const { return kRoot + ",Equipment=1,AntennaUnit=" + mName; }

    std::string parentOf(std::size_t role) const;
    std::string nameOf(std::size_t number) const { return mName + "-" + std::to_string(number); }
    std::string dnOf(std::size_t role, std::size_t number) const;

private:
    std::string mName;
};

}

#endif
