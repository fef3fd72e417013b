// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_DATASTORES_H
#define ORV_HOST_NETCONF_CORE_DATASTORES_H

#include "client/edits/StateBefore.h"
#include "client/edits/Wish.h"
#include "netconf/core/ActionReader.h"
#include "netconf/core/Alarm.h"
#include "netconf/core/ConfirmedCommit.h"
#include "netconf/core/NetconfSession.h"
#include "netconf/wire/RpcError.h"

#include <chrono>
#include <cstdint>
#include <ctime>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace OrvHost {

enum class Datastore : std::uint8_t { Running, Candidate };

/// "running" or "candidate".
std::string datastoreName(Datastore store);

/// Somebody beside the protocol must not commit now.
class CommitDenied : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What an edit does besides checking the edit itself.
enum class EditMode : std::uint8_t {
    Write,   ///< writes; into running only what is valid
    OnlyTest ///< writes nothing
};

/// The two datastores over the host's transactions.
///
/// *Running* is the committed state. A read takes a transaction of its own, and so does an edit,
/// which is validated and committed.
///
/// *Candidate* is one transaction of the host that all sessions share. It begins with the first
/// edit, so it shows running as it was then with the edits made since, and ends with a commit, with
/// discard, with the session that has locked it, or a while after its last edit. Without one, reads
/// show running. If a write is refused half-way or a commit is refused, the transaction is of no
/// use any more: it is aborted and the edits that it had accepted are made again in a new one, so
/// the candidate keeps them.
///
/// A commit can be *confirmed*: it is taken back unless a second commit follows in time. Until then
/// other sessions change nothing in running. See ConfirmedCommit.
///
/// Locks are for the sessions of the protocol, and a lock of running for commitBeside(); other
/// clients of the host meet conflicts instead.
///
/// The calls throw RpcErrors for what the protocol forbids, and what the client library throws for
/// what the component or the planner refuses: see errorsOf. Any thread, each session on one.
class Datastores {
public:
    /// Both are borrowed, \p schema for texts of errors. The host's components stay started while
    /// this object lives.
    Datastores(Host& host, const YangSchema& schema);
    /// Aborts the candidate.
    ~Datastores();
    Datastores(const Datastores&) = delete;
    Datastores& operator=(const Datastores&) = delete;

    /// From now on a candidate is discarded that long after its last edit; 0: never. Before the
    /// sessions.
    void limitCandidate(std::chrono::seconds limit) { mCandidateLimit = limit; }

    /// How long after a confirmed commit could not be taken back it is tried again at first: 10 s,
    /// unless this is called. Before the sessions.
    void pauseUndoing(std::chrono::seconds pause) { mUndoingPause = pause; }

    /// Remembers in \p file what a confirmed commit that waits has changed; empty: does not. Before
    /// the sessions. Throws FileError: see UnconfirmedNote.
    void noteUnconfirmedIn(const std::filesystem::path& file);
    /// Logs what a server before this one has left in that file, and removes it. For when the start
    /// of the server cannot fail any more: the next one would not say it again.
    void tellLeftUnconfirmed();

    /// For a process that ends at once without destroying this object: logs what it would say then,
    /// and nothing is committed any more. Does not wait for a request.
    void abandon();

    using Read = std::function<void(ClientSession& client, unsigned long txHandle)>;
    /// Runs \p read on a state that does not change meanwhile.
    void read(NetconfSession& session, Datastore store, const Read& read);

    /// Says what is wished, given the state before.
    using MakeWish = std::function<Wish(StateBefore& before)>;
    /// Makes an edit whole or not at all.
    void edit(NetconfSession& session, Datastore target, EditMode mode, const MakeWish& wish);

    /// Calls an action in a transaction of its own, which is committed: what the component writes
    /// meanwhile is an edit of running, and is refused like one.
    ReadValue act(NetconfSession& session, const ActionRequest& action);

    /// Throws RefusalError with all violations.
    void validate(NetconfSession& session, Datastore store);

