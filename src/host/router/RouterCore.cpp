// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RouterCore.h"

#include "model/ValueCheck.h"
#include "store/TransactionView.h"
#include "store/WriteCheck.h"

#include <algorithm>
#include <mutex>
#include <shared_mutex>

namespace OrvHost {

namespace {

constexpr const char* kIncomplete =
    "memory ran out in an operation of the transaction, so it may not be complete";

template <class Named>
const Named* findNamed(const std::vector<Named>& all, const std::string& name) {
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const Named& one) { return one.name == name; });
    return found == all.end() ? nullptr : &*found;
}

bool isGiven(const std::vector<NamedValue>& parameters, const std::string& name) {
    return std::any_of(parameters.begin(), parameters.end(),
                       [&](const NamedValue& one) { return one.first == name; });
}

[[noreturn]] void refuseParameter(const ActionDef& action, const std::string& name,
                                  const std::string& reason) {
    throw HostError(OrvInvalidArgument,
                    "parameter '" + name + "' of action '" + action.name + "': " + reason);
}

void checkParameter(const ActionDef& action, const std::vector<NamedValue>& all,
                    const NamedValue& given) {
    const AttributeDef* def = findNamed(action.parameters, given.first);
    if (def == nullptr) {
        refuseParameter(action, given.first, "there is no such parameter");
    }
    const auto times = std::count_if(
        all.begin(), all.end(), [&](const NamedValue& one) { return one.first == given.first; });
    const std::string reason =
        times > 1 ? "it is given more than once" : whyRefused(*def, given.second);
    if (!reason.empty()) {
        refuseParameter(action, given.first, reason);
    }
}

// Checks the given parameters and adds the others that have a default.
void completeParameters(const ActionDef& action, std::vector<NamedValue>& parameters) {
    for (const NamedValue& given : parameters) {
        checkParameter(action, parameters, given);
    }
    for (const AttributeDef& def : action.parameters) {
        if (isGiven(parameters, def.name)) {
            continue;
        }
        if (def.defaultValue) {
            parameters.emplace_back(def.name, *def.defaultValue);
        } else if (def.isRequired()) {
            refuseParameter(action, def.name, "it is mandatory and missing");
        }
    }
}

}

RouterCore::RouterCore(MoStore& store, ThreadContext& threadContext)
    : mStore(store), mThreadContext(threadContext) {}

std::shared_ptr<RouterTransaction> RouterCore::transaction(unsigned long txHandle) const {
    const std::shared_lock<ReaderLock> guard(mLock);
    const auto* const found = mTransactions.find(txHandle);
    if (found == nullptr) {
        throw HostError(OrvNotActive,
                        "the router knows no transaction " + std::to_string(txHandle));
    }
    return *found;
}

IteratorHandle RouterCore::newIterator(unsigned long txHandle, std::string_view parentDn,
                                       std::string_view className) {
    auto iterator = std::make_shared<RouterIterator>();
    iterator->transaction = transaction(txHandle);
    iterator->cursor = iterator->transaction->store->children(parentDn, className);
    auto& opened = iterator->transaction->iterators;
    opened.push_back(0);
    opened.back() = mIterators.add(iterator);
    return opened.back();
}

char* RouterCore::next(IteratorHandle handle) {
    const auto iterator = mIterators.find(handle);
    if (!iterator) {
        throw HostError(OrvNotActive, "there is no iterator " + std::to_string(handle));
    }
    try {
        const bool found = iterator->transaction->store->next(iterator->cursor, iterator->name);
        return found ? iterator->name.data() : nullptr;
    } catch (const std::bad_alloc&) {
        iterator->transaction->isIncomplete = true;
        throw;
    }
}

void RouterCore::finalize(IteratorHandle handle) {
    if (!mIterators.erase(handle)) {
        throw HostError(OrvNotActive, "there is no iterator " + std::to_string(handle));
    }
}

const ActionDef& RouterCore::requireAction(const ClassDef& moc, const std::string& dn,
                                           const std::string& name) const {
    const ActionDef* action = moc.findAction(name);
    if (action == nullptr) {
        throw HostError(OrvNotExist,
                        dn + ": class '" + moc.name + "' has no action '" + name + "'");
    }
    return *action;
}

