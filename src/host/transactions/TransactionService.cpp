// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TransactionService.h"

#include "OrvInterfaceBinders.h"
#include "base/HostError.h"

#include <algorithm>
#include <utility>

namespace OrvHost {

namespace {

using Resource = OrvOamSpiTransactionalResource_2;

TransactionService* theService = nullptr;

std::string nameOf(const Resource& resource) {
    const char* const name = resource.identity.componentName;
    return name == nullptr ? "a participant" : name;
}

std::string answered(const Resource& resource, const char* phase, OrvReturnT code) {
    return nameOf(resource) + " answered " + std::to_string(code) + " (" + returnText(code) +
           ") at " + phase;
}

// A participant may throw although its functions should not; an exception must not leave the other
// participants in the middle of a phase.
OrvReturnT call(OrvReturnT (*slot)(unsigned long), unsigned long txHandle) {
    return Orv::shielded([&] { return slot(txHandle); });
}

// Calls \p work, which makes texts for people. A transaction goes its way without them if that
// fails, for want of memory: an exception would leave it in the middle, with its objects, for good.
template <class Work>
void tryToTell(const Work& work) noexcept {
    try {
        work();
    } catch (...) { // NOLINT(bugprone-empty-catch): the text gives way
    }
}

template <class Reason>
void addReason(TransactionOutcome& outcome, const Reason& reason) noexcept {
    tryToTell([&] { outcome.reason += (outcome.reason.empty() ? "" : "; ") + reason(); });
}

// The code of the outcome is that of the first refusal; the reasons of all refusals are joined.
template <class Reason>
void refuse(TransactionOutcome& outcome, OrvReturnT code, const Reason& reason) noexcept {
    outcome.accepted = false;
    outcome.code = outcome.code == OrvOk ? code : outcome.code;
    addReason(outcome, reason);
}

void validateOne(const Resource& resource, unsigned long txHandle, TransactionOutcome& outcome) {
    bool isContent = false;
    const OrvReturnT code = Orv::shielded([&] { return resource.validate(txHandle, &isContent); });
    if (code != OrvOk) {
        refuse(outcome, OrvValidationFailed, [&] { return answered(resource, "validate", code); });
    } else if (!isContent) {
        refuse(outcome, OrvValidationFailed,
               [&] { return nameOf(resource) + " found the transaction invalid"; });
    }
}

}

/// A transaction that has begun. The service's mutex guards everything except the first two.
struct TransactionService::Transaction {
    Transaction(unsigned long txHandle, std::string who)
        : handle(txHandle), author(std::move(who)) {}

    const unsigned long handle;
    const std::string author;
    bool isBusy = false; ///< a phase runs on some thread
    bool takesJoiners = true;
    /// Somebody could not join for want of memory, who may go on as if they had. Without their word
    /// nothing may be committed.
    bool lacksParticipant = false;
    std::vector<Resource*> participants;

