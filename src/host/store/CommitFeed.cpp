// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "CommitFeed.h"

#include <algorithm>
#include <utility>

namespace OrvHost {

CommitFeed::Subscription& CommitFeed::Subscription::operator=(Subscription&& other) noexcept {
    if (this != &other) {
        end();
        mFeed = std::exchange(other.mFeed, nullptr);
        mWatcher = std::move(other.mWatcher);
    }
    return *this;
}

void CommitFeed::Subscription::end() {
    if (mFeed != nullptr) {
        mFeed->remove(mWatcher);
        mFeed = nullptr;
    }
}

CommitFeed::Subscription CommitFeed::watch(CommitWatcher watcher) {
    auto entered = std::make_shared<const CommitWatcher>(std::move(watcher));
    const std::lock_guard<std::mutex> guard(mMutex);
    mWatchers.push_back(entered);
    mCount = mWatchers.size();
    return {*this, std::move(entered)};
}

void CommitFeed::call(const ChangeSet& changes) const noexcept {
    for (const auto& watcher : mWatchers) {
        try {
            (*watcher)(changes);
        } catch (...) { // NOLINT(bugprone-empty-catch): the commit has happened, see CommitWatcher
        }
    }
}

void CommitFeed::remove(const std::shared_ptr<const CommitWatcher>& watcher) noexcept {
    const std::lock_guard<std::mutex> guard(mMutex);
    mWatchers.erase(std::remove(mWatchers.begin(), mWatchers.end(), watcher), mWatchers.end());
    mCount = mWatchers.size();
}

}
