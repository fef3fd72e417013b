// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"

#include "LoggingWrapper.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <thread>

namespace BiDirTests {
namespace {

constexpr unsigned long threadCount = 8;

class BiDirThreads : public Scene {
protected:
    BiDirThreads() {
        Orv::LoggingWrapper::instance()->setLevel(0);
        stage.script.keepCalls(false);
        modelOfXAndY();
        stage.model.moc("P").contains("X");
    }

    /// \p work once on each thread, with the thread's own transaction.
    static void onAllThreads(const std::function<void(unsigned long)>& work) {
        std::vector<std::thread> threads;
        for (unsigned long tx = 1; tx <= threadCount; ++tx) {
            threads.emplace_back(work, tx);
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    static std::string mine(const std::string& step, unsigned long tx, int number) {
        return step + std::to_string(tx) + "x" + std::to_string(number);
    }

    bool isValid(unsigned long tx) {
        bool verdict = false;
        return validator.validateBiDirs(tx, &verdict) == OrvOk && verdict;
    }
};

// An addition reads, extends and writes under the lock, so none gets lost in another one's.
TEST_F(BiDirThreads, AdditionsToOneTarget_AllStandThere) {
    constexpr int rounds = 25;
    stage.world.mo("Y=1");
    start();
    onAllThreads([&](unsigned long tx) {
        for (int round = 0; round < rounds; ++round) {
            client.create(tx, mine("X=", tx, round), {{"ys", {"Y=1"}}});
        }
    });
    Lines sources = refs("Y=1", "xs");
    std::sort(sources.begin(), sources.end());
    EXPECT_EQ(sources.size(), threadCount * rounds);
    EXPECT_EQ(std::adjacent_find(sources.begin(), sources.end()), sources.end());
}

TEST_F(BiDirThreads, WritingDeletingValidatingFinishing_EachTransactionSeesItsOwn) {
    constexpr int rounds = 20;
    std::atomic<int> wrong = 0;
    start();
    onAllThreads([&](unsigned long tx) {
        for (int round = 0; round < rounds; ++round) {
            const std::string parent = mine("P=", tx, round);
            const std::string source = parent + ",X=1";
            const std::string target = mine("Y=", tx, round);
            client.create(tx, parent);
            client.create(tx, source, {{"ys", {target, mine("Y=", tx, -1)}}}); // both wait
            client.create(tx, target);
            wrong += refs(target, "xs") == Lines{source} ? 0 : 1;
            wrong += isValid(tx) ? 0 : 1;
            client.set(tx, source, "ys", {});
            client.set(tx, target, "xs", {source});
            wrong += refs(source, "ys") == Lines{target} ? 0 : 1;
            client.remove(tx, parent);
            wrong += refs(target, "xs").empty() ? 0 : 1;
            wrong += isValid(tx) ? 0 : 1;
            client.finish(tx);
        }
        wrong += utils.getModifiedBackPointers(tx).size() == 2U * rounds ? 0 : 1;
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_TRUE(utils.pendingBackPointers.empty());
}

// What one thread records must not disturb another that reads its work list at that moment.
TEST_F(BiDirThreads, WorkListsReadWhileOthersAreWritten) {
    constexpr int rounds = 200;
    std::atomic<int> wrong = 0;
    start();
    onAllThreads([&](unsigned long tx) {
        stage.world.mo(mine("X=", tx, 0));
        for (int round = 0; round < rounds; ++round) {
            client.set(tx + 100 * static_cast<unsigned long>(round), mine("X=", tx, 0), "ys", {});
            wrong += utils.getModifiedBackPointers(tx).size() == 1 ? 0 : 1;
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST_F(BiDirThreads, OneKeyAwaitedByAll_EachFlushTakesItsOwn) {
    start();
    onAllThreads([&](unsigned long tx) {
        client.create(tx, mine("X=", tx, 0), {{"ys", {"Y=1"}}});
    });
    ASSERT_EQ(utils.pendingBackPointers.size(), threadCount);
    stage.world.mo("Y=1");
    onAllThreads([&](unsigned long tx) {
        if (tx % 2 == 0) {
            utils.updatePendingBackPointer(tx, "Y=1", "id");
        } else {
            client.finish(tx);
        }
    });
    EXPECT_TRUE(utils.pendingBackPointers.empty());
    EXPECT_EQ(refs("Y=1", "xs").size(), threadCount / 2);
}

}
}
