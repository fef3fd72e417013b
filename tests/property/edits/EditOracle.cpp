// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "EditOracle.h"

#include "model/ValueCheck.h"

#include <algorithm>
#include <optional>

namespace EditTests {

namespace {

using Kind = EditProblem::Kind;

enum class Said { Value, Nothing, Left };

struct Object {
    bool isReplaced = false;
    bool isSetOnly = true;
    std::map<std::string, AttributeValue> attributes;
    std::set<std::string> contradicted;
};

class Oracle {
public:
    Oracle(const Model& model, const State& before, const Wish& wish)
        : mModel(model), mBefore(before), mWish(wish) {
        gather();
        findDeleted();
        checkObjects();
        settleObjects();
        settlePlainValues();
        settleAssociations();
    }

    Expected take() { return std::move(mExpected); }

private:
    void problem(Kind kind, const std::string& dn, const std::string& attribute = {}) {
        mExpected.problems.emplace(kind, dn, attribute);
    }

    // Whether each step of a DN may stand where it stands.
    bool isLegal(const std::string& dn) const {
        const std::string parent = parentDnOf(dn);
        const auto moc = mModel.findClass(classNameOf(dn));
        if (!moc) {
            return false;
        }
        if (parent.empty()) {
            return dn == kRoot;
        }
        const auto parentMoc = mModel.findClass(classNameOf(parent));
        return isLegal(parent) && parentMoc && mModel.classes[*moc].mayStandUnder(*parentMoc);
    }

    bool wasThere(const std::string& dn) const { return mBefore.count(dn) != 0; }
    bool isThere(const std::string& dn) const { return mExpected.state.count(dn) != 0; }
    bool isGone(const std::string& dn) const { return wasThere(dn) && !isThere(dn); }

    const ClassDef& classOf(const std::string& dn) const {
        return mModel.classes[*mModel.findClass(classNameOf(dn))];
    }

    void gather() {
        for (const Edit& edit : mWish.edits) {
            const bool isDelete = edit.kind == EditKind::Delete || edit.kind == EditKind::Remove;
            if ((isDelete || !edit.dn.empty()) && !isLegal(edit.dn)) {
                problem(Kind::NoSuchClass, edit.dn);
            } else if (edit.kind == EditKind::Delete && !wasThere(edit.dn)) {
                problem(Kind::NotThere, edit.dn);
            }
            for (const WishedObject& object : edit.objects) {
                if (!isBelowOrSame(object.dn, edit.dn)) {
                    problem(Kind::OutsideEdit, object.dn);
                } else if (!isLegal(object.dn)) {
                    problem(Kind::NoSuchClass, object.dn);
                } else {
                    gather(edit.kind, object);
                }
            }
        }
    }

    void gather(EditKind kind, const WishedObject& wished) {
        if (kind == EditKind::Create && wasThere(wished.dn)) {
            problem(Kind::AlreadyThere, wished.dn);
        }
        Object& object = mObjects[wished.dn];
        object.isReplaced |= kind == EditKind::Replace;
        object.isSetOnly &= kind == EditKind::Set;
        for (const NamedValue& named : wished.attributes) {
            if (classOf(wished.dn).findAttribute(named.first) == nullptr) {
                problem(Kind::NoSuchAttribute, wished.dn, named.first);
                continue;
            }
            checkValue(wished.dn, named.first, named.second);
            const auto [place, isNew] = object.attributes.insert(named);
            if (!isNew && place->second != named.second) {
                object.contradicted.insert(named.first);
                problem(Kind::Contradiction, wished.dn, named.first);
            }
        }
    }

    void findDeleted() {
        for (const auto& [dn, attributes] : mBefore) {
            for (const Edit& edit : mWish.edits) {
                const bool goes =
                    edit.kind == EditKind::Replace
                        ? isBelowOrSame(dn, edit.dn) && mObjects.count(dn) == 0
                        : (edit.kind == EditKind::Delete || edit.kind == EditKind::Remove) &&
                              dn == edit.dn;
                if (goes) {
                    mTops.insert(dn);
                }
            }
        }
    }

    bool isBelowTop(const std::string& dn) const {
        return std::any_of(mTops.begin(), mTops.end(),
                           [&](const std::string& top) { return isBelowOrSame(dn, top); });
    }

    void checkObjects() {
        for (const auto& [dn, object] : mObjects) {
            const std::string parent = parentDnOf(dn);
            if (object.isSetOnly && !wasThere(dn)) {
                problem(Kind::NotThere, dn);
            } else if (isBelowTop(dn)) {
                problem(Kind::Contradiction, dn);
            } else if (!parent.empty() && !wasThere(parent) && mObjects.count(parent) == 0) {
                problem(Kind::NoParent, dn);
            }
        }
    }

