// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ReferenceReport.h"

#include <algorithm>

namespace OrvHost {

namespace {

constexpr std::size_t kMostShown = 10;

}

std::string toText(const FoundReference& reference) {
    return reference.dn + " " + reference.attribute + " -> " +
           (reference.target.empty() ? "(an object without a name for clients)" : reference.target);
}

JsonValue toJson(const std::vector<FoundReference>& references) {
    JsonValue documents = JsonValue::array();
    for (const FoundReference& one : references) {
        documents.add({{"dn", one.dn}, {"attribute", one.attribute}, {"target", one.target}});
    }
    return documents;
}

std::string noteOn(const ReferenceHint& hint) {
    if (!hint.problem.empty()) {
        return "note: the references were not looked through: " + hint.problem + "\n";
    }
    const std::vector<FoundReference>& missing = hint.missing;
    if (missing.empty()) {
        return {};
    }
    std::string text = "note: references to objects that do not exist:\n";
    const std::size_t shown = std::min(missing.size(), kMostShown);
    for (std::size_t at = 0; at < shown; ++at) {
        text += "  " + toText(missing[at]) + "\n";
    }
    if (shown < missing.size()) {
        text += "  and " + std::to_string(missing.size() - shown) + " more; 'audit' lists all\n";
    }
    return text;
}

void addHint(JsonValue& document, const ReferenceHint& hint) {
    if (!hint.problem.empty()) {
        document["missing"] = nullptr;
    } else if (!hint.missing.empty()) {
        document["missing"] = toJson(hint.missing);
    }
}

}
