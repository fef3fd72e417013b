// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Transactions and their ends, the component's life, and what stands around both.

#include "Client.h"

#include "LoggingWrapper.h"
#include "MeIdTranslator.h"
#include "OtherThread.h"
#include "support/Require.h"

#include <bit>

namespace Fuzz {

namespace {

const OrvOamSpiTransactionalResource_2& resource() {
    return LoadedComponent::resource();
}

}

// -------------------------------------------------------------------------------------------------
// The component's life

void Client::start() {
    mHost.begin("start");
    try {
        const OrvReturnT code = LoadedComponent::start();
        mHost.journal.word("gives").number(code).end();
        mLife = code == OrvOk ? Life::Started : Life::Unknown;
        requireThat(!mHost.isHonest() || code == OrvOk, "cannot be started");
    } catch (const OtherException&) {
        requireThat(mHost.hasThrownOther, "an exception that the host has not thrown");
        mLife = Life::Unknown;
    }
    mHost.end();
}

/// Drops all that was kept for transactions but what waits for back-pointers.
void Client::stop() {
    mHost.begin("stop");
    requireThat(LoadedComponent::stop() == OrvOk, "cannot be stopped");
    mLife = Life::Stopped;
    mHost.forgetJoins();
    letIteratorsDie(std::nullopt);
}

void Client::restart() {
    if (mLife != Life::Started || mSource.below(2) == 0) {
        stop();
    }
    start();
}

// -------------------------------------------------------------------------------------------------
// Transactions

void Client::phase(const char* name, OrvReturnT (*function)(unsigned long)) {
    const unsigned long txHandle = transaction();
    mHost.begin(name);
    const std::size_t calls = mHost.journal.calls();
    requireThat(function(txHandle) == OrvOk, "fails");
    requireThat(mHost.journal.calls() == calls, "the host is called for nothing");
}

void Client::join() {
    phase("join", resource().join);
}
void Client::prepare() {
    phase("prepare", resource().prepare);
}
void Client::commit() {
    phase("commit", resource().commit);
}
void Client::abort() {
    phase("abort", resource().abort);
}
void Client::finish() {
    finishTransaction(transaction());
}

void Client::validate() {
    Arguments made(mSource);
    const unsigned long txHandle = transaction();
    bool verdict = false;
    bool* const out = made.out(verdict);
    mHost.begin("validate");
    const std::size_t calls = mHost.journal.calls();
    try {
        const OrvReturnT code = resource().validate(txHandle, out);
        mHost.journal.number(code).number(verdict ? 1 : 0).end();
        requireThat(code == (out == nullptr ? OrvFailure : OrvOk) || mHost.hasThrown,
                    "answered with a code");
        requireThat(out != nullptr || mHost.journal.calls() == calls,
                    "the host is called for nothing");
    } catch (const OtherException&) {
        requireThat(mHost.hasThrownOther, "an exception that the host has not thrown");
    }
}

void Client::finishTransaction(unsigned long txHandle) {
    mHost.begin("finish");
    const std::size_t calls = mHost.journal.calls();
    requireThat(resource().finish(txHandle) == OrvOk, "fails");
    requireThat(mHost.journal.calls() == calls, "the host is called for nothing");
    mHost.forgetTransaction(txHandle);
    letIteratorsDie(txHandle);
}

/// Those of one transaction, or all. The component must know of it.
void Client::letIteratorsDie(const std::optional<unsigned long>& txHandle) {
    const std::size_t calls = mHost.journal.calls();
    char* child = nullptr;
    for (Iterator& each : mIterators) {
        if (!txHandle || each.txHandle == *txHandle) {
            each.isLiving = false;
            requireThat(LoadedComponent::version3().nextMo(each.handle, &child) == OrvNotActive,
                        "an iterator survives");
        }
    }
    for (Iterator& each : mIterators1) {
        if (!txHandle || each.txHandle == *txHandle) {
            each.isLiving = false;
            void* const handle = std::bit_cast<void*>(each.handle);
            requireThat(LoadedComponent::version1().nextMo(handle, &child) == OrvNotActive,
                        "an iterator survives");
        }
    }
    requireThat(mHost.journal.calls() == calls, "the host is called for nothing");
}

// -------------------------------------------------------------------------------------------------
// The end of a run

void Client::endAll() {
    const Host::Pause honest(mHost);
    if (mLife != Life::Started) {
        stop();
        start();
    }
    for (unsigned long index = 0; index < kTransactions; ++index) {
        finishTransaction(mHost.firstHandle + index);
    }
    mHost.end();
    for (unsigned long index = 0; index < kTransactions; ++index) {
        lookForReferences(mHost.firstHandle + index);
        lookForWaiting(mHost.firstHandle + index);
        finishTransaction(mHost.firstHandle + index);
    }
    mHost.end();
    touchAllLocks(true);
    mLife = Life::Stopped;
}

/// A transaction that is over has no references to judge. What had been written to back-pointers is
/// judged again, which asks the model other questions.
void Client::lookForReferences(unsigned long txHandle) {
    mHost.begin("validate after finish");
    const std::size_t questions = mHost.referenceQuestions;
    bool verdict = false;
    requireThat(resource().validate(txHandle, &verdict) == OrvOk, "fails");
    mHost.journal.number(verdict ? 1 : 0).end();
    requireThat(mHost.referenceQuestions == questions, "references have been kept");
    mHost.end();
}

/// Creates an MO for which additions may have waited. With all transactions over none is left, so
/// nobody asks whether the MO is there.
void Client::lookForWaiting(unsigned long txHandle) {
    std::set<std::string> missed;
    missed.swap(mHost.missed);
    constexpr std::size_t kMost = 3;
    std::size_t tried = 0;
    for (const std::string& dn : missed) {
        const std::size_t equals = dn.rfind('=');
        if (++tried > kMost || equals == std::string::npos) {
            continue;
        }
        const std::string parent = parentOf(dn);
        const std::string className = classOf(dn);
        const std::string naming = className + "Id";
        mHost.begin("create after finish");
        LoadedComponent::version3().createMo(txHandle, parent.c_str(), className.c_str(),
                                             naming.c_str(), dn.c_str() + equals + 1, nullptr);
        requireThat(!mHost.answer(Slot::VekExists).isThere &&
                        !mHost.answer(Slot::RouterExists).isThere &&
                        !mHost.answer(Slot::VekSet).isThere,
                    "an addition has waited on");
        mHost.end();
    }
}

/// Lets the other thread go through every lock that there is, with an honest host.
void Client::touchAllLocks(bool stops) {
    const Host::Pause honest(mHost);
    const char* const before = mHost.operation;
    const unsigned long txHandle = mHost.firstHandle + kTransactions;
    OtherThread::instance().run(
        [&] {
            const auto& version3 = LoadedComponent::version3();
            const auto& version1 = LoadedComponent::version1();
            unsigned long long iterator = 0;
            void* iterator1 = nullptr;
            char* child = nullptr;
            OrvMoAttributeValueResult_3 result{nullptr, nullptr};
            bool verdict = false;
            mHost.begin("on the other thread");
            version3.newMoIterator(txHandle, "", "ManagedElement", &iterator);
            version3.nextMo(iterator, &child);
            version1.newMoIterator(txHandle, "", "ManagedElement", &iterator1);
            version1.nextMo(iterator1, &child);
            if (version3.getMoAttribute(txHandle, "Network=1", "label", &result) == OrvOk) {
                useAndRelease(result);
            }
            resource().validate(txHandle, &verdict);
            resource().finish(txHandle);
            if (stops) {
                LoadedComponent::stop();
            }
        },
        before);
    mHost.forgetTransaction(txHandle);
    mHost.operation = before;
}

// -------------------------------------------------------------------------------------------------
// Around the operations

void Client::intercept() {
    mHost.begin("intercept");
    mInterceptors.enter(mSource);
}

void Client::letThrough() {
    mHost.begin("let through");
    mInterceptors.takeOut(mSource);
}

void Client::changeIdentity() {
    static constexpr const char* kIdentities[] = {kRootIdentity, "", "other", "1"};
    const char* const preferred = kIdentities[mSource.below(std::size(kIdentities))];
    const char* const fallback = kIdentities[mSource.below(std::size(kIdentities))];
    mHost.begin("identity");
    Orv::MeIdTranslator::instance()->configure(preferred, fallback);
}

void Client::changeLogLevel() {
    static constexpr unsigned int kLevels[] = {8, 4, 0, 6};
    Orv::LoggingWrapper::instance()->setLevel(kLevels[mSource.below(std::size(kLevels))]);
    mHost.begin("log level");
}

}