    void checkValue(const std::string& dn, const std::string& name, const AttributeValue& value) {
        const AttributeDef& def = *classOf(dn).findAttribute(name);
        if (value.kind == ValueKind::MoRef) {
            for (const std::string& target : dnsOf(value)) {
                if (target.rfind("ManagedElement=", 0) == 0 && !isBelowOrSame(target, kRoot)) {
                    problem(Kind::WrongValue, dn, name);
                }
            }
        }
        if (valueBefore(dn, name).values == value.values) {
            return;
        }
        const bool isRefused =
            (!def.isWritable || value.kind != def.type.kind) ||
            (def.type.kind != ValueKind::MoRef && !whyRefused(def, value).empty());
        if (isRefused) {
            problem(Kind::WrongValue, dn, name);
        }
    }

    AttributeValue valueBefore(const std::string& dn, const std::string& name) const {
        const AttributeDef& def = *classOf(dn).findAttribute(name);
        const auto object = mBefore.find(dn);
        if (object != mBefore.end()) {
            const auto value = object->second.find(name);
            if (value != object->second.end()) {
                return value->second;
            }
        }
        return {def.type.kind, {}};
    }

    void settleObjects() {
        for (const auto& [dn, attributes] : mBefore) {
            if (!isBelowTop(dn)) {
                mExpected.state[dn];
            }
        }
        for (const auto& [dn, object] : mObjects) {
            mExpected.state[dn];
        }
    }

    bool isAssociation(const ClassDef& moc, const std::string& name) const {
        return std::any_of(mModel.biDirAssociations.begin(), mModel.biDirAssociations.end(),
                           [&](const BiDirAssociation& association) {
                               const auto& [one, other] = association.ends;
                               return (&mModel.classes[one.moc] == &moc && other.name == name) ||
                                      (&mModel.classes[other.moc] == &moc && one.name == name);
                           });
    }

    void settlePlainValues() {
        for (auto& [dn, attributes] : mExpected.state) {
            const auto object = mObjects.find(dn);
            for (const AttributeDef& def : classOf(dn).attributes) {
                if (def.isNaming || isAssociation(classOf(dn), def.name)) {
                    continue;
                }
                AttributeValue value = valueBefore(dn, def.name);
                const bool isContradicted =
                    object != mObjects.end() && object->second.contradicted.count(def.name) != 0;
                const bool isNamed = !isContradicted && object != mObjects.end() &&
                                     object->second.attributes.count(def.name) != 0;
                if (isNamed) {
                    value = object->second.attributes.at(def.name);
                    for (const Value& one : value.values) {
                        if (def.type.kind == ValueKind::MoRef &&
                            isGone(std::get<std::string>(one))) {
                            problem(Kind::DeletedTarget, dn, def.name);
                        }
                    }
                } else if (!isContradicted && object != mObjects.end() &&
                           object->second.isReplaced && def.isWritable) {
                    const bool hadValue = !value.values.empty();
                    value.values.clear();
                    if (hadValue && def.multiplicity.lower > 0) {
                        problem(Kind::WrongValue, dn, def.name);
                    }
                }
                if (value.values.empty() && def.defaultValue) {
                    value = *def.defaultValue;
                }
                if (!value.values.empty()) {
                    attributes[def.name] = value;
                }
            }
        }
    }

    Said said(const std::string& dn, const std::string& name) const {
        const auto object = mObjects.find(dn);
        if (object == mObjects.end() || object->second.contradicted.count(name) != 0) {
            return Said::Left;
        }
        const auto named = object->second.attributes.find(name);
        if (named == object->second.attributes.end()) {
            return object->second.isReplaced ? Said::Nothing : Said::Left;
        }
        Dns wished = dnsOf(named->second);
        if (wished.empty() && !wasThere(dn) && mWish.repeated == Wish::Repeated::IsNoEdit) {
            return object->second.isReplaced ? Said::Nothing : Said::Left;
        }
        Dns present = dnsOf(valueBefore(dn, name));
        std::sort(wished.begin(), wished.end());
        std::sort(present.begin(), present.end());
        const bool isRepeated = mWish.repeated == Wish::Repeated::IsNoEdit && wished == present;
        return isRepeated ? Said::Left : Said::Value;
    }

    // What an object says of its pair with another one.
    Said said(const std::string& dn, const std::string& name, const std::string& target) const {
        const Said all = said(dn, name);
        const bool isRevived =
            all == Said::Left && !wasThere(target) && isNamed(dn, name) && names(dn, name, target);
        return isRevived ? Said::Value : all;
    }

    bool isNamed(const std::string& dn, const std::string& name) const {
        const auto object = mObjects.find(dn);
        return object != mObjects.end() && object->second.attributes.count(name) != 0 &&
               object->second.contradicted.count(name) == 0;
    }

    bool names(const std::string& dn, const std::string& name, const std::string& target) const {
        const Dns dns = dnsOf(mObjects.at(dn).attributes.at(name));
        return std::find(dns.begin(), dns.end(), target) != dns.end();
    }

    bool named(const std::string& dn, const std::string& name, const std::string& target) const {
        const Dns dns = dnsOf(valueBefore(dn, name));
        return std::find(dns.begin(), dns.end(), target) != dns.end();
    }

