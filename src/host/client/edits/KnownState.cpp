// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "KnownState.h"

#include "base/DnView.h"
#include "client/DnResolver.h"

namespace OrvHost {

KnownState::Object& KnownState::object(const std::string& dn) {
    const auto [place, isNew] = mObjects.try_emplace(dn);
    // Iterators do not outlive the entries of the parents, which findClass adds; references do.
    Object& known = place->second;
    if (isNew) {
        throwIfCancelled();
        known.moc = findClass(dn);
    }
    return known;
}

void KnownState::throwIfCancelled() const {
    if (mToken != nullptr) {
        mToken->throwIfCancelled();
    }
}

// Objects of one wish share most of their DNs, so the class of the parent is known already.
const ClassDef* KnownState::findClass(const std::string& dn) {
    const std::string parent = parentOf(dn);
    if (parent.empty()) {
        return DnResolver(mModel).classOf(dn);
    }
    const ClassDef* parentMoc = object(parent).moc;
    const DnStep step = DnView(dn).last();
    const auto moc = mModel.findClass(step.type());
    const bool isPossible = parentMoc != nullptr && isNamingStep(step) && moc &&
                            mModel.classes[*moc].mayStandUnder(indexOf(*parentMoc));
    return isPossible ? &mModel.classes[*moc] : nullptr;
}

const ClassDef* KnownState::classOf(const std::string& dn) {
    return object(dn).moc;
}

bool KnownState::exists(const std::string& dn) {
    Object& known = object(dn);
    if (!known.exists) {
        known.exists = known.moc != nullptr && mBefore.exists(dn);
    }
    return *known.exists;
}

const AttributeValue& KnownState::value(const std::string& dn, const std::string& attribute) {
    static const AttributeValue kNone;
    if (!exists(dn)) {
        return kNone;
    }
    Object& known = object(dn);
    const auto index = known.moc->findAttributeIndex(attribute);
    if (!index) {
        return kNone;
    }
    if (!known.values) {
        known.values = mBefore.attributes(dn, *known.moc);
    }
    return (*known.values)[*index];
}

std::vector<std::string> KnownState::children(const std::string& dn) {
    const DnResolver resolver(mModel);
    std::vector<std::string> dns;
    for (const std::string& className : resolver.childClasses(dn.empty() ? nullptr : classOf(dn))) {
        for (const std::string& name : mBefore.children(dn, className)) {
            dns.push_back(DnView(dn).child(className, name));
            object(dns.back()).exists = true;
        }
    }
    return dns;
}

std::string parentOf(const std::string& dn) {
    return std::string(DnView(dn).parent().text());
}

}
