// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Datastores.h"

#include "base/HostReturn.h"
#include "client/ClientErrors.h"
#include "client/edits/ClientState.h"
#include "client/edits/EditPlanner.h"
#include "netconf/core/Committer.h"
#include "netconf/core/ErrorReader.h"
#include "netconf/core/ServerLog.h"
#include "netconf/wire/RpcError.h"

#include <utility>

namespace OrvHost {

namespace {

RpcError noConfirmedCommit(bool isNamed) {
    return protocolError(isNamed ? "invalid-value" : "operation-failed",
                         "no confirmed commit waits for its confirmation");
}

OpenTransactions::Entry entryOf(unsigned long handle) {
    return {"", handle, 0};
}

/// A transaction that is aborted unless it has ended otherwise: then its handle is not known.
class OwnTransaction {
public:
    OwnTransaction(Host& host, const std::string& author)
        : mHost(host), mHandle(host.transactions().begin(author)) {}
    ~OwnTransaction() {
        contain("a transaction is not aborted", [this] { mHost.transactions().abort(mHandle); });
    }
    OwnTransaction(const OwnTransaction&) = delete;
    OwnTransaction& operator=(const OwnTransaction&) = delete;

    unsigned long handle() const { return mHandle; }

private:
    Host& mHost;
    unsigned long mHandle;
};

RpcError inUse(const ConfirmedCommit& waiting) {
    return protocolError("in-use", waiting.text());
}

}

std::string datastoreName(Datastore store) {
    return store == Datastore::Running ? "running" : "candidate";
}

Datastores::Datastores(Host& host, const YangSchema& schema)
    : mHost(host),
      mSchema(schema),
      mCandidateClients(host),
      mCandidate(host, mCandidateClients),
      mTimeOver([this] { onTimeOver(); }) {}

Datastores::~Datastores() {
    mTimeOver.stop();
    const std::scoped_lock lock(mRunningMutex, mCandidateMutex);
    dropCandidate();
    contain("a confirmed commit is left", [this] { logUnconfirmed(); });
}

void Datastores::logUnconfirmed() const {
    if (mUnconfirmed) {
        logServer(4, "the server ends, and what the confirmed commit of " + mUnconfirmed->author() +
                         " has changed stays: it was neither confirmed nor taken back");
    }
}

void Datastores::abandon() {
    std::unique_lock<std::mutex> lock(mRunningMutex, std::try_to_lock);
    if (lock) {
        logUnconfirmed();
        static_cast<void>(lock.release()); // what is logged must stay true
    } else {
        logServer(4, "the server ends while running is written to: what a confirmed commit has "
                     "changed stays, if one waits");
    }
}

void Datastores::noteUnconfirmedIn(const std::filesystem::path& file) {
    mNote = UnconfirmedNote(file);
}

void Datastores::tellLeftUnconfirmed() {
    const std::lock_guard<std::mutex> lock(mRunningMutex);
    mNote.tellLeft();
}

/// It is confirmed or taken back.
void Datastores::endWaiting() {
    mUnconfirmed.reset();
    mNote.clear();
    setAlarm();
}

void Datastores::read(NetconfSession& session, Datastore store, const Read& read) {
    if (store == Datastore::Candidate) {
        const std::lock_guard<std::mutex> lock(mCandidateMutex);
        throwIfLost(session);
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
        writeRunning(session, mode, [&](ClientSession& client, unsigned long txHandle) {
            ClientState before(client.clients().version3(), txHandle);
            applyWish(wish(before), client.model(), client.clients(), txHandle,
                      &client.cancellation());
        });
    } else {
        editCandidate(session, mode, wish);
    }
}

void Datastores::writeRunning(NetconfSession& session, EditMode mode, const Work& work) {
    const std::lock_guard<std::mutex> lock(mRunningMutex);
    requireMayEdit(session, Datastore::Running, mode);
    if (mode == EditMode::Write && mUnconfirmed && mUnconfirmed->owner() != session.id()) {
        throw RpcErrors(inUse(*mUnconfirmed));
    }
    const Committer committer(session);
    ClientSession& client = session.client();
    OwnTransaction transaction(mHost, session.author());
    const unsigned long handle = transaction.handle();
    work(client, handle);
    if (mode == EditMode::OnlyTest) {
        client.validate(entryOf(handle));
    } else {
        client.commit(entryOf(handle));
    }
}

ReadValue Datastores::act(NetconfSession& session, const ActionRequest& action) {
    ReadValue result;
    writeRunning(session, EditMode::Write, [&](ClientSession& client, unsigned long txHandle) {
        result = client.client().action(txHandle, action.dn, action.shape->name, action.parameters,
                                        action.def);
    });
    return result;
}

void Datastores::editCandidate(NetconfSession& session, EditMode mode, const MakeWish& wish) {
    // If the write is refused half-way, the edits before are made again. An edit of running must
    // not get between that.
    const std::scoped_lock lock(mRunningMutex, mCandidateMutex);
    requireMayEdit(session, Datastore::Candidate, mode);
    throwIfLost(session);
    beginCandidate(session.author());
    ClientState before(mCandidateClients.version3(), *mHandle);
    bool isWriting = false;
    try {
        const Wish made = wish(before);
        const EditPlan plan = EditPlanner(mHost.model()).plan(made, before);
        if (mode == EditMode::Write && !plan.calls.empty()) {
            isWriting = true;
            runPlan(plan, mHost.model(), mCandidateClients, *mHandle);
            mEditors.try_emplace(session.id());
            mAccepted.push_back(made);
            if (mCandidateLimit.count() > 0) {
                mCandidateDeadline = Alarm::Clock::now() + mCandidateLimit;
                setAlarm();
            }
        }
    } catch (...) {
        if (isWriting) {
            replay(&session);
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

void Datastores::commit(NetconfSession& session, const CommitRequest& request) {
    // Complete before the commit, since nothing may fail after it.
    ConfirmedCommit::Waiting waiting{session.id(), session.author(), request.timeout,
                                     request.persist};
    const std::scoped_lock lock(mRunningMutex, mCandidateMutex);
    requireUnlocked(session, Datastore::Running);
    requireUnlocked(session, Datastore::Candidate);
    throwIfLost(session);
    if (mUnconfirmed) {
        using End = ConfirmedCommit::End;
        mUnconfirmed->requireMayEnd(session, request.persistId,
                                    request.isConfirmed ? End::WaitAnew : End::Confirm);
    } else if (request.persistId) {
        throw RpcErrors(noConfirmedCommit(true));
    }
    std::unique_ptr<ConfirmedCommit> begun;
    if (request.isConfirmed && !mUnconfirmed) {
        begun = std::make_unique<ConfirmedCommit>(mHost, session, mNote);
    }
    const Committer committer(session);
    try {
        commitCandidate(session);
    } catch (const RefusalError& refusal) {
        if (begun && refusal.outcome().code == OrvHostOutcomeUnknown) {
            awaitConfirmation(std::move(begun), std::move(waiting)); // it may be committed
        } else {
            forget(std::move(begun));
        }
        throw;
    } catch (...) {
        forget(std::move(begun));
        throw;
    }
    if (request.isConfirmed) {
        awaitConfirmation(std::move(begun), std::move(waiting));
        return;
    }
    if (mUnconfirmed && mUnconfirmed->isOverdue()) {
        contain("a confirmation is not logged", [&] {
            logServer(4, session.author() + " confirms the commit of " + mUnconfirmed->author() +
                             " that could not be taken back");
        });
    }
    endWaiting();
}

/// \p begun: null: the one that waits already does so anew.
void Datastores::awaitConfirmation(std::unique_ptr<ConfirmedCommit> begun,
                                   ConfirmedCommit::Waiting waiting) noexcept {
    if (begun) {
        mUnconfirmed = std::move(begun);
    }
    mUnconfirmed->wait(std::move(waiting));
    setAlarm();
}

/// Nothing was committed.
void Datastores::forget(std::unique_ptr<ConfirmedCommit> begun) noexcept {
    if (begun) {
        begun.reset();
        mNote.clear();
    }
}

void Datastores::copyToRunning(NetconfSession& session) {
    const std::scoped_lock lock(mRunningMutex, mCandidateMutex);
    requireUnlocked(session, Datastore::Running);
    requireUnlocked(session, Datastore::Candidate);
    throwIfLost(session);
    if (mUnconfirmed) {
        throw RpcErrors(inUse(*mUnconfirmed));
    }
    const Committer committer(session);
    commitCandidate(session);
}

void Datastores::commitBeside(const std::string& user, const std::function<void()>& commit) {
    const std::lock_guard<std::mutex> lock(mRunningMutex);
    if (const auto locked = lockOf(Datastore::Running)) {
        throw CommitDenied("nothing is committed: session " + std::to_string(locked->session) +
                           " of NETCONF has locked running");
    }
    if (mUnconfirmed) {
        throw CommitDenied("nothing is committed: " + mUnconfirmed->text());
    }
    const Committer committer(user);
    commit();
}

void Datastores::commitCandidate(const NetconfSession& session) {
    if (!mHandle) {
        return;
    }
    const unsigned long handle = *mHandle;
    mHandle.reset();
    try {
        mCandidate.commit(entryOf(handle));
    } catch (...) {
        mHost.transactions().abort(handle); // if it has ended, its handle is not known
        replay(&session);
        throw;
    }
    forgetEdits();
}

void Datastores::cancelCommit(NetconfSession& session,
                              const std::optional<std::string>& persistId) {
    const std::scoped_lock lock(mRunningMutex, mCandidateMutex);
    session.client().cancellation().throwIfCancelled();
    if (!mUnconfirmed) {
        throw RpcErrors(noConfirmedCommit(persistId.has_value()));
    }
    mUnconfirmed->requireMayEnd(session, persistId, ConfirmedCommit::End::Cancel);
    const Committer committer(session);
    takeBack();
}

/// Brings running back to what it was before the confirmed commit; if that is refused, it goes on
/// to wait. The candidate gives way, since it may have written to the same objects, and its edits
/// are made again afterwards.
void Datastores::takeBack() {
    { // whatever a shared store has by now is known afterwards
        const Host::ReadTransaction now(mHost);
    }
    const bool isChanged = !mUnconfirmed->undoing(mHost.model()).edits.empty();
    std::exception_ptr refusal;
    if (isChanged) {
        abortCandidate();
        try {
            undoAll();
        } catch (...) {
            refusal = std::current_exception();
        }
    }
    if (!refusal) { // it is done, whatever becomes of the candidate
        endWaiting();
    }
    if (isChanged) {
        replay(nullptr);
    }
    if (refusal) {
        std::rethrow_exception(refusal);
    }
}

/// Nobody waits for an answer. What needs memory comes last, so that it is tried again whatever is
/// not possible now. \p reason is never freed.
void Datastores::takeBackUnasked(const char* reason) noexcept {
    std::string what;
    std::exception_ptr refusal;
    try {
        what = "the confirmed commit of " + mUnconfirmed->author();
        takeBack();
    } catch (...) {
        refusal = std::current_exception();
    }
    if (mUnconfirmed) {
        const bool isPauseNew = mUnconfirmed->delay(reason, mUndoingPause);
        setAlarm();
        contain("a confirmed commit could not be taken back", [&] {
            const std::string text = textOf(refusal);
            if (mUnconfirmed->setRefusal(text) || isPauseNew) {
                logServer(3, what + " is to be taken back (" + reason +
                                 "), which is refused; the next try is in " +
                                 std::to_string(mUnconfirmed->pause().count()) +
                                 " s, and any session may cancel it, or take it over by a "
                                 "confirmed commit: " +
                                 text);
            }
        });
        return;
    }
    contain("a confirmed commit is taken back", [&] {
        if (refusal) {
            logServer(3, what + " is taken back (" + reason + "), but not all edits of the " +
                             "candidate could be made again: " + textOf(refusal));
        } else {
            logServer(4, what + " is taken back: " + reason);
        }
    });
}

std::string Datastores::textOf(const std::exception_ptr& failure) {
    std::string text;
    for (const RpcError& error : errorsOf(failure, mSchema, mCandidate)) {
        text += (text.empty() ? "" : "; ") + error.message;
    }
    return text;
}

/// Other clients of the host can commit meanwhile: that is undone, too.
void Datastores::undoAll() {
    constexpr int kMostTimes = 10;
    for (int times = 0; !undo(); ++times) {
        if (times == kMostTimes) {
            throw RpcErrors(protocolError(
                "in-use", "other clients of the host have committed again and again"));
        }
    }
}

/// False if somebody has committed what this has not undone. A commit after the count can be one
/// that the transaction does not see.
bool Datastores::undo() {
    const std::size_t commits = mUnconfirmed->commits();
    OwnTransaction transaction(mHost, mUnconfirmed->author() + ", confirmed commit");
    const EditPlan plan = applyWish(mUnconfirmed->undoing(mHost.model()), mHost.model(),
                                    mCandidateClients, transaction.handle());
    if (plan.calls.empty()) {
        return mUnconfirmed->commits() == commits;
    }
    mCandidate.commit(entryOf(transaction.handle()));
    return mUnconfirmed->commits() <= commits + 1;
}

void Datastores::onTimeOver() {
    const std::scoped_lock lock(mRunningMutex, mCandidateMutex);
    const Alarm::Clock::time_point now = Alarm::Clock::now();
    if (mUnconfirmed && now >= mUnconfirmed->deadline()) {
        takeBackUnasked(mUnconfirmed->isOverdue() ? mUnconfirmed->reason()
                                                  : "it was not confirmed in time");
    }
    if (mCandidateDeadline && now >= *mCandidateDeadline) {
        loseCandidate([this] {
            return "nobody has edited it for " + std::to_string(mCandidateLimit.count()) + " s";
        });
    }
    setAlarm();
}

/// For what is due next.
void Datastores::setAlarm() {
    std::optional<Alarm::Clock::time_point> next = mCandidateDeadline;
    if (mUnconfirmed && (!next || mUnconfirmed->deadline() < *next)) {
        next = mUnconfirmed->deadline();
    }
    if (next) {
        mTimeOver.set(*next);
    } else {
        mTimeOver.off();
    }
}

void Datastores::discard(NetconfSession& session) {
    const std::lock_guard<std::mutex> lock(mCandidateMutex);
    requireUnlocked(session, Datastore::Candidate);
    mLost.erase(session.id());
    dropCandidate();
}

void Datastores::beginCandidate(const std::string& author) {
    if (!mHandle) {
        mAuthor = author;
        mHandle = mHost.transactions().begin(author + ", candidate");
    }
}

void Datastores::abortCandidate() {
    if (mHandle) {
        mCandidate.abort(entryOf(*std::exchange(mHandle, std::nullopt)));
    }
}

void Datastores::forgetEdits() {
    mAccepted.clear();
    mEditors.clear();
    mCandidateDeadline.reset();
}

void Datastores::dropCandidate() {
    forgetEdits();
    abortCandidate();
}

/// Discards the candidate although nobody has asked for that: those who have edited it get to know
/// it by the next answer, with the reason if there is memory for its text. Returns the reason.
std::string Datastores::loseCandidate(const std::function<std::string()>& reason) noexcept {
    Editors editors = std::move(mEditors);
    std::string text;
    contain("a candidate is discarded", [this] { dropCandidate(); });
    contain("the reason is lost why the candidate is discarded", [&] {
        text = reason();
        for (auto& [session, why] : editors) {
            why = text;
        }
        logServer(4, "the candidate is discarded: " + text);
    });
    mLost.merge(editors);
    return text;
}

/// \p reason: see loseCandidate.
RpcErrors Datastores::lostError(const char* what, const std::string& reason) {
    return RpcErrors(protocolError(
        "operation-failed",
        std::string("the request was refused, ") + what +
            (reason.empty() ? "there was not enough memory to keep its edits" : reason)));
}

void Datastores::throwIfLost(const NetconfSession& session) {
    const auto found = mLost.find(session.id());
    if (found != mLost.end()) {
        const RpcErrors error =
            lostError("since the candidate was discarded before it: ", found->second);
        mLost.erase(found);
        throw error;
    }
}

/// Makes the accepted edits again in a new transaction. If that is not possible, \p asking, which
/// may be null, gets to know it at once.
void Datastores::replay(const NetconfSession* asking) {
    abortCandidate();
    if (mAccepted.empty()) {
        return;
    }
    try {
        beginCandidate(mAuthor);
        for (const Wish& wish : mAccepted) {
            applyWish(wish, mHost.model(), mCandidateClients, *mHandle);
        }
    } catch (...) {
        const std::exception_ptr failure = std::current_exception();
        const std::string reason = loseCandidate([&] {
            return "its edits cannot be made again on what is running now: " + textOf(failure);
        });
        if (asking != nullptr) {
            const RpcErrors error = lostError("and the candidate is discarded: ", reason);
            mLost.erase(asking->id());
            throw error;
        }
    }
}

void Datastores::lock(NetconfSession& session, Datastore store) {
    // A lock is not given while an edit of the datastore is at work.
    const std::scoped_lock lock(mRunningMutex, mCandidateMutex, mLockMutex);
    session.client().cancellation().throwIfCancelled();
    const auto found = mLocks.find(store);
    if (found != mLocks.end()) {
        RpcError error =
            protocolError("lock-denied", "session " + std::to_string(found->second.session) +
                                             " has locked " + datastoreName(store));
        error.info = errorInfo("session-id", std::to_string(found->second.session));
        throw RpcErrors(error);
    }
    if (store == Datastore::Candidate && mHandle) {
        RpcError error = protocolError(
            "lock-denied", "candidate has changes that are neither committed nor discarded");
        error.info = errorInfo("session-id", "0");
        throw RpcErrors(error);
    }
    if (store == Datastore::Running && mUnconfirmed && mUnconfirmed->owner() != session.id()) {
        RpcError error = protocolError("lock-denied", mUnconfirmed->text());
        error.info = errorInfo("session-id", std::to_string(mUnconfirmed->owner()));
        throw RpcErrors(error);
    }
    mLocks[store] = {session.id(), std::time(nullptr)};
}

void Datastores::unlock(NetconfSession& session, Datastore store) {
    const std::lock_guard<std::mutex> lock(mLockMutex);
    const auto found = mLocks.find(store);
    if (found == mLocks.end() || found->second.session != session.id()) {
        throw RpcErrors(protocolError("operation-failed",
                                      "this session has not locked " + datastoreName(store)));
    }
    mLocks.erase(found);
}

void Datastores::end(std::uint32_t sessionId) {
    const std::scoped_lock stores(mRunningMutex, mCandidateMutex);
    mEditors.erase(sessionId);
    mLost.erase(sessionId);
    releaseLocks(sessionId);
    if (mUnconfirmed && !mUnconfirmed->isPersistent() && mUnconfirmed->owner() == sessionId) {
        takeBackUnasked("its session has ended");
    }
}

void Datastores::releaseLocks(std::uint32_t sessionId) {
    const std::lock_guard<std::mutex> lock(mLockMutex);
    for (auto one = mLocks.begin(); one != mLocks.end();) {
        if (one->second.session != sessionId) {
            ++one;
            continue;
        }
        const bool isOfCandidate = one->first == Datastore::Candidate;
        one = mLocks.erase(one);
        if (isOfCandidate) {
            contain("the candidate of an ended session stays", [this] { dropCandidate(); });
        }
    }
}

std::optional<Datastores::Lock> Datastores::lockOf(Datastore store) const {
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
    const auto lock = lockOf(store);
    if (lock && lock->session != session.id()) {
        throw RpcErrors(protocolError("in-use", "session " + std::to_string(lock->session) +
                                                    " has locked " + datastoreName(store)));
    }
}

}
