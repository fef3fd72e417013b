// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ConfirmedCommit.h"

#include "base/UtcTime.h"
#include "netconf/core/ServerLog.h"
#include "netconf/wire/RpcError.h"
#include "runtime/Host.h"

#include <algorithm>
#include <ctime>
#include <utility>

namespace OrvHost {

namespace {

/// With pauses of 10 s at first: more than five minutes.
constexpr int kMostPauses = 32;

}

// The note is there before the commit, which can be the last that the process does.
ConfirmedCommit::ConfirmedCommit(Host& host, const NetconfSession& owner, UnconfirmedNote& note)
    : mSince(utcText(std::time(nullptr))),
      mOwner(owner.id()),
      mAuthor(owner.author()),
      mNote(note),
      mFeed(host.watch([this](const ChangeSet& changes) {
          const std::lock_guard<std::mutex> lock(mMutex);
          ++mCommits;
          remember(changes);
          writeNote();
      })) {
    const std::lock_guard<std::mutex> lock(mMutex);
    writeNote();
}

/// The commit has happened, and what this throws is dropped there.
void ConfirmedCommit::remember(const ChangeSet& changes) {
    mIsKnown = contain("what a confirmed commit has changed is not remembered whole",
                       [&] { mUndoing.add(changes); }) &&
               mIsKnown;
}

void ConfirmedCommit::writeNote() noexcept {
    if (!mNote.isKept()) {
        return;
    }
    contain("the next start will not say what a confirmed commit has changed", [this] {
        mNote.write(std::string(UnconfirmedNote::kBegin) + mAuthor + ", which began at " + mSince +
                    ", was neither confirmed nor taken back when the server ended; what it had "
                    "changed is not taken back: " +
                    mUndoing.summary());
    });
}

void ConfirmedCommit::wait(Waiting waiting) noexcept {
    mDeadline = Alarm::Clock::now() + waiting.timeout;
    if (isOverdue()) {
        mOwner = waiting.owner;
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            mAuthor = std::move(waiting.author);
            writeNote();
        }
        mIsOverdue = false;
        mRefusal.clear();
        mPause = {};
        mToken.reset();
    }
    if (waiting.persist) {
        mToken = std::move(waiting.persist);
    }
}

void ConfirmedCommit::requireMayEnd(const NetconfSession& session,
                                    const std::optional<std::string>& persistId, End end) const {
    if (persistId && persistId != mToken) {
        throw RpcErrors(protocolError("invalid-value",
                                      "the persist-id is not that of the confirmed "
                                      "commit that waits for its confirmation"));
    }
    if (isOverdue() && end != End::Confirm) {
        return;
    }
    if (mToken ? !persistId : mOwner != session.id()) {
        throw RpcErrors(
            protocolError("in-use", text() + (mToken ? ", which must give its persist-id" : "")));
    }
}

std::string ConfirmedCommit::text() const {
    const std::string whose = "a confirmed commit of " + mAuthor;
    return isOverdue() ? whose + " is to be taken back (" + mReason +
                             "), which was refused; any session may cancel it, or take it over by "
                             "a confirmed commit" +
                             (mRefusal.empty() ? "" : ": " + mRefusal)
                       : whose + " waits for its confirmation";
}

Wish ConfirmedCommit::undoing(const Model& model) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (!mIsKnown) {
        throw RpcErrors(protocolError("operation-failed",
                                      "what was before the confirmed commit is not known whole, "
                                      "since there was not enough memory; nothing is taken back"));
    }
    return mUndoing.wish(model);
}

std::size_t ConfirmedCommit::commits() {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mCommits;
}

bool ConfirmedCommit::delay(const char* reason, std::chrono::seconds pause) noexcept {
    const std::chrono::seconds before = mPause;
    mPause = isOverdue() ? std::min(2 * mPause, kMostPauses * pause) : pause;
    mIsOverdue = true;
    mReason = reason;
    mDeadline = Alarm::Clock::now() + mPause;
    return mPause != before;
}

bool ConfirmedCommit::setRefusal(std::string refusal) noexcept {
    const bool isNews = refusal != mRefusal;
    mRefusal = std::move(refusal);
    return isNews;
}

}
