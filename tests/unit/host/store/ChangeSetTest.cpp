// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "store/ChangeSet.h"
#include "SampleStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <stdexcept>

namespace OrvHost {

// For the messages of failed tests.
void PrintTo(const ObjectChange& change, std::ostream* out) {
    *out << change.dn << " (" << change.className << ")";
}

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::SizeIs;
using Kind = ObjectChange::Kind;

const std::string kA = "Network=1,Node=a";
const std::string kB = "Network=1,Node=b";

auto change(Kind kind, const std::string& dn, const std::string& className) {
    return AllOf(Field(&ObjectChange::kind, kind), Field(&ObjectChange::dn, dn),
                 Field(&ObjectChange::className, className));
}

auto attribute(const std::string& name, const AttributeValue& before, const AttributeValue& after) {
    return AllOf(Field(&AttributeChange::name, name), Field(&AttributeChange::before, before),
                 Field(&AttributeChange::after, after));
}

class ChangeSetTest : public testing::Test, protected SampleStore {
protected:
    void commit(const std::function<void(StoreTransaction&)>& work,
                const std::string& author = {}) {
        const auto begun = store.begin(++mLast, author);
        work(*begun);
        begun->commit();
    }

    std::unique_ptr<StoreTransaction> tx = store.begin(11, "alice");

private:
    TransactionId mLast = 100;
};

TEST_F(ChangeSetTest, Changes_NothingWritten_AreNone) {
    const ChangeSet changes = tx->changes();
    EXPECT_THAT(changes.objects, IsEmpty());
    EXPECT_EQ(changes.transaction, 11U);
    EXPECT_EQ(changes.author, "alice");
    EXPECT_EQ(changes.number, kNever);
}

TEST_F(ChangeSetTest, Changes_Set_NamesTheAttributesThatDiffer) {
    tx->set(kA, {{"label", text("new")}, {"tags", texts({"x", "y"})}});
    const ChangeSet changes = tx->changes();
    ASSERT_THAT(changes.objects, ElementsAre(change(Kind::Changed, kA, "Node")));
    EXPECT_THAT(changes.objects[0].attributes,
                ElementsAre(attribute("label", text("first"), text("new")),
                            attribute("tags", none(ValueKind::String), texts({"x", "y"}))));
}

TEST_F(ChangeSetTest, Changes_WrittenAndWrittenBack_AreNone) {
    tx->set(kA, {{"label", text("new")}});
    tx->set(kA, {{"label", text("first")}});
    EXPECT_THAT(tx->changes().objects, IsEmpty());
}

TEST_F(ChangeSetTest, Changes_Unset_HaveNoValuesAfter) {
    tx->set(kA, {{"label", none(ValueKind::String)}});
    const ChangeSet changes = tx->changes();
    ASSERT_THAT(changes.objects, SizeIs(1));
    EXPECT_THAT(changes.objects[0].attributes,
                ElementsAre(attribute("label", text("first"), none(ValueKind::String))));
}

TEST_F(ChangeSetTest, Changes_Created_ComeParentsFirstWithTheirValues) {
    tx->create(kB, "Rack", "id", "r", {});
    tx->create(kB + ",Rack=r", "Fan", "id", "f", {});
    tx->create("Network=1", "Node", "id", "c", {{"label", text("made")}});
    const ChangeSet changes = tx->changes();
    ASSERT_THAT(changes.objects, ElementsAre(change(Kind::Created, kB + ",Rack=r", "Rack"),
                                             change(Kind::Created, kB + ",Rack=r,Fan=f", "Fan"),
                                             change(Kind::Created, "Network=1,Node=c", "Node")));
    EXPECT_THAT(changes.objects[2].attributes,
                ElementsAre(attribute("label", none(ValueKind::String), text("made"))));
}

TEST_F(ChangeSetTest, Changes_CreatedAndDeletedAgain_AreNone) {
    tx->create("Network=1", "Node", "id", "c", {});
    tx->remove("Network=1,Node=c");
    EXPECT_THAT(tx->changes().objects, IsEmpty());
}

TEST_F(ChangeSetTest, Changes_Deleted_ComeChildrenFirstWithTheValuesBefore) {
    tx->set(kA, {{"label", text("written before the delete")}});
    tx->remove("Network=1");
    const ChangeSet changes = tx->changes();
    ASSERT_THAT(changes.objects, SizeIs(3));
    EXPECT_THAT(changes.objects[2], change(Kind::Deleted, "Network=1", "Network"));
    const auto& deletedA = changes.objects[changes.objects[0].dn == kA ? 0 : 1];
    EXPECT_THAT(deletedA, change(Kind::Deleted, kA, "Node"));
    EXPECT_THAT(deletedA.attributes,
                ElementsAre(attribute("label", text("first"), none(ValueKind::String)),
                            Field(&AttributeChange::name, "serial")));
}

TEST_F(ChangeSetTest, Changes_DeletedAndCreatedAgain_AreBoth) {
    tx->remove(kA);
    tx->create("Network=1", "Node", "id", "a", {{"label", text("again")}});
    EXPECT_THAT(tx->changes().objects,
                ElementsAre(change(Kind::Deleted, kA, "Node"), change(Kind::Created, kA, "Node")));
}

TEST_F(ChangeSetTest, Changes_OfEachKind_ComeInFixedOrder) {
    tx->set("Network=1,Node=b", {{"label", text("2")}});
    tx->create("Network=1", "Node", "id", "c", {});
    tx->remove(kA);
    EXPECT_THAT(tx->changes().objects,
                ElementsAre(change(Kind::Deleted, kA, "Node"),
                            change(Kind::Created, "Network=1,Node=c", "Node"),
                            change(Kind::Changed, kB, "Node")));
}

TEST_F(ChangeSetTest, Changes_OfAnEndedTransaction_AreRefused) {
    tx->rollback();
    EXPECT_EQ(codeOf([&] { tx->changes(); }), OrvNotActive);
}

TEST_F(ChangeSetTest, Watch_EachCommit_IsReportedOnceInOrderWithItsAuthor) {
    std::vector<ChangeSet> seen;
    const auto subscription =
        store.watch([&](const ChangeSet& changes) { seen.push_back(changes); });
    commit([](StoreTransaction& one) { one.set(kA, {{"label", text("1")}}); }, "bob");
    commit([](StoreTransaction&) {}, "changed nothing");
    tx->set(kB, {{"label", text("2")}});
    EXPECT_THAT(seen, SizeIs(1));
    tx->commit();

    ASSERT_THAT(seen, SizeIs(2));
    EXPECT_EQ(seen[0].author, "bob");
    EXPECT_THAT(seen[0].objects, ElementsAre(change(Kind::Changed, kA, "Node")));
    EXPECT_EQ(seen[1].author, "alice");
    EXPECT_EQ(seen[1].transaction, 11U);
    EXPECT_THAT(seen[1].objects, ElementsAre(change(Kind::Changed, kB, "Node")));
    EXPECT_EQ(seen[0].number + 1, seen[1].number);
}

TEST_F(ChangeSetTest, Watch_RolledBack_IsNotReported) {
    int calls = 0;
    const auto subscription = store.watch([&](const ChangeSet&) { ++calls; });
    tx->set(kA, {{"label", text("1")}});
    tx->rollback();
    EXPECT_EQ(calls, 0);
}

TEST_F(ChangeSetTest, Watch_DuringTheCall_TheCommitCanBeRead) {
    AttributeValue read;
    const auto subscription =
        store.watch([&](const ChangeSet&) { read = store.begin(77)->get(kA, "label"); });
    commit([](StoreTransaction& one) { one.set(kA, {{"label", text("1")}}); });
    EXPECT_EQ(read, text("1"));
}

TEST_F(ChangeSetTest, Watch_WatcherThrows_CommitStandsAndOthersAreCalled) {
    int calls = 0;
    const auto bad = store.watch([](const ChangeSet&) { throw std::runtime_error("no room"); });
    const auto good = store.watch([&](const ChangeSet&) { ++calls; });
    EXPECT_NO_THROW(commit([](StoreTransaction& one) { one.set(kA, {{"label", text("1")}}); }));
    EXPECT_EQ(store.begin(33)->get(kA, "label"), text("1"));
    EXPECT_EQ(calls, 1);
}

TEST_F(ChangeSetTest, Watch_SubscriptionEnded_IsCalledNoMore) {
    int calls = 0;
    {
        auto first = store.watch([&](const ChangeSet&) { ++calls; });
        const auto moved = std::move(first);
        commit([](StoreTransaction& one) { one.set(kA, {{"label", text("1")}}); });
        EXPECT_EQ(calls, 1);
    }
    commit([](StoreTransaction& one) { one.set(kA, {{"label", text("2")}}); });
    EXPECT_EQ(calls, 1);
}

TEST_F(ChangeSetTest, Conflict_WithATransactionThatHasAnAuthor_NamesIt) {
    const auto other = store.begin(22, "bob");
    tx->set(kA, {{"label", text("1")}});
    EXPECT_STREQ(errorOf([&] {
                     other->set(kA, {{"label", text("2")}});
                 }).what(),
                 (kA + " is being changed by transaction 11 of alice").c_str());
    tx->create("Network=1", "Node", "id", "c", {});
    const auto third = store.begin(33, "carol");
    EXPECT_STREQ(errorOf([&] { third->create("Network=1", "Node", "id", "c", {}); }).what(),
                 "Network=1,Node=c is being created by transaction 11 of alice");
    tx->commit();
    EXPECT_STREQ(
        errorOf([&] {
            third->set(kA, {{"label", text("3")}});
        }).what(),
        (kA + " was changed since this transaction began, by transaction 11 of alice").c_str());
}

}
}
