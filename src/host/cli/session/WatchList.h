// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SESSION_WATCHLIST_H
#define ORV_HOST_CLI_SESSION_WATCHLIST_H

#include "client/StateComparison.h"
#include "runtime/Host.h"

#include <cstddef>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace OrvHost {

/// A commit that touched a watched object.
struct WatchedCommit {
    CommitNumber number = 0;
    std::string author;                    ///< who began the transaction; empty if nobody said
    std::vector<ObjectDifference> objects; ///< only watched ones
};

/// The objects whose commits a session wants to see, and the commits that are not shown yet.
///
/// Of the commits that are not shown yet, the last 1000 are kept, and not more than 16 MiB of them.
///
/// One thread at a time; commits can come on any. They cost nothing while nothing is watched.
class WatchList {
public:
    /// \p host is borrowed.
    explicit WatchList(Host& host) : mHost(host) {}

    /// Watches the object \p dn, external, which need not exist, and all below it; all objects if
    /// it is empty.
    void add(const std::string& dn);
    /// False if \p dn is not watched.
    bool remove(const std::string& dn);
    void clear();
    /// In the order in which they were added.
    const std::vector<std::string>& dns() const { return mDns; }

    struct News {
        std::size_t lost = 0; ///< commits before these that were too many to keep
        std::deque<WatchedCommit> commits;
    };
    /// The commits since the last call, in their order.
    News take();

private:
    void note(const ChangeSet& changes);

    Host& mHost;
    std::mutex mMutex; ///< guards mDns against changes, and mNews
    std::vector<std::string> mDns;
    News mNews;
    std::size_t mSize = 0;                  ///< of the commits of mNews, in bytes
    CommitFeed::Subscription mSubscription; ///< ends before the others
};

}

#endif