AttributeValue RouterCore::action(unsigned long txHandle, const std::string& dn,
                                  const std::string& name, std::vector<NamedValue> parameters) {
    const auto current = transaction(txHandle);
    const ClassDef& moc = current->store->classOf(dn);
    const ActionDef& action = requireAction(moc, dn, name);
    withDn(dn, [&] { completeParameters(action, parameters); });
    std::optional<AttributeValue> result;
    if (mActionHandler) {
        result = mActionHandler({txHandle, dn, moc, action, parameters});
    }
    if (result) {
        return std::move(*result);
    }
    return {action.result ? action.result->type.kind : ValueKind::String, {}};
}

AttributeValue RouterCore::action(unsigned long txHandle, const std::string& dn,
                                  const std::string& name,
                                  const std::vector<AttributeValue>& parameters) {
    const auto current = transaction(txHandle);
    const ActionDef& action = requireAction(current->store->classOf(dn), dn, name);
    if (parameters.size() > action.parameters.size()) {
        throw HostError(OrvInvalidArgument, dn + ": action '" + name + "' takes " +
                                                std::to_string(action.parameters.size()) +
                                                " parameters, got " +
                                                std::to_string(parameters.size()));
    }
    std::vector<NamedValue> named;
    for (std::size_t at = 0; at < parameters.size(); ++at) {
        named.emplace_back(action.parameters[at].name, parameters[at]);
    }
    return this->action(txHandle, dn, name, std::move(named));
}

OrvReturnT RouterCore::join(unsigned long txHandle) {
    auto joined = std::make_shared<RouterTransaction>();
    const OrvReturnT code = answer([&] {
        joined->store = mStore.begin(txHandle, mAuthorOf ? mAuthorOf(txHandle) : std::string());
    });
    if (code != OrvOk) {
        return code;
    }
    const std::unique_lock<ReaderLock> guard(mLock);
    auto& place = mTransactions[txHandle];
    if (place) {
        return OrvAlreadyExist;
    }
    place = std::move(joined);
    return OrvOk;
}

void RouterCore::markIncomplete(unsigned long txHandle) noexcept {
    const std::shared_lock<ReaderLock> guard(mLock);
    if (const auto* const found = mTransactions.find(txHandle)) {
        (*found)->isIncomplete = true;
    }
}

void RouterCore::checkRules(RouterTransaction& current,
                            std::vector<std::string>& violations) const {
    const RuleReport report =
        mRules->check(TransactionView(*current.store), touchedBy(*current.store));
    current.ruleCost = report.cost;
    for (const RuleViolation& violation : report.violations) {
        violations.push_back(toText(violation));
    }
}

OrvReturnT RouterCore::validate(unsigned long txHandle, bool* result) {
    return answer([&] {
        const auto current = transaction(txHandle);
        std::vector<std::string> violations = current->store->check();
        if (current->isIncomplete) {
            violations.emplace_back(kIncomplete);
        }
        if (mRules != nullptr) {
            checkRules(*current, violations);
        }
        for (const std::string& violation : violations) {
            mThreadContext.addMessage(ThreadContext::Verdict, violation);
        }
        *result = violations.empty();
    });
}

OrvReturnT RouterCore::prepare(unsigned long txHandle) {
    return answer([&] {
        const auto current = transaction(txHandle);
        if (current->isIncomplete) {
            throw HostError(OrvFailure, kIncomplete);
        }
        const std::string& conflict = current->store->conflict();
        if (!conflict.empty()) {
            throw HostError(OrvHostWriteConflict, conflict);
        }
    });
}

OrvReturnT RouterCore::commit(unsigned long txHandle) {
    return answer([&] { transaction(txHandle)->store->commit(); });
}

OrvReturnT RouterCore::abort(unsigned long txHandle) {
    return answer([&] { transaction(txHandle)->store->rollback(); });
}

OrvReturnT RouterCore::finish(unsigned long txHandle) {
    std::shared_ptr<RouterTransaction> finished;
    {
        const std::unique_lock<ReaderLock> guard(mLock);
        auto* const found = mTransactions.find(txHandle);
        if (found == nullptr) {
            return OrvOk; // already finished, or never joined: there is nothing to drop
        }
        finished = std::move(*found);
        mTransactions.erase(txHandle);
    }
    mIterators.erase(finished->iterators);
    finished->store->rollback();
    return OrvOk;
}

}