    bool isEnrolled(const Resource* resource) const {
        return std::find(participants.begin(), participants.end(), resource) != participants.end();
    }
    void remove(const Resource* resource) {
        participants.erase(std::remove(participants.begin(), participants.end(), resource),
                           participants.end());
    }
};

namespace {

OrvReturnT joinFn(unsigned long txHandle, Resource* resource) {
    return Orv::shielded([&] { return theService->join(txHandle, resource); });
}

// A caller of the C++ interface gets the messages in the outcome; a client of the table looks for
// them in the thread context, so they go back there.
OrvReturnT answerOf(TransactionOutcome outcome) {
    ThreadContext& context = theService->threadContext();
    tryToTell([&] {
        for (ThreadContext::Message& message : outcome.messages) {
            context.addMessage(message.kind, std::move(message.text));
        }
        if (!outcome.reason.empty()) {
            context.addMessage(ThreadContext::Verdict, std::move(outcome.reason));
        }
    });
    return outcome.code;
}

OrvReturnT beginFn(unsigned long* txHandle) {
    return Orv::shielded([&]() -> OrvReturnT {
        *txHandle = theService->begin();
        return OrvOk;
    });
}

OrvReturnT validateFn(unsigned long txHandle, bool* result) {
    return Orv::shielded([&]() -> OrvReturnT {
        if (result == nullptr) {
            return OrvInvalidArgument;
        }
        TransactionOutcome outcome = theService->validate(txHandle);
        const bool isVerdict = outcome.accepted || outcome.code == OrvValidationFailed;
        *result = outcome.accepted;
        const OrvReturnT code = answerOf(std::move(outcome));
        return isVerdict ? OrvOk : code;
    });
}

OrvReturnT commitFn(unsigned long txHandle) {
    return Orv::shielded([&] { return answerOf(theService->commit(txHandle)); });
}

OrvReturnT abortFn(unsigned long txHandle) {
    return Orv::shielded([&] { return answerOf(theService->abort(txHandle)); });
}

}

TransactionService::TransactionService(ThreadContext& threadContext)
    : mThreadContext(threadContext),
      mTransactionInterface{OrvOamSpiTransaction_1_Id, &joinFn},
      mMasterInterface{OrvOamSpiTransactionMaster_1_Id, &beginFn, &validateFn, &commitFn,
                       &abortFn} {
    theService = this;
}

TransactionService::~TransactionService() {
    abortAll();
    theService = nullptr;
}

void TransactionService::enrolInEach(Resource* resource) {
    mInEach.push_back(resource);
}

unsigned long TransactionService::begin(std::string author) {
    TransactionPtr begun;
    {
        const std::lock_guard<std::mutex> guard(mMutex);
        begun = std::make_shared<Transaction>(mNextHandle, std::move(author));
        mTransactions.emplace(mNextHandle, begun);
        ++mNextHandle;
    }
    try {
        for (Resource* resource : mInEach) {
            const OrvReturnT code = join(begun->handle, resource);
            if (code != OrvOk) {
                throw HostError(code, answered(*resource, "join", code));
            }
        }
    } catch (...) {
        abort(begun->handle);
        throw;
    }
    return begun->handle;
}

std::string TransactionService::authorOf(unsigned long txHandle) const {
    const std::lock_guard<std::mutex> guard(mMutex);
    const auto found = mTransactions.find(txHandle);
    return found == mTransactions.end() ? std::string() : found->second->author;
}

OrvReturnT TransactionService::join(unsigned long txHandle, Resource* resource) {
    if (resource == nullptr) {
        return OrvInvalidArgument;
    }
    TransactionPtr joined;
    {
        const std::lock_guard<std::mutex> guard(mMutex);
        const auto found = mTransactions.find(txHandle);
        if (found == mTransactions.end()) {
            return OrvNotActive;
        }
        joined = found->second;
        if (!joined->takesJoiners) {
            return OrvHostWrongState;
        }
        if (joined->isEnrolled(resource)) {
            return OrvOk;
        }
        // Added before the call of its slot, so that a join during that call finds it enrolled.
        try {
            joined->participants.push_back(resource);
        } catch (...) {
            joined->lacksParticipant = true;
            throw;
        }
    }
    const OrvReturnT code = call(resource->join, txHandle);
    if (code != OrvOk) {
        const std::lock_guard<std::mutex> guard(mMutex);
        joined->remove(resource);
    }
    return code;
}

// Reserves the transaction for a phase. If that is not possible, returns null and puts the reason
// into `outcome`.
TransactionService::TransactionPtr TransactionService::take(unsigned long txHandle,
                                                            TransactionOutcome& outcome) {
    const std::lock_guard<std::mutex> guard(mMutex);
    const auto found = mTransactions.find(txHandle);
    if (found == mTransactions.end()) {
        refuse(outcome, OrvNotActive,
               [&] { return "there is no transaction " + std::to_string(txHandle); });
        return nullptr;
    }
    if (found->second->isBusy) {
        refuse(outcome, OrvHostWrongState, [&] {
            return "transaction " + std::to_string(txHandle) + " is in the middle of a phase";
        });
        return nullptr;
    }
    found->second->isBusy = true;
    outcome.accepted = true;
    return found->second;
}

void TransactionService::reopen(Transaction& transaction) {
    const std::lock_guard<std::mutex> guard(mMutex);
    transaction.isBusy = false;
}

void TransactionService::closeToJoiners(Transaction& transaction) {
    const std::lock_guard<std::mutex> guard(mMutex);
    transaction.takesJoiners = false;
}

// Access by position, since the list may grow while participants are asked. Null after the last
// one.
Resource* TransactionService::participant(const Transaction& transaction, std::size_t index) const {
    const std::lock_guard<std::mutex> guard(mMutex);
    return index < transaction.participants.size() ? transaction.participants[index] : nullptr;
}

bool TransactionService::lacksParticipant(const Transaction& transaction) const {
    const std::lock_guard<std::mutex> guard(mMutex);
    return transaction.lacksParticipant;
}

void TransactionService::validateAll(const Transaction& transaction,
                                     TransactionOutcome& outcome) const {
    if (lacksParticipant(transaction)) {
        refuse(outcome, OrvValidationFailed,
               [] { return std::string("a participant could not join for want of memory"); });
    }
    for (std::size_t at = 0; const Resource* next = participant(transaction, at); ++at) {
        validateOne(*next, transaction.handle, outcome);
    }
}

void TransactionService::prepareAll(const Transaction& transaction,
                                    TransactionOutcome& outcome) const {
    for (std::size_t at = 0; const Resource* next = participant(transaction, at); ++at) {
        const OrvReturnT code = call(next->prepare, transaction.handle);
        if (code != OrvOk) {
            refuse(outcome, code, [&] { return answered(*next, "prepare", code); });
            return;
        }
    }
}

void TransactionService::commitAll(const Transaction& transaction,
                                   TransactionOutcome& outcome) const {
    for (std::size_t at = 0; const Resource* next = participant(transaction, at); ++at) {
        const OrvReturnT code = call(next->commit, transaction.handle);
        if (code == OrvOk) {
            continue;
        }
        // The others have not committed, so they can still abort. Nothing is committed then, but
        // for OrvHostOutcomeUnknown, where nobody knows.
        if (at == 0) {
            refuse(outcome, code, [&] { return answered(*next, "commit", code); });
            return;
        }
        // Others have committed: it is too late to abort.
        addReason(outcome, [&] { return answered(*next, "commit", code); });
    }
}

void TransactionService::abortParticipants(const Transaction& transaction,
                                           TransactionOutcome& outcome) const {
    for (std::size_t at = 0; const Resource* next = participant(transaction, at); ++at) {
        const OrvReturnT code = call(next->abort, transaction.handle);
        if (code != OrvOk) {
            addReason(outcome, [&] { return answered(*next, "abort", code); });
        }
    }
}

void TransactionService::finish(const Transaction& transaction, TransactionOutcome& outcome) {
    for (std::size_t at = 0; const Resource* next = participant(transaction, at); ++at) {
        const OrvReturnT code = call(next->finish, transaction.handle);
        if (code != OrvOk) {
            addReason(outcome, [&] { return answered(*next, "finish", code); });
        }
    }
    const std::lock_guard<std::mutex> guard(mMutex);
    mTransactions.erase(transaction.handle);
}

TransactionOutcome TransactionService::validate(unsigned long txHandle) {
    TransactionOutcome outcome;
    if (const TransactionPtr taken = take(txHandle, outcome)) {
        const std::size_t mark = mThreadContext.size();
        validateAll(*taken, outcome);
        reopen(*taken);
        outcome.messages = mThreadContext.take(mark);
    }
    return outcome;
}

TransactionOutcome TransactionService::commit(unsigned long txHandle,
                                              const BeforeAbort& beforeAbort) {
    TransactionOutcome outcome;
    const TransactionPtr taken = take(txHandle, outcome);
    if (!taken) {
        return outcome;
    }
    const std::size_t mark = mThreadContext.size();
    validateAll(*taken, outcome);
    // Participants that join during validate are asked as well; later ones would miss that phase.
    closeToJoiners(*taken);
    if (outcome.accepted) {
        prepareAll(*taken, outcome);
    }
    if (outcome.accepted) {
        commitAll(*taken, outcome);
    }
    if (!outcome.accepted) {
        tryToTell([&] {
            addMessages(outcome, mark);
            if (beforeAbort) {
                beforeAbort(outcome);
            }
        });
        abortParticipants(*taken, outcome);
    }
    finish(*taken, outcome);
    tryToTell([&] { addMessages(outcome, mark); });
    return outcome;
}

TransactionOutcome TransactionService::abort(unsigned long txHandle) {
    TransactionOutcome outcome;
    if (const TransactionPtr taken = take(txHandle, outcome)) {
        const std::size_t mark = mThreadContext.size();
        closeToJoiners(*taken);
        abortParticipants(*taken, outcome);
        finish(*taken, outcome);
        tryToTell([&] { addMessages(outcome, mark); });
    }
    return outcome;
}

/// Those that have come since \p mark.
void TransactionService::addMessages(TransactionOutcome& outcome, std::size_t mark) {
    for (ThreadContext::Message& message : mThreadContext.take(mark)) {
        outcome.messages.push_back(std::move(message));
    }
}

void TransactionService::abortAll() {
    std::vector<unsigned long> open;
    {
        const std::lock_guard<std::mutex> guard(mMutex);
        for (const auto& transaction : mTransactions) {
            open.push_back(transaction.first);
        }
    }
    std::sort(open.begin(), open.end());
    for (const unsigned long txHandle : open) {
        abort(txHandle);
    }
}

std::size_t TransactionService::openCount() const {
    const std::lock_guard<std::mutex> guard(mMutex);
    return mTransactions.size();
}

}
