// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "store_postgresql/PostgresqlLog.h"
#include "Mixture.h"
#include "PostgresqlScene.h"

#include <gmock/gmock.h>

#include <atomic>
#include <csignal>
#include <memory>
#include <optional>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PostgresqlLogTest : public PostgresqlScene {};

TEST_F(PostgresqlLogTest, Store_IsAsItWasAfterANewStart) {
    fill();
    {
        Member member(target);
        const auto tx = member.store.begin(1);
        tx->set(kA, {{"label", text("new")}, {"tags", texts({"x", "y"})}, {"height", integer(-3)}});
        tx->create("Network=1", "Node", "id", "c", {{"mode", choice("blue")}});
        tx->create("Network=1,Node=c", "Rack", "id", "r", {});
        tx->remove("Network=1,Node=b");
        tx->commit();
        const auto second = member.store.begin(2);
        second->create("Network=1", "Node", "id", "b", {});
        second->commit();
    }
    Member member(target);
    const auto tx = member.store.begin(1);
    EXPECT_THAT(namesOf(*tx, "Network=1", "Node"), ElementsAre("a", "c", "b"));
    EXPECT_EQ(tx->get(kA, "label"), text("new"));
    EXPECT_EQ(tx->get(kA, "tags"), texts({"x", "y"}));
    EXPECT_EQ(tx->get(kA, "height"), integer(-3));
    EXPECT_EQ(tx->get(kA, "serial"), text("S-1"));
    EXPECT_EQ(tx->get("Network=1,Node=c", "mode"), choice("blue"));
    EXPECT_EQ(member.store.size(), 5U);
    setLabel(member.store, "newer");
    EXPECT_EQ(labelOf(member.store), text("newer"));
}

TEST_F(PostgresqlLogTest, Commit_OfAnotherHost_IsSeen) {
    fill();
    Member a(target, "a");
    Member b(target, "b");
    setLabel(a.store, "1");
    EXPECT_EQ(labelOf(b.store), text("first"));
    b.store.catchUp();
    EXPECT_EQ(labelOf(b.store), text("1"));
    setLabel(b.store, "2");
    const auto tx = a.store.begin(8); // does not know the entry of b yet
    tx->set("Network=1,Node=b", "label", text("3"));
    tx->commit();
    EXPECT_EQ(labelOf(a.store), text("2"));
    b.store.catchUp();
    EXPECT_EQ(contentOf(a.store), contentOf(b.store));
}

TEST_F(PostgresqlLogTest, Conflict_NamesTheOtherHostAndItsTransaction) {
    fill();
    Member a(target, "pier");
    Member b(target, "quay");
    const auto tx = b.store.begin(9);
    tx->set(kA, "label", text("late"));
    setLabel(a.store, "early");
    const HostError error = errorOf([&] { tx->commit(); });
    EXPECT_EQ(error.code(), OrvHostWriteConflict);
    EXPECT_EQ(error.what(),
              kA + " was changed since this transaction began, by transaction 7 of alice on pier");
    EXPECT_EQ(labelOf(b.store), text("early"));
}

TEST_F(PostgresqlLogTest, Conflict_DeletedParent_IsFound) {
    fill();
    Member a(target, "pier");
    Member b(target, "quay");
    const auto child = b.store.begin(1);
    child->create(kA, "Rack", "id", "r", {});
    child->create(kA + ",Rack=r", "Fan", "id", "f", {});
    const auto gone = a.store.begin(1);
    gone->remove(kA);
    gone->commit();
    EXPECT_EQ(codeOf([&] { child->commit(); }), OrvHostWriteConflict);
    EXPECT_EQ(contentOf(a.store), contentOf(b.store));
}

TEST_F(PostgresqlLogTest, Conflict_ChildThatCameFromElsewhere_KeepsTheParent) {
    fill();
    Member a(target, "pier");
    Member b(target, "quay");
    const auto gone = b.store.begin(1);
    gone->remove(kA);
    const auto child = a.store.begin(1);
    child->create(kA, "Rack", "id", "r", {});
    child->create(kA + ",Rack=r", "Fan", "id", "f", {});
    child->commit();
    EXPECT_EQ(codeOf([&] { gone->commit(); }), OrvHostWriteConflict);
    EXPECT_TRUE(b.store.begin(2)->exists(kA + ",Rack=r,Fan=f"));
}

TEST_F(PostgresqlLogTest, LargeTransaction_IsKept) {
    fill();
    {
        Member member(target);
        const auto tx = member.store.begin(1);
        for (int at = 0; at < 25000; ++at) {
            tx->create("Network=1", "Node", "id", "n" + std::to_string(at),
                       {{"label", text(std::to_string(at))}});
        }
        tx->commit();
        const auto second = member.store.begin(2);
        for (int at = 0; at < 25000; at += 2) {
            const std::string dn = "Network=1,Node=n" + std::to_string(at);
            second->set(dn, "label", text("changed"));
            second->remove("Network=1,Node=n" + std::to_string(at + 1));
        }
        second->commit();
        Member other(target, "b");
        EXPECT_EQ(contentOf(other.store), contentOf(member.store));
    }
    EXPECT_EQ(readPostgresqlInfo(target).objects, 12503U);
}

