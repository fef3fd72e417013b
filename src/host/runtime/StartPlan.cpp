// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StartPlan.h"

#include "InterfaceIdentity.h"

#include <algorithm>

namespace OrvHost {

namespace {

void append(std::string& text, const std::string& more) {
    text += text.empty() ? more : "; " + more;
}

}

bool offersInterface(VekMgmtSpiInterface_1* const* offers, const VekMgmtSpiInterface_1& wanted) {
    for (; offers != nullptr && *offers != nullptr; ++offers) {
        if (satisfies(**offers, wanted)) {
            return true;
        }
    }
    return false;
}

StartPlan::StartPlan(const std::vector<const VekMgmtSpiInterface_1*>& hostTables,
                     const std::vector<const OrvMgmtSpiComponent_1*>& components)
    : mHostTables(hostTables),
      mComponents(components),
      mMarks(components.size(), Mark::New),
      mCycles(components.size()) {
    for (std::size_t component = 0; component < components.size(); ++component) {
        visit(component);
    }
    // A cycle is known only when it closes, after the steps of some of its members have been
    // written.
    for (StartStep& step : mSteps) {
        if (!mCycles[step.component].empty()) {
            append(step.problem, mCycles[step.component]);
        }
    }
}

void StartPlan::visit(std::size_t component) {
    if (mMarks[component] != Mark::New) {
        return;
    }
    mMarks[component] = Mark::Open;
    mPath.push_back(component);
    StartStep step;
    step.component = component;
    VekMgmtSpiInterface_1* const* wanted = mComponents[component]->dependencyArray;
    for (; wanted != nullptr && *wanted != nullptr; ++wanted) {
        require(step, **wanted);
    }
    mPath.pop_back();
    mMarks[component] = Mark::Done;
    mSteps.push_back(step);
}

void StartPlan::require(StartStep& step, const VekMgmtSpiInterface_1& wanted) {
    if (hostOffers(wanted)) {
        return;
    }
    const std::size_t provider = findProvider(step.component, wanted);
    if (provider == mComponents.size()) {
        append(step.problem, "requires " + identityText(wanted) + ", which nobody offers");
        return;
    }
    if (provider == step.component) {
        return;
    }
    step.providers.push_back(provider);
    if (mMarks[provider] == Mark::Open) {
        reportCycle(provider);
    } else {
        visit(provider);
    }
}

bool StartPlan::hostOffers(const VekMgmtSpiInterface_1& wanted) const {
    return std::any_of(mHostTables.begin(), mHostTables.end(),
                       [&](const auto* table) { return satisfies(*table, wanted); });
}

std::size_t StartPlan::findProvider(std::size_t component,
                                    const VekMgmtSpiInterface_1& wanted) const {
    if (offersInterface(mComponents[component]->interfaceArray, wanted)) {
        return component;
    }
    const auto provider =
        std::find_if(mComponents.begin(), mComponents.end(), [&](const auto* candidate) {
            return offersInterface(candidate->interfaceArray, wanted);
        });
    return static_cast<std::size_t>(provider - mComponents.begin());
}

void StartPlan::reportCycle(std::size_t first) {
    const auto begin = std::find(mPath.begin(), mPath.end(), first);
    std::string text = "is part of a dependency cycle: ";
    for (auto member = begin; member != mPath.end(); ++member) {
        text += std::string(mComponents[*member]->componentName) + " requires ";
    }
    text += mComponents[first]->componentName;
    std::for_each(begin, mPath.end(), [&](std::size_t member) { append(mCycles[member], text); });
}

}
