// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What is common to all operations, and which there are.

#include "Client.h"

#include "MeIdTranslator.h"
#include "OtherThread.h"
#include "support/Require.h"

#include <algorithm>

namespace Fuzz {

Client::Client(Host& host, ByteSource& source, bool asksOtherThread)
    : mHost(host), mSource(source), mInterceptors(host), mAsksOtherThread(asksOtherThread) {}

void Client::operate() {
    using Operation = void (Client::*)();
    static constexpr Operation kOperations[] = {
        &Client::set,           &Client::get,       &Client::getMany,
        &Client::iterate,       &Client::next,      &Client::create,
        &Client::remove,        &Client::action,    &Client::finalize,
        &Client::exists,        &Client::count,     &Client::setMany,
        &Client::set1,          &Client::get1,      &Client::iterate1,
        &Client::next1,         &Client::create1,   &Client::remove1,
        &Client::action1,       &Client::join,      &Client::prepare,
        &Client::commit,        &Client::abort,     &Client::finish,
        &Client::validate,      &Client::set,       &Client::create,
        &Client::setMany,       &Client::intercept, &Client::letThrough,
        &Client::stop,          &Client::restart,   &Client::changeIdentity,
        &Client::changeLogLevel};
    const Operation operation = kOperations[mSource.below(std::size(kOperations))];
    (this->*operation)();
    mHost.end();
    if (mAsksOtherThread) {
        touchAllLocks(false);
    }
}

unsigned long Client::transaction() {
    return mHost.firstHandle + mSource.below(kTransactions);
}

void Client::requireThat(bool isTrue, const char* what) const {
    if (!isTrue) {
        require(false, std::string(what) + ": " + mHost.operation);
    }
}

bool Client::hasJoinFailed(unsigned long txHandle) const {
    return mHost.joins.count(txHandle) == 0 || mHost.answer(Slot::Join).isException;
}

/// What must come out without anything having happened.
void Client::judge(const Demand& demand, const Outcome& outcome, std::size_t calls) {
    if (!outcome) {
        requireThat(mHost.hasThrownOther, "an exception that the host has not thrown");
        return;
    }
    std::optional<OrvReturnT> demanded;
    if (mLife == Life::Stopped && demand.hasGate) {
        demanded = demand.whenStopped;
    } else if (demand.lacks && mLife == Life::Unknown && demand.hasGate) {
        requireThat(*outcome == OrvFailure || *outcome == demand.whenStopped, "not refused");
        requireThat(calls == 0, "the host is called for nothing");
    } else if (demand.lacks) {
        demanded = OrvFailure;
    } else if (mLife != Life::Unknown && demand.dn != nullptr &&
               !(demand.mayBeEmpty && *demand.dn == '\0') &&
               Orv::MeIdTranslator::instance()->toInternalDn(demand.dn).empty()) {
        demanded = OrvNotExist;
    } else if (mLife == Life::Stopped) {
        demanded = demand.whenStopped;
    }
    if (demanded) {
        requireThat(*outcome == *demanded, "answered with another code");
        requireThat(calls == 0, "the host is called for nothing");
    }
}

void Client::judgeByCallee(const Outcome& outcome, std::initializer_list<Slot> callees,
                           bool mayFail) {
    const auto called = std::find_if(callees.begin(), callees.end(),
                                     [&](Slot slot) { return mHost.answer(slot).isThere; });
    if (!outcome || called == callees.end()) {
        return;
    }
    const Answer& answer = mHost.answer(*called);
    const bool isPassedOn = *outcome == answer.code;
    requireThat(isPassedOn || (mayFail && answer.code == OrvOk && *outcome == OrvFailure),
                "the callee's code is not passed on");
}

}