TEST_F(PostgresqlLogTest, Bytes_OfAnyValue_ComeBack) {
    fill();
    std::string all;
    for (char one = 1; one > 0; ++one) {
        all += one;
    }
    all += "\u00e4\u4e16\U0001F600";
    {
        Member member(target);
        setLabel(member.store, all);
        Member other(target, "b");
        setLabel(other.store, all + "'\\\"");
        member.store.catchUp();
        EXPECT_EQ(labelOf(member.store), text(all + "'\\\""));
    }
    Member fresh(target);
    EXPECT_EQ(labelOf(fresh.store), text(all + "'\\\""));
}

TEST_F(PostgresqlLogTest, Open_WithoutTables_SaysHowToMakeThem) {
    EXPECT_EQ(
        errorOf([&] { PostgresqlLog(target, model); }).what(),
        std::string("the store of PostgreSQL: relation \"head\" does not exist; orvhost store "
                    "init creates the tables"));
}

TEST_F(PostgresqlLogTest, Init_Twice_IsRefused) {
    initPostgresqlStore(target, model);
    EXPECT_THAT(errorOf([&] { initPostgresqlStore(target, model); }).what(),
                HasSubstr("relation \"head\" already exists"));
}

TEST_F(PostgresqlLogTest, Open_OtherModel_IsRefusedWithTheDifference) {
    fill();
    Model other = sampleStoreModel();
    other.classes[*other.findClass("Node")].attributes[1].name = "title";
    EXPECT_THAT(errorOf([&] { PostgresqlLog(target, other); }).what(),
                HasSubstr("it is of another model: attribute 'label' of class 'Node' is not there "
                          "any more"));
}

TEST_F(PostgresqlLogTest, Append_ModelWasChangedMeanwhile_IsRefused) {
    fill();
    Member member(target);
    sql("UPDATE head SET model = 'x'");
    EXPECT_EQ(codeOf([&] { setLabel(member.store, "1"); }), OrvHostStoreUnavailable);
    EXPECT_THAT(member.store.logFault(), HasSubstr("is of another model now"));
}

TEST_F(PostgresqlLogTest, Open_NewerFormat_IsRefused) {
    fill();
    sql("UPDATE head SET format = 2");
    EXPECT_THAT(errorOf([&] { PostgresqlLog(target, model); }).what(),
                HasSubstr("its format is 2, and this version knows format 1 only"));
}

TEST_F(PostgresqlLogTest, Open_PasswordInTheTarget_IsRefused) {
    const std::string error =
        errorOf([&] { PostgresqlLog(target + " password=geheim", model); }).what();
    EXPECT_THAT(error, HasSubstr("~/.pgpass or the variable PGPASSWORD"));
    EXPECT_EQ(error.find("geheim"), std::string::npos);
}

TEST_F(PostgresqlLogTest, Open_TargetThatIsNotUnderstood_SaysNothingOfThePassword) {
    for (const char* const wrong :
         {"postgresql://u:gehe%ZZim@h/x", "user=u password=geh eim", "host=h sslpassword=geheim"}) {
        const std::string error = errorOf([&] { PostgresqlLog(wrong, model); }).what();
        EXPECT_THAT(error, AnyOf(HasSubstr("expected postgresql://HOST/DATABASE or "),
                                 HasSubstr("~/.pgpass or the variable PGPASSWORD")));
        EXPECT_EQ(error.find("eim"), std::string::npos) << error;
        EXPECT_EQ(error.find("geh"), std::string::npos) << error;
    }
}

TEST_F(PostgresqlLogTest, Open_NoneOfTheServers_SaysWhyForEach) {
    EXPECT_THAT(errorOf([&] { PostgresqlLog("host=/nowhere,/elsewhere user=x", model); }).what(),
                AllOf(HasSubstr("/nowhere"), HasSubstr("; "), HasSubstr("/elsewhere")));
}

TEST_F(PostgresqlLogTest, Open_NoServer_SaysSo) {
    EXPECT_THAT(errorOf([&] { PostgresqlLog("host=/nowhere user=x", model); }).what(),
                AllOf(HasSubstr("the store of PostgreSQL: "), HasSubstr("/nowhere")));
}

TEST_F(PostgresqlLogTest, Fill_StoreWithObjects_IsRefused) {
    fill();
    PostgresqlLog log(target, model);
    EXPECT_FALSE(log.isNew());
    EXPECT_EQ(codeOf([&] { store.attach(log); }), OrvHostWrongState);
}

