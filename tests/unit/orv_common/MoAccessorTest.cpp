// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MoAccessor.h"

#include "OrvOamSpiManagedObject_3.h"
#include "Portal.h"

#include <gtest/gtest.h>
#include <list>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

// A router with one list of names. It keeps what it was asked.
struct ScriptedRouter {
    std::vector<std::string> names;
    OrvReturnT openCode = OrvOk;
    OrvReturnT lastCode = OrvOk; ///< given after the last name
    bool throws = false;

    unsigned long txHandle = 0;
    std::string dn;
    std::string className;
    std::size_t position = 0;
    std::vector<unsigned long long> finalized;
    std::string current;
};

ScriptedRouter* router = nullptr;

OrvReturnT newMoIterator(unsigned long txHandle, const char* dn, const char* className,
                         unsigned long long* iterator) {
    router->txHandle = txHandle;
    router->dn = dn;
    router->className = className;
    *iterator = 0xfedcba9876543210ULL;
    return router->openCode;
}

OrvReturnT nextMo(unsigned long long iterator, char** result) {
    EXPECT_EQ(iterator, 0xfedcba9876543210ULL);
    if (router->position == router->names.size()) {
        if (router->throws) {
            throw std::runtime_error("router");
        }
        *result = nullptr;
        return router->lastCode;
    }
    router->current = router->names[router->position++];
    *result = router->current.data();
    return OrvOk;
}

OrvReturnT finalizeMoIterator(unsigned long long iterator) {
    router->finalized.push_back(iterator);
    return OrvFailure;
}

OrvOamSpiManagedObject_3 makeTable() {
    OrvOamSpiManagedObject_3 table = {};
    table.newMoIterator = &newMoIterator;
    table.nextMo = &nextMo;
    table.finalizeMoIterator = &finalizeMoIterator;
    return table;
}

OrvOamSpiManagedObject_3 routerTable = makeTable();
std::string askedFor;

OrvReturnT lookUp(VekMgmtSpiInterface_1 id, void** result) {
    askedFor = std::string(id.componentName) + "/" + id.interfaceName + "/" + id.interfaceVersion;
    *result = &routerTable;
    return OrvOk;
}

class MoAccessorTest : public ::testing::Test {
protected:
    void SetUp() override {
        router = &scripted;
        Orv::Portal::instance()->attach(&lookUp);
        accessor.useTransaction(42UL);
    }
    void TearDown() override {
        Orv::Portal::instance()->detach();
        router = nullptr;
    }

    ScriptedRouter scripted;
    Orv::MoAccessor accessor{Orv::OrvLockPolicyRead, 60};
    std::list<std::string> children = {"before"};
};

}

TEST_F(MoAccessorTest, GetChildren_Names_AppendsFullDnsInOrder) {
    scripted.names = {"10", "9", "x y"};
    EXPECT_EQ(accessor.getChildren("Parent=1", "Unit", children), OrvOk);
    EXPECT_EQ(children, (std::list<std::string>{"before", "Parent=1,Unit=10", "Parent=1,Unit=9",
                                                "Parent=1,Unit=x y"}));
    EXPECT_EQ(askedFor, "OrvOamSpiCmRouterService/OrvOamSpiManagedObject/3");
    EXPECT_EQ(scripted.txHandle, 42UL);
    EXPECT_EQ(scripted.dn, "Parent=1");
    EXPECT_EQ(scripted.className, "Unit");
}

TEST_F(MoAccessorTest, GetChildren_EmptyParent_GivesTopLevelDns) {
    scripted.names = {"1"};
    EXPECT_EQ(accessor.getChildren("", "ManagedElement", children), OrvOk);
    EXPECT_EQ(children.back(), "ManagedElement=1");
    EXPECT_EQ(scripted.dn, "");
}

TEST_F(MoAccessorTest, GetChildren_NoChild_AppendsNothingAndFinalizes) {
    EXPECT_EQ(accessor.getChildren("Parent=1", "Unit", children), OrvOk);
    EXPECT_EQ(children.size(), 1U);
    EXPECT_EQ(scripted.finalized, (std::vector<unsigned long long>{0xfedcba9876543210ULL}));
}

TEST_F(MoAccessorTest, GetChildren_OpenRefused_GivesItsCodeAndFinalizesNothing) {
    scripted.openCode = -77;
    EXPECT_EQ(accessor.getChildren("Parent=1", "Unit", children), -77);
    EXPECT_EQ(children.size(), 1U);
    EXPECT_TRUE(scripted.finalized.empty());
}

TEST_F(MoAccessorTest, GetChildren_StepFails_KeepsWhatWasFoundAndFinalizes) {
    scripted.names = {"1"};
    scripted.lastCode = -5;
    EXPECT_EQ(accessor.getChildren("Parent=1", "Unit", children), -5);
    EXPECT_EQ(children.back(), "Parent=1,Unit=1");
    EXPECT_EQ(scripted.finalized.size(), 1U);
}

TEST_F(MoAccessorTest, GetChildren_RouterThrows_FinalizesAndPassesIt) {
    scripted.throws = true;
    EXPECT_THROW(accessor.getChildren("Parent=1", "Unit", children), std::runtime_error);
    EXPECT_EQ(scripted.finalized.size(), 1U);
}

TEST_F(MoAccessorTest, GetChildren_NoRouter_IsFailure) {
    Orv::Portal::instance()->detach();
    EXPECT_EQ(accessor.getChildren("Parent=1", "Unit", children), OrvFailure);
    EXPECT_EQ(children.size(), 1U);
}

TEST_F(MoAccessorTest, UseTransaction_Never_ReadsInTransactionZero) {
    Orv::MoAccessor unbound(Orv::OrvLockPolicyRead, 60);
    scripted.txHandle = 1;
    EXPECT_EQ(unbound.getChildren("", "Unit", children), OrvOk);
    EXPECT_EQ(scripted.txHandle, 0UL);
}

TEST_F(MoAccessorTest, UseTransaction_Again_BindsToTheLast) {
    accessor.useTransaction(18446744073709551615UL);
    EXPECT_EQ(accessor.getChildren("", "Unit", children), OrvOk);
    EXPECT_EQ(scripted.txHandle, 18446744073709551615UL);
}
