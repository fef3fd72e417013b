// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SampleStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class MoStoreTest : public testing::Test, protected SampleStore {
protected:
    void expectRefused(const std::string& dn, const std::vector<NamedValue>& attributes,
                       OrvReturnT code, const std::string& expected) {
        const std::uint64_t before = store.size();
        const HostError error = errorOf([&] { store.load(dn, attributes); });
        EXPECT_EQ(error.code(), code) << dn;
        EXPECT_THAT(error.what(), HasSubstr(dn));
        EXPECT_THAT(error.what(), HasSubstr(expected));
        EXPECT_EQ(store.size(), before);
    }
};

TEST_F(MoStoreTest, Load_ParentsFirst_IsCommitted) {
    const auto transaction = store.begin(1);
    EXPECT_EQ(store.size(), 3U);
    EXPECT_TRUE(transaction->exists("Network=1,Node=b"));
    EXPECT_EQ(transaction->get("Network=1,Node=a", "label"), text("first"));
    EXPECT_EQ(transaction->get("Network=1,Node=a", "serial"), text("S-1"));
    EXPECT_THAT(namesOf(*transaction, "Network=1", "Node"), ElementsAre("a", "b"));
}

TEST_F(MoStoreTest, Load_WhatDoesNotFit_NamesDnAndWhatWasExpected) {
    expectRefused("Network=1,Node", {}, OrvInvalidArgument, "Class=value");
    expectRefused("Network=1,Tree=1", {}, OrvNotExist, "no class 'Tree'");
    expectRefused("Network=2,Node=a", {}, OrvNotExist, "the parent 'Network=2' does not exist");
    expectRefused("Node=a", {}, OrvHostNotContained, "parent of class: Network");
    expectRefused("Network=1,Card=1", {}, OrvHostNotContained, "expected there: Node, Box");
    expectRefused("Network=1,Node=a", {}, OrvAlreadyExist, "already");
    expectRefused("Network=1,Node= x", {}, OrvInvalidArgument, "space at either end");
    expectRefused("Network=1,Node=a,Card=07", {{"kind", text("x")}}, OrvInvalidArgument,
                  "expected a digit");
    expectRefused("Network=1,Node=a,Card=1", {}, OrvInvalidArgument,
                  "mandatory attribute 'kind' of class 'Card' is missing");
    expectRefused("Network=1,Node=c", {{"colour", text("x")}}, OrvNotExist,
                  "has no attribute 'colour', expected one of: nodeId, label");
    expectRefused("Network=1,Node=c", {{"height", text("x")}}, OrvInvalidArgument,
                  "attribute 'height' of class 'Node'");
    expectRefused("Network=1,Node=c", {{"id", text("d")}}, OrvInvalidArgument,
                  "differs from the name 'c'");
    expectRefused("Network=1,Node=c", {{"label", text("d")}, {"label", text("e")}},
                  OrvInvalidArgument, "more than once");
}

TEST_F(MoStoreTest, Load_NamingAttributeThatAgrees_IsAccepted) {
    store.load("Network=1,Node=c", {{"id", text("c")}});
    store.load("Network=1,Node=c,Card=7", {{"slot", text("7")}, {"kind", text("x")}});
    EXPECT_EQ(store.begin(1)->get("Network=1,Node=c,Card=7", "slot"), text("7"));
}

TEST_F(MoStoreTest, Load_WhileATransactionIsOpen_IsRefused) {
    const auto transaction = store.begin(1);
    expectRefused("Network=2", {}, OrvHostWrongState, "before the first transaction");
}

TEST_F(MoStoreTest, Load_DeepTree_IsFoundAndDeletedAsAWhole) {
    std::string dn = "Network=1";
    const int depth = 1000;
    for (int level = 0; level < depth; ++level) {
        dn += ",Box=1";
        store.load(dn, {});
    }
    auto transaction = store.begin(1);
    EXPECT_TRUE(transaction->exists(dn));
    transaction->remove("Network=1,Box=1");
    EXPECT_FALSE(transaction->exists(dn));
    transaction->commit();
    EXPECT_EQ(store.size(), 3U);
}

TEST_F(MoStoreTest, Commit_DeletedObjects_GiveTheirMemoryBack) {
    for (int round = 0; round < 50; ++round) {
        auto transaction = store.begin(1);
        for (int box = 0; box < 20; ++box) {
            transaction->create("Network=1", "Box", "id", std::to_string(box), {});
        }
        transaction->commit();
        transaction = store.begin(2);
        for (int box = 0; box < 20; ++box) {
            transaction->remove("Network=1,Box=" + std::to_string(box));
        }
        transaction->set("Network=1,Node=a", {{"height", integer(round)}});
        transaction->commit();
    }
    const StoreMemory memory = store.memory();
    EXPECT_EQ(memory.objects, 3U);
    EXPECT_EQ(memory.history, 0U);
    EXPECT_LE(memory.nodes, 24 * sizeof(MoNode));
}

TEST_F(MoStoreTest, Memory_OlderVersions_AreKeptWhileASnapshotNeedsThem) {
    auto reader = store.begin(1);
    auto writer = store.begin(2);
    writer->set("Network=1,Node=a", {{"label", text("second")}});
    writer->commit();
    EXPECT_GT(store.memory().history, 0U);
    EXPECT_EQ(reader->get("Network=1,Node=a", "label"), text("first"));
    reader->rollback();
    EXPECT_EQ(store.memory().history, 0U);
}

}
}