// The role of hosts, as docs/store.md names its rights.
TEST_F(PostgresqlLogTest, Rights_OfARoleThatOwnsNothing_Suffice) {
    fill();
    sql("CREATE ROLE clerk LOGIN; GRANT USAGE ON SCHEMA " + schema +
        " TO clerk; GRANT SELECT, UPDATE ON head TO clerk; GRANT SELECT, INSERT ON log TO clerk; "
        "GRANT SELECT, INSERT, UPDATE, DELETE ON objects TO clerk; GRANT SELECT ON model TO clerk");
    const std::string asClerk = server.target(schema, "clerk");
    Member member(asClerk);
    const auto tx = member.store.begin(1);
    tx->set(kA, "label", text("by a clerk"));
    tx->create("Network=1", "Node", "id", "c", {});
    tx->remove("Network=1,Node=b");
    tx->commit();
    EXPECT_EQ(readPostgresqlInfo(asClerk).objects, 3U);
    EXPECT_THAT(errorOf([&] { trimPostgresqlStore(asClerk, 0, 0s); }).what(),
                HasSubstr("permission denied"));
}

TEST_F(PostgresqlLogTest, Info_SaysWhatTheTablesHold) {
    fill();
    Member member(target, "pier");
    setLabel(member.store, "1");
    const PostgresqlInfo info = readPostgresqlInfo(target);
    EXPECT_EQ(info.objects, 3U);
    EXPECT_EQ(info.position, 1U);
    EXPECT_EQ(info.firstEntry, 1U);
    EXPECT_EQ(info.lastAuthor, "transaction 7 of alice on pier");
    EXPECT_NEAR(static_cast<double>(info.lastAt), static_cast<double>(std::time(nullptr)), 60);
    EXPECT_EQ(info.model, fingerprintOf(modelFacts(model)));
    EXPECT_GT(info.bytes, 8192U);
}

TEST_F(PostgresqlLogTest, Trim_KeepsWhatIsYoungOrAmongTheLatest) {
    fill();
    Member member(target);
    for (int at = 0; at < 10; ++at) {
        setLabel(member.store, std::to_string(at));
    }
    EXPECT_EQ(trimPostgresqlStore(target, 3, 3600s), 0U);
    EXPECT_EQ(trimPostgresqlStore(target, 20, 0s), 0U);
    EXPECT_EQ(trimPostgresqlStore(target, 3, 0s), 7U);
    EXPECT_EQ(readPostgresqlInfo(target).firstEntry, 8U);
    setLabel(member.store, "after");
    EXPECT_EQ(trimPostgresqlStore(target, 0, 0s), 4U);
    setLabel(member.store, "with none");
    EXPECT_EQ(contentOfNewHost(), contentOf(member.store));
}

// Somebody who holds an old entry keeps the tool from deleting it, and nobody from anything else.
TEST_F(PostgresqlLogTest, Trim_ThatTakesLong_KeepsNoCommitWaiting) {
    fill();
    Member member(target);
    for (int at = 0; at < 4; ++at) {
        setLabel(member.store, std::to_string(at));
    }
    PostgresqlConnection holder(target, {});
    holder.run("BEGIN");
    holder.run("SELECT pos FROM log WHERE pos = 1 FOR UPDATE");
    std::uint64_t deleted = 0;
    std::thread trimming([&] { deleted = trimPostgresqlStore(target, 2, 0s); });
    EXPECT_TRUE(happens([&] {
        return PostgresqlConnection(target, {})
                   .run("SELECT count(*) FROM pg_stat_activity WHERE query LIKE 'DELETE FROM log%' "
                        "AND wait_event_type = 'Lock'")
                   .number(0, 0) > 0;
    }));
    EXPECT_EQ(codeOf([&] { setLabel(member.store, "beside"); }), OrvOk);
    holder.run("COMMIT");
    trimming.join();
    EXPECT_EQ(deleted, 2U);
    EXPECT_EQ(contentOfNewHost(), contentOf(member.store));
}

TEST_F(PostgresqlLogTest, Trim_ThatWasCutOff_IsFinishedByTheNextOne) {
    fill();
    Member member(target);
    for (int at = 0; at < 5; ++at) {
        setLabel(member.store, std::to_string(at));
    }
    sql("UPDATE head SET first = 4, before = (SELECT id FROM log WHERE pos = 3); DELETE FROM log "
        "WHERE pos = 1");
    EXPECT_EQ(trimPostgresqlStore(target, 2, 0s), 2U);
    EXPECT_EQ(trimPostgresqlStore(target, 1, 0s), 1U);
    EXPECT_EQ(readPostgresqlInfo(target).firstEntry, 5U);
    member.store.catchUp();
}

TEST_F(PostgresqlLogTest, Trim_KeepsThoseOfTheLastHours) {
    fill();
    Member member(target);
    for (int at = 0; at < 20; ++at) {
        setLabel(member.store, std::to_string(at));
    }
    sql("UPDATE log SET at = now() - interval '2 hours' WHERE pos <= 13");
    EXPECT_EQ(trimPostgresqlStore(target, 0, 3h), 0U);
    EXPECT_EQ(trimPostgresqlStore(target, 0, 1h), 13U);
    EXPECT_EQ(readPostgresqlInfo(target).firstEntry, 14U);
}

