// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "WatchList.h"

#include "base/DnView.h"
#include "client/ChangeDifferences.h"

#include <algorithm>
#include <utility>

namespace OrvHost {

namespace {

constexpr std::size_t kMostKept = 1000;

}

void WatchList::add(const std::string& dn) {
    if (std::find(mDns.begin(), mDns.end(), dn) != mDns.end()) {
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mDns.push_back(dn);
    }
    if (mDns.size() == 1) {
        mSubscription = mHost.watch([this](const ChangeSet& changes) { note(changes); });
    }
}

bool WatchList::remove(const std::string& dn) {
    const auto found = std::find(mDns.begin(), mDns.end(), dn);
    if (found == mDns.end()) {
        return false;
    }
    if (mDns.size() == 1) {
        mSubscription.end();
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    mDns.erase(found);
    return true;
}

void WatchList::clear() {
    mSubscription.end();
    mDns.clear();
}

WatchList::News WatchList::take() {
    const std::lock_guard<std::mutex> lock(mMutex);
    return std::exchange(mNews, {});
}

void WatchList::note(const ChangeSet& changes) {
    WatchedCommit commit{changes.number, changes.author, differencesOf(changes, mHost.model())};
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto isWatched = [this](const ObjectDifference& object) {
        return std::any_of(mDns.begin(), mDns.end(), [&](const std::string& dn) {
            return DnView(object.dn).isAtOrBelow(DnView(dn));
        });
    };
    commit.objects.erase(
        std::remove_if(commit.objects.begin(), commit.objects.end(),
                       [&](const ObjectDifference& object) { return !isWatched(object); }),
        commit.objects.end());
    if (commit.objects.empty()) {
        return;
    }
    mNews.commits.push_back(std::move(commit));
    if (mNews.commits.size() > kMostKept) {
        mNews.commits.pop_front();
        ++mNews.lost;
    }
}

}
