// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ConfirmedCommit.h"

#include "netconf/wire/RpcError.h"
#include "runtime/Host.h"

#include <utility>

namespace OrvHost {

ConfirmedCommit::ConfirmedCommit(Host& host, const NetconfSession& owner)
    : mOwner(owner.id()),
      mAuthor(owner.author()),
      mFeed(host.watch([this](const ChangeSet& changes) {
          const std::lock_guard<std::mutex> lock(mMutex);
          mChanges.push_back(changes);
      })) {}

void ConfirmedCommit::wait(const CommitRequest& request) {
    if (request.persist) {
        mToken = request.persist;
    }
    mDeadline = Alarm::Clock::now() + request.timeout;
}

void ConfirmedCommit::requireMayEnd(const NetconfSession& session,
                                    const std::optional<std::string>& persistId) const {
    if (persistId && persistId != mToken) {
        throw RpcErrors(protocolError("invalid-value",
                                      "the persist-id is not that of the confirmed "
                                      "commit that waits for its confirmation"));
    }
    if (mToken ? !persistId : mOwner != session.id()) {
        throw RpcErrors(
            protocolError("in-use", text() + (mToken ? ", which must give its persist-id" : "")));
    }
}

std::vector<ChangeSet> ConfirmedCommit::end() {
    mFeed.end();
    const std::lock_guard<std::mutex> lock(mMutex);
    return std::move(mChanges);
}

}
