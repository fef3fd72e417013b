// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ClientSession.h"

#include "ErrorExplainer.h"
#include "ViolationExplainer.h"

#include <algorithm>
#include <utility>

namespace OrvHost {

namespace {

// Who refused says why in a message, if the transaction was valid.
TransactionOutcome withExplanation(ClientSession& session, TransactionOutcome outcome) {
    const auto last = std::find_if(outcome.messages.rbegin(), outcome.messages.rend(),
                                   [](const ThreadContext::Message& message) {
                                       return message.kind == ThreadContext::Explanation;
                                   });
    if (last != outcome.messages.rend()) {
        outcome.reason = ErrorExplainer(session).inClientsWords(last->text) + "; " + outcome.reason;
    }
    return outcome;
}

}

ClientSession::ClientSession(Host& host, Clients& clients) : mHost(host), mClients(clients) {
    mClients.cancelBy(&mCancellation);
}

ClientSession::~ClientSession() {
    mClients.cancelBy(nullptr);
}

void ClientSession::requireObject(const std::string& dn) {
    const bool exists = read([&](unsigned long txHandle) { return client().exists(txHandle, dn); });
    if (!exists) {
        throw OperationError(OrvNotExist, {"existsMo", dn, {}, {}}, {});
    }
}

bool ClientSession::write(const std::function<void(unsigned long txHandle)>& work) {
    if (OpenTransactions::Entry* current = mTransactions.current()) {
        try {
            work(current->handle);
        } catch (const PartlyWritten& error) {
            current->writes += error.done() > 0 ? 1 : 0;
            throw;
        } catch (const OperationError& error) {
            current->writes += error.subject().done.empty() ? 0 : 1;
            throw;
        }
        ++current->writes;
        return false;
    }
    const OpenTransactions::Entry own{"", mHost.transactions().begin(mAuthor), 0};
    try {
        mTransactions.addUnnamed(own.handle);
        work(own.handle);
        mCancellation.throwIfCancelled();
        passGate([&] { commitNow(own); });
    } catch (...) {
        // If it has ended, its handle is not known any more.
        mHost.transactions().abort(own.handle);
        throw;
    }
    return true;
}

const OpenTransactions::Entry& ClientSession::begin(const std::string& name) {
    mTransactions.requireFree(name);
    const unsigned long handle = mHost.transactions().begin(mAuthor);
    try {
        return mTransactions.add(name, handle);
    } catch (...) {
        mHost.transactions().abort(handle);
        throw;
    }
}

void ClientSession::validate(const OpenTransactions::Entry& transaction) {
    const TransactionOutcome outcome = mHost.transactions().validate(transaction.handle);
    if (!outcome.accepted) {
        throw RefusalError(RefusalError::Operation::Validate, transaction.name, outcome,
                           ViolationExplainer(*this, transaction.handle).explain(outcome.messages));
    }
}

std::string ClientSession::commit(const OpenTransactions::Entry& transaction) {
    std::string problems;
    passGate([&] { problems = commitNow(transaction); });
    return problems;
}

void ClientSession::passGate(const std::function<void()>& commit) {
    if (mCommitGate) {
        mCommitGate(commit);
    } else {
        commit();
    }
}

// The refusal aborts the transaction, so the violations must be read before that.
std::string ClientSession::commitNow(const OpenTransactions::Entry& transaction) {
    const OpenTransactions::Entry ended = transaction;
    std::vector<Violation> violations;
    const TransactionOutcome outcome =
        mHost.transactions().commit(ended.handle, [&](const TransactionOutcome& refused) {
            violations = ViolationExplainer(*this, ended.handle).explain(refused.messages);
        });
    mTransactions.remove(ended.handle);
    if (!outcome.accepted) {
        throw RefusalError(RefusalError::Operation::Commit, ended.name,
                           violations.empty() ? withExplanation(*this, outcome) : outcome,
                           violations);
    }
    return outcome.reason;
}

std::string ClientSession::abort(const OpenTransactions::Entry& transaction) {
    const unsigned long handle = transaction.handle;
    const TransactionOutcome outcome = mHost.transactions().abort(handle);
    mTransactions.remove(handle);
    return outcome.reason;
}

}
