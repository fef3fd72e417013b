// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Servers that end, and real copies that take over.

#include "Mixture.h"
#include "PostgresqlScene.h"
#include "PostgresqlStart.h"

#include <gmock/gmock.h>

#include <atomic>
#include <optional>

namespace OrvHost {
namespace {

using testing::IsEmpty;

/// A server and a real copy of it, and a host that knows both.
class PostgresqlFailOverTest : public PostgresqlScene {
protected:
    PostgresqlFailOverTest() {
        schema = first.newSchema();
        target = first.target(schema);
    }
    void addCopy() {
        copy.emplace(PostgresqlServer::CopyOf{first});
        target = first.target(schema, "postgres",
                              first.directory().string() + "," + copy->directory().string());
        awaitCopy();
    }
    void awaitCopy() {
        EXPECT_TRUE(happens([&] {
            return PostgresqlConnection(first.target(schema), {})
                       .run("SELECT count(*) FROM pg_stat_replication WHERE state = 'streaming' "
                            "AND replay_lsn = pg_current_wal_lsn()")
                       .number(0, 0) == 1;
        }));
    }

    PostgresqlServer first;
    std::optional<PostgresqlServer> copy;
};

TEST_F(PostgresqlFailOverTest, SynchronousCopyTakesOver_NothingIsLost) {
    createMixtureStore(target);
    addCopy();
    first.set("synchronous_standby_names = 'copy'");
    Member a(target, "a", {3s, 700ms, 4s, 6s, 20s});
    Member b(target, "b", {3s, 700ms, 4s, 6s, 20s});
    std::mutex mutex;
    std::vector<std::string> acknowledged;
    const auto count = [&] {
        const std::lock_guard<std::mutex> guard(mutex);
        return acknowledged.size();
    };
    std::atomic<bool> isOver{false};
    std::vector<std::thread> threads;
    for (unsigned at = 0; at < 4; ++at) {
        threads.emplace_back([&, at] {
            Mixture mixture(at % 2 == 0 ? a.store : b.store, std::to_string(at), at + 1);
            while (!isOver) {
                try {
                    mixture.step([&](const std::string& mark) {
                        const std::lock_guard<std::mutex> guard(mutex);
                        acknowledged.push_back(mark);
                    });
                } catch (const HostError&) {
                    std::this_thread::sleep_for(20ms);
                }
            }
        });
    }
    EXPECT_TRUE(happens([&] { return count() > 100; }));
    first.stop();
    const std::size_t before = count();
    copy->promote();
    // Those that were on their way may be answered, and then others.
    EXPECT_TRUE(happens([&] { return count() > before + 50; }));
    isOver = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(a.store.logFault(), "");
    EXPECT_EQ(b.store.logFault(), "");
    a.store.catchUp();
    b.store.catchUp();
    Member fresh(target, "fresh");
    EXPECT_EQ(contentOf(a.store), contentOf(fresh.store));
    EXPECT_EQ(contentOf(b.store), contentOf(fresh.store));
    EXPECT_THAT(Mixture::violations(fresh.store, acknowledged), IsEmpty());
    RecordProperty("acknowledged", std::to_string(acknowledged.size()));
    RecordProperty("committed", std::to_string(fresh.store.lastCommit()));
}

TEST_F(PostgresqlFailOverTest, CopyThatLacksCommitsTakesOver_LoadsAnew) {
    fill();
    addCopy();
    Member member(target);
    setLabel(member.store, "kept");
    awaitCopy();
    copy->stop();
    setLabel(member.store, "lost");
    first.stop();
    copy->startCopy();
    copy->promote();
    EXPECT_EQ(codeOf([&] { setLabel(member.store, "on top"); }), OrvHostStoreUnavailable);
    EXPECT_EQ(member.store.logFault(), "position 2 of the log is not what it was");
    Reports reports;
    const LogFollower follower(member.store, 5ms, reports.taker());
    EXPECT_TRUE(happens([&] { return labelOf(member.store) == text("kept"); }));
    EXPECT_TRUE(happens([&] { return reports.texts().size() == 2; }));
    setLabel(member.store, "on top");
    EXPECT_EQ(contentOfNewHost(), contentOf(member.store));
}

}
}
