// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "store_postgresql/PostgresqlLog.h"
#include "Mixture.h"
#include "PostgresqlServer.h"
#include "SampleStore.h"
#include "store/LogFollower.h"
#include "store_postgresql/PostgresqlTools.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <mutex>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using namespace std::chrono_literals;

const std::string kA = "Network=1,Node=a";
constexpr PostgresqlLimits kShort{3s, 700ms, 2000ms, 3000ms};

/// A host of a store.
struct Member {
    explicit Member(const std::string& target, const std::string& name = "a",
                    const Model& model = sampleStoreModel())
        : log(target, model, kShort), store(model) {
        store.attach(log, name);
    }

    PostgresqlLog log;
    MoStore store;
};

class PostgresqlLogTest : public testing::Test, protected SampleStore {
protected:
    /// A store with the objects of the sample.
    void fill() {
        initPostgresqlStore(target, model);
        PostgresqlLog log(target, model);
        SampleStore filled;
        filled.store.attach(log);
    }
    static void setLabel(MoStore& where, const std::string& label, TransactionId id = 7) {
        const auto tx = where.begin(id, "alice");
        tx->set(kA, "label", text(label));
        tx->commit();
    }
    static AttributeValue labelOf(MoStore& where) { return where.begin(1)->get(kA, "label"); }
    std::vector<std::string> contentOfNewHost() const {
        Member member(target);
        return contentOf(member.store);
    }
    void sql(const std::string& statements) const {
        PostgresqlConnection(target, {}).runAll(statements);
    }
    std::string through(const PostgresqlRelay& relay) const {
        return server.target(schema, "postgres", relay.directory());
    }

    PostgresqlServer& server = PostgresqlServer::instance();
    std::string schema = server.newSchema();
    std::string target = server.target(schema);
};

/// Waits for something for some seconds at most.
bool happens(const std::function<bool()>& what) {
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (!what()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(5ms);
    }
    return true;
}

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

TEST_F(PostgresqlLogTest, HostThatStopsInItsTurn_LosesIt) {
    fill();
    const pid_t stopped = fork();
    if (stopped == 0) {
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
    int status = 0;
    waitpid(stopped, &status, WUNTRACED);
    ASSERT_TRUE(WIFSTOPPED(status));
    Member member(target);
    const auto start = std::chrono::steady_clock::now();
    setLabel(member.store, "1");
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
    kill(stopped, SIGCONT);
    waitpid(stopped, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(readPostgresqlInfo(target).position, 1U);
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

/// What a follower has said.
class Reports {
public:
    LogFollower::Report taker() {
        return [this](const std::string& text) {
            const std::lock_guard<std::mutex> guard(mMutex);
            mTexts.push_back(text);
        };
    }
    std::vector<std::string> texts() const {
        const std::lock_guard<std::mutex> guard(mMutex);
        return mTexts;
    }

private:
    mutable std::mutex mMutex;
    std::vector<std::string> mTexts;
};

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

TEST_F(PostgresqlLogTest, Follower_OtherHistory_LoadsAnewWhenNoTransactionIsOpen) {
    fill();
    Member member(target);
    setLabel(member.store, "lost");
    Reports reports;
    auto open = member.store.begin(1);
    const LogFollower follower(member.store, 5ms, reports.taker());
    sql("UPDATE log SET id = 'another'; UPDATE head SET id = 'another'; UPDATE objects SET name = "
        "'z' WHERE name = 'b'");
    EXPECT_TRUE(happens([&] { return !member.store.logFault().empty(); }));
    std::this_thread::sleep_for(50ms);
    EXPECT_TRUE(open->exists("Network=1,Node=b"));
    open.reset();
    EXPECT_TRUE(happens([&] { return member.store.begin(1)->exists("Network=1,Node=z"); }));
    EXPECT_TRUE(happens([&] { return reports.texts().size() == 2; }));
    EXPECT_THAT(reports.texts(), ElementsAre(HasSubstr("position 1 of the log is not what it was"),
                                             HasSubstr("loaded anew")));
    setLabel(member.store, "goes on");
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
