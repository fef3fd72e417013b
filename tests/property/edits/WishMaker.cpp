// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "WishMaker.h"

#include <algorithm>

namespace EditTests {

namespace {

const Dns& names() {
    // Some begin with others, because plain prefixes of DNs are easily mistaken for parents.
    static const Dns kNames{"1", "10", "2", "x"};
    return kNames;
}

AttributeValue text(const std::string& value) {
    return {ValueKind::String, {Value(value)}};
}

bool holds(const Dns& dns, const std::string& dn) {
    return std::find(dns.begin(), dns.end(), dn) != dns.end();
}

// The objects whose "keeps" names a DN, also if there is no such object any more.
Dns keepersOf(const State& state, const std::string& dn) {
    Dns keepers;
    for (const auto& [keeper, attributes] : state) {
        if (holds(refsIn(state, keeper, "keeps"), dn)) {
            keepers.push_back(keeper);
        }
    }
    return keepers;
}

}

template <class List>
void WishMaker::shuffle(List& list) {
    for (std::size_t left = list.size(); left > 1; --left) {
        std::swap(list[left - 1], list[below(left)]);
    }
}

Dns WishMaker::objectsOf(const State& state, const std::string& className) const {
    Dns dns;
    for (const auto& [dn, attributes] : state) {
        if (classNameOf(dn) == className) {
            dns.push_back(dn);
        }
    }
    return dns;
}

std::string WishMaker::anyObject(const State& state) {
    Dns dns;
    for (const auto& [dn, attributes] : state) {
        dns.push_back(dn);
    }
    return pick(dns);
}

State WishMaker::changed() {
    for (std::size_t changes = 1 + below(6); changes > 0; --changes) {
        change();
    }
    State state;
    for (const auto& [dn, attributes] : mTarget) {
        state[dn];
        for (const auto& [name, value] : attributes) {
            AttributeValue kept = value;
            if (value.kind == ValueKind::MoRef) {
                kept = refs(presentOnly(dnsOf(value)));
            }
            if (!kept.values.empty()) {
                state[dn][name] = kept;
            }
        }
        if (classNameOf(dn) == "Unit" && state[dn].count("size") == 0) {
            state[dn]["size"] = {ValueKind::Int, {Value(std::int64_t{5})}};
        }
    }
    return state;
}

Dns WishMaker::presentOnly(Dns dns) const {
    dns.erase(std::remove_if(dns.begin(), dns.end(),
                             [&](const std::string& dn) { return mTarget.count(dn) == 0; }),
              dns.end());
    return dns;
}

// What a reference that waits for its object names may be missing, but not deleted by the wish.
Dns WishMaker::notDeleted(Dns dns) const {
    dns.erase(std::remove_if(dns.begin(), dns.end(),
                             [&](const std::string& dn) {
                                 return mTarget.count(dn) == 0 && mBefore.count(dn) != 0;
                             }),
              dns.end());
    return dns;
}

MadeWish WishMaker::make() {
    for (std::size_t changes = 1 + below(6); changes > 0; --changes) {
        change();
    }
    MadeWish made;
    if (oneIn(3)) {
        wishState(made);
    } else {
        wishEdits(made);
    }
    if (mHasMoved) {
        made.traits.insert("move");
    }
    if (mHasRevived) {
        made.traits.insert("a kept reference finds a new object");
    }
    if (oneIn(5)) {
        addStale(made);
    }
    for (std::size_t mistakes = oneIn(6) ? 1 + below(3) : 0; mistakes > 0; --mistakes) {
        addMistake(made);
    }
    made.wish = shuffled(std::move(made.wish));
    return made;
}

Wish WishMaker::shuffled(Wish wish) {
    for (Edit& edit : wish.edits) {
        for (WishedObject& object : edit.objects) {
            shuffle(object.attributes);
        }
        shuffle(edit.objects);
    }
    shuffle(wish.edits);
    return wish;
}

void WishMaker::change() {
    const std::size_t kind = below(10);
    if (kind < 3 && mTarget.size() < 26) {
        createObject();
    } else if (kind == 3) {
        deleteObject();
    } else if (kind < 8) {
        moveLink();
    } else {
        changeValue();
    }
}

void WishMaker::createObject() {
    const std::string parent = anyObject(mTarget);
    const ClassDef& moc = mModel.classes[*mModel.findClass(classNameOf(parent))];
    const bool isDeep = std::count(parent.begin(), parent.end(), ',') > 3;
    if (moc.children.empty() || isDeep) {
        return;
    }
    const ClassDef& child = mModel.classes[pick(moc.children)];
    std::string dn = parent + "," + child.name + "=" + pick(names());
    const Dns missing = keptButMissing();
    if (!missing.empty() && oneIn(2)) {
        dn = pick(missing);
    }
    if (mTarget.count(dn) != 0) {
        return;
    }
    auto& attributes = mTarget[dn];
    if (classNameOf(dn) == "Unit") {
        attributes["need"] = text("n" + std::to_string(below(3)));
    }
    for (const std::string& keeper : keepersOf(mTarget, dn)) {
        mHasRevived = true;
        if (oneIn(3)) {
            erase(keeper, "keeps", dn);
        } else {
            insert(dn, "keptBy", keeper);
        }
    }
    for (std::size_t links = below(4); links > 0; --links) {
        moveLink();
    }
}

// DNs in "keeps" at which there is no object, but could be one.
Dns WishMaker::keptButMissing() {
    Dns missing;
    for (const auto& [keeper, attributes] : mTarget) {
        for (const std::string& dn : refsIn(mTarget, keeper, "keeps")) {
            if (mTarget.count(dn) == 0 && mTarget.count(parentDnOf(dn)) != 0) {
                missing.push_back(dn);
            }
        }
    }
    return missing;
}

void WishMaker::deleteObject() {
    const std::string top = anyObject(mTarget);
    if (top == kRoot) {
        return;
    }
    Dns gone;
    for (const auto& [dn, attributes] : mTarget) {
        if (isBelowOrSame(dn, top)) {
            gone.push_back(dn);
        }
    }
    for (const std::string& dn : gone) {
        unlinkAll(dn);
        mTarget.erase(dn);
    }
}

void WishMaker::moveLink() {
    const BiDirAssociation& association = pick(mModel.biDirAssociations);
    const auto& [first, second] = association.ends;
    const Dns ofFirst = objectsOf(mTarget, mModel.classes[first.moc].name);
    const Dns ofSecond = objectsOf(mTarget, mModel.classes[second.moc].name);
    if (ofFirst.empty() || ofSecond.empty()) {
        return;
    }
    const std::string x = pick(ofFirst);
    const std::string y = pick(ofSecond);
    if (holds(refsIn(mTarget, x, second.name), y)) {
        unlink(association, x, y);
        return;
    }
    // A side that may hold one value loses the one that it has.
    if (second.cardinality.upper == 1) {
        for (const std::string& old : refsIn(mTarget, x, second.name)) {
            mHasMoved = true;
            unlink(association, x, old);
        }
    }
    if (first.cardinality.upper == 1) {
        for (const std::string& old : refsIn(mTarget, y, first.name)) {
            mHasMoved = true;
            unlink(association, old, y);
        }
    }
    link(association, x, y);
}

void WishMaker::changeValue() {
    const Dns units = objectsOf(mTarget, "Unit");
    const Dns areas = objectsOf(mTarget, "Area");
    if (!units.empty() && oneIn(2)) {
        auto& attributes = mTarget[pick(units)];
        const std::size_t kind = below(4);
        if (kind == 0) {
            attributes["size"] = {ValueKind::Int, {Value(std::int64_t(4 + below(4)))}};
        } else if (kind == 1) {
            attributes["need"] = text("n" + std::to_string(below(9)));
        } else if (kind == 2) {
            AttributeValue tags{ValueKind::String, {}};
            for (std::size_t count = below(4); count > 0; --count) {
                tags.values.emplace_back(pick(names()));
            }
            attributes["tags"] = tags;
        } else {
            attributes["label"] = oneIn(3) ? AttributeValue{ValueKind::String, {}} : text("b");
        }
    } else if (!areas.empty()) {
        mTarget[pick(areas)]["plan"] = oneIn(3) ? refs({}) : refs({pick(areas)});
    }
}

void WishMaker::insert(const std::string& dn, const std::string& name, const std::string& target) {
    Dns dns = refsIn(mTarget, dn, name);
    if (!holds(dns, target)) {
        dns.insert(dns.begin() + static_cast<std::ptrdiff_t>(below(dns.size() + 1)), target);
    }
    mTarget[dn][name] = refs(dns);
}

void WishMaker::erase(const std::string& dn, const std::string& name, const std::string& target) {
    if (mTarget.count(dn) == 0) {
        return;
    }
    Dns dns = refsIn(mTarget, dn, name);
    dns.erase(std::remove(dns.begin(), dns.end(), target), dns.end());
    mTarget[dn][name] = refs(dns);
}

void WishMaker::link(const BiDirAssociation& association, const std::string& x,
                     const std::string& y) {
    insert(x, association.ends[1].name, y);
    insert(y, association.ends[0].name, x);
}

void WishMaker::unlink(const BiDirAssociation& association, const std::string& x,
                       const std::string& y) {
    erase(x, association.ends[1].name, y);
    erase(y, association.ends[0].name, x);
}

void WishMaker::unlinkAll(const std::string& dn) {
    for (auto& [other, attributes] : mTarget) {
        for (auto& [name, value] : attributes) {
            if (value.kind == ValueKind::MoRef) {
                erase(other, name, dn);
            }
        }
    }
}

bool WishMaker::isNamed(const std::string& className, const std::string& name, Sides sides) {
    for (const BiDirAssociation& association : mModel.biDirAssociations) {
        for (const std::size_t near : {std::size_t{0}, std::size_t{1}}) {
            const AssociationEnd& here = association.ends[near];
            const AssociationEnd& far = association.ends[1 - near];
            if (mModel.classes[here.moc].name != className || far.name != name) {
                continue;
            }
            if (sides == Sides::Random) {
                return oneIn(2);
            }
            const bool isSymmetric = here.name == far.name;
            return isSymmetric || sides == Sides::Both || (sides == Sides::First) == (near == 0);
        }
    }
    return true;
}

// No plan can know of references to a new object if the wish names neither them nor the references
// back, and its subtree is not replaced.
bool WishMaker::mustName(const std::string& dn, const std::string& name) {
    const Dns kept = name == "keeps" && mAreEdits ? refsIn(mBefore, dn, name) : Dns();
    return std::any_of(kept.begin(), kept.end(), [&](const std::string& target) {
        return mBefore.count(target) == 0 && mTarget.count(target) != 0;
    });
}

WishedObject WishMaker::wished(const std::string& dn, Sides sides) {
    WishedObject object{dn, {}};
    for (const auto& [name, value] : mTarget.at(dn)) {
        const bool isThereAfter =
            value.kind != ValueKind::MoRef || !value.values.empty() || oneIn(3);
        if ((isThereAfter && isNamed(classNameOf(dn), name, sides)) || mustName(dn, name)) {
            AttributeValue kept = value;
            if (value.kind == ValueKind::MoRef) {
                kept = refs(name == "keeps" ? notDeleted(dnsOf(value)) : presentOnly(dnsOf(value)));
            }
            object.attributes.emplace_back(name, kept);
        }
    }
    return object;
}

void WishMaker::wishState(MadeWish& made) {
    const Sides sides = static_cast<Sides>(below(4));
    const Dns areas = objectsOf(mTarget, "Area");
    const std::string top = areas.empty() || mHasRevived || oneIn(2) ? kRoot : pick(areas);
    std::vector<WishedObject> objects;
    for (const auto& [dn, attributes] : mTarget) {
        if (isBelowOrSame(dn, top)) {
            objects.push_back(wished(dn, sides));
        }
    }
    const bool isWhole = top == kRoot && oneIn(2);
    made.wish = wishedState(isWhole ? "" : top, std::move(objects));
    if (oneIn(4)) {
        made.wish.repeated = Wish::Repeated::IsNoEdit;
    }
    made.traits.insert(isWhole ? "whole state" : "state of a subtree");
    made.traits.insert(sides == Sides::Both ? "both sides named" : "one side named");
}

void WishMaker::wishEdits(MadeWish& made) {
    const Sides sides = static_cast<Sides>(below(4));
    made.traits.insert("edits");
    mAreEdits = true;
    made.traits.insert(sides == Sides::Both ? "both sides named" : "one side named");
    std::vector<Edit>& edits = made.wish.edits;
    for (const auto& [dn, attributes] : mBefore) {
        if (mTarget.count(dn) == 0 && mTarget.count(parentDnOf(dn)) != 0) {
            edits.push_back({oneIn(2) ? EditKind::Delete : EditKind::Remove, dn, {}});
            made.traits.insert("delete");
        }
    }
    for (const auto& [dn, attributes] : mTarget) {
        WishedObject object = wished(dn, sides);
        const auto before = mBefore.find(dn);
        if (before == mBefore.end()) {
            edits.push_back({oneIn(2) ? EditKind::Create : EditKind::Merge, dn, {object}});
            made.traits.insert("create");
            continue;
        }
        if (dn != kRoot && oneIn(12)) {
            Edit replace{EditKind::Replace, dn, {}};
            for (const auto& [below, values] : mTarget) {
                if (isBelowOrSame(below, dn)) {
                    replace.objects.push_back(wished(below, sides));
                }
            }
            edits.push_back(replace);
            made.traits.insert("replace");
            continue;
        }
        object.attributes.erase(
            std::remove_if(object.attributes.begin(), object.attributes.end(),
                           [&, &ofObject = dn](const NamedValue& named) {
                               const auto old = before->second.find(named.first);
                               const bool isSame = old == before->second.end()
                                                       ? named.second.values.empty()
                                                       : old->second == named.second;
                               return isSame && !oneIn(8) && !mustName(ofObject, named.first);
                           }),
            object.attributes.end());
        if (!object.attributes.empty()) {
            edits.push_back({oneIn(2) ? EditKind::Set : EditKind::Merge, dn, {object}});
            made.traits.insert("set");
        }
    }
    if (oneIn(4)) {
        made.wish.repeated = Wish::Repeated::IsWished;
    }
}

WishedObject* WishMaker::anyWished(Wish& wish) {
    std::vector<WishedObject*> all;
    for (Edit& edit : wish.edits) {
        for (WishedObject& object : edit.objects) {
            all.push_back(&object);
        }
    }
    return all.empty() ? nullptr : pick(all);
}

// A client that reads, changes one thing and writes all back names old values.
void WishMaker::addStale(MadeWish& made) {
    WishedObject* object = anyWished(made.wish);
    if (object == nullptr || mBefore.count(object->dn) == 0) {
        return;
    }
    for (const auto& old : mBefore.at(object->dn)) {
        const bool isNamed =
            std::any_of(object->attributes.begin(), object->attributes.end(),
                        [&](const NamedValue& named) { return named.first == old.first; });
        if (!isNamed) {
            object->attributes.emplace_back(old.first, old.second);
            made.traits.insert("old values named");
        }
    }
}

void WishMaker::addMistake(MadeWish& made) {
    made.traits.insert("mistake");
    std::vector<Edit>& edits = made.wish.edits;
    WishedObject* object = anyWished(made.wish);
    const Dns units = objectsOf(mBefore, "Unit");
    switch (below(12)) {
    case 0:
        edits.push_back({EditKind::Merge,
                         std::string(kRoot) + ",Street=1",
                         {{std::string(kRoot) + ",Street=1", {}}}});
        break;
    case 1:
        edits.push_back({EditKind::Create,
                         std::string(kRoot) + ",Area=none,Unit=1",
                         {{std::string(kRoot) + ",Area=none,Unit=1", {{"need", text("n")}}}}});
        break;
    case 2:
        if (object != nullptr) {
            object->attributes.emplace_back("colour", text("red"));
        }
        break;
    case 3:
        edits.push_back({EditKind::Delete, std::string(kRoot) + ",Area=none", {}});
        break;
    case 4:
        edits.push_back({EditKind::Set,
                         std::string(kRoot) + ",Area=none",
                         {{std::string(kRoot) + ",Area=none", {{"label", text("l")}}}}});
        break;
    case 5:
        edits.push_back({EditKind::Create, kRoot, {{kRoot, {}}}});
        break;
    case 6:
        if (!units.empty()) {
            edits.push_back({EditKind::Remove, pick(units), {}});
        }
        break;
    case 7:
        if (!units.empty()) {
            const std::string unit = pick(units);
            edits.push_back(
                {EditKind::Merge, unit, {{unit, {{"size", text("big")}, {"status", text("s")}}}}});
        }
        break;
    case 8:
        if (!units.empty()) {
            const std::string unit = pick(units);
            edits.push_back(
                {EditKind::Merge, unit, {{unit, {{"peers", refs({pick(units), pick(units)})}}}}});
        }
        break;
    case 9:
        // The internal DN, which clients do not know.
        if (!units.empty()) {
            const std::string unit = pick(units);
            const Dns internal{"ManagedElement=1" + unit.substr(unit.find(','))};
            edits.push_back({EditKind::Merge,
                             unit,
                             {{unit, {{oneIn(2) ? "friends" : "ports", refs(internal)}}}}});
        }
        break;
    case 10:
        edits.push_back(
            {static_cast<EditKind>(below(6)), std::string(kRoot) + ",Area=1,Arae=1", {}});
        break;
    default:
        edits.push_back({EditKind::Merge, std::string(kRoot) + ",Area=1", {{kRoot, {}}}});
    }
}

}
