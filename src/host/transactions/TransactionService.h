// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_TRANSACTIONS_TRANSACTIONSERVICE_H
#define ORV_HOST_TRANSACTIONS_TRANSACTIONSERVICE_H

#include "OrvOamSpiTransaction_1.h"
#include "OrvOamSpiTransactionalResource_2.h"
#include "ThreadContext.h"
#include "TransactionMaster.h"
#include "base/OnlyOne.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace OrvHost {

/// The result of a request to validate, commit or abort.
struct TransactionOutcome {
    bool accepted = false;   ///< valid, committed or aborted: as was requested
    OrvReturnT code = OrvOk; ///< what a table returns; OrvOk exactly if accepted
    std::string reason;      ///< for people; who refused, in which phase, with which code
    std::vector<ThreadContext::Message> messages; ///< taken from the thread context, in order
};

/// Drives transactions: begin, join, validate, prepare, commit, abort and finish over all
/// participants, in the order in which they joined.
///
/// Phases of a transaction. *Open*: from begin; participants join, clients work. *Validating*: all
/// participants are asked, even after one has refused, so that the client gets all messages; other
/// participants may still join and are then asked, too. After a request to validate, the
/// transaction is open again. *Ending*: prepare and commit, or abort, and then finish; no
/// participant can join. After that the handle is unknown. Handles count from 1 and are not used
/// twice.
///
/// If a participant returns a code that is not zero at validate or prepare, or a false verdict, the
/// commit becomes an abort and finish of all participants. The same happens if the first
/// participant refuses at commit. After one participant has committed, abort is not possible any
/// more: refusals of later ones only appear in `reason`.
///
/// Without memory for reasons and messages, commit and abort go on without them. Without memory for
/// a participant, its join fails, and the transaction is not valid any more: who does not look at
/// the code of join would not be asked.
///
/// Threads: any; a transaction is driven by one thread at a time, and a second one that tries is
/// refused. No lock is held while a participant is called. Only one object at a time can live in a
/// process, since the functions of the tables get no object argument.
class TransactionService {
public:
    explicit TransactionService(ThreadContext& threadContext);
    /// Aborts what is still open, so the participants must still exist.
    ~TransactionService();
    TransactionService(const TransactionService&) = delete;
    TransactionService& operator=(const TransactionService&) = delete;

    /// Makes \p resource the participant of every transaction from now on, before all others. The
    /// router is enrolled in this way. Call it before the first begin; the table must live as long
    /// as this object.
    void enrolInEach(OrvOamSpiTransactionalResource_2* resource);

    /// Begins a transaction. \p author says who begins it, for people ("alice, session 4"); it is
    /// named in conflicts and with the commit. Throws HostError if a participant that is enrolled
    /// in each transaction cannot join.
    unsigned long begin(std::string author = {});
    /// The author of an open transaction; empty if it has none or is not known.
    std::string authorOf(unsigned long txHandle) const;
    /// Asks all participants and leaves the transaction open.
    TransactionOutcome validate(unsigned long txHandle);
    /// Called with the refusal while the transaction can still be read.
    using BeforeAbort = std::function<void(const TransactionOutcome& refused)>;

    /// Validates, prepares, commits and finishes; after a refusal aborts and finishes. \p
    /// beforeAbort is called between the refusal and the abort; it may be empty. What it throws
    /// is dropped.
    TransactionOutcome commit(unsigned long txHandle, const BeforeAbort& beforeAbort = {});
    TransactionOutcome abort(unsigned long txHandle);
    /// Aborts every open transaction. For a host that stops its components; no other thread may
    /// drive a transaction during the call.
    void abortAll();

    /// Number of transactions that have begun and not ended.
    std::size_t openCount() const;

    /// Enrols \p resource, unless it is enrolled already, and calls its join slot and no other one.
    /// OrvNotActive for an unknown handle, OrvHostWrongState when the transaction is ending, the
    /// resource's code if it refuses to join.
    OrvReturnT join(unsigned long txHandle, OrvOamSpiTransactionalResource_2* resource);

    /// OrvOamSpiTransaction_1_Id.
    OrvOamSpiTransaction_1* getTransactionInterface() { return &mTransactionInterface; }
    /// OrvOamSpiTransactionMaster_1_Id.
    OrvHostTransactionMaster_1* getMasterInterface() { return &mMasterInterface; }

    ThreadContext& threadContext() { return mThreadContext; }

private:
    struct Transaction;
    using TransactionPtr = std::shared_ptr<Transaction>;

    TransactionPtr take(unsigned long txHandle, TransactionOutcome& outcome);
    void reopen(Transaction& transaction);
    void closeToJoiners(Transaction& transaction);
    OrvOamSpiTransactionalResource_2* participant(const Transaction& transaction,
                                                  std::size_t index) const;
    bool lacksParticipant(const Transaction& transaction) const;
    void validateAll(const Transaction& transaction, TransactionOutcome& outcome) const;
    void prepareAll(const Transaction& transaction, TransactionOutcome& outcome) const;
    void commitAll(const Transaction& transaction, TransactionOutcome& outcome) const;
    void abortParticipants(const Transaction& transaction, TransactionOutcome& outcome) const;
    void finish(const Transaction& transaction, TransactionOutcome& outcome);
    void addMessages(TransactionOutcome& outcome, std::size_t mark);

    OnlyOne<TransactionService> mOnlyOne;
    ThreadContext& mThreadContext;
    OrvOamSpiTransaction_1 mTransactionInterface;
    OrvHostTransactionMaster_1 mMasterInterface;
    std::vector<OrvOamSpiTransactionalResource_2*> mInEach;

    mutable std::mutex mMutex; ///< guards all below, and the transactions themselves
    unsigned long mNextHandle = 1;
    std::unordered_map<unsigned long, TransactionPtr> mTransactions;
};

}

#endif
