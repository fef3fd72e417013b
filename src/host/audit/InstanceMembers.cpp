// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "InstanceMembers.h"

#include "base/Join.h"

#include <algorithm>

namespace OrvHost {

namespace {

constexpr InstanceTable::Index kTop = 0;

}

InstanceMembers::InstanceMembers(const Model& model, const InstanceTable& table)
    : mModel(model), mTable(table), mBoundedUnder(model.classes.size()) {
    for (ClassIndex moc = 0; moc < model.classes.size(); ++moc) {
        const ClassDef& definition = model.classes[moc];
        if (definition.instances.containAll()) {
            continue;
        }
        for (const ClassIndex parent : definition.parents) {
            mBoundedUnder[parent].push_back(moc);
        }
        if (definition.isTopLevel) {
            mBoundedAtTop.push_back(moc);
        }
    }
}

void InstanceMembers::add(std::optional<InstanceTable::Index> parent, ClassIndex moc) {
    if (!mModel.classes[moc].instances.containAll()) {
        mMembers.push_back({parent ? *parent + 1 : kTop, moc});
    }
}

void InstanceMembers::judge(InstanceReport& report) {
    if (mTable.size() == 0) {
        return;
    }
    std::sort(mMembers.begin(), mMembers.end());
    auto next = mMembers.cbegin();
    judgeParent(kTop, mBoundedAtTop, next, report);
    for (InstanceTable::Index index = 0; index < mTable.size(); ++index) {
        judgeParent(index + 1, mBoundedUnder[mTable.moc(index)], next, report);
    }
    mMembers = {};
}

// `next` moves along with the parents, since members and parents have the same order.
void InstanceMembers::judgeParent(InstanceTable::Index parent,
                                  const std::vector<ClassIndex>& classes,
                                  Members::const_iterator& next, InstanceReport& report) const {
    const auto begin = next;
    next = std::find_if(begin, mMembers.cend(),
                        [&](const Member& member) { return member.parent != parent; });
    for (const ClassIndex moc : classes) {
        const auto count = std::count(begin, next, Member{parent, moc});
        if (!mModel.classes[moc].instances.contain(static_cast<std::size_t>(count))) {
            addWrongNumber(parent, moc, count, report);
        }
    }
}

void InstanceMembers::addWrongNumber(InstanceTable::Index parent, ClassIndex moc,
                                     std::ptrdiff_t count, InstanceReport& report) const {
    const ClassDef& definition = mModel.classes[moc];
    const std::string dn = parent == kTop ? std::string() : mTable.dn(parent - 1);
    report.problems.push_back(
        {InstanceProblemKind::WrongNumber,
         dn,
         {},
         {},
         joined({dn.empty() ? "the top level" : dn, ": ", std::to_string(count), " of class ",
                 definition.name, count == 1 ? " stands" : " stand", " there, expected ",
                 toText(definition.instances), "."})});
}

}
