// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "EventStream.h"

#include "base/UtcTime.h"
#include "netconf/core/Committer.h"

#include <ctime>
#include <utility>

namespace OrvHost {

bool EventStream::listen(std::uint32_t session, Listener listener) {
    const std::lock_guard<std::mutex> feed(mFeedMutex);
    if (!mFeed) {
        mFeed = mHost.watch([this](const ChangeSet& changes) {
            publish([&] { return configChangeEvent(changes, Committer::current(), mSchema); });
        });
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    return mListeners.emplace(session, std::move(listener)).second;
}

void EventStream::leave(std::uint32_t session) {
    const std::lock_guard<std::mutex> feed(mFeedMutex);
    bool isLast = false;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mListeners.erase(session);
        isLast = mListeners.empty();
    }
    if (isLast) {
        mFeed.reset();
    }
}

void EventStream::sessionBegins(const NetconfSession& session) {
    publish([&] { return sessionStartEvent(session); });
}

void EventStream::sessionEnds(const NetconfSession& session, const SessionEnd& end) {
    publish([&] { return sessionEndEvent(session, end); });
}

void EventStream::publish(const std::function<std::string()>& makeXml) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mListeners.empty()) {
        return;
    }
    const auto event = std::make_shared<const Event>(Event{utcText(std::time(nullptr)), makeXml()});
    for (const auto& [session, listener] : mListeners) {
        listener(event);
    }
}

}