TEST_F(PostgresqlLogTest, Follow_EntriesWereTrimmed_LoadsAnew) {
    fill();
    Member a(target, "a");
    Member b(target, "b");
    for (int at = 0; at < 3; ++at) {
        setLabel(a.store, std::to_string(at));
    }
    trimPostgresqlStore(target, 1, 0s);
    EXPECT_EQ(codeOf([&] { b.store.catchUp(); }), OrvHostStoreUnavailable);
    EXPECT_THAT(b.store.logFault(), HasSubstr("is not kept any more"));
    b.store.reload();
    setLabel(b.store, "3");
    a.store.catchUp();
    EXPECT_EQ(contentOf(a.store), contentOf(b.store));
}

TEST_F(PostgresqlLogTest, Entry_ThatCannotBeApplied_StopsTheHost) {
    fill();
    Member member(target);
    sql("INSERT INTO log(pos, id, author, change) VALUES(1, 'by hand', 'somebody', '\\x01'); "
        "UPDATE head SET pos = 1, id = 'by hand'");
    EXPECT_EQ(codeOf([&] { setLabel(member.store, "1"); }), OrvHostStoreUnavailable);
    EXPECT_THAT(member.store.logFault(), HasSubstr("position 1 of the log cannot be applied"));
    EXPECT_EQ(labelOf(member.store), text("first"));
}

// What a fail-over to a server leaves that did not have the last commits.
TEST_F(PostgresqlLogTest, LostCommits_StopTheHostUntilItHasLoadedAnew) {
    fill();
    Member member(target);
    setLabel(member.store, "kept");
    sql("CREATE TABLE old_head AS TABLE head; CREATE TABLE old_objects AS TABLE objects");
    setLabel(member.store, "lost");
    sql("DELETE FROM log WHERE pos = 2; UPDATE head SET pos = o.pos, id = o.id FROM old_head o; "
        "DELETE FROM objects; INSERT INTO objects TABLE old_objects");
    EXPECT_EQ(codeOf([&] { setLabel(member.store, "on top"); }), OrvHostStoreUnavailable);
    EXPECT_EQ(member.store.logFault(), "position 2 of the log is not what it was");
    EXPECT_EQ(readPostgresqlInfo(target).position, 1U);
    EXPECT_EQ(labelOf(member.store), text("lost"));
    member.store.reload();
    EXPECT_EQ(labelOf(member.store), text("kept"));
    setLabel(member.store, "on top");
    EXPECT_EQ(contentOfNewHost(), contentOf(member.store));
}

TEST_F(PostgresqlLogTest, LostCommits_AndOthersInTheirPlace_AreSeenByTheId) {
    fill();
    Member member(target);
    setLabel(member.store, "lost");
    sql("UPDATE log SET id = 'another'; UPDATE head SET id = 'another'");
    EXPECT_EQ(codeOf([&] { member.store.catchUp(); }), OrvHostStoreUnavailable);
    EXPECT_EQ(member.store.logFault(), "position 1 of the log is not what it was");
}

TEST_F(PostgresqlLogTest, RowThatIsGone_StopsTheCommit) {
    fill();
    Member member(target);
    sql("DELETE FROM objects WHERE name = 'a'");
    EXPECT_EQ(codeOf([&] { setLabel(member.store, "1"); }), OrvHostStoreUnavailable);
    EXPECT_THAT(member.store.logFault(), HasSubstr("that is to be changed is gone"));
    EXPECT_EQ(readPostgresqlInfo(target).position, 0U);
}

/// The end of a commit, with a relay in between that fails at that moment.
class PostgresqlDoubtTest : public PostgresqlLogTest {
protected:
    /// The code of a commit at which the relay does \p what.
    OrvReturnT commitWith(PostgresqlRelay::AtCommit what) {
        fill();
        relay.emplace(server);
        member.emplace(through(*relay));
        relay->atCommit(what);
        return codeOf([&] { setLabel(member->store, "doubtful"); });
    }

    std::optional<PostgresqlRelay> relay;
    std::optional<Member> member;
};

TEST_F(PostgresqlDoubtTest, AnswerLost_TheEntryIsFound) {
    EXPECT_EQ(commitWith(PostgresqlRelay::AtCommit::KeepAnswer), OrvOk);
    EXPECT_EQ(labelOf(member->store), text("doubtful"));
    EXPECT_EQ(readPostgresqlInfo(target).position, 1U);
    setLabel(member->store, "next");
    EXPECT_EQ(contentOfNewHost(), contentOf(member->store));
}

TEST_F(PostgresqlDoubtTest, ConnectionLostAfterIt_TheEntryIsFound) {
    EXPECT_EQ(commitWith(PostgresqlRelay::AtCommit::CutAfter), OrvOk);
    EXPECT_EQ(labelOf(member->store), text("doubtful"));
    setLabel(member->store, "next");
    EXPECT_EQ(contentOfNewHost(), contentOf(member->store));
}

