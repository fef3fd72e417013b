// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StoreLogScene.h"
#include "store/LogChange.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

const std::string kA = "Network=1,Node=a";
const std::string kB = "Network=1,Node=b";

class StoreLogTest : public StoreLogScene {
protected:
    static void setLabel(MoStore& where, const std::string& dn, const std::string& label) {
        const auto tx = where.begin(7, "alice");
        tx->set(dn, "label", text(label));
        tx->commit();
    }
    static void removeAt(MoStore& where, const std::string& dn) {
        const auto tx = where.begin(7, "alice");
        tx->remove(dn);
        tx->commit();
    }
    /// Both stores are refused \p change with a text that ends with \p reason, and stay as they
    /// were.
    void expectDoesNotFit(const std::string& change, const std::string& reason) {
        const auto before = contentOf(other);
        log.inject(change);
        const HostError error = errorOf([&] { other.catchUp(); });
        EXPECT_EQ(error.code(), OrvHostStoreUnavailable);
        EXPECT_THAT(error.what(), AllOf(StartsWith("the entry at position "), HasSubstr(reason)));
        EXPECT_EQ(contentOf(other), before);
    }
    /// The text with which a store refuses the log, which holds \p object at \p id.
    std::string whyRefused(ObjectId id, MemoryLog::Object object) {
        log.put(id, std::move(object));
        MoStore fresh(model);
        const HostError error = errorOf([&] { fresh.attach(log); });
        EXPECT_EQ(error.code(), OrvHostStoreUnavailable);
        EXPECT_EQ(fresh.size(), 0U);
        return error.what();
    }
    static void createAt(MoStore& where, const std::string& parent, const std::string& className,
                         const std::string& name) {
        const auto tx = where.begin(7, "alice");
        tx->create(parent, className, "id", name, {});
        tx->commit();
    }
    void expectConflict(StoreTransaction& tx, const std::string& expected) {
        const HostError error = errorOf([&] { tx.commit(); });
        EXPECT_EQ(error.code(), OrvHostWriteConflict);
        EXPECT_EQ(error.what(), expected);
        EXPECT_EQ(tx.conflict(), expected);
    }
};

TEST_F(StoreLogTest, Attach_EmptyStore_TakesWhatTheLogHolds) {
    EXPECT_EQ(contentOf(other), contentOf(store));
    EXPECT_EQ(other.size(), 3U);
}

TEST_F(StoreLogTest, Attach_BothHaveObjects_IsRefused) {
    MoStore third(model);
    third.load("Network=2", {});
    EXPECT_EQ(codeOf([&] { third.attach(log); }), OrvHostWrongState);
}

TEST_F(StoreLogTest, Attach_AfterACommit_IsRefused) {
    SampleStore late;
    createAt(late.store, "Network=1", "Node", "early");
    MemoryLog empty;
    EXPECT_EQ(codeOf([&] { late.store.attach(empty); }), OrvHostWrongState);
    EXPECT_TRUE(late.store.begin(1)->exists("Network=1,Node=early"));
    EXPECT_THAT(empty.objects(), IsEmpty());
}

TEST_F(StoreLogTest, Attach_Twice_IsRefused) {
    EXPECT_EQ(codeOf([&] { store.attach(log); }), OrvHostWrongState);
}

TEST_F(StoreLogTest, Attach_LogThatIsCutOff_CanBeTriedAgain) {
    MoStore third(model);
    log.cutOffLoad(2);
    EXPECT_EQ(codeOf([&] { third.attach(log); }), OrvHostStoreUnavailable);
    EXPECT_EQ(third.size(), 0U);
    log.cutOffLoad(0);
    third.attach(log);
    EXPECT_EQ(contentOf(third), contentOf(store));
}

TEST_F(StoreLogTest, Load_AfterAttach_IsRefused) {
    EXPECT_EQ(codeOf([&] { store.load("Network=3", {}); }), OrvHostWrongState);
    EXPECT_EQ(store.size(), 3U);
}

