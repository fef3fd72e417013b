// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "WatchList.h"

#include "base/DnView.h"
#include "client/ChangeDifferences.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace OrvHost {

namespace {

constexpr std::size_t kMostKept = 1000;
constexpr std::size_t kMostBytes = std::size_t{16} << 20U;

std::size_t sizeOf(const AttributeValue& value) {
    std::size_t size = sizeof(value);
    for (const Value& one : value.values) {
        size += sizeof(one);
        if (const auto* text = std::get_if<std::string>(&one)) {
            size += text->size();
        } else if (const auto* whole = std::get_if<StructValue>(&one)) {
            for (const auto& [name, member] : whole->members) {
                size += name.size() + sizeOf(member);
            }
        }
    }
    return size;
}

/// About the memory that it takes.
std::size_t sizeOf(const WatchedCommit& commit) {
    std::size_t size = sizeof(commit) + commit.author.size();
    for (const ObjectDifference& object : commit.objects) {
        size += sizeof(object) + object.dn.size();
        for (const AttributeDifference& attribute : object.attributes) {
            size += sizeof(attribute) + sizeOf(attribute.before) + sizeOf(attribute.after);
        }
    }
    return size;
}

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
    mSize = 0;
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
    mSize += sizeOf(commit);
    mNews.commits.push_back(std::move(commit));
    while (mNews.commits.size() > kMostKept || mSize > kMostBytes) {
        mSize -= sizeOf(mNews.commits.front());
        mNews.commits.pop_front();
        ++mNews.lost;
    }
}

}
