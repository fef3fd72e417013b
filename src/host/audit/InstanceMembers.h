// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_AUDIT_INSTANCEMEMBERS_H
#define ORV_HOST_AUDIT_INSTANCEMEMBERS_H

#include "InstanceReport.h"
#include "InstanceTable.h"
#include "model/Model.h"

#include <cstddef>
#include <optional>
#include <tuple>
#include <vector>

namespace OrvHost {

/// Counts the objects of a class under one parent, for the classes whose number is bounded. Costs 8
/// bytes for each object of such a class.
class InstanceMembers {
public:
    InstanceMembers(const Model& model, const InstanceTable& table);

    /// Adds an object of class `moc` under `parent`, or at the top level without a parent.
    void add(std::optional<InstanceTable::Index> parent, ClassIndex moc);

    /// Reports every number that is out of bounds, parent by parent. If the table has no object at
    /// all, nothing counts as missing: then there is no data.
    void judge(InstanceReport& report);

private:
    struct Member {
        InstanceTable::Index parent; ///< 0: the top level; otherwise the index plus one
        ClassIndex moc;
        friend bool operator==(const Member&, const Member&) = default;
        friend bool operator<(const Member& left, const Member& right) {
            return std::tie(left.parent, left.moc) < std::tie(right.parent, right.moc);
        }
    };
    using Members = std::vector<Member>;

    void judgeParent(InstanceTable::Index parent, const std::vector<ClassIndex>& classes,
                     Members::const_iterator& next, InstanceReport& report) const;
    void addWrongNumber(InstanceTable::Index parent, ClassIndex moc, std::ptrdiff_t count,
                        InstanceReport& report) const;

    const Model& mModel;
    const InstanceTable& mTable;
    std::vector<ClassIndex> mBoundedAtTop;
    std::vector<std::vector<ClassIndex>> mBoundedUnder; ///< by class of the parent
    Members mMembers;
};

}

#endif
