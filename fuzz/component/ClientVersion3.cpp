// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The operations of versions 3 and 3_1.

#include "Client.h"
#include "ClientIterators.h"
#include "ValueReader.h"
#include "ValueRules.h"

#include <algorithm>

namespace Fuzz {

namespace {

using Container = OrvMoAttributeValueContainer_3;
using Named = OrvMoNamedAttributeValueContainer_3;

/// True if \p fits is for one of \p attributes, which may be null.
template <class Fits>
bool isAny(Named* const* attributes, const Fits& fits) {
    for (; attributes != nullptr && *attributes != nullptr; ++attributes) {
        if (fits(**attributes)) {
            return true;
        }
    }
    return false;
}

bool isUnreadable(const Named& attribute) {
    return !isReadable(attribute.value, true);
}

bool isRefusedUnread(const char* name, const Container& value) {
    return isCheckedId(name) && isNoIdText(value);
}

}

void Client::set() {
    Arguments made(mSource);
    const unsigned long txHandle = transaction();
    const char* const dn = made.dn();
    const char* const attribute = made.attribute();
    const Container* const value = made.value<Version3>();
    const bool isRefused = value != nullptr && isRefusedUnread(attribute, *value);
    Demand demand;
    demand.lacks = dn == nullptr || attribute == nullptr ||
                   (value != nullptr && !isRefused && !isReadable(*value, true));
    demand.dn = dn;
    const Outcome outcome = call("set", demand, [&] {
        return LoadedComponent::version3().setMoAttribute(txHandle, dn, attribute, value);
    });
    if (isRefused && outcome == OrvOk) {
        requireThat(false, "an id that is no text passes");
    }
    judgeByCallee(outcome, {Slot::InterceptorSet, Slot::RouterSet}, false);
}

void Client::setMany() {
    Arguments made(mSource);
    const unsigned long txHandle = transaction();
    const char* const dn = made.dn();
    Named** const attributes = made.named();
    const auto isRefused = [](const Named& each) {
        return each.value.count != 0 && isRefusedUnread(each.name, each.value);
    };
    Demand demand;
    demand.lacks =
        dn == nullptr || attributes == nullptr || isAny(attributes, [&](const Named& each) {
            return each.name == nullptr || (!isRefused(each) && isUnreadable(each));
        });
    demand.dn = dn;
    const Outcome outcome = call("setMany", demand, [&] {
        return LoadedComponent::version3_1().setMoAttributes(txHandle, dn, attributes);
    });
    if (isAny(attributes, isRefused)) {
        requireThat(outcome != OrvOk, "an id that is no text passes");
    }
    judgeByCallee(outcome, {Slot::InterceptorSetMany, Slot::RouterSetMany}, false);
}

void Client::get() {
    Arguments made(mSource);
    const unsigned long txHandle = transaction();
    const char* const dn = made.dn();
    const char* const attribute = made.attribute();
    OrvMoAttributeValueResult_3 result{nullptr, nullptr};
    OrvMoAttributeValueResult_3* const out = made.out(result);
    Demand demand;
    demand.lacks = dn == nullptr || attribute == nullptr || out == nullptr;
    demand.dn = dn;
    demand.whenStopped = OrvFailure;
    const Outcome outcome = call("get", demand, [&] {
        return LoadedComponent::version3().getMoAttribute(txHandle, dn, attribute, out);
    });
    judgeByCallee(outcome, {Slot::InterceptorGet, Slot::RouterGet}, false);
    if (outcome == OrvOk) {
        useAndRelease(result);
    }
}

void Client::getMany() {
    Arguments made(mSource);
    const unsigned long txHandle = transaction();
    const char* const dn = made.dn();
    const char** const names = made.names();
    OrvMoAttributeValuesResult_3 result{nullptr, nullptr};
    OrvMoAttributeValuesResult_3* const out = made.out(result);
    Demand demand;
    demand.lacks = dn == nullptr || names == nullptr || out == nullptr;
    demand.dn = dn;
    const Outcome outcome = call("getMany", demand, [&] {
        return LoadedComponent::version3().getMoAttributes(txHandle, dn, names, out);
    });
    judgeByCallee(outcome, {Slot::InterceptorGetMany, Slot::RouterGetMany}, false);
    if (outcome == OrvOk) {
        useAndRelease(result);
    }
}

void Client::create() {
    Arguments made(mSource);
    const unsigned long txHandle = transaction();
    const char* const dn = made.dn();
    const char* const className = made.className();
    const char* const attrName = made.attribute();
    const char* const attrValue = made.namingValue();
    Named** const attributes = made.named();
    Demand demand;
    demand.lacks = dn == nullptr || className == nullptr || attrName == nullptr ||
                   attrValue == nullptr || isAny(attributes, [](const Named& each) {
                       return isUnreadable(each) || (each.value.type == OrvMoAttributeTypeMoRef_3 &&
                                                     each.name == nullptr);
                   });
    demand.dn = dn;
    demand.mayBeEmpty = true;
    const Outcome outcome = call("create", demand, [&] {
        return LoadedComponent::version3().createMo(txHandle, dn, className, attrName, attrValue,
                                                    attributes);
    });
    judgeByCallee(outcome, {Slot::RouterCreate}, mHost.hasThrown);
}

void Client::remove() {
    Arguments made(mSource);
    const unsigned long txHandle = transaction();
    Demand demand;
    demand.dn = made.dn();
    demand.lacks = demand.dn == nullptr;
    const Outcome outcome = call("delete", demand, [&] {
        return LoadedComponent::version3().deleteMo(txHandle, demand.dn);
    });
    judgeByCallee(outcome, {Slot::RouterDelete}, false);
}

void Client::action() {
    Arguments made(mSource);
    const unsigned long txHandle = transaction();
    const char* const dn = made.dn();
    const char* const name = made.attribute();
    Named** const parameters = made.named();
    OrvMoAttributeValueResult_3 result{nullptr, nullptr};
    OrvMoAttributeValueResult_3* const out = made.out(result);
    Demand demand;
    demand.lacks =
        dn == nullptr || parameters == nullptr || out == nullptr || isAny(parameters, isUnreadable);
    demand.dn = dn;
    const Outcome outcome = call("action", demand, [&] {
        return LoadedComponent::version3().action(txHandle, dn, name, parameters, out);
    });
    judgeByCallee(outcome, {Slot::RouterAction}, false);
    if (outcome == OrvOk) {
        useAndRelease(result);
    }
}

void Client::exists() {
    Arguments made(mSource);
    const unsigned long txHandle = transaction();
    Demand demand;
    demand.dn = made.dn();
    demand.lacks = demand.dn == nullptr;
    bool isThere = false;
    bool* const out = made.out(isThere);
    const Outcome outcome = call("exists", demand, [&] {
        return LoadedComponent::version3().existsMo(txHandle, demand.dn, out);
    });
    judgeByCallee(outcome, {Slot::RouterExists}, false);
}

void Client::count() {
    Arguments made(mSource);
    const unsigned long txHandle = transaction();
    Demand demand;
    demand.dn = made.dn();
    demand.lacks = demand.dn == nullptr;
    demand.mayBeEmpty = true;
    const char* const className = made.className();
    unsigned long long counted = 0;
    unsigned long long* const out = made.out(counted);
    const Outcome outcome = call("count", demand, [&] {
        return LoadedComponent::version3().countMoChildren(txHandle, demand.dn, className, out);
    });
    judgeByCallee(outcome, {Slot::RouterCount}, false);
}

void Client::iterate() {
    openWith<unsigned long long>(LoadedComponent::version3(), mIterators, "iterate",
                                 Slot::RouterIterate);
}

void Client::next() {
    stepWith<unsigned long long>(LoadedComponent::version3(), mIterators, mIterators1, "next",
                                 Slot::RouterNext);
}

/// Always OrvOk, for any handle.
void Client::finalize() {
    const std::size_t choice = mSource.byte();
    const unsigned long long handle =
        choice < mIterators.size() ? mIterators[choice].handle : choice;
    Demand demand;
    demand.whenStopped = OrvOk;
    const Outcome outcome = call(
        "finalize", demand, [&] { return LoadedComponent::version3().finalizeMoIterator(handle); });
    requireThat(!outcome || outcome == OrvOk || mHost.hasThrown, "answered with a code");
}

/// Releases as a client does. What the component hands out lets nothing out when it is released;
/// what it passes on as it is, is the host's.
template <class Function>
void Client::release(bool isHosts, const Function& function) {
    try {
        function();
    } catch (const std::exception&) {
        requireThat(isHosts, "a release throws");
    } catch (const OtherException&) {
        requireThat(isHosts, "a release throws");
    }
}

void Client::useAndRelease(const OrvMoAttributeValueResult_3& result) {
    mHost.journal.value(result.container).end();
    readAll(result.container);
    if (result.release != nullptr && result.container != nullptr) {
        release(result.release == &Gifts::releaseOne, [&] { result.release(result.container); });
    }
}

void Client::useAndRelease(const OrvMoAttributeValuesResult_3& result) {
    for (auto** each = result.containers; each != nullptr && *each != nullptr; ++each) {
        mHost.journal.value(*each).end();
        readAll(*each);
    }
    if (result.release != nullptr) {
        release(result.release == &Gifts::releaseMany, [&] { result.release(result.containers); });
    }
}

}
