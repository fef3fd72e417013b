// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SampleStore.h"

#include "router/CmRouter.h"
#include "transactions/TransactionService.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <random>
#include <thread>

namespace OrvHost {
namespace {

constexpr int kThreads = 4;

void onThreads(const std::function<void(int)>& work) {
    std::vector<std::thread> threads;
    for (int number = 0; number < kThreads; ++number) {
        threads.emplace_back(work, number);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

std::int64_t heightOf(const StoreTransaction& tx, const std::string& dn) {
    const AttributeValue value = tx.get(dn, "height");
    return value.values.empty() ? 0 : std::get<std::int64_t>(value.values.front());
}

/// Tries one transaction; false if it met a conflict, after which none of its writes may be
/// visible.
bool attempt(MoStore& store, TransactionId id, const std::function<void(StoreTransaction&)>& work) {
    const auto tx = store.begin(id);
    try {
        work(*tx);
        tx->commit();
        return true;
    } catch (const HostError& error) {
        EXPECT_EQ(error.code(), OrvHostWriteConflict) << error.what();
        return false;
    }
}

TEST(StoreThreadsTest, Counters_ManyTransactions_LoseNoUpdate) {
    SampleStore sample;
    std::atomic<TransactionId> nextId{1};
    std::atomic<std::int64_t> commits{0};
    onThreads([&](int number) {
        std::mt19937 random(static_cast<unsigned>(number));
        for (int done = 0; done < 300; ++done) {
            const std::string dn = random() % 2 == 0 ? "Network=1,Node=a" : "Network=1,Node=b";
            const bool committed = attempt(sample.store, nextId++, [&](StoreTransaction& tx) {
                tx.set(dn, {{"height", integer(heightOf(tx, dn) + 1)}});
            });
            commits += committed ? 1 : 0;
        }
    });
    const auto after = sample.store.begin(nextId++);
    EXPECT_GT(commits.load(), 0);
    EXPECT_EQ(heightOf(*after, "Network=1,Node=a") + heightOf(*after, "Network=1,Node=b"),
              commits.load());
}

TEST(StoreThreadsTest, Transfers_UnderReaders_KeepTheSumInEverySnapshot) {
    SampleStore sample;
    constexpr int kNodes = 8;
    {
        const auto tx = sample.store.begin(1);
        for (int node = 0; node < kNodes; ++node) {
            tx->create("Network=1", "Node", "id", "n" + std::to_string(node),
                       {{"height", integer(100)}});
        }
        tx->commit();
    }
    const auto dnOf = [](unsigned long node) { return "Network=1,Node=n" + std::to_string(node); };
    const auto sumOf = [&](const StoreTransaction& tx) {
        std::int64_t sum = 0;
        for (unsigned long node = 0; node < kNodes; ++node) {
            sum += heightOf(tx, dnOf(node));
        }
        return sum;
    };
    std::atomic<TransactionId> nextId{2};
    onThreads([&](int number) {
        std::mt19937 random(static_cast<unsigned>(number));
        for (int done = 0; done < 200; ++done) {
            if (number == 0) {
                EXPECT_EQ(sumOf(*sample.store.begin(nextId++)), kNodes * 100);
                continue;
            }
            const std::string from = dnOf(random() % kNodes);
            const std::string to = dnOf(random() % kNodes);
            attempt(sample.store, nextId++, [&](StoreTransaction& tx) {
                tx.set(from, {{"height", integer(heightOf(tx, from) - 7)}});
                tx.set(to, {{"height", integer(heightOf(tx, to) + 7)}});
            });
        }
    });
    EXPECT_EQ(sumOf(*sample.store.begin(nextId++)), kNodes * 100);
    EXPECT_EQ(sample.store.memory().history, 0U);
}

/// One write of a transaction, to be repeated on another store.
struct Step {
    enum class Kind { Set, Create, Remove } kind;
    std::string parent; ///< or the object itself
    std::string name;
    std::int64_t height = 0;

    void apply(StoreTransaction& tx) const {
        switch (kind) {
        case Kind::Set:
            tx.set(parent, {{"height", integer(height)}});
            return;
        case Kind::Create:
            tx.create(parent, "Node", "id", name, {{"height", integer(height)}});
            return;
        case Kind::Remove:
            tx.remove(parent);
            return;
        }
    }
};

/// Everything below Network=1, in order.
std::vector<std::string> contentOf(MoStore& store) {
    const auto tx = store.begin(999999);
    std::vector<std::string> content;
    for (const std::string& name : namesOf(*tx, "Network=1", "Node")) {
        content.push_back(name + "=" + std::to_string(heightOf(*tx, "Network=1,Node=" + name)));
    }
    return content;
}

Step randomStep(std::mt19937& random) {
    const std::string name = "n" + std::to_string(random() % 12);
    const std::string dn = "Network=1,Node=" + name;
    const auto height = static_cast<std::int64_t>(random() % 1000);
    switch (random() % 4) {
    case 0:
        return {Step::Kind::Create, "Network=1", name, height};
    case 1:
        return {Step::Kind::Remove, dn, "", 0};
    default:
        return {Step::Kind::Set, dn, "", height};
    }
}

/// Runs a random transaction of a few steps and returns the accepted ones.
std::vector<Step> runSteps(StoreTransaction& tx, std::mt19937& random) {
    std::vector<Step> accepted;
    for (int left = 1 + static_cast<int>(random() % 5); left > 0; --left) {
        const Step step = randomStep(random);
        try {
            step.apply(tx);
            accepted.push_back(step);
        } catch (const HostError& error) {
            if (error.code() == OrvHostWriteConflict) {
                throw;
            }
        }
        if (random() % 8 == 0) {
            std::this_thread::yield();
        }
    }
    return accepted;
}

TEST(StoreThreadsTest, RandomTransactions_Replayed_GiveTheSameState) {
    SampleStore sample;
    std::atomic<TransactionId> nextId{1};
    std::mutex mutex;
    std::vector<std::vector<Step>> log; // in the order of commits
    std::atomic<int> aborted{0};
    onThreads([&](int number) {
        std::mt19937 random(static_cast<unsigned>(number) + 100);
        for (int done = 0; done < 250; ++done) {
            const auto tx = sample.store.begin(nextId++);
            try {
                std::vector<Step> steps = runSteps(*tx, random);
                if (random() % 5 == 0) {
                    tx->rollback();
                    ++aborted;
                    continue;
                }
                const std::lock_guard<std::mutex> guard(mutex);
                tx->commit();
                log.push_back(std::move(steps));
            } catch (const HostError& error) {
                EXPECT_EQ(error.code(), OrvHostWriteConflict);
                ++aborted;
            }
        }
    });
    EXPECT_GT(aborted.load(), 0);
    EXPECT_FALSE(log.empty());

    SampleStore serial;
    for (const std::vector<Step>& steps : log) {
        const auto tx = serial.store.begin(nextId++);
        for (const Step& step : steps) {
            step.apply(*tx); // throws, and fails the test, if the commits do not replay
        }
        tx->commit();
    }
    EXPECT_EQ(contentOf(sample.store), contentOf(serial.store));
    EXPECT_EQ(sample.store.memory().history, 0U);
    EXPECT_EQ(sample.store.memory().objects, sample.store.size());
}

TEST(StoreThreadsTest, Walks_UnderCommits_SeeOneSnapshot) {
    SampleStore sample;
    std::atomic<TransactionId> nextId{1};
    std::atomic<bool> done{false};
    // The writer keeps exactly ten boxes; each of its commits replaces all of them.
    const auto replaceAll = [&](int generation) {
        attempt(sample.store, nextId++, [&](StoreTransaction& tx) {
            for (const std::string& name : namesOf(tx, "Network=1", "Box")) {
                tx.remove("Network=1,Box=" + name);
            }
            for (int box = 0; box < 10; ++box) {
                tx.create("Network=1", "Box", "id",
                          std::to_string(generation) + "." + std::to_string(box), {});
            }
        });
    };
    replaceAll(0);
    std::thread writer([&] {
        for (int generation = 1; generation < 150; ++generation) {
            replaceAll(generation);
        }
        done = true;
    });
    onThreads([&](int) {
        do {
            const auto tx = sample.store.begin(nextId++);
            const auto names = namesOf(*tx, "Network=1", "Box");
            ASSERT_EQ(names.size(), 10U);
            const std::string generation = names[0].substr(0, names[0].find('.'));
            for (std::size_t box = 0; box < names.size(); ++box) {
                ASSERT_EQ(names[box], generation + "." + std::to_string(box));
            }
            ASSERT_EQ(tx->count("Network=1", "Box"), 10U);
        } while (!done);
    });
    writer.join();
    EXPECT_EQ(sample.store.memory().objects, 13U);
}

TEST(StoreThreadsTest, CreateAgainstDelete_NeverLeavesAnOrphan) {
    SampleStore sample;
    std::atomic<TransactionId> nextId{1};
    onThreads([&](int number) {
        std::mt19937 random(static_cast<unsigned>(number) + 7);
        for (int round = 0; round < 300; ++round) {
            const auto tx = sample.store.begin(nextId++);
            try {
                if (!tx->exists("Network=1,Box=x")) {
                    tx->create("Network=1", "Box", "id", "x", {});
                } else if (random() % 3 == 0) {
                    tx->remove("Network=1,Box=x");
                } else {
                    tx->create("Network=1,Box=x", "Box", "id",
                               std::to_string(number) + "." + std::to_string(round), {});
                }
                tx->commit();
            } catch (const HostError& error) {
                EXPECT_EQ(error.code(), OrvHostWriteConflict) << error.what();
            }
        }
    });
    const auto tx = sample.store.begin(nextId++);
    const bool exists = tx->exists("Network=1,Box=x");
    const std::uint64_t below = exists ? 1 + tx->count("Network=1,Box=x", "Box") : 0;
    EXPECT_EQ(sample.store.size(), 3 + below);
}

/// Clients on several threads through the tables, as a component would drive them.
TEST(RouterThreadsTest, Clients_OverTheTables_LoseNoUpdate) {
    SampleStore sample;
    ThreadContext context;
    CmRouter router(sample.model, sample.store, context);
    TransactionService service(context);
    service.enrolInEach(router.getResource());
    OrvOamSpiManagedObject_3& table = *router.getInterface3();
    constexpr const char* kNode = "Network=1,Node=a";
    std::atomic<std::int64_t> commits{0};
    onThreads([&](int) {
        for (int done = 0; done < 150; ++done) {
            const unsigned long tx = service.begin();
            OrvMoAttributeValueResult_3 result{};
            ASSERT_EQ(table.getMoAttribute(tx, kNode, "height", &result), OrvOk);
            OrvMoAttributeValue_3 slot{};
            slot.int64 = result.container->count == 0 ? 1 : result.container->values[0].int64 + 1;
            result.release(result.container);
            const OrvMoAttributeValueContainer_3 value{OrvMoAttributeTypeInt64_3, 1, &slot};
            table.setMoAttribute(tx, kNode, "height", &value); // a refusal shows at commit
            unsigned long long iterator = 0;
            ASSERT_EQ(table.newMoIterator(tx, "Network=1", "Node", &iterator), OrvOk);
            char* name = nullptr;
            ASSERT_EQ(table.nextMo(iterator, &name), OrvOk);
            ASSERT_STREQ(name, "a");
            commits += service.commit(tx).accepted ? 1 : 0;
            context.clear();
        }
    });
    EXPECT_GT(commits.load(), 0);
    EXPECT_EQ(heightOf(*sample.store.begin(1000000), kNode), commits.load());
    EXPECT_EQ(service.openCount(), 0U);
}

// The changes of all commits, applied one after the other to a copy, give what the store holds: so
// none is missing, comes twice or comes too early.
TEST(StoreThreadsTest, Watch_ManyThreads_ChangesReplayToTheSameState) {
    SampleStore scene;
    MoStore& store = scene.store;
    const std::string dn = "Network=1,Node=a";
    std::int64_t replayed = 0;
    CommitNumber last = 0;
    bool inOrder = true;
    const auto subscription = store.watch([&](const ChangeSet& changes) {
        inOrder = inOrder && changes.number > last && changes.objects.size() == 1;
        last = changes.number;
        const AttributeChange& written = changes.objects.at(0).attributes.at(0);
        const auto& before = written.before.values;
        inOrder = inOrder && (before.empty() ? 0 : std::get<std::int64_t>(before[0])) == replayed;
        replayed = std::get<std::int64_t>(written.after.values.at(0));
    });
    std::atomic<int> committed{0};
    onThreads([&](int thread) {
        for (int at = 1; at <= 200; ++at) {
            const int number = 1000 * (thread + 1) + at;
            committed +=
                attempt(store, static_cast<TransactionId>(number), [&](StoreTransaction& tx) {
                    tx.set(dn, {{"height", integer(number)}});
                });
        }
    });
    EXPECT_GT(committed, 0);
    EXPECT_TRUE(inOrder);
    EXPECT_EQ(last, static_cast<CommitNumber>(committed));
    EXPECT_EQ(heightOf(*store.begin(5), dn), replayed);
}

}
}
