// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DnResolver.h"

#include "DnUtil.h"
#include "MeIdTranslator.h"
#include "Suggestion.h"

#include <algorithm>

namespace OrvHost {

namespace {

WrittenStep writtenStep(const std::string& text) {
    const std::size_t equals = text.find('=');
    WrittenStep step;
    step.text = text;
    step.className = text.substr(0, equals);
    step.value = equals == std::string::npos ? std::string() : text.substr(equals + 1);
    step.isWellFormed = equals != std::string::npos && !step.className.empty() &&
                        Orv::DnUtil::validateMoNamingAttr(step.value.c_str());
    return step;
}

}

std::vector<WrittenStep> writtenSteps(const std::string& dn) {
    std::vector<WrittenStep> steps;
    std::size_t begin = 0;
    while (begin <= dn.size()) {
        const std::size_t comma = std::min(dn.find(',', begin), dn.size());
        steps.push_back(writtenStep(dn.substr(begin, comma - begin)));
        begin = comma + 1;
    }
    return steps;
}

std::string DnResolver::whyNoDn(const std::string& dn, const ClassDef** moc) const {
    *moc = nullptr;
    for (const WrittenStep& step : writtenSteps(dn)) {
        if (!step.isWellFormed) {
            return "'" + step.text + "' in " + dn + " is no step of a DN; expected Class=value";
        }
        std::string problem = whyNotUnder(*moc, step.className);
        if (!problem.empty()) {
            return problem;
        }
        const bool isRoot = *moc == nullptr && step.className == kRootClass;
        if (isRoot && step.value != Orv::MeIdTranslator::instance()->identity()) {
            return std::string(kRootClass) + "=" + step.value +
                   " is not known; clients know it as " + kRootClass + "=" +
                   Orv::MeIdTranslator::instance()->identity();
        }
        *moc = &mModel.classes[*mModel.findClass(step.className)];
    }
    return {};
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
                    : "there is no class " + className) +
           "; classes " + where + ": " + enumerate(expected) + "." +
           didYouMean(className, expected);
}

}
