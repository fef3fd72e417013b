// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// How the children of a deleted MO are looked for. The helper library's own lookup does not show
// what it is made with: the one below takes its place for every shared object in the process, so
// these tests have a program of their own.

#include "Host.h"
#include "MoAccessor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using namespace Scripted;
using testing::ElementsAre;

namespace {

void record(const char* call, std::vector<Argument> arguments) {
    Stage::current().script.record(Call{call, std::move(arguments), nullptr});
}

}

namespace Orv {

MoAccessor::MoAccessor(OrvLockPolicyT policy, int limit) {
    record("Accessor.new", {arg(static_cast<int>(policy)), arg(limit)});
}

void Transaction::useTransaction(const unsigned long& txHandle) {
    mTxHandle = txHandle;
    record("Accessor.useTransaction", {arg(txHandle)});
}

// Fails each time, after it has found all.
OrvReturnT MoAccessor::getChildren(const std::string& parentDn, const std::string& className,
                                   std::list<std::string>& children) {
    record("Accessor.getChildren", {arg(parentDn.c_str()), arg(className.c_str())});
    EXPECT_TRUE(children.empty());
    for (const std::string& name : Stage::current().world.children(parentDn, className)) {
        children.push_back(
            std::string(parentDn).append(",").append(className).append("=").append(name));
    }
    return OrvFailure;
}

}

TEST(ChildrenLookup, EachMo_HasOneOfItsOwnInTheTransactionBeforeItsClassIsAskedFor) {
    Host host;
    host.model().moc("P").contains("C").contains("D");
    for (const std::string dn : {"P=1", "P=1,C=1", "P=1,D=2", "P=1,D=1"}) {
        host.mo(dn);
    }
    host.start();
    EXPECT_EQ(host.client().remove(7, "P=1"), OrvOk);
    std::vector<std::string> seen;
    for (const Call& call : host.callRecords()) {
        if (call.name.rfind("Accessor.", 0) == 0 || call.name == "Model.getFirstContainment" ||
            call.name == "Model.getFirstBiDirAssociation") {
            seen.push_back(call.text());
        }
    }
    const std::string made = "Accessor.new(1, 60)";
    const std::string bound = "Accessor.useTransaction(7)";
    EXPECT_THAT(
        seen,
        ElementsAre(
            made, bound, "Model.getFirstContainment('P')", "Accessor.getChildren('P=1', 'C')", made,
            bound, "Model.getFirstContainment('C')", "Model.getFirstBiDirAssociation('C')",
            "Accessor.getChildren('P=1', 'D')", made, bound, "Model.getFirstContainment('D')",
            "Model.getFirstBiDirAssociation('D')", made, bound, "Model.getFirstContainment('D')",
            "Model.getFirstBiDirAssociation('D')", "Model.getFirstBiDirAssociation('P')"));
}

TEST(ChildrenLookup, MoOfAnUnknownClass_ItIsMadeAllTheSame) {
    Host host;
    host.mo("Q=1");
    host.start();
    EXPECT_EQ(host.client().remove(7, "Q=1"), OrvOk);
    EXPECT_THAT(host.calls("Accessor."),
                ElementsAre("Accessor.new(1, 60)", "Accessor.useTransaction(7)"));
}
