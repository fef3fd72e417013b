// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_CLIENTSESSION_H
#define ORV_HOST_CLIENT_CLIENTSESSION_H

#include "CancellationToken.h"
#include "Clients.h"
#include "OpenTransactions.h"
#include "RefusalError.h"
#include "model/Model.h"
#include "runtime/Host.h"

#include <functional>
#include <string>
#include <utility>

namespace OrvHost {

/// One user of the component: the clients, the transactions that the user has open, and the one
/// that reads and writes go to.
///
/// One thread at a time; cancellation() may be used by others.
class ClientSession {
public:
    /// Both are borrowed and must outlive the session. While the session lives, walks of \p clients
    /// ask its cancellation token.
    ClientSession(Host& host, Clients& clients);
    ~ClientSession();
    ClientSession(const ClientSession&) = delete;
    ClientSession& operator=(const ClientSession&) = delete;

    Host& host() { return mHost; }
    const Model& model() const { return mHost.model(); }
    Clients& clients() { return mClients; }
    /// The client of the chosen version.
    Client& client() { return mClients.chosen(); }
    OpenTransactions& transactions() { return mTransactions; }
    /// Ends long work of this session, from then on: see CancellationToken.
    CancellationToken& cancellation() { return mCancellation; }

    /// Runs \p work with the handle of the current transaction. If there is none, \p work gets its
    /// own transaction, which is aborted afterwards.
    template <class Work>
    auto read(Work&& work) {
        if (const OpenTransactions::Entry* current = mTransactions.current()) {
            return std::forward<Work>(work)(current->handle);
        }
        const Host::ReadTransaction transaction(mHost);
        return std::forward<Work>(work)(transaction.handle());
    }

    /// Throws OperationError with OrvNotExist if there is no object \p dn (external).
    void requireObject(const std::string& dn);

    /// Runs \p work, which writes, with the handle of the current transaction. If there is none, \p
    /// work gets its own transaction, which is committed, or aborted if \p work throws or the
    /// session was cancelled. True if the write is committed. Throws RefusalError, CancelledError.
    /// If \p work throws after a part of its writes (see PartlyWritten and OperationSubject::done),
    /// that part stays in the current transaction and counts as a write.
    bool write(const std::function<void(unsigned long txHandle)>& work);

    /// Who begins the transactions from now on, for people: see TransactionService::begin.
    void setAuthor(std::string author) { mAuthor = std::move(author); }

    /// Calls \p commit, or throws if nothing must be committed now.
    using CommitGate = std::function<void(const std::function<void()>& commit)>;
    /// Each commit goes through \p gate from now on. If that throws, a transaction with a name
    /// stays open.
    void setCommitGate(CommitGate gate) { mCommitGate = std::move(gate); }

    const OpenTransactions::Entry& begin(const std::string& name);
    /// Throws RefusalError if the transaction is not valid. It stays open.
    void validate(const OpenTransactions::Entry& transaction);
    /// Throws RefusalError if it is refused, and thereby aborted. Returns problems that did not
    /// prevent the commit, for people; usually none.
    std::string commit(const OpenTransactions::Entry& transaction);
    /// Returns the problems on the way, for people; usually none.
    std::string abort(const OpenTransactions::Entry& transaction);

private:
    void passGate(const std::function<void()>& commit);
    std::string commitNow(const OpenTransactions::Entry& transaction);

    Host& mHost;
    Clients& mClients;
    CancellationToken mCancellation;
    OpenTransactions mTransactions;
    std::string mAuthor;
    CommitGate mCommitGate; ///< may be empty
};

}

#endif
