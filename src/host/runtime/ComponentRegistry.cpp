// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ComponentRegistry.h"

#include "InterfaceIdentity.h"
#include "OrvReturnText.h"

#include <algorithm>
#include <cstring>
#include <exception>

namespace OrvHost {

namespace {

/// How a call into a component ended.
struct Outcome {
    OrvReturnT code = OrvOk;
    std::string problem;
};

// Other people's components may throw anything out of their functions; the host must stay up.
Outcome callShielded(const char* name, OrvReturnT (*function)(OrvStateChangeReason),
                     OrvStateChangeReason reason) {
    const std::string subject = name;
    try {
        const OrvReturnT code = function(reason);
        if (code == OrvOk) {
            return {};
        }
        return {code, subject + " answered " + Orv::OrvReturn::strerror(code) + " (" +
                          std::to_string(code) + ")"};
    } catch (const std::exception& failure) {
        return {OrvFailure, subject + " threw an exception: " + failure.what()};
    } catch (...) {
        return {OrvFailure, subject + " threw something that is no std::exception"};
    }
}

bool isComplete(const OrvMgmtSpiComponent_1* component) {
    return component != nullptr && component->componentName != nullptr &&
           component->start != nullptr && component->stop != nullptr;
}

VekMgmtSpiInterface_1* findOffered(VekMgmtSpiInterface_1** offers,
                                   const VekMgmtSpiInterface_1& id) {
    for (; offers != nullptr && *offers != nullptr; ++offers) {
        if (satisfies(**offers, id)) {
            return *offers;
        }
    }
    return nullptr;
}

}

ComponentRegistry::OwnerScope::OwnerScope(ComponentRegistry& registry, Owner owner)
    : mRegistry(registry), mPrevious(nullptr) {
    const std::lock_guard lock(mRegistry.mMutex);
    mPrevious = mRegistry.mCurrentOwner;
    mRegistry.mCurrentOwner = owner;
}

ComponentRegistry::OwnerScope::~OwnerScope() {
    const std::lock_guard lock(mRegistry.mMutex);
    mRegistry.mCurrentOwner = mPrevious;
}

void ComponentRegistry::offer(const VekMgmtSpiInterface_1* table) {
    const std::lock_guard lock(mMutex);
    mHostTables.push_back(table);
}

OrvReturnT ComponentRegistry::registerComponent(OrvMgmtSpiComponent_1* component) {
    if (!isComplete(component)) {
        return OrvInvalidArgument;
    }
    const std::lock_guard lock(mMutex);
    for (const EntryPtr& entry : mEntries) {
        if (entry->record == component) {
            return OrvOk;
        }
        if (entry->report.name == component->componentName) {
            return OrvAlreadyExist;
        }
    }
    auto entry = std::make_shared<Entry>();
    entry->record = component;
    entry->owner = mCurrentOwner;
    entry->report.name = component->componentName;
    mEntries.push_back(entry);
    return OrvOk;
}

OrvReturnT ComponentRegistry::unregisterComponent(OrvMgmtSpiComponent_1* component) {
    const std::lock_guard lock(mMutex);
    const auto found = std::find_if(mEntries.begin(), mEntries.end(), [&](const EntryPtr& entry) {
        return entry->record == component;
    });
    if (found == mEntries.end()) {
        return OrvNotExist;
    }
    const ComponentState state = (*found)->report.state;
    if (state == ComponentState::Started || state == ComponentState::Starting) {
        return OrvFailure;
    }
    mEntries.erase(found);
    return OrvOk;
}

OrvReturnT ComponentRegistry::find(const VekMgmtSpiInterface_1& id, void** table) const {
    if (id.interfaceName == nullptr || table == nullptr) {
        return OrvInvalidArgument;
    }
    const std::lock_guard lock(mMutex);
    for (const VekMgmtSpiInterface_1* offered : mHostTables) {
        if (satisfies(*offered, id)) {
            *table = const_cast<VekMgmtSpiInterface_1*>(offered);
            return OrvOk;
        }
    }
    for (const EntryPtr& entry : mStarted) {
        if (VekMgmtSpiInterface_1* offered = findOffered(entry->record->interfaceArray, id)) {
            *table = offered;
            return OrvOk;
        }
    }
    return OrvNotExist;
}

std::vector<ComponentReport> ComponentRegistry::startAll(OrvStateChangeReason reason) {
    const std::vector<EntryPtr> all = entries();
    std::vector<ComponentReport> reports;
    for (const StartStep& step : plan(all)) {
        const EntryPtr& entry = all[step.component];
        if (entry->report.state != ComponentState::Started) {
            const std::string problem = whyBlocked(step, all);
            if (problem.empty()) {
                start(entry, reason);
            } else {
                conclude(entry, ComponentState::Blocked, OrvOk, problem);
            }
        }
        reports.push_back(entry->report);
    }
    return reports;
}

std::string ComponentRegistry::whyBlocked(const StartStep& step, const std::vector<EntryPtr>& all) {
    if (!step.problem.empty()) {
        return step.problem;
    }
    for (const std::size_t provider : step.providers) {
        if (all[provider]->report.state != ComponentState::Started) {
            return "requires component " + all[provider]->report.name + ", which is not started";
        }
    }
    return {};
}

void ComponentRegistry::start(const EntryPtr& entry, OrvStateChangeReason reason) {
    const OwnerScope scope(*this, entry->owner);
    conclude(entry, ComponentState::Starting, OrvOk, {});
    const Outcome outcome = callShielded("start", entry->record->start, reason);
    const ComponentState state =
        outcome.problem.empty() ? ComponentState::Started : ComponentState::Failed;
    conclude(entry, state, outcome.code, outcome.problem);
}

std::vector<ComponentReport> ComponentRegistry::stopAll(OrvStateChangeReason reason) {
    std::vector<ComponentReport> reports;
    // The loop ends, because stop always removes the component from mStarted, even if it fails.
    while (const EntryPtr last = lastStarted()) {
        reports.push_back(stop(last, reason));
    }
    return reports;
}

ComponentRegistry::EntryPtr ComponentRegistry::lastStarted() const {
    const std::lock_guard lock(mMutex);
    return mStarted.empty() ? nullptr : mStarted.back();
}

// The interfaces can still be found until stop has returned, since a component may look up its own
// interfaces while it stops.
ComponentReport ComponentRegistry::stop(const EntryPtr& entry, OrvStateChangeReason reason) {
    const OwnerScope scope(*this, entry->owner);
    const Outcome outcome = callShielded("stop", entry->record->stop, reason);
    conclude(entry, ComponentState::Registered, outcome.code, outcome.problem);
    return entry->report;
}

void ComponentRegistry::conclude(const EntryPtr& entry, ComponentState state, OrvReturnT code,
                                 const std::string& problem) {
    const std::lock_guard lock(mMutex);
    entry->report.state = state;
    entry->report.code = code;
    entry->report.problem = problem;
    mStarted.erase(std::remove(mStarted.begin(), mStarted.end(), entry), mStarted.end());
    if (state == ComponentState::Started) {
        mStarted.push_back(entry);
    }
}

void ComponentRegistry::drop(Owner owner) {
    std::vector<EntryPtr> owned = entries();
    std::reverse(owned.begin(), owned.end());
    for (const EntryPtr& entry : owned) {
        if (entry->owner == owner && entry->report.state == ComponentState::Started) {
            stop(entry, OrvStateChangeReasonRequested);
        }
    }
    const std::lock_guard lock(mMutex);
    mEntries.erase(std::remove_if(mEntries.begin(), mEntries.end(),
                                  [&](const EntryPtr& entry) { return entry->owner == owner; }),
                   mEntries.end());
}

std::vector<ComponentReport> ComponentRegistry::components() const {
    const std::lock_guard lock(mMutex);
    std::vector<ComponentReport> reports;
    for (const EntryPtr& entry : mEntries) {
        reports.push_back(entry->report);
    }
    return reports;
}

std::vector<ComponentRegistry::EntryPtr> ComponentRegistry::entries() const {
    const std::lock_guard lock(mMutex);
    return mEntries;
}

std::vector<StartStep> ComponentRegistry::plan(const std::vector<EntryPtr>& entries) const {
    std::vector<const OrvMgmtSpiComponent_1*> records;
    records.reserve(entries.size());
    for (const EntryPtr& entry : entries) {
        records.push_back(entry->record);
    }
    const std::lock_guard lock(mMutex);
    return StartPlan(mHostTables, records).steps();
}

}
