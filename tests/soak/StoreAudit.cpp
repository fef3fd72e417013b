// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StoreAudit.h"

#include "audit/InstanceChecker.h"
#include "base/DnView.h"

namespace Soak {

using namespace OrvHost;

namespace {

// The transaction service counts from 1 and will not reach this number.
constexpr TransactionId kAuditor = kNoTransaction - 1;

}

StoreAudit::StoreAudit(MoStore& store)
    : mModel(store.model()), mTransaction(store.begin(kAuditor)) {}

void StoreAudit::visit(const Visitor& visitor) const {
    std::vector<ClassIndex> top;
    for (ClassIndex moc = 0; moc < mModel.classes.size(); ++moc) {
        if (mModel.classes[moc].isTopLevel) {
            top.push_back(moc);
        }
    }
    visitBelow("", top, visitor);
}

void StoreAudit::visitBelow(const std::string& dn, const std::vector<ClassIndex>& classes,
                            const Visitor& visitor) const {
    for (const ClassIndex moc : classes) {
        const ClassDef& def = mModel.classes[moc];
        ChildCursor cursor = mTransaction->children(dn, def.name);
        std::string name;
        while (mTransaction->next(cursor, name)) {
            const std::string child = OrvHost::DnView(dn).child(def.name, name);
            const std::vector<NamedValue> attributes = mTransaction->stored(child);
            visitor({child, attributes});
            visitBelow(child, def.children, visitor);
        }
    }
}

std::size_t StoreAudit::objects() const {
    std::size_t count = 0;
    visit([&](const Instance&) { ++count; });
    return count;
}

std::vector<std::string> StoreAudit::problems() const {
    std::vector<std::string> texts;
    for (const InstanceProblem& problem : InstanceChecker(mModel).check(*this).problems) {
        texts.push_back(problem.text);
    }
    return texts;
}

}