    /// Makes the candidate the running state; nothing if nobody has edited it. Confirms a confirmed
    /// commit that is waiting, or, if it is one itself, makes it wait anew.
    void commit(NetconfSession& session, const CommitRequest& request = {});

    /// Makes the candidate the running state, too, but confirms nothing: while a confirmed commit
    /// waits, it is refused.
    void copyToRunning(NetconfSession& session);
    /// Calls \p commit, which commits something for \p user beside the protocol. Throws
    /// CommitDenied, without a call, if a session has locked running or a confirmed commit waits.
    void commitBeside(const std::string& user, const std::function<void()>& commit);
    /// Takes back the confirmed commit that is waiting.
    void cancelCommit(NetconfSession& session, const std::optional<std::string>& persistId);
    void discard(NetconfSession& session);

    void lock(NetconfSession& session, Datastore store);
    void unlock(NetconfSession& session, Datastore store);
    /// Releases what the session has locked. A candidate that it had locked is discarded; a
    /// confirmed commit that waits for this session is taken back. A session that was cancelled
    /// before gets no lock any more.
    void end(std::uint32_t sessionId);

    struct Lock {
        std::uint32_t session; ///< that has the lock
        std::time_t since;
    };

    /// The lock of a datastore, or nothing.
    std::optional<Lock> lockOf(Datastore store) const;

private:
    /// What only tests an edit needs no lock.
    void requireMayEdit(NetconfSession& session, Datastore store, EditMode mode) const;
    void requireUnlocked(NetconfSession& session, Datastore store) const;
    void commitCandidate(const NetconfSession& session);
    void takeBack();
    void takeBackUnasked(const char* reason) noexcept;
    void awaitConfirmation(std::unique_ptr<ConfirmedCommit> begun,
                           ConfirmedCommit::Waiting waiting) noexcept;
    void forget(std::unique_ptr<ConfirmedCommit> begun) noexcept;
    void endWaiting();
    void logUnconfirmed() const;
    void undoAll();
    bool undo();
    void onTimeOver();
    void setAlarm();
    using Work = std::function<void(ClientSession& client, unsigned long txHandle)>;
    void writeRunning(NetconfSession& session, EditMode mode, const Work& work);
    void editCandidate(NetconfSession& session, EditMode mode, const MakeWish& wish);
    void beginCandidate(const std::string& author);
    void abortCandidate();
    void forgetEdits();
    void dropCandidate();
    void releaseLocks(std::uint32_t sessionId);
    std::string loseCandidate(const std::function<std::string()>& reason) noexcept;
    static RpcErrors lostError(const char* what, const std::string& reason);
    void throwIfLost(const NetconfSession& session);
    void replay(const NetconfSession* asking);

    /// Sessions. Why their candidate was discarded; empty: it was not, or that is not known.
    using Editors = std::map<std::uint32_t, std::string>;

    /// What the candidate's clients were refused, for people.
    std::string textOf(const std::exception_ptr& failure);

    Host& mHost;
    const YangSchema& mSchema;

    mutable std::mutex mLockMutex; ///< guards mLocks
    std::map<Datastore, Lock> mLocks;

    mutable std::mutex mRunningMutex; ///< one edit at a time; nothing commits meanwhile
    UnconfirmedNote mNote;            ///< guarded by it, or by what waits
    std::unique_ptr<ConfirmedCommit> mUnconfirmed; ///< guarded by it; null: none waits
    std::chrono::seconds mUndoingPause{10};

    std::mutex mCandidateMutex; ///< guards all below
    Clients mCandidateClients;
    ClientSession mCandidate;
    std::optional<unsigned long> mHandle; ///< the candidate's transaction
    std::string mAuthor;                  ///< who began it
    std::vector<Wish> mAccepted;          ///< its edits
    Editors mEditors;                     ///< the sessions that have made them
    Editors mLost; ///< of a candidate that was discarded, who do not know it yet

    std::chrono::seconds mCandidateLimit{0};
    std::optional<Alarm::Clock::time_point> mCandidateDeadline;

    /// For a confirmed commit and the candidate; it must end before the rest does.
    Alarm mTimeOver;
};

}

#endif
