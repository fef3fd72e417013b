// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SampleStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kA = "Network=1,Node=a";
const std::string kB = "Network=1,Node=b";

/// Two transactions that began at the same time.
class StoreConflictTest : public testing::Test, protected SampleStore {
protected:
    static void setLabel(StoreTransaction& tx, const std::string& dn, const std::string& label) {
        tx.set(dn, {{"label", text(label)}});
    }
    static void createUnder(StoreTransaction& tx, const std::string& dn, const std::string& name) {
        tx.create(dn, "Rack", "id", name, {});
    }
    void expectConflict(const std::function<void()>& write, const std::string& expected) {
        const HostError error = errorOf(write);
        EXPECT_EQ(error.code(), OrvHostWriteConflict);
        EXPECT_STREQ(error.what(), expected.c_str());
        EXPECT_EQ(two->conflict(), expected);
        EXPECT_THAT(two->check(), Contains(HasSubstr(expected)));
        EXPECT_EQ(codeOf([&] { two->commit(); }), OrvHostWriteConflict);
    }

    std::unique_ptr<StoreTransaction> one = store.begin(11);
    std::unique_ptr<StoreTransaction> two = store.begin(22);
};

TEST_F(StoreConflictTest, Set_ObjectOfAnotherOpenTransaction_IsRefusedAtOnce) {
    setLabel(*one, kA, "one");
    expectConflict([&] { setLabel(*two, kA, "two"); }, kA + " is being changed by transaction 11");
    one->commit();
    EXPECT_EQ(store.begin(33)->get(kA, "label"), text("one"));
}

TEST_F(StoreConflictTest, Set_ObjectCommittedSinceTheBegin_IsRefused) {
    setLabel(*one, kA, "one");
    one->commit();
    EXPECT_EQ(two->get(kA, "label"), text("first"));
    expectConflict([&] { setLabel(*two, kA, "two"); },
                   kA + " was changed since this transaction began, by transaction 11");
}

TEST_F(StoreConflictTest, Set_AfterTheOtherRolledBack_Succeeds) {
    setLabel(*one, kA, "one");
    one->rollback();
    setLabel(*two, kA, "two");
    EXPECT_THAT(two->check(), IsEmpty());
    two->commit();
    EXPECT_EQ(store.begin(33)->get(kA, "label"), text("two"));
}

TEST_F(StoreConflictTest, Set_DifferentObjects_GoSideBySide) {
    setLabel(*one, kA, "one");
    setLabel(*two, kB, "two");
    one->commit();
    two->commit();
    const auto after = store.begin(33);
    EXPECT_EQ(after->get(kA, "label"), text("one"));
    EXPECT_EQ(after->get(kB, "label"), text("two"));
}

TEST_F(StoreConflictTest, Remove_ObjectThatAnotherChanges_IsRefused) {
    setLabel(*one, kA, "one");
    expectConflict([&] { two->remove(kA); }, kA + " is being changed by transaction 11");
}

TEST_F(StoreConflictTest, Remove_SubtreeInWhichAnotherChanges_IsRefused) {
    setLabel(*one, kA, "one");
    expectConflict([&] { two->remove("Network=1"); }, kA + " is being changed by transaction 11");
    EXPECT_TRUE(two->exists("Network=1"));
}

TEST_F(StoreConflictTest, Remove_ObjectUnderWhichAnotherCreates_IsRefused) {
    createUnder(*one, kA, "r");
    expectConflict([&] { two->remove("Network=1"); },
                   kA + " is being given children by transaction 11");
}

TEST_F(StoreConflictTest, Remove_ObjectUnderWhichAnotherHasCreated_IsRefused) {
    createUnder(*one, kA, "r");
    one->commit();
    expectConflict([&] { two->remove(kA); },
                   kA + ",Rack=r was created since this transaction began, by transaction 11");
}

TEST_F(StoreConflictTest, Remove_ObjectBelowWhichAnotherHasDeleted_IsRefused) {
    createUnder(*one, kA, "r");
    one->commit();
    two = store.begin(22);
    one = store.begin(33);
    one->remove(kA + ",Rack=r");
    one->commit();
    expectConflict([&] { two->remove(kA); },
                   kA + ",Rack=r was deleted since this transaction began, by transaction 33");
}

TEST_F(StoreConflictTest, Remove_ObjectWhoseNewChildIsGoneAgain_IsRefused) {
    createUnder(*one, kA, "r");
    one->commit();
    one = store.begin(33);
    one->remove(kA + ",Rack=r");
    one->commit();
    expectConflict([&] { two->remove(kA); },
                   "the children of " + kA +
                       " were changed since this transaction began, by transaction 33");
    EXPECT_TRUE(two->exists(kA));
}

