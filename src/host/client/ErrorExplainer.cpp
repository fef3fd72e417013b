// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ErrorExplainer.h"

#include "ClientSession.h"
#include "DnResolver.h"
#include "MeIdTranslator.h"
#include "base/DnView.h"
#include "base/Join.h"
#include "base/Suggestion.h"
#include "model/DnForm.h"

#include <algorithm>
#include <cstring>

namespace OrvHost {

namespace {

constexpr const char* kIdAttribute = "networkManagedElementId";
constexpr std::size_t kSiblingsShown = 10;

}

std::vector<std::string> actionNames(const ClassDef& moc) {
    std::vector<std::string> names;
    for (const ActionDef& action : moc.actions) {
        names.push_back(action.name);
    }
    return names;
}

std::string ErrorExplainer::explain(const OperationError& error) {
    const OperationSubject& subject = error.subject();
    const ClassDef* moc = nullptr;
    if (!subject.dn.empty()) {
        std::string problem = DnResolver(mSession.model()).whyNoDn(subject.dn, &moc);
        if (!problem.empty()) {
            return problem;
        }
        std::string missing = explainMissingObject(shortDn(mSession.model(), subject.dn));
        if (!missing.empty()) {
            return missing;
        }
    } else if (subject.className.empty()) {
        return "an empty DN names no object";
    }
    if (!subject.className.empty()) {
        std::string problem = DnResolver(mSession.model()).whyNotUnder(moc, subject.className);
        if (!problem.empty()) {
            return problem;
        }
        moc = &mSession.model().classes[*mSession.model().findClass(subject.className)];
    }
    std::string problem = moc != nullptr ? explainAttributes(*moc, subject.attributes) : "";
    if (problem.empty() && moc != nullptr && !subject.action.empty()) {
        problem = explainAction(*moc, subject.action);
    }
    return problem.empty() ? explainCode(error) : problem;
}

std::string ErrorExplainer::explainAction(const ClassDef& moc, const std::string& action) const {
    const std::vector<std::string> expected = actionNames(moc);
    return moc.findAction(action) != nullptr
               ? std::string()
               : "class " + moc.name + " has no action " + action +
                     "; its actions: " + enumerate(expected) + "." + didYouMean(action, expected);
}

// The last message of the router is about the request itself. Earlier messages can be about calls
// that the component made itself.
std::string ErrorExplainer::explainCode(const OperationError& error) const {
    for (auto message = error.messages().rbegin(); message != error.messages().rend(); ++message) {
        if (message->kind == ThreadContext::Explanation) {
            return inClientsWords(message->text);
        }
    }
    const auto& attributes = error.subject().attributes;
    const bool isIdRefused =
        (error.code() == OrvValidationFailed || error.code() == OrvInvalidArgument) &&
        std::find(attributes.begin(), attributes.end(), kIdAttribute) != attributes.end();
    return isIdRefused ? joined({kIdAttribute,
                                 " must be fit to name an object: no control characters, none of "
                                 ", = + \" \\ < > ; and no space at either end"})
                       : std::string();
}

std::string ErrorExplainer::inClientsWords(const std::string& text) const {
    const std::string internal = joined({kRootClass, "=", kRootName});
    const std::string external = Orv::MeIdTranslator::instance()->toExternalDn(internal);
    std::string result = mSession.transactions().withNames(text);
    std::size_t at = result.find(internal);
    while (!external.empty() && at != std::string::npos) {
        const std::size_t end = at + internal.size();
        const bool isWhole = end == result.size() || std::strchr(",.:' \"", result[end]) != nullptr;
        if (isWhole) {
            result.replace(at, internal.size(), external);
        }
        at = result.find(internal, at + (isWhole ? external.size() : internal.size()));
    }
    return result;
}

std::string ErrorExplainer::explainAttributes(const ClassDef& moc,
                                              const std::vector<std::string>& attributes) const {
    const std::vector<std::string> expected = attributeNames(moc);
    for (const std::string& attribute : attributes) {
        if (moc.findAttribute(attribute) == nullptr) {
            return "class " + moc.name + " has no attribute " + attribute +
                   "; its attributes: " + enumerate(expected) + "." +
                   didYouMean(attribute, expected);
        }
    }
    return {};
}

// From the top down, so that the first missing object is the one that is reported.
std::string ErrorExplainer::explainMissingObject(const std::string& dn) {
    std::string parent;
    for (const DnStep step : DnView(dn).steps()) {
        const std::string current = DnView(parent).child(step.type(), step.value());
        const bool exists = mSession.read(
            [&](unsigned long txHandle) { return mSession.client().exists(txHandle, current); });
        if (!exists) {
            return "there is no object " + current + siblings(parent, std::string(step.type()));
        }
        parent = current;
    }
    return {};
}

std::string ErrorExplainer::siblings(const std::string& parent, const std::string& className) {
    if (parent.empty() && className != kRootClass) {
        return "; the lists of the top level show all objects under one name, so name this one by "
               "its own DN";
    }
    std::vector<std::string> names;
    mSession.read([&](unsigned long txHandle) {
        mSession.client().forEachChild(txHandle, parent, className, [&](const std::string& name) {
            names.push_back(name);
            return names.size() <= kSiblingsShown;
        });
    });
    const std::string where = parent.empty() ? "at the top level" : "under " + parent;
    if (names.empty()) {
        return "; there is none of class " + className + " " + where;
    }
    const bool isCut = names.size() > kSiblingsShown;
    names.resize(std::min(names.size(), kSiblingsShown));
    return "; of class " + className + " " + where + ": " + enumerate(names) +
           (isCut ? ", and more" : "");
}

}
