// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ReferenceSearch.h"

#include "ClientSession.h"
#include "DnResolver.h"
#include "MeIdTranslator.h"
#include "SubtreeReader.h"
#include "edits/ClientState.h"
#include "edits/References.h"

#include <set>
#include <tuple>
#include <unordered_set>

namespace OrvHost {

namespace {

using Visit = std::function<void(const std::string& attribute, const std::string& target)>;

void visitReferences(const std::string& name, const AttributeValue& value, const Visit& visit) {
    if (value.kind != ValueKind::MoRef && value.kind != ValueKind::Struct) {
        return;
    }
    for (const Value& one : value.values) {
        if (const auto* target = std::get_if<std::string>(&one)) {
            visit(name, *target);
        } else if (const auto* whole = std::get_if<StructValue>(&one)) {
            for (const auto& [member, inner] : whole->members) {
                visitReferences(name + "." + member, inner, visit);
            }
        }
    }
}

void visitReferences(const ObjectState& object, const Visit& visit) {
    for (std::size_t at = 0; at < object.values.size(); ++at) {
        visitReferences(object.moc->attributes[at].name, object.values[at], visit);
    }
}

bool holdsReferences(const AttributeValue& value) {
    bool found = false;
    forEachReference(value, [&](const std::string&) { found = true; });
    return found;
}

std::set<std::string> changedReferences(const ObjectChange& change) {
    std::set<std::string> names;
    for (const AttributeChange& attribute : change.attributes) {
        if (holdsReferences(attribute.after)) {
            names.insert(attribute.name);
        }
    }
    return names;
}

std::string firstStep(const std::string& attribute) {
    return attribute.substr(0, attribute.find('.'));
}

}

std::vector<FoundReference> ReferenceSearch::to(const std::string& target) {
    return inSubtree({}, [&](const FoundReference& found) { return found.target == target; });
}

std::vector<FoundReference> ReferenceSearch::missing(const std::string& dn) {
    return inSubtree(dn, [&](const FoundReference& found) { return isMissing(found.target); });
}

std::vector<FoundReference> ReferenceSearch::missingBy(const ChangeSet& changes) {
    std::unordered_set<std::string> deleted;
    std::vector<FoundReference> found;
    for (const ObjectChange& change : changes.objects) {
        const std::string dn = Orv::MeIdTranslator::instance()->toExternalDn(change.dn);
        if (change.kind == ObjectChange::Kind::Deleted) {
            deleted.insert(dn);
            continue;
        }
        const std::set<std::string> changed = changedReferences(change);
        const ClassDef* moc = DnResolver(mSession.model()).classOf(dn);
        if (changed.empty() || moc == nullptr) {
            continue;
        }
        ClientState state(mSession.clients().version3(), mTxHandle);
        visitReferences({dn, moc, state.attributes(dn, *moc)},
                        [&](const std::string& attribute, const std::string& target) {
                            if (changed.count(firstStep(attribute)) > 0 && isMissing(target)) {
                                found.push_back({dn, attribute, target});
                            }
                        });
    }
    if (!deleted.empty()) {
        std::set<std::tuple<std::string, std::string, std::string>> known;
        for (const FoundReference& one : found) {
            known.emplace(one.dn, one.attribute, one.target);
        }
        const auto isLost = [&](const FoundReference& one) {
            return deleted.count(one.target) > 0 && isMissing(one.target) &&
                   known.count({one.dn, one.attribute, one.target}) == 0;
        };
        const std::vector<FoundReference> lost = inSubtree({}, isLost);
        found.insert(found.end(), lost.begin(), lost.end());
    }
    return found;
}

std::vector<FoundReference> ReferenceSearch::inSubtree(const std::string& dn,
                                                       const Wanted& wanted) {
    std::vector<FoundReference> all;
    const auto enter = [&](const ObjectState& object) {
        visitReferences(object, [&](const std::string& attribute, const std::string& target) {
            FoundReference reference{object.dn, attribute, target};
            if (wanted(reference)) {
                all.push_back(std::move(reference));
            }
        });
    };
    SubtreeReader(mSession, mTxHandle).read(dn, enter, [] {});
    return all;
}

// A DN that the model does not allow is not asked for: it does not exist.
bool ReferenceSearch::isMissing(const std::string& target) {
    const auto known = mMissing.find(target);
    if (known != mMissing.end()) {
        return known->second;
    }
    const bool isPossible =
        !target.empty() && DnResolver(mSession.model()).classOf(target) != nullptr;
    const bool isThere = isPossible && mSession.clients().version3().exists(mTxHandle, target);
    mMissing.emplace(target, !isThere);
    return !isThere;
}

}
