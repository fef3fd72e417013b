// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AssociationChanges.h"

#include "References.h"

#include <algorithm>
#include <set>

namespace OrvHost {

namespace {

using Dns = std::vector<std::string>;

// Each round mends what the one before has moved: first what the named sides have moved, then what
// that has added once more where a reference lacked its far side before. One more than was ever
// needed.
constexpr int kMostRounds = 4;

bool holds(const Dns& dns, const std::string& dn) {
    return std::find(dns.begin(), dns.end(), dn) != dns.end();
}

Dns sorted(Dns dns) {
    std::sort(dns.begin(), dns.end());
    return dns;
}

void removeFirst(Dns& dns, const std::string& dn) {
    const auto found = std::find(dns.begin(), dns.end(), dn);
    if (found != dns.end()) {
        dns.erase(found);
    }
}

// Once, at its first place, or not at all.
void setHeld(Dns& dns, const std::string& dn, bool isHeld) {
    auto keep = isHeld ? std::find(dns.begin(), dns.end(), dn) : dns.end();
    if (isHeld && keep == dns.end()) {
        dns.push_back(dn);
        return;
    }
    const auto after = keep == dns.end() ? dns.begin() : keep + 1;
    dns.erase(std::remove(after, dns.end(), dn), dns.end());
}

Dns dnsIn(const AttributeValue& value) {
    Dns dns;
    forEachReference(value, [&](const std::string& dn) { dns.push_back(dn); });
    return dns;
}

AttributeValue referencesTo(const Dns& dns) {
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
    // Pairs with a named side first: they also decide what stays in the slots that are not named.
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
    for (const ObjectChange& change : mObjects.all()) {
        for (const AttributeDef& def : change.moc->attributes) {
            if (mSides.of(mState.indexOf(*change.moc), def.name).empty()) {
                continue;
            }
            const Slot slot(change.dn, def.name);
            const Standing standing = standingOf(slot);
            if (standing == Standing::Named) {
                const Dns values = dnsIn(change.attributes.at(def.name));
                checkNamed(slot, values);
                enter(slot, standing, values);
            } else if (standing == Standing::Silent && !before(slot).empty()) {
                enter(slot, standing, before(slot));
            } else if (standing == Standing::Open) {
                collectRevived(slot, change);
            }
        }
    }
}

// A value that the wish repeats is new for an object that it refers to and that the wish creates.
void AssociationChanges::collectRevived(const Slot& slot, const ObjectChange& change) {
    const auto named = change.attributes.find(slot.second);
    if (named == change.attributes.end() || change.contradicted.count(slot.second) != 0) {
        return;
    }
    for (const std::string& target : dnsIn(named->second)) {
        const ObjectChange* far = mObjects.find(target);
        if (far != nullptr && far->isCreated && sideTo(slot, target) != nullptr) {
            mRevived.emplace(slot, target);
        }
    }
}

void AssociationChanges::enter(const Slot& slot, Standing standing, Dns values) {
    mFutures[slot] = {standing, isFirst(slot), std::move(values), afterDeletes(slot)};
}

AssociationChanges::Future& AssociationChanges::future(const Slot& slot) {
    const auto found = mFutures.find(slot);
    if (found != mFutures.end()) {
        return found->second;
    }
    enter(slot, Standing::Open, afterDeletes(slot));
    return mFutures[slot];
}

AssociationChanges::Standing AssociationChanges::standingOf(const Slot& slot) {
    const auto known = mFutures.find(slot);
    if (known != mFutures.end()) {
        return known->second.standing;
    }
    const ObjectChange* change = mObjects.find(slot.first);
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
                            sorted(dnsIn(named->second)) == sorted(before(slot));
    return isRepeated ? Standing::Open : Standing::Named;
}

AssociationChanges::Dns AssociationChanges::before(const Slot& slot) {
    return dnsIn(mState.value(slot.first, slot.second));
}

AssociationChanges::Dns AssociationChanges::afterDeletes(const Slot& slot) {
    const Dns values = before(slot);
    Dns left = values;
    for (const std::string& target : std::set<std::string>(values.begin(), values.end())) {
        for (std::size_t count = cleanedBy(slot, target); count > 0; --count) {
            removeFirst(left, target);
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
    const Dns references = before(far);
    return static_cast<std::size_t>(std::count(references.begin(), references.end(), slot.first));
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
    const Dns ordered = sorted(values);
    for (auto twice = ordered.begin();
         (twice = std::adjacent_find(twice, ordered.end())) != ordered.end();) {
        mProblems.push_back({EditProblem::Kind::WrongValue, slot.first, slot.second,
                             name + " names " + *twice + " more than once"});
        twice = std::upper_bound(twice, ordered.end(), *twice);
    }
    for (const std::string& target : values) {
        if (mObjects.isDeleted(target)) {
            mProblems.push_back({EditProblem::Kind::DeletedTarget, slot.first, slot.second,
                                 name + " names " + target + ", which the wish deletes"});
        }
    }
}

void AssociationChanges::decideNamed(const Slot& slot) {
    const Dns wished = mFutures[slot].wished;
    Dns targets = before(slot);
    targets.insert(targets.end(), wished.begin(), wished.end());
    for (const std::string& target : targets) {
        const AssociationSide* side = sideTo(slot, target);
        if (side != nullptr && mObjects.existsAfter(target)) {
            decidePair(slot, Slot(target, side->farAttribute), holds(wished, target));
        }
    }
}

void AssociationChanges::decideRevived(const Slot& slot, const std::string& target) {
    setHeld(future(slot).wished, target, true);
    decidePair(slot, Slot(target, sideTo(slot, target)->farAttribute), true);
}

// The wish says of near whether the pair is associated.
void AssociationChanges::decidePair(const Slot& near, const Slot& far, bool isWished) {
    if (standingOf(far) != Standing::Named) {
        setHeld(future(far).wished, near.first, isWished);
        return;
    }
    const bool isWishedBack = holds(future(far).wished, near.first);
    if (isWished && !isWishedBack) {
        mProblems.push_back({EditProblem::Kind::Contradiction, near.first, near.second,
                             textOf(near.first, near.second) + " names " + far.first + ", but " +
                                 textOf(far.first, far.second) +
                                 ", which the wish gives too, does not name " + near.first});
    }
}

// What is not named stays as long as something outside of the wish may rest on it.
void AssociationChanges::decideSilent(const Slot& slot) {
    Dns& wished = mFutures[slot].wished;
    const auto goes = [&](const std::string& target) {
        const AssociationSide* side = sideTo(slot, target);
        if (side == nullptr || !mObjects.existsAfter(target)) {
            return true;
        }
        const Slot far(target, side->farAttribute);
        const Standing standing = standingOf(far);
        return standing == Standing::Silent ||
               (standing == Standing::Named && !holds(mFutures[far].wished, slot.first));
    };
    wished.erase(std::remove_if(wished.begin(), wished.end(), goes), wished.end());
}

std::vector<PlannedCall> AssociationChanges::calls() {
    const auto isNamedFirst = [](const Slot&, const Future& each) {
        return each.standing == Standing::Named && each.isFirst &&
               sorted(each.current) != sorted(each.wished);
    };
    const auto isNamed = [](const Slot&, const Future& each) {
        return each.standing == Standing::Named && sorted(each.current) != sorted(each.wished);
    };
    const auto isOff = [](const Slot&, const Future& each) {
        return each.standing == Standing::Named ? each.current != each.wished
                                                : sorted(each.current) != sorted(each.wished);
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
void AssociationChanges::moveFarSides(const Slot& slot, const Dns& from, const Dns& to) {
    const auto farOf = [&](const std::string& target) -> Future* {
        const AssociationSide* side = sideTo(slot, target);
        if (side == nullptr || !mObjects.existsAfter(target)) {
            return nullptr;
        }
        const auto far = mFutures.find({target, side->farAttribute});
        return far != mFutures.end() ? &far->second : nullptr;
    };
    for (const std::string& target : from) {
        Future* far = holds(to, target) ? nullptr : farOf(target);
        if (far != nullptr) {
            removeFirst(far->current, slot.first);
        }
    }
    for (const std::string& target : to) {
        Future* far = holds(from, target) ? nullptr : farOf(target);
        if (far != nullptr) {
            far->current.push_back(slot.first);
        }
    }
}

}
