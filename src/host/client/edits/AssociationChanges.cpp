// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AssociationChanges.h"

#include "References.h"
#include "base/Join.h"

#include <algorithm>
#include <set>

namespace OrvHost {

namespace {

using Dns = std::vector<std::string>;

// Each round mends what the one before has moved: first what the named sides have moved, then what
// that has added once more where a reference lacked its far side before. Two are enough for all
// that the property tests make up.
constexpr int kMostRounds = 4;

Dns dnsIn(const AttributeValue& value) {
    Dns dns;
    forEachReference(value, [&](const std::string& dn) { dns.push_back(dn); });
    return dns;
}

AttributeValue referencesTo(const ReferenceList& references) {
    const Dns dns = references.dns();
    return {ValueKind::MoRef, std::vector<Value>(dns.begin(), dns.end())};
}

std::string textOf(const std::string& dn, const std::string& attribute) {
    return dn + "." + attribute;
}

}

AssociationChanges::AssociationChanges(const AssociationSides& sides, const ObjectChanges& objects,
                                       KnownState& state, Wish::Repeated repeated,
                                       std::vector<EditProblem>& problems)
    : mSides(sides), mObjects(objects), mState(state), mRepeated(repeated), mProblems(problems) {
    collect();
    // First what is not named loses what does not stay. The named sides come after it, since they
    // can put something back there.
    std::vector<Slot> named;
    std::vector<Slot> silent;
    for (const auto& [slot, future] : mFutures) {
        (future.standing == Standing::Named ? named : silent).push_back(slot);
    }
    for (const Slot& slot : silent) {
        decideSilent(slot);
    }
    for (const Slot& slot : named) {
        decideNamed(slot);
    }
    for (const auto& [slot, target] : mRevived) {
        decideRevived(slot, target);
    }
}

void AssociationChanges::collect() {
    for (const ObjectWish& change : mObjects.all()) {
        for (const AttributeDef& def : change.moc->attributes) {
            if (mSides.of(mState.indexOf(*change.moc), def.name).empty()) {
                continue;
            }
            const Slot slot(change.dn, def.name);
            const Standing standing = standingOf(slot);
            if (standing == Standing::Named) {
                const Dns values = dnsIn(change.attributes.at(def.name));
                checkNamed(slot, values);
                enter(slot, standing, ReferenceList(values));
            } else if (standing == Standing::Silent && !before(slot).isEmpty()) {
                enter(slot, standing, before(slot));
            } else if (standing == Standing::Open) {
                collectRevived(slot, change);
            }
        }
    }
}

// A value that the wish repeats is new for an object that it refers to and that the wish creates.
void AssociationChanges::collectRevived(const Slot& slot, const ObjectWish& change) {
    const auto named = change.attributes.find(slot.second);
    if (named == change.attributes.end() || change.contradicted.count(slot.second) != 0) {
        return;
    }
    for (const std::string& target : dnsIn(named->second)) {
        const ObjectWish* far = mObjects.find(target);
        if (far != nullptr && far->isCreated && sideTo(slot, target) != nullptr) {
            mRevived.emplace(slot, target);
        }
    }
}

void AssociationChanges::enter(const Slot& slot, Standing standing, ReferenceList values) {
    mFutures[slot] = {standing, isFirst(slot), std::move(values), afterDeletes(slot)};
}

AssociationChanges::Future& AssociationChanges::future(const Slot& slot) {
    const auto found = mFutures.find(slot);
    if (found != mFutures.end()) {
        return found->second;
    }
    enter(slot, standingOf(slot), afterDeletes(slot));
    return mFutures[slot];
}

AssociationChanges::Standing AssociationChanges::standingOf(const Slot& slot) {
    const auto [known, isNew] = mStandings.try_emplace(slot, Standing::Open);
    if (isNew) {
        known->second = findStanding(slot);
    }
    return known->second;
}

AssociationChanges::Standing AssociationChanges::findStanding(const Slot& slot) {
    const ObjectWish* change = mObjects.find(slot.first);
    if (change == nullptr || change->contradicted.count(slot.second) != 0) {
        return Standing::Open;
    }
    const auto named = change->attributes.find(slot.second);
    const bool isTakenAway = change->isReplaced && isWritable(slot);
    const Standing unnamed = isTakenAway ? Standing::Silent : Standing::Open;
    if (named == change->attributes.end()) {
        return unnamed;
    }
    // A new object has no values that could be repeated, so naming none is not naming.
    if (named->second.values.empty() && mRepeated == Wish::Repeated::IsNoEdit &&
        change->isCreated) {
        return unnamed;
    }
    const bool isRepeated = mRepeated == Wish::Repeated::IsNoEdit &&
                            before(slot).hasSameAs(ReferenceList(dnsIn(named->second)));
    return isRepeated ? Standing::Open : Standing::Named;
}

const ReferenceList& AssociationChanges::before(const Slot& slot) {
    const auto [known, isNew] = mBefore.try_emplace(slot);
    if (isNew) {
        known->second = ReferenceList(dnsIn(mState.value(slot.first, slot.second)));
    }
    return known->second;
}

ReferenceList AssociationChanges::afterDeletes(const Slot& slot) {
    ReferenceList left = before(slot);
    const Dns values = left.dns();
    for (const std::string& target : std::set<std::string>(values.begin(), values.end())) {
        for (std::size_t count = cleanedBy(slot, target); count > 0; --count) {
            left.removeFirst(target);
        }
    }
    return left;
}

// A deleted object is taken out of what its own references name, once for each, and of nothing
// else.
std::size_t AssociationChanges::cleanedBy(const Slot& slot, const std::string& target) {
    if (!mObjects.isDeleted(target)) {
        return 0;
    }
    const AssociationSide* side = sideTo(slot, target);
    if (side == nullptr) {
        return 0;
    }
    const Slot far(target, side->farAttribute);
    const AssociationSide* back = sideTo(far, slot.first);
    if (back == nullptr || back->isKeptAtDelete) {
        return 0;
    }
    return before(far).count(slot.first);
}

bool AssociationChanges::isFirst(const Slot& slot) {
    const ClassDef* moc = mState.classOf(slot.first);
    const auto& sides = mSides.of(mState.indexOf(*moc), slot.second);
    return std::any_of(sides.begin(), sides.end(),
                       [](const AssociationSide& side) { return side.isFirst; });
}

bool AssociationChanges::isWritable(const Slot& slot) {
    return mState.classOf(slot.first)->findAttribute(slot.second)->isWritable;
}

const AssociationSide* AssociationChanges::sideTo(const Slot& slot, const std::string& target) {
    const ClassDef* near = mState.classOf(slot.first);
    const ClassDef* far = mState.classOf(target);
    return near != nullptr && far != nullptr
               ? mSides.find(mState.indexOf(*near), slot.second, mState.indexOf(*far))
               : nullptr;
}

void AssociationChanges::checkNamed(const Slot& slot, const Dns& values) {
    const std::string name = textOf(slot.first, slot.second);
    const ReferenceList list(values);
    for (const std::string& target : std::set<std::string>(values.begin(), values.end())) {
        if (list.count(target) > 1) {
            mProblems.push_back({EditProblem::Kind::WrongValue, slot.first, slot.second,
                                 joined({name, " names ", target, " more than once"})});
        }
    }
    for (const std::string& target : values) {
        if (mObjects.isDeleted(target)) {
            mProblems.push_back(deletedTarget(slot.first, slot.second, target));
        }
    }
}

void AssociationChanges::decideNamed(const Slot& slot) {
    const ReferenceList wished = mFutures[slot].wished;
    const Dns after = wished.dns();
    Dns targets = before(slot).dns();
    targets.insert(targets.end(), after.begin(), after.end());
    for (const std::string& target : std::set<std::string>(targets.begin(), targets.end())) {
        mState.throwIfCancelled();
        const AssociationSide* side = sideTo(slot, target);
        if (side != nullptr && mObjects.existsAfter(target)) {
            decidePair(slot, Slot(target, side->farAttribute), wished.holds(target));
        }
    }
}

void AssociationChanges::decideRevived(const Slot& slot, const std::string& target) {
    future(slot).wished.setHeld(target, true);
    decidePair(slot, Slot(target, sideTo(slot, target)->farAttribute), true);
}

// The wish says of near whether the pair is associated.
void AssociationChanges::decidePair(const Slot& near, const Slot& far, bool isWished) {
    if (standingOf(far) != Standing::Named) {
        future(far).wished.setHeld(near.first, isWished);
        return;
    }
    const bool isWishedBack = future(far).wished.holds(near.first);
    if (isWished && !isWishedBack) {
        mProblems.push_back({EditProblem::Kind::Contradiction, near.first, near.second,
                             textOf(near.first, near.second) + " names " + far.first + ", but " +
                                 textOf(far.first, far.second) +
                                 ", which the wish gives too, does not name " + near.first});
    }
}

// What is not named stays as long as something outside of the wish may rest on it.
void AssociationChanges::decideSilent(const Slot& slot) {
    mState.throwIfCancelled();
    const auto goes = [&](const std::string& target) {
        const AssociationSide* side = sideTo(slot, target);
        if (side == nullptr || !mObjects.existsAfter(target)) {
            return true;
        }
        const Slot far(target, side->farAttribute);
        const Standing standing = standingOf(far);
        return standing == Standing::Silent ||
               (standing == Standing::Named && !mFutures[far].wished.holds(slot.first));
    };
    Dns wished = mFutures[slot].wished.dns();
    wished.erase(std::remove_if(wished.begin(), wished.end(), goes), wished.end());
    mFutures[slot].wished = ReferenceList(wished);
}

std::vector<PlannedCall> AssociationChanges::calls() {
    const auto isNamed = [](const Slot&, const Future& each) {
        return each.standing == Standing::Named && !each.current.hasSameAs(each.wished);
    };
    const auto isNamedFirst = [&](const Slot& slot, const Future& each) {
        return each.isFirst && isNamed(slot, each);
    };
    const auto isOff = [](const Slot&, const Future& each) {
        return each.standing == Standing::Named ? !each.current.isEqualTo(each.wished)
                                                : !each.current.hasSameAs(each.wished);
    };
    writeAll(isNamedFirst);
    writeAll(isNamed);
    const auto isOffAndWritable = [&](const Slot& slot, const Future& each) {
        return isOff(slot, each) && isWritable(slot);
    };
    for (int round = 0; round < kMostRounds && writeAll(isOffAndWritable); ++round) {
    }
    requireNone(isOff);
    return std::move(mCalls);
}

void AssociationChanges::requireNone(const Which& isOff) const {
    for (const auto& [slot, future] : mFutures) {
        if (isOff(slot, future)) {
            throw RequestError("no plan was found that brings " + textOf(slot.first, slot.second) +
                               " to the wished references; nothing was written");
        }
    }
}

bool AssociationChanges::writeAll(const Which& which) {
    bool hasWritten = false;
    for (auto& [slot, future] : mFutures) {
        mState.throwIfCancelled();
        if (which(slot, future)) {
            write(slot, future);
            hasWritten = true;
        }
    }
    return hasWritten;
}

void AssociationChanges::write(const Slot& slot, Future& future) {
    mCalls.push_back(
        {PlannedCall::Kind::Set, slot.first, {{slot.second, referencesTo(future.wished)}}});
    moveFarSides(slot, future.current, future.wished);
    future.current = future.wished;
}

// What the component does to the far sides before it sets the attribute itself.
void AssociationChanges::moveFarSides(const Slot& slot, const ReferenceList& from,
                                      const ReferenceList& to) {
    const auto farOf = [&](const std::string& target) -> Future* {
        const AssociationSide* side = sideTo(slot, target);
        if (side == nullptr || !mObjects.existsAfter(target)) {
            return nullptr;
        }
        const auto far = mFutures.find({target, side->farAttribute});
        return far != mFutures.end() ? &far->second : nullptr;
    };
    for (const std::string& target : from.dns()) {
        Future* far = to.holds(target) ? nullptr : farOf(target);
        if (far != nullptr) {
            far->current.removeFirst(slot.first);
        }
    }
    for (const std::string& target : to.dns()) {
        Future* far = from.holds(target) ? nullptr : farOf(target);
        if (far != nullptr) {
            far->current.add(slot.first);
        }
    }
}

}
