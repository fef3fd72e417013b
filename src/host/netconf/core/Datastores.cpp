// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Datastores.h"

#include "client/edits/ClientState.h"
#include "client/edits/EditPlanner.h"
#include "netconf/wire/RpcError.h"

#include <exception>

namespace OrvHost {

namespace {

RpcError protocolError(const std::string& tag, const std::string& message) {
    RpcError error;
    error.type = "protocol";
    error.tag = tag;
    error.message = message;
    return error;
}

OpenTransactions::Entry entryOf(unsigned long handle) {
    return {"", handle, 0};
}

/// A transaction that is aborted unless it has ended otherwise.
class OwnTransaction {
public:
    OwnTransaction(Host& host, const std::string& author)
        : mHost(host), mHandle(host.transactions().begin(author)) {}
    ~OwnTransaction() {
        if (!mIsEnded) {
            mHost.transactions().abort(mHandle);
        }
    }
    OwnTransaction(const OwnTransaction&) = delete;
    OwnTransaction& operator=(const OwnTransaction&) = delete;

    unsigned long handle() const { return mHandle; }
    /// Committed or aborted by somebody else from now on.
    void leave() { mIsEnded = true; }

private:
    Host& mHost;
    unsigned long mHandle;
    bool mIsEnded = false;
};

}

std::string datastoreName(Datastore store) {
    return store == Datastore::Running ? "running" : "candidate";
}

Datastores::Datastores(Host& host)
    : mHost(host), mCandidateClients(host), mCandidate(host, mCandidateClients) {}

Datastores::~Datastores() {
    const std::lock_guard<std::mutex> lock(mCandidateMutex);
    dropCandidate();
}

void Datastores::read(NetconfSession& session, Datastore store, const Read& read) {
    if (store == Datastore::Candidate) {
        const std::lock_guard<std::mutex> lock(mCandidateMutex);
        if (mHandle) {
            read(mCandidate, *mHandle);
            return;
        }
    }
    const Host::ReadTransaction transaction(mHost);
    read(session.client(), transaction.handle());
}

void Datastores::edit(NetconfSession& session, Datastore target, EditMode mode,
                      const MakeWish& wish) {
    if (target == Datastore::Running) {
        editRunning(session, mode, wish);
    } else {
        editCandidate(session, mode, wish);
    }
}

void Datastores::editRunning(NetconfSession& session, EditMode mode, const MakeWish& wish) {
    const std::lock_guard<std::mutex> lock(mRunningMutex);
    requireMayEdit(session, Datastore::Running, mode);
    ClientSession& client = session.client();
    OwnTransaction transaction(mHost, session.author());
    const unsigned long handle = transaction.handle();
    ClientState before(client.clients().version3(), handle);
    applyWish(wish(before), client.model(), client.clients(), handle, &client.cancellation());
    if (mode == EditMode::OnlyTest) {
        client.validate(entryOf(handle));
    } else {
        transaction.leave();
        client.commit(entryOf(handle));
    }
}

void Datastores::editCandidate(NetconfSession& session, EditMode mode, const MakeWish& wish) {
    // If the write is refused half-way, the edits before are made again. An edit of running must
    // not get between that.
    const std::scoped_lock lock(mRunningMutex, mCandidateMutex);
    requireMayEdit(session, Datastore::Candidate, mode);
    beginCandidate(session.author());
    ClientState before(mCandidateClients.version3(), *mHandle);
    bool isWriting = false;
    try {
        const Wish made = wish(before);
        const EditPlan plan = EditPlanner(mHost.model()).plan(made, before);
        if (mode == EditMode::Write && !plan.calls.empty()) {
            isWriting = true;
            runPlan(plan, mHost.model(), mCandidateClients, *mHandle);
            mAccepted.push_back(made);
        }
    } catch (...) {
        if (isWriting) {
            replay(session.author());
        } else if (mAccepted.empty()) {
            dropCandidate();
        }
        throw;
    }
    if (mAccepted.empty()) {
        dropCandidate();
    }
}

void Datastores::validate(NetconfSession& session, Datastore store) {
    read(session, store,
         [](ClientSession& client, unsigned long txHandle) { client.validate(entryOf(txHandle)); });
}

void Datastores::commit(NetconfSession& session) {
    const std::scoped_lock lock(mRunningMutex, mCandidateMutex);
    requireUnlocked(session, Datastore::Running);
    requireUnlocked(session, Datastore::Candidate);
    if (!mHandle) {
        return;
    }
    const unsigned long handle = *mHandle;
    mHandle.reset();
    try {
        mCandidate.commit(entryOf(handle));
    } catch (...) {
        replay(session.author());
        throw;
    }
    mAccepted.clear();
}

void Datastores::discard(NetconfSession& session) {
    const std::lock_guard<std::mutex> lock(mCandidateMutex);
    requireUnlocked(session, Datastore::Candidate);
    dropCandidate();
}

void Datastores::beginCandidate(const std::string& author) {
    if (!mHandle) {
        mHandle = mHost.transactions().begin(author + ", candidate");
    }
}

void Datastores::dropCandidate() {
    mAccepted.clear();
    if (mHandle) {
        mCandidate.abort(entryOf(*mHandle));
        mHandle.reset();
    }
}

/// Makes the accepted edits again in a new transaction.
void Datastores::replay(const std::string& author) {
    if (mHandle) {
        mCandidate.abort(entryOf(*mHandle));
        mHandle.reset();
    }
    if (mAccepted.empty()) {
        return;
    }
    beginCandidate(author);
    try {
        for (const Wish& wish : mAccepted) {
            applyWish(wish, mHost.model(), mCandidateClients, *mHandle);
        }
    } catch (const std::exception& failure) {
        dropCandidate();
        throw RpcErrors(protocolError(
            "operation-failed",
            std::string("the request was refused, and the candidate is discarded: its edits "
                        "cannot be made again on what is running now: ") +
                failure.what()));
    }
}

void Datastores::lock(NetconfSession& session, Datastore store) {
    // A lock is not given while an edit of the datastore is at work.
    const std::scoped_lock lock(mRunningMutex, mCandidateMutex, mLockMutex);
    session.client().cancellation().throwIfCancelled();
    const auto found = mLocks.find(store);
    if (found != mLocks.end()) {
        RpcError error = protocolError("lock-denied", "session " + std::to_string(found->second) +
                                                          " has locked " + datastoreName(store));
        error.info = errorInfo("session-id", std::to_string(found->second));
        throw RpcErrors(error);
    }
    if (store == Datastore::Candidate && mHandle) {
        RpcError error = protocolError(
            "lock-denied", "candidate has changes that are neither committed nor discarded");
        error.info = errorInfo("session-id", "0");
        throw RpcErrors(error);
    }
    mLocks[store] = session.id();
}

void Datastores::unlock(NetconfSession& session, Datastore store) {
    const std::lock_guard<std::mutex> lock(mLockMutex);
    const auto found = mLocks.find(store);
    if (found == mLocks.end() || found->second != session.id()) {
        throw RpcErrors(protocolError("operation-failed",
                                      "this session has not locked " + datastoreName(store)));
    }
    mLocks.erase(found);
}

void Datastores::end(std::uint32_t sessionId) {
    const std::lock_guard<std::mutex> candidate(mCandidateMutex);
    const std::lock_guard<std::mutex> lock(mLockMutex);
    for (auto one = mLocks.begin(); one != mLocks.end();) {
        if (one->second != sessionId) {
            ++one;
            continue;
        }
        if (one->first == Datastore::Candidate) {
            dropCandidate();
        }
        one = mLocks.erase(one);
    }
}

std::optional<std::uint32_t> Datastores::lockedBy(Datastore store) const {
    const std::lock_guard<std::mutex> lock(mLockMutex);
    const auto found = mLocks.find(store);
    return found != mLocks.end() ? std::optional(found->second) : std::nullopt;
}

void Datastores::requireMayEdit(NetconfSession& session, Datastore store, EditMode mode) const {
    if (mode == EditMode::Write) {
        requireUnlocked(session, store);
    }
}

void Datastores::requireUnlocked(NetconfSession& session, Datastore store) const {
    // The locks of a killed session are released while it may still be at work.
    session.client().cancellation().throwIfCancelled();
    const auto owner = lockedBy(store);
    if (owner && *owner != session.id()) {
        throw RpcErrors(protocolError("in-use", "session " + std::to_string(*owner) +
                                                    " has locked " + datastoreName(store)));
    }
}

}
