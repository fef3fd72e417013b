// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The operations of version 1.

#include "Client.h"
#include "ClientIterators.h"
#include "ValueReader.h"
#include "ValueRules.h"

namespace Fuzz {

namespace {

using Container = OrvMoAttributeValueContainer;

bool hasFirstSlot(const Container* value) {
    return value != nullptr && value->values != nullptr && value->values[0].uint64 != 0;
}

}

/// An id must have a value and be a text; what is no text is refused unread.
void Client::set1() {
    Arguments made(mSource);
    const unsigned long txHandle = transaction();
    const char* const dn = made.dn();
    const char* const attribute = made.attribute();
    const Container* const value = made.value<Version1>();
    const bool isRefused = isCheckedId(attribute) && (!hasFirstSlot(value) || isNoIdText(*value));
    Demand demand;
    demand.lacks = dn == nullptr || attribute == nullptr ||
                   (!isRefused && (value == nullptr || !isReadable(*value, false)));
    demand.dn = dn;
    const Outcome outcome = call("set1", demand, [&] {
        return LoadedComponent::version1().setMoAttribute(txHandle, dn, attribute, value);
    });
    if (isRefused && outcome == OrvOk) {
        requireThat(false, "an id that is no text passes");
    }
    judgeByCallee(outcome, {Slot::Router1Set}, false);
}

void Client::get1() {
    Arguments made(mSource);
    const unsigned long txHandle = transaction();
    const char* const dn = made.dn();
    const char* const attribute = made.attribute();
    Container* result = nullptr;
    Container** const out = made.out(result);
    Demand demand;
    demand.lacks = dn == nullptr || attribute == nullptr || out == nullptr;
    demand.dn = dn;
    const Outcome outcome = call("get1", demand, [&] {
        return LoadedComponent::version1().getMoAttribute(txHandle, dn, attribute, out);
    });
    judgeByCallee(outcome, {Slot::Router1Get}, hasJoinFailed(txHandle));
    if (outcome == OrvOk) {
        mHost.journal.value(result).end();
        readAll(result);
    }
}

void Client::create1() {
    Arguments made(mSource);
    const unsigned long txHandle = transaction();
    Demand demand;
    demand.dn = made.dn();
    demand.lacks = demand.dn == nullptr;
    demand.mayBeEmpty = true;
    const char* const className = made.className();
    const char* const attrName = made.attribute();
    const char* const attrValue = made.namingValue();
    const Outcome outcome = call("create1", demand, [&] {
        return LoadedComponent::version1().createMo(txHandle, demand.dn, className, attrName,
                                                    attrValue);
    });
    judgeByCallee(outcome, {Slot::Router1Create}, false);
}

void Client::remove1() {
    Arguments made(mSource);
    const unsigned long txHandle = transaction();
    Demand demand;
    demand.dn = made.dn();
    demand.lacks = demand.dn == nullptr;
    const Outcome outcome = call("delete1", demand, [&] {
        return LoadedComponent::version1().deleteMo(txHandle, demand.dn);
    });
    judgeByCallee(outcome, {Slot::Router1Delete}, false);
}

void Client::action1() {
    Arguments made(mSource);
    const unsigned long txHandle = transaction();
    const char* const dn = made.dn();
    const char* const name = made.attribute();
    Container** const parameters = made.values();
    Container* result = nullptr;
    Container** const out = made.out(result);
    Demand demand;
    demand.lacks = dn == nullptr || parameters == nullptr || out == nullptr;
    for (Container** each = parameters; !demand.lacks && *each != nullptr; ++each) {
        demand.lacks = !isReadable(**each, false);
    }
    demand.dn = dn;
    const Outcome outcome = call("action1", demand, [&] {
        return LoadedComponent::version1().action(txHandle, dn, name, parameters, out);
    });
    judgeByCallee(outcome, {Slot::Router1Action}, hasJoinFailed(txHandle));
    if (outcome == OrvOk) {
        mHost.journal.value(result).end();
        readAll(result);
    }
}

void Client::iterate1() {
    openWith<void*>(LoadedComponent::version1(), mIterators1, "iterate1", Slot::Router1Iterate);
}

void Client::next1() {
    stepWith<void*>(LoadedComponent::version1(), mIterators1, mIterators, "next1",
                    Slot::Router1Next);
}

}
