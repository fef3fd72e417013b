// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MixtureRounds.h"
#include "StoreLogScene.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace OrvHost {
namespace {

const std::string kA = "Network=1,Node=a";
const std::string kB = "Network=1,Node=b";

/// Counts and moves on two stores at once, each with several threads.
class StoreLogThreadsTest : public StoreLogScene {
protected:
    /// How often the counter was raised.
    static int work(MoStore& where, unsigned seed) {
        int done = 0;
        for (int round = 0; round < 60; ++round) {
            const auto tx = where.begin(1000 * seed + static_cast<unsigned>(round) + 1);
            try {
                const AttributeValue height = tx->get(kA, "height");
                const auto before =
                    height.values.empty() ? 0 : std::get<std::int64_t>(height.values[0]);
                const std::string mark = "m" + std::to_string(seed) + "-" + std::to_string(round);
                tx->create("Network=1", "Node", "id", mark, {});
                tx->set(kA, "height", integer(before + 1));
                tx->commit();
                ++done;
            } catch (const HostError& error) {
                EXPECT_EQ(error.code(), OrvHostWriteConflict) << error.what();
            }
        }
        return done;
    }
};

TEST_F(StoreLogThreadsTest, Counter_OfTwoHosts_IsTheNumberOfCommits) {
    std::vector<int> done(4);
    std::vector<std::thread> threads;
    for (unsigned at = 0; at < 4; ++at) {
        threads.emplace_back([&, at] { done[at] = work(at % 2 == 0 ? store : other, at + 1); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    expectEqualStores();
    const int sum = done[0] + done[1] + done[2] + done[3];
    EXPECT_GT(sum, 0);
    const auto after = store.begin(5);
    EXPECT_EQ(after->get(kA, "height"), integer(sum));
    EXPECT_EQ(after->count("Network=1", "Node"), static_cast<std::uint64_t>(sum) + 2);
    EXPECT_EQ(log.entries().size(), static_cast<std::size_t>(sum));
}

/// Each append waits until the gate is open.
class GatedLog : public MemoryLog {
public:
    void append(const LogMark& seen, const CatchUp& catchUp, const Decide& decide) override {
        {
            std::unique_lock<std::mutex> lock(mGate);
            ++mEntered;
            mChanged.notify_all();
            mChanged.wait(lock, [&] { return mIsOpen; });
        }
        MemoryLog::append(seen, catchUp, decide);
    }
    void open() {
        const std::lock_guard<std::mutex> lock(mGate);
        mIsOpen = true;
        mChanged.notify_all();
    }
    void close() {
        const std::lock_guard<std::mutex> lock(mGate);
        mIsOpen = false;
        mEntered = 0;
    }
    void waitUntilEntered() {
        std::unique_lock<std::mutex> lock(mGate);
        mChanged.wait(lock, [&] { return mEntered > 0; });
    }

private:
    std::mutex mGate;
    std::condition_variable mChanged;
    bool mIsOpen = true;
    int mEntered = 0;
};

/// Each look at the log takes a moment.
class SlowLog : public MemoryLog {
public:
    void follow(const LogMark& seen, const CatchUp& catchUp,
                std::chrono::milliseconds patience) override {
        ++mLooks;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        MemoryLog::follow(seen, catchUp, patience);
    }
    unsigned looks() const { return mLooks; }

private:
    std::atomic<unsigned> mLooks{0};
};

TEST(StoreLogFresh, TransactionsThatBeginTogether_ShareOneQuestion) {
    SampleStore sample;
    SlowLog log;
    sample.store.attach(log, "a");
    sample.store.setFresh();
    std::vector<std::thread> threads;
    for (TransactionId id = 1; id <= 16; ++id) {
        threads.emplace_back([&sample, id] { sample.store.begin(id); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_LE(log.looks(), 4U);
}

// What is asked before a commit of another host must not serve who begins after it.
TEST(StoreLogFresh, EachTransaction_SeesWhatWasCommittedBeforeItBegan) {
    SampleStore sample;
    SlowLog log;
    sample.store.attach(log, "a");
    sample.store.setFresh();
    MoStore other(sample.model);
    other.attach(log, "b");
    std::thread early([&] { sample.store.begin(1); });
    while (log.looks() == 0) {
        std::this_thread::yield();
    }
    const auto tx = other.begin(2);
    tx->set(kA, "label", text("just before"));
    tx->commit();
    EXPECT_EQ(sample.store.begin(3)->get(kA, "label"), text("just before"));
    early.join();
}

TEST(StoreLogFresh, Watcher_CanBeginTransactions) {
    SampleStore sample;
    MemoryLog log;
    sample.store.attach(log, "a");
    sample.store.setFresh();
    MoStore other(sample.model);
    other.attach(log, "b");
    std::vector<AttributeValue> seen;
    const auto subscription = sample.store.watch([&](const ChangeSet& changes) {
        seen.push_back(sample.store.begin(100 + changes.number)->get(kA, "label"));
    });
    const auto setLabel = [](MoStore& where, const std::string& label) {
        const auto tx = where.begin(1);
        tx->set(kA, "label", text(label));
        tx->commit();
    };
    setLabel(sample.store, "here");
    other.catchUp();
    setLabel(other, "there");
    sample.store.begin(2);
    EXPECT_EQ(seen, (std::vector<AttributeValue>{text("here"), text("there")}));
}

/// Commits that wait at the same time while one is in the log.
class StoreLogGroupTest : public testing::Test, protected SampleStore {
protected:
    StoreLogGroupTest() {
        store.attach(log, "a");
        other.attach(log, "b");
    }
    static std::unique_ptr<StoreTransaction>
    labelling(MoStore& where, TransactionId id, const std::string& dn, const std::string& label) {
        auto tx = where.begin(id);
        tx->set(dn, "label", text(label));
        return tx;
    }
    /// Commits all while another commit is on its way; returns the code of each.
    std::vector<OrvReturnT>
    commitTogether(const std::vector<std::unique_ptr<StoreTransaction>>& all) {
        log.close();
        std::thread first([&] {
            const auto tx = store.begin(50);
            tx->create("Network=1", "Node", "id", "first", {});
            tx->commit();
        });
        log.waitUntilEntered();
        std::vector<OrvReturnT> codes(all.size());
        std::vector<std::thread> threads;
        for (std::size_t at = 0; at < all.size(); ++at) {
            threads.emplace_back([&, at] { codes[at] = codeOf([&] { all[at]->commit(); }); });
        }
        while (store.commitsWaiting() < all.size()) {
            std::this_thread::yield();
        }
        log.open();
        first.join();
        for (std::thread& thread : threads) {
            thread.join();
        }
        return codes;
    }
    void expectEqualStores() {
        store.catchUp();
        other.catchUp();
        MoStore fresh(model);
        fresh.attach(log);
        EXPECT_EQ(contentOf(store), contentOf(fresh));
        EXPECT_EQ(contentOf(other), contentOf(fresh));
    }

    GatedLog log;
    MoStore other{model};
};

TEST_F(StoreLogGroupTest, CommitsThatWait_GoIntoTheLogTogether) {
    std::vector<std::unique_ptr<StoreTransaction>> all;
    all.push_back(labelling(store, 1, kA, "one"));
    all.push_back(labelling(store, 2, kB, "two"));
    all.push_back(labelling(store, 3, "Network=1", "three"));
    EXPECT_EQ(commitTogether(all), std::vector<OrvReturnT>(3, OrvOk));
    EXPECT_EQ(log.appends(), 2U);
    EXPECT_EQ(log.entries().size(), 4U);
    expectEqualStores();
}

TEST_F(StoreLogGroupTest, OneThatMeetsAnotherHost_IsRefusedAlone) {
    std::vector<std::unique_ptr<StoreTransaction>> all;
    all.push_back(labelling(store, 1, kA, "one"));
    all.push_back(labelling(store, 2, kB, "two"));
    all.push_back(labelling(store, 3, "Network=1", "three"));
    labelling(other, 4, kB, "faster")->commit();
    EXPECT_EQ(commitTogether(all), (std::vector<OrvReturnT>{OrvOk, OrvHostWriteConflict, OrvOk}));
    EXPECT_EQ(store.begin(5)->get(kB, "label"), text("faster"));
    expectEqualStores();
}

TEST_F(StoreLogGroupTest, OneThatIsTooLarge_IsRefusedAlone) {
    std::vector<std::unique_ptr<StoreTransaction>> all;
    all.push_back(labelling(store, 1, kA, "one"));
    all.push_back(labelling(store, 2, kB, std::string(5000, 'x')));
    all.push_back(labelling(store, 3, "Network=1", "three"));
    log.limitChange(1000);
    EXPECT_EQ(commitTogether(all), (std::vector<OrvReturnT>{OrvOk, OrvInvalidArgument, OrvOk}));
    EXPECT_EQ(store.begin(5)->get(kA, "label"), text("one"));
    expectEqualStores();
}

TEST_F(StoreLogGroupTest, InDoubt_AllAreThereOrNone) {
    for (const auto failure :
         {MemoryLog::Failure::InDoubtAppended, MemoryLog::Failure::InDoubtNotAppended}) {
        const OrvReturnT expected =
            failure == MemoryLog::Failure::InDoubtAppended ? OrvOk : OrvHostStoreUnavailable;
        std::vector<std::unique_ptr<StoreTransaction>> all;
        all.push_back(labelling(store, 1, kA, "a"));
        all.push_back(labelling(store, 2, kB, "b"));
        // The failure is for the append of the group, so the first commit is a step before it.
        log.failAfterNext(failure);
        EXPECT_EQ(commitTogether(all), std::vector<OrvReturnT>(2, expected));
        all.clear();
        const auto cleaner = store.begin(60);
        cleaner->remove("Network=1,Node=first");
        cleaner->commit();
        expectEqualStores();
    }
}

TEST_F(StoreLogGroupTest, LogIsAway_AllAreRefused) {
    std::vector<std::unique_ptr<StoreTransaction>> all;
    all.push_back(labelling(store, 1, kA, "a"));
    all.push_back(labelling(store, 2, kB, "b"));
    log.failAfterNext(MemoryLog::Failure::Unavailable);
    EXPECT_EQ(commitTogether(all), std::vector<OrvReturnT>(2, OrvHostStoreUnavailable));
    EXPECT_EQ(log.entries().size(), 1U);
    expectEqualStores();
}

/// Two hosts with two threads each; all that they have committed fits together, on both.
TEST(StoreLogMixtureTest, TwoHosts_KeepWhatHolds) {
    MemoryLog log;
    MoStore one(sampleStoreModel());
    MoStore two(sampleStoreModel());
    Mixture::load(one);
    one.attach(log, "one");
    two.attach(log, "two");
    const MixtureRun run = runMixture(one, two, 1, 150);
    EXPECT_EQ(run.problems, std::vector<std::string>());
    const std::vector<std::string>& all = run.acknowledged;
    EXPECT_GT(all.size(), 50U);
    EXPECT_EQ(all.size(), log.entries().size());
    one.catchUp();
    two.catchUp();
    MoStore fresh(sampleStoreModel());
    fresh.attach(log);
    for (MoStore* const store : {&one, &two, &fresh}) {
        EXPECT_EQ(Mixture::violations(*store, all), std::vector<std::string>());
        EXPECT_EQ(contentOf(*store), contentOf(fresh));
    }
}

}
}