TEST_F(PostgresqlDoubtTest, ConnectionLostBeforeIt_NothingWasCommitted) {
    EXPECT_EQ(commitWith(PostgresqlRelay::AtCommit::CutBefore), OrvHostStoreUnavailable);
    EXPECT_EQ(labelOf(member->store), text("first"));
    EXPECT_EQ(readPostgresqlInfo(target).position, 0U);
    setLabel(member->store, "next");
    EXPECT_EQ(contentOfNewHost(), contentOf(member->store));
}

// The server ends the transaction of the connection that has gone silent, and the question for the
// entry waits for that.
TEST_F(PostgresqlDoubtTest, RequestSwallowed_NothingWasCommitted) {
    EXPECT_EQ(commitWith(PostgresqlRelay::AtCommit::KeepRequest), OrvHostStoreUnavailable);
    EXPECT_EQ(labelOf(member->store), text("first"));
    setLabel(member->store, "next");
    EXPECT_EQ(contentOfNewHost(), contentOf(member->store));
}

TEST_F(PostgresqlDoubtTest, ServerGoneWithTheAnswer_TheFollowerBringsItIn) {
    fill();
    relay.emplace(server);
    member.emplace(through(*relay));
    relay->atCommit(PostgresqlRelay::AtCommit::CutAfter);
    relay->refuse(true);
    const HostError error = errorOf([&] { setLabel(member->store, "doubtful"); });
    EXPECT_EQ(error.code(), OrvHostOutcomeUnknown);
    EXPECT_THAT(error.what(), HasSubstr("; the entry would be "));
    EXPECT_EQ(labelOf(member->store), text("first"));
    relay->refuse(false);
    member->store.catchUp();
    EXPECT_EQ(labelOf(member->store), text("doubtful"));
    setLabel(member->store, "next");
    EXPECT_EQ(contentOfNewHost(), contentOf(member->store));
}

TEST_F(PostgresqlDoubtTest, EntryIsTrimmedBeforeItIsFound_IsNotCalledUncommitted) {
    fill();
    relay.emplace(server);
    member.emplace(through(*relay));
    relay->atCommit(PostgresqlRelay::AtCommit::CutAfter);
    relay->refuse(true);
    std::thread trimming([&] {
        EXPECT_TRUE(happens([&] { return readPostgresqlInfo(target).position == 1; }));
        EXPECT_EQ(trimPostgresqlStore(target, 0, 0s), 1U);
        relay->refuse(false);
    });
    EXPECT_EQ(codeOf([&] { setLabel(member->store, "doubtful"); }), OrvHostOutcomeUnknown);
    trimming.join();
}

TEST_F(PostgresqlLogTest, ServerAway_ReadsGoOnAndCommitsAreRefusedUntilItIsBack) {
    PostgresqlServer own;
    target = own.target(own.newSchema());
    fill();
    Member member(target);
    setLabel(member.store, "before");
    own.stop();
    const HostError error = errorOf([&] { setLabel(member.store, "refused"); });
    EXPECT_EQ(error.code(), OrvHostStoreUnavailable);
    EXPECT_THAT(error.what(), HasSubstr("the store of PostgreSQL: "));
    EXPECT_EQ(labelOf(member.store), text("before"));
    own.start();
    setLabel(member.store, "after");
    EXPECT_EQ(contentOfNewHost(), contentOf(member.store));
}

TEST_F(PostgresqlLogTest, ServerRestarted_TheNextCommitDoesNotNoticeIt) {
    PostgresqlServer own;
    target = own.target(own.newSchema());
    fill();
    Member member(target);
    own.stop();
    own.start();
    setLabel(member.store, "after");
    EXPECT_EQ(labelOf(member.store), text("after"));
}

