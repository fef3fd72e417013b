// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "EditPlanner.h"

#include "AssociationChanges.h"
#include "AssociationSides.h"
#include "ClientState.h"
#include "ObjectChanges.h"
#include "References.h"
#include "base/DnView.h"
#include "model/DnForm.h"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace OrvHost {

namespace {

/// Makes one plan.
class PlanMaker {
public:
    PlanMaker(const Wish& wish, KnownState& state)
        : mSides(state.model()), mState(state), mObjects(wish, state, mProblems) {
        checkReferences();
        checkMandatory();
        AssociationChanges associations(mSides, mObjects, mState, wish.repeated, mProblems);
        refuseIfWrong();
        addDeletes();
        addCreates();
        addSets(false);
        addSets(true);
        std::vector<PlannedCall> calls = associations.calls();
        mPlan.calls.insert(mPlan.calls.end(), std::make_move_iterator(calls.begin()),
                           std::make_move_iterator(calls.end()));
    }

    EditPlan take() { return std::move(mPlan); }

private:
    bool isAssociation(const ObjectWish& change, const AttributeDef& def) const {
        return !mSides.of(mState.indexOf(*change.moc), def.name).empty();
    }

    // Calls visit with the definition and the wished value of each attribute whose value must
    // change, without associations.
    template <class Visit>
    void forEachNewValue(const ObjectWish& change, const Visit& visit) {
        for (const AttributeDef& def : change.moc->attributes) {
            const auto named = change.attributes.find(def.name);
            const bool isNamed = named != change.attributes.end();
            const bool isOpen = !isNamed && !change.isReplaced;
            if (def.isGivenByName() || isOpen || isAssociation(change, def) ||
                change.contradicted.count(def.name) != 0) {
                continue;
            }
            const AttributeValue& before = mState.value(change.dn, def.name);
            if (isNamed) {
                if (before.values != named->second.values) {
                    visit(def, named->second);
                }
            } else if (def.isWritable && !before.values.empty() && before != def.defaultValue) {
                // What must have a value gets its default by a set of its own.
                const bool isNeeded = def.multiplicity.lower > 0 && def.defaultValue;
                visit(def, isNeeded ? *def.defaultValue : AttributeValue{def.type.kind, {}});
            }
        }
    }

    void checkMandatory() {
        for (const ObjectWish& change : mObjects.all()) {
            forEachNewValue(change, [&](const AttributeDef& def, const AttributeValue& value) {
                const bool isNamed = change.attributes.count(def.name) != 0;
                const bool isMissing = !isNamed && value.values.empty() &&
                                       def.type.kind != ValueKind::MoRef && def.isRequired();
                if (isMissing) {
                    mProblems.push_back({EditProblem::Kind::WrongValue, change.dn, def.name,
                                         change.dn + "." + def.name +
                                             " must have a value, and the wish gives none"});
                }
            });
        }
    }

    // References of associations are checked with them.
    void checkReferences() {
        for (const ObjectWish& change : mObjects.all()) {
            for (const auto& named : change.attributes) {
                if (mSides.of(mState.indexOf(*change.moc), named.first).empty() &&
                    change.contradicted.count(named.first) == 0) {
                    checkReferences(change.dn, named.first, named.second);
                }
            }
        }
    }

    void checkReferences(const std::string& dn, const std::string& attribute,
                         const AttributeValue& value) {
        forEachReference(value, [&](const std::string& target) {
            if (mObjects.isDeleted(target)) {
                mProblems.push_back(deletedTarget(dn, attribute, target));
            }
        });
    }

    void refuseIfWrong() {
        if (mProblems.empty()) {
            return;
        }
        const auto key = [](const EditProblem& problem) {
            return std::tie(problem.dn, problem.attribute, problem.kind, problem.text);
        };
        std::sort(mProblems.begin(), mProblems.end(),
                  [&](const EditProblem& left, const EditProblem& right) {
                      return key(left) < key(right);
                  });
        mProblems.erase(std::unique(mProblems.begin(), mProblems.end(),
                                    [&](const EditProblem& left, const EditProblem& right) {
                                        return key(left) == key(right);
                                    }),
                        mProblems.end());
        throw EditRefusedError(std::move(mProblems));
    }

    void addDeletes() {
        for (const std::string& dn : mObjects.deletedTops()) {
            const std::string parent = parentOf(dn);
            if (parent.empty() || !mObjects.isDeleted(parent)) {
                mPlan.calls.push_back({PlannedCall::Kind::Delete, dn, {}});
            }
        }
    }

    void addCreates() {
        std::vector<const ObjectWish*> created;
        for (const ObjectWish& change : mObjects.all()) {
            if (change.isCreated) {
                created.push_back(&change);
            }
        }
        const auto depth = [](const ObjectWish* change) { return DnView(change->dn).depth(); };
        std::stable_sort(created.begin(), created.end(),
                         [&](const ObjectWish* left, const ObjectWish* right) {
                             return depth(left) < depth(right);
                         });
        for (const ObjectWish* change : created) {
            mPlan.calls.push_back(
                {PlannedCall::Kind::Create, change->dn, newValues(*change, false)});
        }
    }

    void addSets(bool ofReferences) {
        std::vector<const ObjectWish*> changes;
        for (const ObjectWish& change : mObjects.all()) {
            if (ofReferences || !change.isCreated) {
                changes.push_back(&change);
            }
        }
        std::sort(
            changes.begin(), changes.end(),
            [](const ObjectWish* left, const ObjectWish* right) { return left->dn < right->dn; });
        for (const ObjectWish* change : changes) {
            std::vector<NamedValue> values = newValues(*change, ofReferences);
            if (!values.empty()) {
                mPlan.calls.push_back({PlannedCall::Kind::Set, change->dn, std::move(values)});
            }
        }
    }

    std::vector<NamedValue> newValues(const ObjectWish& change, bool ofReferences) {
        std::vector<NamedValue> values;
        forEachNewValue(change, [&](const AttributeDef& def, const AttributeValue& value) {
            if ((def.type.kind == ValueKind::MoRef) == ofReferences) {
                values.emplace_back(def.name, value);
            }
        });
        return values;
    }

    const AssociationSides mSides;
    KnownState& mState;
    std::vector<EditProblem> mProblems;
    const ObjectChanges mObjects;
    EditPlan mPlan;
};

}

EditPlan applyWish(Wish wish, const Model& model, Clients& clients, unsigned long txHandle,
                   const CancellationToken* token) {
    ClientState before(clients.version3(), txHandle);
    EditPlan plan = EditPlanner(model, token).plan(std::move(wish), before);
    runPlan(plan, model, clients, txHandle, token);
    return plan;
}

EditPlan EditPlanner::plan(Wish wish, StateBefore& before) const {
    for (Edit& edit : wish.edits) {
        edit.dn = shortDn(mModel, std::move(edit.dn));
        for (WishedObject& object : edit.objects) {
            object.dn = shortDn(mModel, std::move(object.dn));
            shortenReferences(mModel, object.attributes);
        }
    }
    KnownState state(mModel, before, mToken);
    return PlanMaker(wish, state).take();
}

}
