// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_CONFIRMEDCOMMIT_H
#define ORV_HOST_NETCONF_CORE_CONFIRMEDCOMMIT_H

#include "netconf/core/Alarm.h"
#include "netconf/core/NetconfSession.h"
#include "netconf/core/UnconfirmedNote.h"
#include "netconf/core/Undoing.h"
#include "store/CommitFeed.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace OrvHost {

/// What a client says with a commit.
struct CommitRequest {
    bool isConfirmed = false;          ///< it is taken back unless another commit follows
    std::chrono::seconds timeout{600}; ///< of a confirmed commit
    /// With this token any session can confirm it, and it outlives its own.
    std::optional<std::string> persist{};
    std::optional<std::string> persistId{}; ///< the token of the confirmed commit that is meant
};

/// A confirmed commit of RFC 6241, section 8.4, that waits for its confirmation. It remembers what
/// was before all that has been committed since it began, whoever did: to take it back means that
/// running is again as it was before. It is kept in memory only: if it still waits when the process
/// ends, nothing is taken back, and with a store what was committed stays. A note says so to those
/// who begin anew.
///
/// If its time is over, or its session, and the component refuses to take it back, it is *overdue*:
/// it is tried again from time to time, after longer and longer pauses, and any session may cancel
/// it, or take it over by a confirmed commit of its own. To confirm it stays with its session and
/// those who know its token: a commit of somebody who knows nothing of it must not make it last.
///
/// One thread, but for the feed's.
class ConfirmedCommit {
public:
    /// What is committed from now on belongs to it.
    /// \p note is borrowed, and written as long as it waits.
    ConfirmedCommit(Host& host, const NetconfSession& owner, UnconfirmedNote& note);
    ConfirmedCommit(const ConfirmedCommit&) = delete;
    ConfirmedCommit& operator=(const ConfirmedCommit&) = delete;

    /// How it is to wait, complete before the commit, since nothing may fail after it.
    struct Waiting {
        std::uint32_t owner; ///< the session
        std::string author;
        std::chrono::seconds timeout;
        std::optional<std::string> persist; ///< see CommitRequest
    };

    /// Waits so, from now on. A token stays if none is named. One that was overdue has another
    /// owner from now on.
    void wait(Waiting waiting) noexcept;

    std::uint32_t owner() const { return mOwner; }
    const std::string& author() const { return mAuthor; }
    /// Why others must wait.
    std::string text() const;
    bool isPersistent() const { return mToken.has_value(); }
    Alarm::Clock::time_point deadline() const { return mDeadline; }

    enum class End { Confirm, WaitAnew, Cancel };
    /// Throws RpcErrors if the session may not end its waiting in that way.
    void requireMayEnd(const NetconfSession& session, const std::optional<std::string>& persistId,
                       End end) const;

    /// The wish that takes it back. Without edits: nothing was committed. Throws RpcErrors if
    /// memory has run out when something was committed, so that it is not known whole.
    Wish undoing(const Model& model);
    /// The commits so far, those that take it back included.
    std::size_t commits();

    /// It could not be taken back, which was to happen because of \p reason, a text that is never
    /// freed. It will be tried again in \p pause at first, then after twice as long, and so on, up
    /// to 32 times as long. True if the pause is another one than before.
    bool delay(const char* reason, std::chrono::seconds pause) noexcept;
    /// Why it could not be taken back the last time, for people. True if that is news.
    bool setRefusal(std::string refusal) noexcept;
    std::chrono::seconds pause() const { return mPause; }
    bool isOverdue() const { return mIsOverdue; }
    /// See delay().
    const char* reason() const { return mReason; }

private:
    void remember(const ChangeSet& changes);
    void writeNote() noexcept;

    const std::string mSince;
    std::uint32_t mOwner;
    std::string mAuthor; ///< written under the mutex
    std::optional<std::string> mToken;
    Alarm::Clock::time_point mDeadline;
    bool mIsOverdue = false;
    const char* mReason = "";
    std::string mRefusal; ///< empty: not known

    std::chrono::seconds mPause{0};

    std::mutex mMutex; ///< guards the next four
    UnconfirmedNote& mNote;
    Undoing mUndoing;
    bool mIsKnown = true; ///< mUndoing has all commits
    std::size_t mCommits = 0;
    CommitFeed::Subscription mFeed; ///< after what its watcher uses
};

}

#endif