    void settleAssociations() {
        std::map<std::pair<std::string, std::string>, std::set<std::string>> found;
        for (const BiDirAssociation& association : mModel.biDirAssociations) {
            settlePairs(association, found);
        }
        for (const auto& [dn, attributes] : mExpected.state) {
            for (const AttributeDef& def : classOf(dn).attributes) {
                if (isAssociation(classOf(dn), def.name)) {
                    settleWithoutPartner(dn, def.name, found[{dn, def.name}]);
                }
            }
        }
        for (const auto& [slot, targets] : found) {
            if (targets.empty() || !isThere(slot.first)) {
                continue;
            }
            Dns dns(targets.begin(), targets.end());
            if (said(slot.first, slot.second) == Said::Value) {
                dns = dnsOf(mObjects.at(slot.first).attributes.at(slot.second));
                mExpected.ordered.insert(slot);
            }
            mExpected.state[slot.first][slot.second] = refs(dns);
        }
    }

    template <class Found>
    void settlePairs(const BiDirAssociation& association, Found& found) {
        const auto& [first, second] = association.ends;
        for (const auto& [x, ofX] : mExpected.state) {
            if (classNameOf(x) != mModel.classes[first.moc].name) {
                continue;
            }
            for (const auto& [y, ofY] : mExpected.state) {
                if (classNameOf(y) != mModel.classes[second.moc].name) {
                    continue;
                }
                if (isPair(x, second.name, y, first.name)) {
                    found[{x, second.name}].insert(y);
                    found[{y, first.name}].insert(x);
                }
            }
        }
    }

    bool isPair(const std::string& x, const std::string& xName, const std::string& y,
                const std::string& yName) {
        const Said ofX = said(x, xName, y);
        const Said ofY = said(y, yName, x);
        if (ofX == Said::Value && ofY == Said::Value) {
            const bool forth = names(x, xName, y);
            const bool back = names(y, yName, x);
            if (forth && !back) {
                problem(Kind::Contradiction, x, xName);
            } else if (back && !forth) {
                problem(Kind::Contradiction, y, yName);
            }
            return forth || back;
        }
        if (ofX == Said::Value || ofY == Said::Value) {
            return ofX == Said::Value ? names(x, xName, y) : names(y, yName, x);
        }
        return !(ofX == Said::Nothing && ofY == Said::Nothing) && named(x, xName, y);
    }

    // References to objects that do not exist, or that are of no class of the association.
    void settleWithoutPartner(const std::string& dn, const std::string& name,
                              std::set<std::string>& found) {
        const Said what = said(dn, name);
        if (what == Said::Value) {
            const Dns dns = dnsOf(mObjects.at(dn).attributes.at(name));
            const std::set<std::string> once(dns.begin(), dns.end());
            if (once.size() != dns.size()) {
                problem(Kind::WrongValue, dn, name);
            }
            for (const std::string& target : once) {
                if (isGone(target)) {
                    problem(Kind::DeletedTarget, dn, name);
                }
                if (!isThere(target) || !hasPartner(dn, name, target)) {
                    found.insert(target);
                }
            }
        }
        if (what == Said::Left) {
            for (const std::string& target : dnsOf(valueBefore(dn, name))) {
                const bool stays = isGone(target) ? name == "keeps" : !isThere(target);
                if (stays || (isThere(target) && !hasPartner(dn, name, target))) {
                    found.insert(target);
                }
            }
        }
    }

    bool hasPartner(const std::string& dn, const std::string& name,
                    const std::string& target) const {
        return std::any_of(
            mModel.biDirAssociations.begin(), mModel.biDirAssociations.end(),
            [&](const BiDirAssociation& association) {
                const auto fits = [&](const AssociationEnd& near, const AssociationEnd& far) {
                    return mModel.classes[near.moc].name == classNameOf(dn) && far.name == name &&
                           mModel.classes[far.moc].name == classNameOf(target);
                };
                return fits(association.ends[0], association.ends[1]) ||
                       fits(association.ends[1], association.ends[0]);
            });
    }

    const Model& mModel;
    const State& mBefore;
    const Wish& mWish;
    std::map<std::string, Object> mObjects;
    std::set<std::string> mTops;
    Expected mExpected;
};

}

Expected expect(const Model& model, const State& before, const Wish& wish) {
    return Oracle(model, before, wish).take();
}

State normalised(const Model& model, State state, const Expected& expected) {
    for (auto& [dn, attributes] : state) {
        const ClassDef& moc = model.classes[*model.findClass(classNameOf(dn))];
        for (auto& [name, value] : attributes) {
            const bool isReference =
                moc.findAttribute(name)->type.kind == ValueKind::MoRef && name != "plan";
            if (isReference && expected.ordered.count({dn, name}) == 0) {
                Dns dns = dnsOf(value);
                std::sort(dns.begin(), dns.end());
                value = refs(dns);
            }
        }
    }
    return state;
}

}
