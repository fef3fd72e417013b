// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Commits through a log when memory runs out, at each allocation in turn. This program has its own
// operator new.

#include "StoreLogScene.h"

#include <cstdlib>
#include <new>

namespace {

thread_local bool watching = false;
thread_local std::size_t left = 0; // until an allocation is refused; 0: none is

void* allocate(std::size_t size) {
    if (watching && left > 0 && --left == 0) {
        throw std::bad_alloc();
    }
    void* const block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

/// Switches the refusal of memory on or off while it lives.
class Watch {
public:
    explicit Watch(bool isOn) : mBefore(watching) { watching = isOn; }
    ~Watch() { watching = mBefore; }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

private:
    const bool mBefore;
};

}

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}

namespace OrvHost {
namespace {

const std::string kA = "Network=1,Node=a";
const std::string kB = "Network=1,Node=b";

/// A log that itself has memory enough.
class RichLog : public CommitLog {
public:
    explicit RichLog(MemoryLog& log) : mLog(log) {}

    bool isNew() override { return mLog.isNew(); }
    LogMark load(const ObjectVisitor& visitor) override { return mLog.load(visitor); }
    LogMark fill(const ObjectSource& objects) override { return mLog.fill(objects); }
    void append(const LogMark& seen, const CatchUp& catchUp, const Decide& decide) override {
        const Watch rich(false);
        mLog.append(seen, poor(catchUp), [&](CommitNumber head) {
            const Watch watch(true);
            return decide(head);
        });
    }
    void follow(const LogMark& seen, const CatchUp& catchUp,
                std::chrono::milliseconds patience) override {
        const Watch rich(false);
        mLog.follow(seen, poor(catchUp), patience);
    }
    std::optional<CommitNumber> find(const std::string& id) override { return mLog.find(id); }

private:
    static CatchUp poor(const CatchUp& catchUp) {
        return [&catchUp](const LogEntry& entry) {
            const Watch watch(true);
            catchUp(entry);
        };
    }

    MemoryLog& mLog;
};

/// Two hosts on one log, with a reader and a watcher each if \p isBusy.
struct Scene {
    explicit Scene(bool isBusy) {
        a.store.attach(log, "a");
        b.attach(log, "b");
        for (MoStore* const store : {&a.store, &b}) {
            if (isBusy) {
                readers.push_back(store->begin(99));
                watchers.push_back(store->watch([](const ChangeSet&) {}));
            }
        }
    }

    static void setLabel(MoStore& where, const std::string& dn, const std::string& label) {
        const auto tx = where.begin(7);
        tx->set(dn, "label", text(label));
        tx->commit();
    }
    static std::unique_ptr<StoreTransaction> change(MoStore& where) {
        auto tx = where.begin(1);
        tx->create("Network=1", "Node", "id", "new", {});
        tx->set(kB, "label", text("bb"));
        return tx;
    }
    /// All stores are equal, after one that had no memory has worked again.
    void expectHealed(MoStore& where) {
        setLabel(where, kA, "later");
        a.store.catchUp();
        b.catchUp();
        MoStore fresh(a.model);
        fresh.attach(memory);
        EXPECT_EQ(contentOf(a.store), contentOf(fresh));
        EXPECT_EQ(contentOf(b), contentOf(fresh));
        EXPECT_EQ(where.logFault(), "");
    }

    SampleStore a;
    MoStore b{a.model};
    MemoryLog memory;
    RichLog log{memory};
    std::vector<std::unique_ptr<StoreTransaction>> readers;
    std::vector<CommitFeed::Subscription> watchers;
};

/// Calls \p work with the number of the allocation that fails until none does.
template <class Work>
void eachAllocation(const Work& work) {
    std::size_t failing = 0;
    for (bool hasFailed = true; hasFailed;) {
        SCOPED_TRACE(++failing);
        hasFailed = work(failing);
        ASSERT_LT(failing, 1000U);
    }
    EXPECT_GT(failing, 10U);
}

/// Runs \p work without the memory of one allocation. True if it came so far.
template <class Work>
bool withoutMemory(std::size_t failing, const Work& work) {
    left = failing;
    {
        const Watch watch(true);
        try {
            work();
        } catch (const std::bad_alloc&) { // NOLINT(bugprone-empty-catch): as it should
        } catch (const HostError&) {      // NOLINT(bugprone-empty-catch): or with a text
        }
    }
    return std::exchange(left, 0) == 0;
}

class StoreLogFaultsTest : public testing::TestWithParam<bool> {};

TEST_P(StoreLogFaultsTest, Commit_WithoutMemory_IsInTheLogAndInMemoryOrInNeither) {
    eachAllocation([](std::size_t failing) {
        Scene scene(GetParam());
        bool hasFailed = false;
        {
            const auto tx = Scene::change(scene.a.store);
            hasFailed = withoutMemory(failing, [&] { tx->commit(); });
        }
        scene.expectHealed(scene.a.store);
        return hasFailed;
    });
}

TEST_P(StoreLogFaultsTest, CatchUp_WithoutMemory_GoesOnLater) {
    eachAllocation([](std::size_t failing) {
        Scene scene(GetParam());
        Scene::change(scene.a.store)->commit();
        const bool hasFailed = withoutMemory(failing, [&] { scene.b.catchUp(); });
        scene.expectHealed(scene.b);
        return hasFailed;
    });
}

INSTANTIATE_TEST_SUITE_P(Store, StoreLogFaultsTest, testing::Bool(), [](const auto& kind) {
    return std::string(kind.param ? "WithReadersAndWatchers" : "Alone");
});

}
}
