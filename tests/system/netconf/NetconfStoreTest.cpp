// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What a client is told when the store of the host does not take a commit.

#include "DispatcherScene.h"
#include "MemoryLog.h"

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::HasSubstr;

struct OwnsLog {
    MemoryLog log; ///< outlives the host
};

class NetconfStoreTest : protected OwnsLog, public DispatcherScene {
protected:
    NetconfStoreTest() { host.store().attach(log, "pier"); }

    static std::string label(const std::string& text) { return element(tagged("userLabel", text)); }
    std::string labelNow() { return getConfig(element("<userLabel/>")); }
};

TEST_F(NetconfStoreTest, Commit_StoreIsAway_SaysWhyAndCanBeRepeated) {
    ASSERT_EQ(edit(label("new")), "ok");
    log.failNext(MemoryLog::Failure::Unavailable);
    EXPECT_THAT(ask("<commit/>"), AllOf(HasSubstr("<error-tag>operation-failed</error-tag>"),
                                        HasSubstr("the log is away")));
    EXPECT_THAT(labelNow(), HasSubstr(">Harbour<"));
    ASSERT_EQ(edit(label("newer")), "ok");
    EXPECT_EQ(ask("<commit/>"), "ok");
    EXPECT_THAT(labelNow(), HasSubstr(">newer<"));
}

TEST_F(NetconfStoreTest, Edit_OfRunning_StoreIsAway_SaysWhy) {
    log.failNext(MemoryLog::Failure::Unavailable);
    EXPECT_THAT(edit(label("new"), "running"), HasSubstr("the log is away"));
    EXPECT_THAT(labelNow(), HasSubstr(">Harbour<"));
}

TEST_F(NetconfStoreTest, Commit_OutcomeIsUnknown_SaysSo) {
    ASSERT_EQ(edit(label("new")), "ok");
    log.failFind();
    log.failNext(MemoryLog::Failure::InDoubtNotAppended);
    EXPECT_THAT(ask("<commit/>"), HasSubstr("OrvHostOutcomeUnknown"));
}

// It is in the log, and nobody knows it yet.
TEST_F(NetconfStoreTest, ConfirmedCommit_OutcomeIsUnknown_ItIsTakenBackNevertheless) {
    ASSERT_EQ(edit(label("new")), "ok");
    log.failFind();
    log.failNext(MemoryLog::Failure::InDoubtAppended);
    EXPECT_THAT(ask("<commit><confirmed/></commit>"), HasSubstr("OrvHostOutcomeUnknown"));
    EXPECT_THAT(editRunning(bob, label("theirs")), HasSubstr("waits for its confirmation"));
    EXPECT_EQ(ask("<cancel-commit/>"), "ok");
    EXPECT_THAT(labelNow(), HasSubstr(">Harbour<"));
    EXPECT_EQ(ask("<discard-changes/>"), "ok");
}

TEST_F(NetconfStoreTest, Commit_AnotherHostWasFaster_NamesItsClientAndTheHost) {
    MoStore other(host.model());
    other.attach(log, "quay");
    ASSERT_EQ(edit(label("new")), "ok");
    const auto rival = other.begin(7, "carol");
    rival->set("ManagedElement=1", "userLabel", {ValueKind::String, {std::string("theirs")}});
    rival->commit();
    EXPECT_THAT(ask("<commit/>"), AllOf(HasSubstr("<error-tag>in-use</error-tag>"),
                                        HasSubstr("by transaction 7 of carol on quay")));
    EXPECT_THAT(labelNow(), HasSubstr(">theirs<"));
}

}
}