/// A process of the test that does not outlive it.
class Child {
public:
    explicit Child(pid_t process) : mProcess(process) {}
    ~Child() {
        if (!mHasEnded) {
            kill(mProcess, SIGKILL);
            waitpid(mProcess, nullptr, 0);
        }
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    bool waitUntilStopped() {
        int status = 0;
        waitpid(mProcess, &status, WUNTRACED);
        mHasEnded = !WIFSTOPPED(status);
        return !mHasEnded;
    }
    /// Its exit status after it goes on.
    int goOn() {
        int status = 0;
        kill(mProcess, SIGCONT);
        waitpid(mProcess, &status, 0);
        mHasEnded = true;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    const pid_t mProcess;
    bool mHasEnded = false;
};

TEST_F(PostgresqlLogTest, HostThatStopsInItsTurn_LosesIt) {
    fill();
    const pid_t process = fork();
    if (process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        PostgresqlLog log(target, model, kShort);
        const LogMark mark = log.load([](const ObjectRow&) {});
        const OrvReturnT code = codeOf([&] {
            log.append(
                mark, [](const LogEntry&) {},
                [](CommitNumber head) {
                    raise(SIGSTOP);
                    LogEntry entry;
                    entry.mark = {head + 1, "late"};
                    return std::vector<LogEntry>{entry};
                });
        });
        _exit(code == OrvHostStoreUnavailable ? 0 : 1);
    }
    Child stopped(process);
    ASSERT_TRUE(stopped.waitUntilStopped());
    Member member(target, "b", kPatient);
    setLabel(member.store, "1");
    EXPECT_EQ(stopped.goOn(), 0);
    EXPECT_EQ(readPostgresqlInfo(target).position, 1U);
}

// A server that sends has no limit for one that does not take it.
TEST_F(PostgresqlLogTest, HostThatStopsWhileItReceivesInItsTurn_LosesIt) {
    fill();
    PostgresqlRelay relay(server);
    Member stopping(through(relay), "a");
    Member other(target, "b", kPatient);
    for (const char one : {'x', 'y', 'z'}) {
        setLabel(other.store, std::string(4'000'000, one));
    }
    relay.stopAfter(200'000);
    std::thread stopped([&] {
        EXPECT_EQ(codeOf([&] { setOtherLabel(stopping.store, "late"); }), OrvHostStoreUnavailable);
    });
    EXPECT_TRUE(happens([&] { return relay.hasStopped(); }));
    EXPECT_EQ(codeOf([&] { setLabel(other.store, "goes on"); }), OrvOk);
    stopped.join();
    EXPECT_EQ(labelOf(other.store), text("goes on"));
    EXPECT_EQ(readPostgresqlInfo(target).position, 4U);
}

// The server must not take a request that is on its way for a host that is silent.
TEST_F(PostgresqlLogTest, LargeCommit_OverASlowNetwork_IsTaken) {
    fill();
    PostgresqlRelay relay(server);
    Member member(through(relay));
    relay.slowDown(2000); // 2 MB each second
    setLabel(member.store, std::string(3'000'000, 'x'));
    EXPECT_EQ(contentOfNewHost(), contentOf(member.store));
}

TEST_F(PostgresqlLogTest, Follow_LargeEntries_AreReadInPieces) {
    fill();
    Member a(target, "a");
    Member b(target, "b");
    for (const std::size_t size : {65535U, 65536U, 65537U, 70U, 1'500'000U, 1U}) {
        setLabel(a.store, std::string(size, 'x'));
    }
    b.store.catchUp();
    EXPECT_EQ(b.store.lastCommit(), 6U);
    EXPECT_EQ(contentOf(a.store), contentOf(b.store));
    setLabel(a.store, std::string(300'000, 'y'));
    setLabel(a.store, "short");
    setOtherLabel(b.store, "at the end"); // reads them in its turn
    a.store.catchUp();
    EXPECT_EQ(contentOf(a.store), contentOf(b.store));
    EXPECT_EQ(contentOf(a.store), contentOfNewHost());
}

TEST_F(PostgresqlLogTest, Append_FarBehind_BringsInWhatIsNew) {
    fill();
    Member a(target, "a");
    Member b(target, "b");
    for (int at = 0; at < 700; ++at) {
        setLabel(a.store, std::to_string(at));
    }
    setOtherLabel(b.store, "at the end");
    EXPECT_EQ(b.store.lastCommit(), 701U);
    a.store.catchUp();
    EXPECT_EQ(contentOf(a.store), contentOf(b.store));
}

/// A server that waits for a copy which is not there.
class PostgresqlCopyTest : public PostgresqlLogTest {
protected:
    /// The code of a commit whose wait for the copy \p end ends, a function of the server.
    OrvReturnT commitWhoseWaitEndsBy(const std::string& end) {
        target = own.target(own.newSchema());
        fill();
        member.emplace(target);
        own.set("synchronous_standby_names = 'ghost'");
        std::thread hand([&] {
            EXPECT_TRUE(happens([&] {
                return PostgresqlConnection(target, {})
                           .run(
                               ("SELECT count(" + end +
                                "(pid))::bigint FROM pg_stat_activity WHERE wait_event = 'SyncRep'")
                                   .c_str())
                           .number(0, 0) > 0;
            }));
        });
        const OrvReturnT code = codeOf([&] { setLabel(member->store, "doubtful"); });
        hand.join();
        return code;
    }
    void expectThatItComesWithTheCopy() {
        EXPECT_EQ(labelOf(member->store), text("first"));
        own.set("synchronous_standby_names = ''");
        member->store.catchUp();
        EXPECT_EQ(labelOf(member->store), text("doubtful"));
        setLabel(member->store, "next");
        EXPECT_EQ(contentOfNewHost(), contentOf(member->store));
    }

    PostgresqlServer own;
    std::optional<Member> member;
};

TEST_F(PostgresqlCopyTest, ProcessEndedWhileItWaits_IsNotAnswered) {
    EXPECT_EQ(commitWhoseWaitEndsBy("pg_terminate_backend"), OrvHostOutcomeUnknown);
    expectThatItComesWithTheCopy();
}

TEST_F(PostgresqlCopyTest, WaitThatIsEnded_IsNotAnswered) {
    EXPECT_EQ(commitWhoseWaitEndsBy("pg_cancel_backend"), OrvHostOutcomeUnknown);
    expectThatItComesWithTheCopy();
}

TEST_F(PostgresqlLogTest, Find_KnowsIdsOfEntries) {
    fill();
    Member member(target);
    const LogMark start = member.log.load([](const ObjectRow&) {});
    setLabel(member.store, "1");
    std::string id;
    member.log.follow(start, [&](const LogEntry& entry) { id = entry.mark.id; }, {});
    EXPECT_EQ(member.log.find(id), 1U);
    EXPECT_EQ(member.log.find("none"), std::nullopt);
}

TEST_F(PostgresqlLogTest, Follow_WaitsForTheFirstEntry) {
    fill();
    Member a(target, "a");
    Member b(target, "b");
    const LogMark start = b.log.load([](const ObjectRow&) {});
    std::thread later([&] {
        std::this_thread::sleep_for(200ms);
        setLabel(a.store, "1");
    });
    std::vector<CommitNumber> seen;
    b.log.follow(
        start, [&](const LogEntry& entry) { seen.push_back(entry.mark.position); }, 10s);
    later.join();
    EXPECT_THAT(seen, ElementsAre(1U));
    seen.clear();
    b.log.follow(
        b.log.load([](const ObjectRow&) {}),
        [&](const LogEntry& entry) { seen.push_back(entry.mark.position); }, 50ms);
    EXPECT_THAT(seen, IsEmpty());
}

TEST_F(PostgresqlLogTest, CommitsThatWait_GoIntoTheLogTogether) {
    fill();
    Member member(target, "a", kPatient);
    std::vector<std::unique_ptr<StoreTransaction>> all;
    for (const char* const name : {"first", "second", "third"}) {
        all.push_back(member.store.begin(10 + all.size()));
        all.back()->create("Network=1", "Node", "id", name, {});
    }
    PostgresqlConnection holder(target, {});
    holder.run("BEGIN");
    holder.run("SELECT pos FROM head FOR UPDATE");
    std::vector<std::thread> threads;
    threads.emplace_back([&] { all[0]->commit(); });
    EXPECT_TRUE(happens([&] {
        return PostgresqlConnection(target, {})
                   .run("SELECT count(*) FROM pg_stat_activity WHERE query LIKE '%FOR UPDATE' AND "
                        "wait_event_type = 'Lock'")
                   .number(0, 0) > 0;
    }));
    threads.emplace_back([&] { all[1]->commit(); });
    threads.emplace_back([&] { all[2]->commit(); });
    EXPECT_TRUE(happens([&] { return member.store.commitsWaiting() == 2; }));
    holder.run("ROLLBACK");
    for (std::thread& thread : threads) {
        thread.join();
    }
    const PostgresqlRows written = PostgresqlConnection(target, {})
                                       .run("SELECT count(*), count(DISTINCT xmin::text) FROM log");
    EXPECT_EQ(written.number(0, 0), 3U);
    EXPECT_EQ(written.number(0, 1), 2U);
    EXPECT_EQ(contentOfNewHost(), contentOf(member.store));
}

/// Runs the mixture on two hosts, with two threads each.
TEST_F(PostgresqlLogTest, Mixture_OfTwoHosts_KeepsTheInvariants) {
    initPostgresqlStore(target, model);
    {
        PostgresqlLog log(target, model);
        MoStore filled(model);
        Mixture::load(filled);
        filled.attach(log);
    }
    Member a(target, "a");
    Member b(target, "b");
    std::mutex mutex;
    std::vector<std::string> acknowledged;
    std::vector<std::thread> threads;
    for (unsigned at = 0; at < 4; ++at) {
        threads.emplace_back([&, at] {
            Mixture mixture(at % 2 == 0 ? a.store : b.store, std::to_string(at), at + 1);
            for (int round = 0; round < 80; ++round) {
                mixture.step([&](const std::string& mark) {
                    const std::lock_guard<std::mutex> guard(mutex);
                    acknowledged.push_back(mark);
                });
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    a.store.catchUp();
    b.store.catchUp();
    Member fresh(target, "fresh");
    EXPECT_GT(acknowledged.size(), 40U);
    EXPECT_EQ(contentOf(a.store), contentOf(b.store));
    EXPECT_EQ(contentOf(a.store), contentOf(fresh.store));
    EXPECT_THAT(Mixture::violations(fresh.store, acknowledged), IsEmpty());
    EXPECT_EQ(readPostgresqlInfo(target).position, acknowledged.size());
}

TEST_F(PostgresqlLogTest, Follower_BringsInWhatOthersCommit) {
    fill();
    Member a(target, "a");
    Member b(target, "b");
    Reports reports;
    const LogFollower follower(b.store, 5ms, reports.taker());
    setLabel(a.store, "1");
    EXPECT_TRUE(happens([&] { return labelOf(b.store) == text("1"); }));
    EXPECT_THAT(reports.texts(), IsEmpty());
}

TEST_F(PostgresqlLogTest, Follower_ServerAwayAndBack_SaysSoOnceEach) {
    PostgresqlServer own;
    target = own.target(own.newSchema());
    fill();
    Member a(target, "a");
    Member b(target, "b");
    Reports reports;
    const LogFollower follower(b.store, 5ms, reports.taker());
    own.stop();
    EXPECT_TRUE(happens([&] { return !reports.texts().empty(); }));
    std::this_thread::sleep_for(100ms);
    own.start();
    EXPECT_TRUE(happens([&] { return reports.texts().size() == 2; }));
    EXPECT_THAT(reports.texts(), ElementsAre(HasSubstr("the store of PostgreSQL: "),
                                             "the store can be reached again"));
    setLabel(a.store, "after");
    EXPECT_TRUE(happens([&] { return labelOf(b.store) == text("after"); }));
}

TEST_F(PostgresqlLogTest, Follower_OtherHistory_LoadsAnewOnceBesideOpenTransactions) {
    fill();
    Member member(target);
    setLabel(member.store, "lost");
    Reports reports;
    const auto open = member.store.begin(1);
    const LogFollower follower(member.store, 5ms, reports.taker());
    sql("UPDATE log SET id = 'another'; UPDATE head SET id = 'another'; UPDATE objects SET name = "
        "'z' WHERE name = 'b'");
    EXPECT_TRUE(happens([&] { return member.store.begin(2)->exists("Network=1,Node=z"); }));
    EXPECT_TRUE(open->exists("Network=1,Node=b"));
    EXPECT_TRUE(happens([&] { return reports.texts().size() == 2; }));
    std::this_thread::sleep_for(50ms);
    EXPECT_THAT(reports.texts(), ElementsAre(HasSubstr("position 1 of the log is not what it was"),
                                             HasSubstr("loaded anew")));
    setLabel(member.store, "goes on");
}

// There is never a moment without an open transaction.
TEST_F(PostgresqlLogTest, Follower_OtherHistoryOnABusyHost_LoadsAnewWithinSeconds) {
    fill();
    Member member(target);
    setLabel(member.store, "lost");
    Reports reports;
    std::atomic<bool> isOver{false};
    std::thread busy([&] {
        auto last = member.store.begin(100);
        for (TransactionId id = 101; !isOver; ++id) {
            auto next = member.store.begin(id);
            std::this_thread::sleep_for(5ms);
            last = std::move(next);
        }
    });
    const LogFollower follower(member.store, 5ms, reports.taker());
    sql("UPDATE log SET id = 'another'; UPDATE head SET id = 'another'; UPDATE objects SET name = "
        "'z' WHERE name = 'b'");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(happens([&] { return member.store.begin(1)->exists("Network=1,Node=z"); }));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    EXPECT_TRUE(happens([&] { return member.store.logFault().empty(); }));
    setLabel(member.store, "goes on");
    isOver = true;
    busy.join();
    EXPECT_THAT(reports.texts(), ElementsAre(HasSubstr("position 1 of the log is not what it was"),
                                             HasSubstr("loaded anew")));
}

TEST_F(PostgresqlLogTest, Follower_ObjectsThatCannotBeLoaded_SaysWhyOnce) {
    fill();
    Member member(target);
    Reports reports;
    const LogFollower follower(member.store, 5ms, reports.taker());
    sql("UPDATE head SET id = 'another', model = 'x'; UPDATE model SET fact = 'y' WHERE place = 1");
    EXPECT_TRUE(happens([&] { return reports.texts().size() == 2; }));
    std::this_thread::sleep_for(100ms);
    EXPECT_THAT(reports.texts(),
                ElementsAre(HasSubstr("the store of PostgreSQL is of another model now"),
                            AllOf(HasSubstr("cannot be loaded anew: "),
                                  HasSubstr("it is of another model: "))));
}

TEST_F(PostgresqlLogTest, CatchUpTo_WithTheServerAway_KnowsWhatIsThere) {
    fill();
    PostgresqlRelay relay(server);
    Member member(through(relay));
    setLabel(member.store, "1");
    relay.atCommit(PostgresqlRelay::AtCommit::CutBefore);
    relay.refuse(true);
    EXPECT_EQ(codeOf([&] { setLabel(member.store, "2"); }), OrvHostOutcomeUnknown);
    member.store.catchUpTo(1, 0ms);
    EXPECT_EQ(codeOf([&] { member.store.catchUpTo(2, 0ms); }), OrvHostStoreUnavailable);
}

TEST_F(PostgresqlLogTest, CatchUpTo_WaitsForTheCommitOfAnotherHost) {
    fill();
    Member a(target, "a");
    Member b(target, "b");
    setLabel(a.store, "1");
    b.store.catchUpTo(a.store.lastCommit(), 1s);
    EXPECT_EQ(labelOf(b.store), text("1"));
    EXPECT_EQ(errorOf([&] { b.store.catchUpTo(5, 20ms); }).what(),
              std::string("commit 5 has not come within 20 ms; the last one is commit 1"));
}

TEST_F(PostgresqlLogTest, Fresh_TransactionsSeeWhatOthersHaveCommitted) {
    fill();
    Member a(target, "a");
    Member b(target, "b");
    b.store.setFresh();
    setLabel(a.store, "1");
    EXPECT_EQ(labelOf(b.store), text("1"));
}

}
}