TEST_F(StoreConflictTest, Remove_SubtreeInWhichANewChildIsGoneAgain_IsRefused) {
    createUnder(*one, kA, "r");
    one->commit();
    one = store.begin(33);
    one->remove(kA + ",Rack=r");
    one->commit();
    expectConflict([&] { two->remove("Network=1"); },
                   "the children of " + kA +
                       " were changed since this transaction began, by transaction 33");
}

TEST_F(StoreConflictTest, Remove_ObjectWithOwnChanges_Succeeds) {
    createUnder(*one, kA, "r");
    one->commit();
    two = store.begin(22);
    two->remove(kA + ",Rack=r");
    createUnder(*two, kA, "s");
    two->remove(kA);
    EXPECT_THAT(two->check(), IsEmpty());
    two->commit();
    EXPECT_FALSE(store.begin(33)->exists(kA));
}

TEST_F(StoreConflictTest, Set_ObjectThatAnotherDeletes_IsRefused) {
    one->remove("Network=1");
    expectConflict([&] { setLabel(*two, kA, "two"); }, kA + " is being deleted by transaction 11");
}

TEST_F(StoreConflictTest, Set_ObjectThatAnotherHasDeleted_IsRefused) {
    one->remove(kA);
    one->commit();
    expectConflict([&] { setLabel(*two, kA, "two"); },
                   kA + " was deleted since this transaction began, by transaction 11");
}

TEST_F(StoreConflictTest, Set_ObjectThatAnotherHasReplaced_IsRefused) {
    one->remove(kA);
    one->create("Network=1", "Node", "id", "a", {});
    one->commit();
    expectConflict([&] { setLabel(*two, kA, "two"); },
                   kA + " was deleted since this transaction began, by transaction 11");
}

TEST_F(StoreConflictTest, Create_UnderAnObjectThatAnotherDeletes_IsRefused) {
    one->remove(kA);
    expectConflict([&] { createUnder(*two, kA, "r"); }, kA + " is being deleted by transaction 11");
}

TEST_F(StoreConflictTest, Create_UnderAnObjectThatAnotherHasDeleted_IsRefused) {
    one->remove(kA);
    one->commit();
    expectConflict([&] { createUnder(*two, kA, "r"); },
                   kA + " was deleted since this transaction began, by transaction 11");
}

TEST_F(StoreConflictTest, Create_SameDn_IsRefused) {
    createUnder(*one, kA, "r");
    expectConflict([&] { createUnder(*two, kA, "r"); },
                   kA + ",Rack=r is being created by transaction 11");
}

TEST_F(StoreConflictTest, Create_SameDnAfterACommit_IsRefused) {
    createUnder(*one, kA, "r");
    one->commit();
    EXPECT_FALSE(two->exists(kA + ",Rack=r"));
    expectConflict([&] { createUnder(*two, kA, "r"); },
                   kA + ",Rack=r was created since this transaction began, by transaction 11");
}

TEST_F(StoreConflictTest, Create_DifferentChildrenOfOneParent_GoSideBySide) {
    createUnder(*one, kA, "r");
    createUnder(*two, kA, "s");
    two->commit();
    one->commit();
    EXPECT_THAT(namesOf(*store.begin(33), kA, "Rack"), ElementsAre("s", "r"));
}

TEST_F(StoreConflictTest, Create_UnderAnObjectThatAnotherChanges_GoesSideBySide) {
    setLabel(*one, kA, "one");
    createUnder(*two, kA, "s");
    one->commit();
    two->commit();
    const auto after = store.begin(33);
    EXPECT_EQ(after->get(kA, "label"), text("one"));
    EXPECT_TRUE(after->exists(kA + ",Rack=s"));
}

TEST_F(StoreConflictTest, Create_BoundedChildrenOfOneParent_AreDistinguished) {
    one->create(kA, "Rack", "id", "r", {});
    one->create(kA + ",Rack=r", "Fan", "id", "1", {});
    one->commit();
    one = store.begin(33);
    two = store.begin(22);
    one->create(kA + ",Rack=r", "Fan", "id", "2", {});
    expectConflict([&] { two->create(kA + ",Rack=r", "Fan", "id", "3", {}); },
                   "the number of 'Fan' objects under " + kA +
                       ",Rack=r is being changed by transaction 33");
    one->commit();
    two = store.begin(44);
    one = store.begin(55);
    one->remove(kA + ",Rack=r,Fan=2");
    one->commit();
    expectConflict([&] { two->remove(kA + ",Rack=r,Fan=1"); },
                   "the number of 'Fan' objects under " + kA +
                       ",Rack=r was changed since this transaction began, by transaction 55");
}

}
}
