// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DnResolver.h"

#include "DnUtil.h"
#include "MeIdTranslator.h"
#include "base/Suggestion.h"
#include "model/DnForm.h"

#include <algorithm>

namespace OrvHost {

std::vector<std::string> classNames(const Model& model) {
    std::vector<std::string> names;
    for (const ClassDef& moc : model.classes) {
        names.push_back(moc.name);
    }
    return names;
}

bool isNamingStep(const DnStep& step) {
    return step.isValid() && Orv::DnUtil::validateMoNamingAttr(std::string(step.value()).c_str());
}

std::string DnResolver::whyNoDn(const std::string& dn, const ClassDef** moc) const {
    *moc = nullptr;
    const auto noStep = [&](std::string_view text) {
        return "'" + std::string(text) + "' in " + dn + " is no step of a DN; expected Class=value";
    };
    if (dn.empty()) {
        return noStep(dn);
    }
    const std::string asKnown = shortDn(mModel, dn);
    for (const DnStep step : DnView(asKnown).steps()) {
        if (!isNamingStep(step)) {
            return noStep(step.text());
        }
        const std::string className(step.type());
        std::string problem = whyNotUnder(*moc, className);
        if (!problem.empty()) {
            return problem;
        }
        problem = *moc == nullptr ? whyOtherRoot(dn) : "";
        if (!problem.empty()) {
            return problem;
        }
        *moc = &mModel.classes[*mModel.findClass(className)];
    }
    return {};
}

std::string DnResolver::whyOtherRoot(const std::string& dn) const {
    const DnStep root = *DnView(dn).steps().begin();
    const std::string known = Orv::MeIdTranslator::instance()->identity();
    if (root.type() != kRootClass || root.value() == known) {
        return {};
    }
    return std::string(root.text()) + " is not known; clients know it as " + kRootClass + "=" +
           known;
}

const ClassDef* DnResolver::classOf(const std::string& dn) const {
    const ClassDef* moc = nullptr;
    return whyNoDn(dn, &moc).empty() ? moc : nullptr;
}

std::vector<std::string> DnResolver::childClasses(const ClassDef* parent) const {
    std::vector<std::string> names;
    if (parent == nullptr) {
        for (const ClassDef& moc : mModel.classes) {
            if (moc.isTopLevel) {
                names.push_back(moc.name);
            }
        }
        return names;
    }
    for (const ClassIndex child : parent->children) {
        names.push_back(mModel.classes[child].name);
    }
    return names;
}

std::string DnResolver::whyNotUnder(const ClassDef* parent, const std::string& className) const {
    const std::vector<std::string> expected = childClasses(parent);
    if (std::find(expected.begin(), expected.end(), className) != expected.end()) {
        return {};
    }
    const std::string where = parent != nullptr ? "under " + parent->name : "at the top level";
    const bool isKnown = mModel.findClass(className).has_value();
    return (isKnown ? "objects of class " + className + " do not stand " + where
                    : noClass(className, classNames(mModel))) +
           "; classes " + where + ": " + enumerate(expected) + "." +
           didYouMean(className, expected);
}

}
