// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AttributeResolver.h"

#include "model/ValueCheck.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace OrvHost {

bool isUsableName(std::string_view name) {
    constexpr std::string_view kForbidden = ",=+\"\\<>; ";
    const auto isForbidden = [&](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte < 0x20 || byte == 0x7f || kForbidden.find(character) != std::string_view::npos;
    };
    return !name.empty() && std::none_of(name.begin(), name.end(), isForbidden);
}

AttributeDef AttributeResolver::resolve(const AttributeDraft& draft, const std::string& subject,
                                        const SourcePosition& fallback) {
    AttributeDef def = draft.def;
    if (def.source.file.empty()) {
        def.source = fallback;
    }
    if (!isUsableName(def.name)) {
        mProblems.add(def.source, {subject, ": \"", def.name,
                                   "\" cannot be a name: expected a text without blanks, control "
                                   "characters and , = + \" \\ < > ;"});
    }
    mProblems.checkBounds(def.source, subject, def.multiplicity);
    checkEnumerators(def, subject);
    resolveTargets(draft, subject, def);
    if (!draft.members.empty() && def.type.kind != ValueKind::Struct) {
        mProblems.add(def.source, {subject, ": only a struct has members, this is a ",
                                   kindName(def.type.kind), "."});
    }
    def.type.members = resolveAll(draft.members, subject + ".", def.source);
    checkDefault(def, subject);
    return def;
}

std::vector<AttributeDef> AttributeResolver::resolveAll(const std::vector<AttributeDraft>& drafts,
                                                        const std::string& prefix,
                                                        const SourcePosition& fallback) {
    std::vector<AttributeDef> all;
    std::unordered_set<std::string> names;
    for (const AttributeDraft& draft : drafts) {
        const std::string subject = prefix + draft.def.name;
        all.push_back(resolve(draft, subject, fallback));
        if (!names.insert(draft.def.name).second) {
            mProblems.add(all.back().source, {subject, " is defined more than once."});
        }
    }
    return all;
}

void AttributeResolver::resolveTargets(const AttributeDraft& draft, const std::string& subject,
                                       AttributeDef& def) {
    if (!draft.targets.empty() && def.type.kind != ValueKind::MoRef) {
        mProblems.add(def.source, {subject, ": only a reference has target classes, this is a ",
                                   kindName(def.type.kind), "."});
    }
    for (const std::string& target : draft.targets) {
        const auto index = mModel.findClass(target);
        if (index) {
            def.type.targets.push_back(*index);
        } else {
            mProblems.add(def.source, {subject, ": the target class ", target,
                                       " does not exist in the model."});
        }
    }
}

void AttributeResolver::checkEnumerators(const AttributeDef& def, const std::string& subject) {
    const std::vector<std::string>& names = def.type.enumerators;
    if (def.type.kind != ValueKind::Enumeration) {
        if (!names.empty()) {
            mProblems.add(def.source, {subject, ": only an enumeration has enumerators, this is a ",
                                       kindName(def.type.kind), "."});
        }
        return;
    }
    if (names.empty()) {
        mProblems.add(def.source, {subject, ": the enumeration has no names to choose from."});
    }
    std::unordered_set<std::string> seen;
    for (const std::string& name : names) {
        if (!seen.insert(name).second) {
            mProblems.add(def.source,
                          {subject, ": the enumerator ", name, " is there more than once."});
        }
    }
}

void AttributeResolver::checkDefault(const AttributeDef& def, const std::string& subject) {
    if (!def.defaultValue) {
        return;
    }
    const std::string reason = whyRefused(def, *def.defaultValue);
    if (!reason.empty()) {
        mProblems.add(def.source, {subject, ": the default does not fit: ", reason, "."});
    }
}

}