TEST_F(StoreLogTest, CatchUp_WithoutALog_IsRefused) {
    MoStore alone(model);
    EXPECT_EQ(codeOf([&] { alone.catchUp(); }), OrvHostWrongState);
    EXPECT_EQ(codeOf([&] { alone.reload(); }), OrvHostWrongState);
}

TEST_F(StoreLogTest, Attach_ObjectsThatCannotBe_AreRefused) {
    const ClassIndex network = *model.findClass("Network");
    const ClassIndex node = *model.findClass("Node");
    const ObjectId top = log.objects().begin()->first;
    const ObjectId next = objectId(0, 1000);
    EXPECT_THAT(whyRefused(next, {top, node, "x,Node=y", "", 0}),
                HasSubstr("'x,Node=y' cannot name an object"));
    EXPECT_THAT(whyRefused(next, {top, node, std::string("x\0y", 3), "", 0}),
                StartsWith("object 1000 of the store ('x"));
    EXPECT_THAT(whyRefused(next, {top, network, "n", "", 0}),
                HasSubstr("objects of class 'Network' do not stand under class 'Network'"));
    EXPECT_THAT(whyRefused(next, {0, node, "n", "", 0}),
                HasSubstr("objects of class 'Node' do not stand at the top level"));
    EXPECT_THAT(whyRefused(next, {top, 9999, "n", "", 0}), HasSubstr("there is no class 9999"));
    EXPECT_THAT(whyRefused(next, {objectId(0, 900), node, "n", "", 0}),
                HasSubstr("its parent 900 is not there"));
    EXPECT_THAT(whyRefused(next, {top, node, "a", "", 0}),
                HasSubstr("there are two objects " + kA));
    EXPECT_EQ(whyRefused(next, {top, node, "n", "", 77}),
              "the store is at commit 0, and an object in it is of commit 77");
    log.put(next, {top, node, "n", "", 0});
    EXPECT_THAT(whyRefused(objectId(3, 0), {top, node, "m", "", 2}),
                HasSubstr("it was changed before it was created"));
}

TEST_F(StoreLogTest, Commit_IsSeenByTheOtherAfterItCatchesUp) {
    const auto tx = store.begin(1);
    tx->create("Network=1", "Node", "id", "c", {{"label", text("new")}, {"tags", texts({"x"})}});
    tx->create("Network=1,Node=c", "Rack", "id", "r", {});
    tx->set(kA, {{"label", text("changed")}, {"peers", refs({kB})}});
    tx->remove(kB);
    tx->commit();
    EXPECT_FALSE(other.begin(2)->exists("Network=1,Node=c"));
    other.catchUp();
    EXPECT_TRUE(other.begin(2)->exists("Network=1,Node=c,Rack=r"));
    EXPECT_EQ(other.begin(2)->get(kA, "label"), text("changed"));
    EXPECT_FALSE(other.begin(2)->exists(kB));
    expectEqualStores();
}

TEST_F(StoreLogTest, Commit_OpenSnapshotOfTheOther_StaysAsItWas) {
    const auto before = other.begin(2);
    setLabel(store, kA, "changed");
    removeAt(store, kB);
    other.catchUp();
    EXPECT_EQ(before->get(kA, "label"), text("first"));
    EXPECT_TRUE(before->exists(kB));
}

TEST_F(StoreLogTest, Commit_DeletedAndCreatedAgain_IsTheNewObject) {
    setLabel(store, kA, "old");
    const auto tx = store.begin(1);
    tx->remove(kA);
    tx->create("Network=1", "Node", "id", "a", {{"height", integer(3)}});
    tx->create(kA, "Rack", "id", "r", {});
    tx->commit();
    other.catchUp();
    EXPECT_EQ(other.begin(2)->get(kA, "label"), none(ValueKind::String));
    EXPECT_TRUE(other.begin(2)->exists(kA + ",Rack=r"));
    expectEqualStores();
}

