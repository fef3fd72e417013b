// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Script.h"

#include "Steps.h"

#include <algorithm>
#include <stdexcept>

namespace Scripted {

Departure& Departure::on(std::string text) {
    mText = std::move(text);
    return *this;
}

Departure& Departure::nth(int number) {
    mNumber = number;
    return *this;
}

void Departure::fails(OrvReturnT code) {
    mAction = [code](const Call&, const Act&) { return code; };
}

void Departure::returns(OrvReturnT code) {
    mAction = [code](const Call&, const Act& act) {
        act();
        return code;
    };
}

void Departure::runs(std::function<void()> work) {
    mAction = [work = std::move(work)](const Call&, const Act& act) {
        work();
        return act();
    };
}

void Departure::shows(std::function<void(const Call&)> look) {
    mAction = [look = std::move(look)](const Call& call, const Act& act) {
        look(call);
        return act();
    };
}

bool Departure::takes(const Call& call) {
    if (!mAction || call.name != mCall) {
        return false;
    }
    if (!mText.empty() && call.text().find(mText) == std::string::npos) {
        return false;
    }
    ++mSeen;
    return mNumber == 0 || mSeen == mNumber;
}

Departure& Script::when(const std::string& call) {
    const std::vector<std::string>& known = knownCalls();
    if (std::find(known.begin(), known.end(), call) == known.end()) {
        throw std::logic_error("the scripted host knows no call " + call);
    }
    const std::lock_guard<std::mutex> guard(mMutex);
    mDepartures.push_back(std::make_shared<Departure>(call));
    return *mDepartures.back();
}

OrvReturnT Script::play(Call call, const Act& act) {
    const std::shared_ptr<Departure> departure = departureFor(call);
    keep(call);
    Step step(Called::Host, [&] { return call.text(); });
    return step.answered(departure ? departure->mAction(call, act) : act());
}

void Script::record(Call call) {
    const Step step(Called::Host, [&] { return call.text(); });
    keep(std::move(call));
}

void Script::keep(Call call) {
    const std::lock_guard<std::mutex> guard(mMutex);
    if (mKeep) {
        mCalls.push_back(std::move(call));
    }
}

std::vector<Call> Script::calls(const std::string& prefix) const {
    const std::lock_guard<std::mutex> guard(mMutex);
    std::vector<Call> chosen;
    std::copy_if(mCalls.begin(), mCalls.end(), std::back_inserter(chosen),
                 [&](const Call& call) { return call.name.rfind(prefix, 0) == 0; });
    return chosen;
}

std::vector<std::string> Script::texts(const std::string& prefix) const {
    std::vector<std::string> texts;
    for (const Call& call : calls(prefix)) {
        texts.push_back(call.text());
    }
    return texts;
}

void Script::forgetCalls() {
    const std::lock_guard<std::mutex> guard(mMutex);
    mCalls.clear();
}

void Script::keepCalls(bool keep) {
    const std::lock_guard<std::mutex> guard(mMutex);
    mKeep = keep;
}

// Every departure counts the calls that it could take, also while a later one wins.
std::shared_ptr<Departure> Script::departureFor(const Call& call) {
    const std::lock_guard<std::mutex> guard(mMutex);
    std::shared_ptr<Departure> winner;
    for (const std::shared_ptr<Departure>& departure : mDepartures) {
        if (departure->takes(call)) {
            winner = departure;
        }
    }
    return winner;
}

namespace {

void append(std::vector<std::string>& names, const std::string& table,
            const std::vector<std::string>& functions) {
    for (const std::string& function : functions) {
        names.push_back(table + "." + function);
    }
}

std::vector<std::string> allCalls() {
    const std::vector<std::string> version3 = {
        "setMoAttribute", "getMoAttribute",  "getMoAttributes",   "newMoIterator",
        "nextMo",         "createMo",        "deleteMo",          "action",
        "existsMo",       "countMoChildren", "finalizeMoIterator"};
    std::vector<std::string> names;
    append(names, "Accessor", {"getPortal"});
    append(names, "Portal1", {"getInterface", "registerComponent", "unregisterComponent"});
    append(names, "Portal3", {"getInterface", "registerComponent", "unregisterComponent"});
    append(names, "OrvPortal", {"lookup"});
    append(names, "Transaction", {"join"});
    append(names, "ThreadContext", {"addMessage"});
    append(names, "Router1",
           {"setMoAttribute", "getMoAttribute", "newMoIterator", "nextMo", "createMo", "deleteMo",
            "action"});
    append(names, "Router3", version3);
    append(names, "VekRouter3", version3);
    append(names, "Router3_1", {"setMoAttributes"});
    append(names, "Model",
           {"getMocFromDn",
            "getGeneralStringProperty",
            "getMocGeneralProperties",
            "getFirstAttribute",
            "getFirstContainment",
            "getFirstBiDirAssociation",
            "getFirstUniDirAssociation",
            "getContainedMoc",
            "getNextContainment",
            "getEndMoc",
            "getEndAttribute",
            "getEndGeneralProperties",
            "getEndStringProperty",
            "getEndBoolProperty",
            "getEndIntProperty",
            "getFirstEnd",
            "getSecondEnd",
            "getNextBiDirAssociation",
            "getUniDirEnd",
            "getNextUniDirAssociation",
            "getTypeCode",
            "getTypeIntProperty",
            "getAttributeGeneralProperties",
            "getAttributeMoc",
            "getAttributeType",
            "getNextAttribute",
            "getReferencedMoc"});
    append(names, "Interceptor",
           {"getMoAttribute", "getMoAttributes", "setMoAttribute", "setMoAttributes"});
    return names;
}

}

const std::vector<std::string>& knownCalls() {
    static const std::vector<std::string> names = allCalls();
    return names;
}

}
