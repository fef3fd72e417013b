// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Undoing.h"

#include "base/Counted.h"
#include "client/ExternalDn.h"
#include "client/edits/References.h"

#include <algorithm>

namespace OrvHost {

namespace {

constexpr std::size_t kMostShown = 10;

/// The values that a client can set to those before.
std::vector<NamedValue> settable(const ClassDef& moc,
                                 const std::map<std::string, AttributeValue>& before) {
    std::vector<NamedValue> attributes;
    for (const auto& [name, known] : before) {
        const AttributeDef* def = moc.findAttribute(name);
        if (def == nullptr || !def->isWritable || def->isGivenByName()) {
            continue;
        }
        // What must have a value cannot be set to none.
        const bool isDefaulted =
            known.values.empty() && def->multiplicity.lower > 0 && def->defaultValue;
        AttributeValue value = isDefaulted ? *def->defaultValue : known;
        changeReferences(value, externalDn);
        attributes.emplace_back(name, std::move(value));
    }
    return attributes;
}

}

void Undoing::add(const ChangeSet& changes) {
    for (const ObjectChange& change : changes.objects) {
        add(change);
    }
}

void Undoing::add(const ObjectChange& change) {
    const auto [place, isNew] = mFates.try_emplace(change.dn);
    Fate& fate = place->second;
    if (isNew) {
        fate.number = mNext++;
        fate.className = change.className;
        fate.wasThere = change.kind != ObjectChange::Kind::Created;
    }
    fate.isThere = change.kind != ObjectChange::Kind::Deleted;
    if (!fate.wasThere) {
        if (!fate.isThere) {
            mFates.erase(place);
        }
        return;
    }
    for (const AttributeChange& attribute : change.attributes) {
        // The first commit that changes an attribute has what was before.
        fate.before.emplace(attribute.name, attribute.before);
    }
}

std::vector<const std::pair<const std::string, Undoing::Fate>*> Undoing::inOrder() const {
    std::vector<const std::pair<const std::string, Fate>*> order;
    for (const auto& one : mFates) {
        order.push_back(&one);
    }
    std::sort(order.begin(), order.end(), [](const auto* left, const auto* right) {
        return left->second.number < right->second.number;
    });
    return order;
}

std::string Undoing::summary() const {
    std::string text = counted(mFates.size(), "object");
    std::size_t shown = 0;
    for (const auto* one : inOrder()) {
        if (shown == kMostShown) {
            return text + " and others";
        }
        text += (shown++ == 0 ? ": " : ", ") + externalDn(one->first);
    }
    return text;
}

Wish Undoing::wish(const Model& model) const {
    Wish wish;
    wish.repeated = Wish::Repeated::IsWished;
    for (const auto* one : inOrder()) {
        const Fate& fate = one->second;
        const std::string dn = externalDn(one->first);
        if (!fate.wasThere) {
            wish.edits.push_back({EditKind::Remove, dn, {}});
            continue;
        }
        const auto moc = model.findClass(fate.className);
        const EditKind kind = fate.isThere ? EditKind::Set : EditKind::Create;
        wish.edits.push_back(
            {kind,
             dn,
             {{dn, moc ? settable(model.classes[*moc], fate.before) : std::vector<NamedValue>()}}});
    }
    return wish;
}

}