TEST_F(StoreLogTest, Commit_NothingLeft_MakesNoEntry) {
    const auto tx = store.begin(1);
    tx->create("Network=1", "Node", "id", "c", {});
    tx->remove("Network=1,Node=c");
    tx->commit();
    store.begin(2)->commit();
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST_F(StoreLogTest, Commit_OfDifferentObjects_GoesSideBySide) {
    const auto tx = other.begin(2);
    tx->set(kB, "label", text("b"));
    setLabel(store, kA, "a");
    tx->commit();
    expectEqualStores();
    EXPECT_EQ(store.begin(3)->get(kB, "label"), text("b"));
}

TEST_F(StoreLogTest, Commit_ObjectThatTheOtherHostChanged_IsAConflict) {
    const auto tx = other.begin(2);
    tx->set(kA, "label", text("b"));
    setLabel(store, kA, "a");
    expectConflict(*tx, kA + " was changed since this transaction began, by transaction 7 of "
                             "alice on a");
    EXPECT_EQ(other.begin(3)->get(kA, "label"), text("a"));
    EXPECT_EQ(log.entries().size(), 1U);
}

TEST_F(StoreLogTest, Check_ObjectThatTheOtherHostChanged_IsToldBeforeTheCommit) {
    const auto tx = other.begin(2);
    tx->set(kA, "label", text("b"));
    setLabel(store, kA, "a");
    EXPECT_THAT(tx->check(), IsEmpty());
    other.catchUp();
    EXPECT_THAT(tx->check(), ElementsAre("the transaction met a conflict: " + kA +
                                         " was changed since this transaction began, by "
                                         "transaction 7 of alice on a"));
}

TEST_F(StoreLogTest, Commit_ObjectThatTheOtherHostDeleted_IsAConflict) {
    const auto tx = other.begin(2);
    tx->set(kA, "label", text("b"));
    removeAt(store, kA);
    expectConflict(*tx, kA + " was deleted since this transaction began, by transaction 7 of "
                             "alice on a");
}

TEST_F(StoreLogTest, Commit_ChildOfAnObjectThatTheOtherHostDeleted_IsAConflict) {
    const auto tx = other.begin(2);
    tx->create(kA, "Rack", "id", "r", {});
    removeAt(store, kA);
    expectConflict(*tx, kA + " was deleted since this transaction began, by transaction 7 of "
                             "alice on a");
}

TEST_F(StoreLogTest, Commit_DeletionOfAnObjectThatTheOtherHostGaveAChild_IsAConflict) {
    const auto tx = other.begin(2);
    tx->remove("Network=1");
    createAt(store, kA, "Rack", "r");
    expectConflict(*tx, "the children of " + kA +
                            " were changed since this transaction began, by transaction 7 of "
                            "alice on a");
    expectEqualStores();
}

TEST_F(StoreLogTest, Commit_DnThatTheOtherHostCreated_IsAConflict) {
    const auto tx = other.begin(2);
    tx->create("Network=1", "Node", "id", "c", {});
    createAt(store, "Network=1", "Node", "c");
    expectConflict(*tx, "Network=1,Node=c was created since this transaction began, by "
                        "transaction 7 of alice on a");
}

TEST_F(StoreLogTest, Commit_BoundedChildrenThatTheOtherHostChanged_IsAConflict) {
    createAt(store, kA, "Rack", "r");
    other.catchUp();
    const auto tx = other.begin(2);
    tx->create(kA + ",Rack=r", "Fan", "id", "1", {});
    createAt(store, kA + ",Rack=r", "Fan", "2");
    expectConflict(*tx, "the number of 'Fan' objects under " + kA +
                            ",Rack=r was changed since this transaction began, by transaction 7 "
                            "of alice on a");
}

TEST_F(StoreLogTest, Commit_ChildBesideAChildOfTheOtherHost_GoesSideBySide) {
    const auto tx = other.begin(2);
    tx->create(kA, "Rack", "id", "s", {});
    createAt(store, kA, "Rack", "r");
    tx->commit();
    EXPECT_THAT(namesOf(*other.begin(3), kA, "Rack"), ElementsAre("r", "s"));
    expectEqualStores();
}

TEST_F(StoreLogTest, Commit_ObjectThatTheOtherHostReplaced_IsAConflict) {
    const auto tx = other.begin(2);
    tx->remove(kA);
    tx->create("Network=1", "Node", "id", "a", {});
    const auto rival = store.begin(8);
    rival->remove(kA);
    rival->create("Network=1", "Node", "id", "a", {});
    rival->commit();
    expectConflict(*tx, kA + " was deleted since this transaction began, by transaction 8 on a");
}

TEST_F(StoreLogTest, Commit_LogAway_NothingHasHappened) {
    const auto tx = store.begin(1);
    tx->set(kA, "label", text("a"));
    log.failNext(MemoryLog::Failure::Unavailable);
    const HostError error = errorOf([&] { tx->commit(); });
    EXPECT_EQ(error.code(), OrvHostStoreUnavailable);
    EXPECT_EQ(store.begin(2)->get(kA, "label"), text("first"));
    tx->rollback();
    setLabel(store, kA, "later");
    expectEqualStores();
}

TEST_F(StoreLogTest, Commit_InDoubtAndAppended_IsCommitted) {
    log.failNext(MemoryLog::Failure::InDoubtAppended);
    setLabel(store, kA, "a");
    EXPECT_EQ(store.begin(2)->get(kA, "label"), text("a"));
    expectEqualStores();
}

TEST_F(StoreLogTest, Commit_InDoubtAndNotAppended_IsRefused) {
    log.failNext(MemoryLog::Failure::InDoubtNotAppended);
    EXPECT_EQ(codeOf([&] { setLabel(store, kA, "a"); }), OrvHostStoreUnavailable);
    EXPECT_EQ(store.begin(2)->get(kA, "label"), text("first"));
    setLabel(store, kA, "later");
    expectEqualStores();
}

TEST_F(StoreLogTest, Commit_LogWithAnotherHistory_IsRefusedForEver) {
    setLabel(store, kA, "a");
    log.loseLast();
    const HostError error = errorOf([&] { setLabel(store, kB, "b"); });
    EXPECT_EQ(error.code(), OrvHostStoreUnavailable);
    EXPECT_STREQ(error.what(), "position 1 of the log is not what it was");
    EXPECT_EQ(store.logFault(), "position 1 of the log is not what it was");
    EXPECT_THAT(errorOf([&] { setLabel(store, kB, "b"); }).what(),
                HasSubstr("nothing is committed any more: position 1"));
    EXPECT_EQ(store.begin(2)->get(kA, "label"), text("a"));
    EXPECT_EQ(log.entries().size(), 1U);
}

TEST_F(StoreLogTest, CatchUp_EntriesAreTrimmed_IsRefused) {
    setLabel(store, kA, "a");
    setLabel(store, kA, "b");
    log.trim(1);
    setLabel(store, kA, "c");
    EXPECT_EQ(codeOf([&] { other.catchUp(); }), OrvHostStoreUnavailable);
    EXPECT_THAT(other.logFault(), HasSubstr("position 0"));
    MoStore fresh(model);
    fresh.attach(log);
    EXPECT_EQ(contentOf(fresh), contentOf(store));
}

TEST_F(StoreLogTest, CatchUp_EntryThatDoesNotFit_IsRefused) {
    LogChange change;
    change.deleted.push_back("Network=9");
    log.inject(change.encoded());
    const HostError error = errorOf([&] { other.catchUp(); });
    EXPECT_STREQ(error.what(), "the entry at position 1 of the log cannot be applied: there is no "
                               "object 'Network=9'");
    EXPECT_EQ(codeOf([&] { other.catchUp(); }), OrvHostStoreUnavailable);
}

TEST_F(StoreLogTest, CatchUp_EntryThatIsCutOff_IsRefused) {
    LogChange change;
    change.created.push_back({"Network=2", {}});
    std::string bytes = change.encoded();
    bytes.resize(bytes.size() - 3);
    log.inject(bytes);
    EXPECT_THAT(errorOf([&] { other.catchUp(); }).what(), HasSubstr("the bytes end too early"));
}

TEST_F(StoreLogTest, CatchUp_PositionsWithAGap_AreRefused) {
    setLabel(store, kA, "a");
    log.skipPositions(5);
    EXPECT_STREQ(errorOf([&] { other.catchUp(); }).what(),
                 "the log has position 6, and what was read from it ends at 0");
    EXPECT_EQ(other.begin(2)->get(kA, "label"), text("first"));
}

TEST_F(StoreLogTest, CatchUp_ObjectThatIsDeletedTwice_IsRefused) {
    expectDoesNotFit(LogChange{{kA, kA}, {}, {}}.encoded(), "'" + kA + "' is deleted twice");
}

TEST_F(StoreLogTest, CatchUp_ObjectThatIsDeletedWithoutItsChildren_IsRefused) {
    expectDoesNotFit(LogChange{{"Network=1"}, {}, {}}.encoded(),
                     "'Network=1' is deleted, and its children are not, or after it");
}

TEST_F(StoreLogTest, CatchUp_ObjectThatIsThereAlready_IsRefused) {
    expectDoesNotFit(LogChange{{}, {{kA, {}}}, {}}.encoded(),
                     "there is an object '" + kA + "' already");
}

TEST_F(StoreLogTest, CatchUp_ObjectThatIsCreatedTwice_IsRefused) {
    expectDoesNotFit(LogChange{{}, {{"Network=2", {}}, {"Network=2", {}}}, {}}.encoded(),
                     "there is an object 'Network=2' already");
}

TEST_F(StoreLogTest, CatchUp_ChildOfAnObjectThatIsDeleted_IsRefused) {
    expectDoesNotFit(LogChange{{kA}, {{kA + ",Rack=r", {}}}, {}}.encoded(),
                     "'" + kA + "' is deleted and given children");
}

TEST_F(StoreLogTest, CatchUp_ClassAtAWrongPlace_IsRefused) {
    expectDoesNotFit(LogChange{{}, {{"Network=1,Fan=9", {}}}, {}}.encoded(),
                     "objects of class 'Fan' do not stand under class 'Network'");
    MoStore third(model);
    MemoryLog empty;
    third.attach(empty);
    empty.inject(LogChange{{}, {{"Node=7", {}}}, {}}.encoded());
    EXPECT_THAT(errorOf([&] { third.catchUp(); }).what(),
                HasSubstr("objects of class 'Node' do not stand at the top level"));
}

TEST_F(StoreLogTest, CatchUp_ObjectThatIsChangedTwice_IsRefused) {
    expectDoesNotFit(LogChange{{}, {}, {{kA, {}}, {kA, {}}}}.encoded(),
                     "'" + kA + "' is changed twice");
}

TEST_F(StoreLogTest, CatchUp_BytesBehindTheEnd_AreRefused) {
    expectDoesNotFit(LogChange{{}, {{"Network=2", {}}}, {}}.encoded() + "xyz",
                     "there are more bytes than those of the change");
}

TEST_F(StoreLogTest, CatchUp_NumberThatIsTooLong_IsRefused) {
    const std::string attributes("\0\2\200\0", 4); // no values, in two bytes
    expectDoesNotFit(LogChange{{}, {{"Network=2", attributes}}, {}}.encoded(),
                     "a number is longer than it must be");
}

TEST_F(StoreLogTest, CatchUp_DeletedObjects_TakeNoMemory) {
    for (int round = 0; round < 50; ++round) {
        createAt(store, "Network=1", "Node", "n");
        removeAt(store, "Network=1,Node=n");
        other.catchUp();
    }
    EXPECT_EQ(other.memory().objects, 3U);
}

TEST_F(StoreLogTest, CatchUp_DeletedObjectsOfAnOpenSnapshot_Stay) {
    const auto reader = other.begin(2);
    removeAt(store, kB);
    createAt(store, "Network=1", "Node", "c");
    other.catchUp();
    EXPECT_THAT(namesOf(*reader, "Network=1", "Node"), ElementsAre("a", "b"));
}

TEST_F(StoreLogTest, Reload_AfterAFault_TakesWhatTheLogHolds) {
    setLabel(other, kA, "a");
    log.loseLast();
    EXPECT_EQ(codeOf([&] { setLabel(other, kB, "b"); }), OrvHostStoreUnavailable);
    other.reload();
    EXPECT_EQ(other.logFault(), "");
    setLabel(other, kB, "b");
    store.reload();
    expectEqualStores();
    EXPECT_EQ(store.begin(3)->get(kB, "label"), text("b"));
}

const std::string kLoadedAnewText = "the objects were loaded anew since this transaction began: "
                                    "the store has another history now";

TEST_F(StoreLogTest, Reload_OpenTransactions_ReadOnAndCannotCommitWhatTheyWrote) {
    setLabel(other, kA, "lost");
    const auto reader = other.begin(2);
    const auto writer = other.begin(3);
    writer->set(kB, "label", text("written before"));
    log.loseLast();
    const auto changed = std::find_if(log.objects().begin(), log.objects().end(),
                                      [](const auto& one) { return one.second.name == "a"; });
    MemoryLog::Object otherHistory = changed->second;
    otherHistory.attributes.clear();
    log.put(changed->first, otherHistory);
    EXPECT_EQ(codeOf([&] { other.catchUp(); }), OrvHostStoreUnavailable);
    other.reload();
    EXPECT_EQ(reader->get(kA, "label"), text("lost"));
    EXPECT_THAT(reader->check(), IsEmpty());
    reader->commit();
    EXPECT_THAT(writer->check(), ElementsAre("the transaction met a conflict: " + kLoadedAnewText));
    // Who begins now is not in the way of those that cannot commit, nor they in its way.
    const auto next = other.begin(4);
    EXPECT_EQ(next->get(kA, "label"), none(ValueKind::String));
    next->set(kB, "label", text("goes on"));
    writer->set(kA, "label", text("more"));
    next->commit();
    expectConflict(*writer, kLoadedAnewText);
    EXPECT_EQ(writer->get(kB, "label"), text("written before"));
    store.reload();
    expectEqualStores();
    EXPECT_EQ(store.begin(5)->get(kB, "label"), text("goes on"));
}

TEST_F(StoreLogTest, Reload_BehindTrimmedEntries_GoesOn) {
    setLabel(store, kA, "a");
    setLabel(store, kA, "b");
    log.trim(1);
    EXPECT_EQ(codeOf([&] { other.catchUp(); }), OrvHostStoreUnavailable);
    other.reload();
    setLabel(other, kB, "b");
    expectEqualStores();
}

TEST_F(StoreLogTest, Reload_LogIsAway_LeavesAllAsItIs) {
    log.cutOffLoad(1);
    EXPECT_EQ(codeOf([&] { other.reload(); }), OrvHostStoreUnavailable);
    log.cutOffLoad(0);
    setLabel(other, kA, "a");
    expectEqualStores();
}

TEST_F(StoreLogTest, Commit_InDoubtBeforeItIsKnownWhatToAppend_IsRefused) {
    log.failNext(MemoryLog::Failure::InDoubtAtOnce);
    EXPECT_EQ(codeOf([&] { setLabel(store, kA, "a"); }), OrvHostStoreUnavailable);
    setLabel(store, kA, "later");
    expectEqualStores();
}

TEST_F(StoreLogTest, Commit_InDoubtAndTheLogStaysAway_IsUnknownAndComesBack) {
    log.failNext(MemoryLog::Failure::InDoubtAppended);
    log.failFind();
    {
        const auto tx = store.begin(1);
        tx->set(kA, "label", text("doubtful"));
        const HostError error = errorOf([&] { tx->commit(); });
        EXPECT_EQ(error.code(), OrvHostOutcomeUnknown);
        EXPECT_THAT(error.what(), HasSubstr(log.entries()[0].mark.id));
    }
    EXPECT_EQ(store.begin(2)->get(kA, "label"), text("first"));
    setLabel(store, kB, "next");
    EXPECT_EQ(store.begin(3)->get(kA, "label"), text("doubtful"));
    expectEqualStores();
}

TEST_F(StoreLogTest, Commit_InDoubtAndFoundElsewhere_IsUnknownAndTheLast) {
    log.failNext(MemoryLog::Failure::InDoubtAppended);
    log.skipPositions(5);
    EXPECT_EQ(codeOf([&] { setLabel(store, kA, "a"); }), OrvHostOutcomeUnknown);
    EXPECT_EQ(store.logFault(), "the log has position 6, and what was read from it ends at 0");
}

TEST_F(StoreLogTest, Commit_ObjectsOfTheOtherHost_AreTheSameRows) {
    createAt(store, "Network=1", "Node", "c");
    other.catchUp();
    setLabel(other, "Network=1,Node=c", "changed");
    createAt(other, "Network=1,Node=c", "Rack", "r");
    removeAt(other, kB);
    expectEqualStores();
    EXPECT_EQ(log.objects().size(), other.size());
    removeAt(store, "Network=1,Node=c");
    expectEqualStores();
    EXPECT_EQ(log.objects().size(), 2U);
}

TEST_F(StoreLogTest, Watch_ChangedObjects_ComeByDnOnBothHosts) {
    for (const char* name : {"n5", "n3", "n1", "n4", "n2"}) {
        createAt(store, "Network=1", "Node", name);
    }
    other.catchUp();
    std::vector<std::string> own;
    std::vector<std::string> far;
    const auto note = [](std::vector<std::string>& dns) {
        return [&dns](const ChangeSet& changes) {
            for (const ObjectChange& one : changes.objects) {
                dns.push_back(one.dn);
            }
        };
    };
    const auto ownSubscription = store.watch(note(own));
    const auto farSubscription = other.watch(note(far));
    const auto tx = store.begin(1);
    for (const char* name : {"n4", "n1", "n5", "n2", "n3"}) {
        tx->set("Network=1,Node=" + std::string(name), "label", text("x"));
    }
    tx->commit();
    other.catchUp();
    EXPECT_EQ(far, own);
    EXPECT_TRUE(std::is_sorted(far.begin(), far.end()));
    EXPECT_EQ(far.size(), 5U);
    LogChange change = LogChange::decoded(log.entries().back().change);
    EXPECT_EQ(change.changed.front().dn, "Network=1,Node=n1");
    for (const LogChange::Object& one : change.changed) {
        setLabel(store, one.dn, "y");
    }
    other.catchUp();
    std::reverse(change.changed.begin(), change.changed.end());
    log.inject(change.encoded()); // as another build could write it
    far.clear();
    other.catchUp();
    EXPECT_TRUE(std::is_sorted(far.begin(), far.end()));
    EXPECT_EQ(far.size(), 5U);
}

TEST_F(StoreLogTest, Watch_OtherHostsCommits_AreReportedWhenTheTurnIsOver) {
    std::vector<CommitNumber> seen;
    const auto subscription = other.watch([&](const ChangeSet& one) {
        seen.push_back(one.number);
        EXPECT_EQ(log.isInTurn(), false);
    });
    setLabel(store, kA, "1");
    setLabel(store, kA, "2");
    setLabel(other, kB, "3");
    EXPECT_THAT(seen, ElementsAre(1, 2, 3));
    setLabel(store, kA, "4");
    log.limitChange(1);
    EXPECT_NE(codeOf([&] { setLabel(other, kB, "5"); }), OrvOk);
    EXPECT_THAT(seen, ElementsAre(1, 2, 3, 4));
}

TEST_F(StoreLogTest, Watch_CommitOfTheOtherHost_IsReportedWithItsHost) {
    std::vector<ChangeSet> seen;
    const auto subscription = other.watch([&](const ChangeSet& one) { seen.push_back(one); });
    const auto own = other.begin(2, "bob");
    own->set(kB, "label", text("b"));
    own->commit();
    const auto tx = store.begin(1);
    tx->set(kA, "label", text("x"));
    tx->create(kB, "Rack", "id", "r", {});
    tx->commit();
    other.catchUp();
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_EQ(seen[0].author, "bob");
    EXPECT_EQ(seen[0].number, 1U);
    EXPECT_EQ(seen[1].author, "transaction 1 on a");
    EXPECT_EQ(seen[1].number, 2U);
    ASSERT_EQ(seen[1].objects.size(), 2U);
    EXPECT_EQ(seen[1].objects[0].dn, kB + ",Rack=r");
    EXPECT_EQ(seen[1].objects[1].attributes[0].before, text("first"));
    EXPECT_EQ(seen[1].objects[1].attributes[0].after, text("x"));
}

}
}
