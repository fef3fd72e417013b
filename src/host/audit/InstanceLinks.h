// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_AUDIT_INSTANCELINKS_H
#define ORV_HOST_AUDIT_INSTANCELINKS_H

#include "InstanceReport.h"
#include "InstanceTable.h"
#include "model/Model.h"

#include <array>
#include <cstddef>
#include <tuple>
#include <vector>

namespace OrvHost {

/// All references of the bidirectional associations, to compare the two sides: what the objects at
/// the first end hold with what those at the second end hold. Sorting keeps this cheap even if one
/// object holds many references.
class InstanceLinks {
public:
    InstanceLinks(const Model& model, const InstanceTable& table);

    /// Adds a reference: `holder` names `target` in the attribute that is named after end number
    /// `named` of the association.
    void add(std::size_t association, std::size_t named, InstanceTable::Index holder,
             InstanceTable::Index target);

    /// Reports repeated and missing references.
    void compare(InstanceReport& report);

private:
    /// An object at the first end and one at the second.
    struct Link {
        InstanceTable::Index first;
        InstanceTable::Index second;
        friend bool operator==(const Link&, const Link&) = default;
        friend bool operator<(const Link& left, const Link& right) {
            return std::tie(left.first, left.second) < std::tie(right.first, right.second);
        }
    };
    using Links = std::vector<Link>;
    /// Indexed by the number of the end that the attribute is named after.
    using Sides = std::array<Links, 2>;

    void sortSide(std::size_t association, std::size_t named, InstanceReport& report);
    void reportMissing(std::size_t association, std::size_t named, InstanceReport& report);
    InstanceProblem describe(std::size_t association, std::size_t named, const Link& link) const;
    bool isSymmetric(std::size_t association) const;

    const Model& mModel;
    const InstanceTable& mTable;
    std::vector<Sides> mSides; ///< by association
};

}

#endif
