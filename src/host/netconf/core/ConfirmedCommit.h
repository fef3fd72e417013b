// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_CONFIRMEDCOMMIT_H
#define ORV_HOST_NETCONF_CORE_CONFIRMEDCOMMIT_H

#include "netconf/core/Alarm.h"
#include "netconf/core/NetconfSession.h"
#include "store/ChangeSet.h"
#include "store/CommitFeed.h"

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

/// What a client says with a commit.
struct CommitRequest {
    bool isConfirmed = false;          ///< it is taken back unless another commit follows
    std::chrono::seconds timeout{600}; ///< of a confirmed commit
    /// With this token any session can confirm it, and it outlives its own.
    std::optional<std::string> persist{};
    std::optional<std::string> persistId{}; ///< the token of the confirmed commit that is meant
};

/// A confirmed commit of RFC 6241, section 8.4, that waits for its confirmation. It remembers all
/// that has been committed since it began, whoever did: to take it back means that running is again
/// as it was before. It is kept in memory only, as the data is.
///
/// One thread, but for the feed's.
class ConfirmedCommit {
public:
    /// What is committed from now on belongs to it.
    ConfirmedCommit(Host& host, const NetconfSession& owner);
    ConfirmedCommit(const ConfirmedCommit&) = delete;
    ConfirmedCommit& operator=(const ConfirmedCommit&) = delete;

    /// Waits as long as \p request says, from now on. A token that it does not name stays.
    void wait(const CommitRequest& request);

    std::uint32_t owner() const { return mOwner; }
    const std::string& author() const { return mAuthor; }
    /// Why others must wait.
    std::string text() const {
        return "a confirmed commit of " + mAuthor + " waits for its confirmation";
    }
    bool isPersistent() const { return mToken.has_value(); }
    Alarm::Clock::time_point deadline() const { return mDeadline; }

    /// Throws RpcErrors if the session may neither confirm nor cancel it.
    void requireMayEnd(const NetconfSession& session,
                       const std::optional<std::string>& persistId) const;

    /// The changes so far, in their order. What is committed later does not belong to it.
    std::vector<ChangeSet> end();

private:
    std::uint32_t mOwner;
    std::string mAuthor;
    std::optional<std::string> mToken;
    Alarm::Clock::time_point mDeadline;

    std::mutex mMutex; ///< guards mChanges
    std::vector<ChangeSet> mChanges;
    CommitFeed::Subscription mFeed; ///< after what its watcher uses
};

}

#endif
