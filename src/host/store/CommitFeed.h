// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_COMMITFEED_H
#define ORV_HOST_STORE_COMMITFEED_H

#include "ChangeSet.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace OrvHost {

/// Called with the changes of one commit after the commit can be read, on the thread that
/// committed; with a commit log, on a thread that commits at the same time or, for the commits of
/// other hosts, on one that commits or calls MoStore::catchUp, and these may have happened shortly
/// before the watcher came. It may read and begin
/// transactions, but must not commit one, nor subscribe or unsubscribe. What it throws is dropped:
/// the commit has happened.
using CommitWatcher = std::function<void(const ChangeSet& changes)>;

/// Who is called for each commit that changes something.
///
/// Threads: any. While there is a watcher, commits run one after the other, and all watchers get
/// them in their order. A commit waits for its watchers, so a watcher that has much to do hands the
/// changes on.
class CommitFeed {
    using Watchers = std::vector<std::shared_ptr<const CommitWatcher>>;

public:
    /// Ends the calls of a watcher when it is destroyed: after that no call is running and none
    /// comes. The feed must outlive it.
    class Subscription {
    public:
        Subscription() = default;
        Subscription(Subscription&& other) noexcept { *this = std::move(other); }
        Subscription& operator=(Subscription&& other) noexcept;
        ~Subscription() { end(); }

        void end();

    private:
        friend class CommitFeed;
        Subscription(CommitFeed& feed, std::shared_ptr<const CommitWatcher> watcher)
            : mFeed(&feed), mWatcher(std::move(watcher)) {}

        CommitFeed* mFeed = nullptr;
        std::shared_ptr<const CommitWatcher> mWatcher;
    };

    /// \p watcher, which is not empty, is called for each commit that begins after this call.
    [[nodiscard]] Subscription watch(CommitWatcher watcher);

    bool isWatched() const { return mCount.load() != 0; }

    /// Runs \p commit, which returns the commit's number. If somebody watches, \p describe is
    /// called before it, for the changes, and the watchers after it.
    template <class Describe, class Commit>
    void publish(const Describe& describe, const Commit& commit) {
        if (mCount.load() == 0) {
            commit();
            return;
        }
        const std::lock_guard<std::mutex> guard(mMutex);
        ChangeSet changes = describe();
        changes.number = commit();
        call(changes);
    }

    /// Calls the watchers with the changes of a commit that has happened already.
    void report(const ChangeSet& changes) const {
        const std::lock_guard<std::mutex> guard(mMutex);
        call(changes);
    }

private:
    void call(const ChangeSet& changes) const noexcept;
    void remove(const std::shared_ptr<const CommitWatcher>& watcher) noexcept;

    std::atomic<std::size_t> mCount{0}; ///< of mWatchers; read without the lock
    mutable std::mutex mMutex;          ///< guards mWatchers; held while they are called
    Watchers mWatchers;
};

}

#endif
