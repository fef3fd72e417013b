// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Results.h"

#include "HostCode.h"
#include "Script.h"

#include <cstdlib>
#include <utility>

namespace Scripted {

Results* Results::sCurrent = nullptr;

Results::Results(Script& script) : mScript(script) {
    sCurrent = this;
}

Results::~Results() {
    sCurrent = nullptr;
}

void Results::give(const std::string& label, const Value& value, OrvMoAttributeValueResult_3& out) {
    auto records = std::make_unique<Records>();
    out.container = records->container(value);
    out.release = asHostCode<&Results::release>;
    lend(out.container, label, std::move(records));
}

void Results::giveAll(const std::string& label, const std::vector<Value>& values,
                      OrvMoAttributeValuesResult_3& out) {
    auto records = std::make_unique<Records>();
    out.containers = records->array(values);
    out.release = asHostCode<&Results::releaseAll>;
    lend(out.containers, label, std::move(records));
}

void Results::forgive(const void* given) {
    const std::lock_guard<std::mutex> guard(mMutex);
    const auto found = mLoans.find(given);
    if (found != mLoans.end()) {
        found->second.forgiven = true;
    }
}

bool Results::isOut(const void* given) const {
    const std::lock_guard<std::mutex> guard(mMutex);
    return mLoans.count(given) > 0;
}

std::size_t Results::outstanding() const {
    const std::lock_guard<std::mutex> guard(mMutex);
    std::size_t count = 0;
    for (const auto& [given, loan] : mLoans) {
        count += loan.forgiven ? 0 : 1;
    }
    return count;
}

std::vector<std::string> Results::complaints() const {
    const std::lock_guard<std::mutex> guard(mMutex);
    std::vector<std::string> all = mComplaints;
    for (const auto& [given, loan] : mLoans) {
        if (!loan.forgiven) {
            all.push_back("never released: " + loan.label);
        }
    }
    return all;
}

void Results::release(OrvMoAttributeValueContainer_3* container) {
    if (sCurrent == nullptr) {
        std::abort(); // a result has outlived the host that handed it out
    }
    sCurrent->takeBack(container, "Producer.release");
}

void Results::releaseAll(OrvMoAttributeValueContainer_3** containers) {
    if (sCurrent == nullptr) {
        std::abort(); // the same: a result has outlived its host
    }
    sCurrent->takeBack(containers, "Producer.releaseAll");
}

void Results::lend(const void* given, const std::string& label, std::unique_ptr<Records> records) {
    const std::lock_guard<std::mutex> guard(mMutex);
    mLoans[given] = Loan{label, false, std::move(records)};
}

void Results::takeBack(const void* given, const char* function) {
    std::string label = "nothing that is out";
    {
        const std::lock_guard<std::mutex> guard(mMutex);
        const auto found = mLoans.find(given);
        if (found == mLoans.end()) {
            mComplaints.push_back(std::string(function) + " of something that is not out");
        } else {
            label = found->second.label;
            mLoans.erase(found);
        }
    }
    mScript.record(Call{function, {arg(label.c_str())}, nullptr});
}

}
