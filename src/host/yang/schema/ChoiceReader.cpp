// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ChoiceReader.h"

#include "yang/schema/ClassNodes.h"

#include <algorithm>
#include <string>
#include <utility>

namespace OrvHost {
namespace {

bool isChoiceOrCase(const lysc_node* node) {
    return (node->nodetype & (LYS_CHOICE | LYS_CASE)) != 0;
}

}

std::vector<const lysc_node*> nodesOfCases(const lysc_node* choice) {
    std::vector<const lysc_node*> nodes;
    for (const lysc_node* child = lysc_node_child(choice); child != nullptr; child = child->next) {
        if (isChoiceOrCase(child)) {
            const std::vector<const lysc_node*> inner = nodesOfCases(child);
            nodes.insert(nodes.end(), inner.begin(), inner.end());
        } else {
            nodes.push_back(child);
        }
    }
    return nodes;
}

bool isConditional(const lysc_node* node) {
    if (lysc_node_when(node) != nullptr) {
        return true;
    }
    return node->parent != nullptr && isChoiceOrCase(node->parent);
}

void ChoiceReader::add(const lysc_node* node, const AttributeDef& def) {
    mAdded.insert(node);
    const bool isRequired = def.multiplicity.lower > 0 && !def.defaultValue && def.isWritable &&
                            lysc_node_when(node) == nullptr;
    bool isDirect = true;
    for (const lysc_node* around = node->parent; around != nullptr && isChoiceOrCase(around);
         around = around->parent) {
        if (around->nodetype == LYS_CASE) {
            addTo(around, def.name, isDirect && isRequired);
            isDirect = false;
        }
    }
}

void ChoiceReader::addTo(const lysc_node* oneCase, const std::string& name, bool isRequired) {
    ChoiceCase& taken = caseOf(oneCase);
    taken.attributes.push_back(name);
    if (isRequired && lysc_node_when(oneCase) == nullptr) {
        taken.required.push_back(name);
    }
}

ChoiceCase& ChoiceReader::caseOf(const lysc_node* oneCase) {
    const lysc_node* node = oneCase->parent;
    auto choice = std::find_if(mChoices.begin(), mChoices.end(),
                               [node](const Choice& known) { return known.node == node; });
    if (choice == mChoices.end()) {
        choice = mChoices.insert(mChoices.end(), Choice{node, {}, {}});
        choice->def.name = node->name;
    }
    std::vector<ChoiceCase>& cases = choice->def.cases;
    const auto known = std::find(choice->cases.begin(), choice->cases.end(), oneCase);
    if (known != choice->cases.end()) {
        return cases[static_cast<std::size_t>(known - choice->cases.begin())];
    }
    // Two modules can each add a case of one name.
    const bool isTaken = std::any_of(cases.begin(), cases.end(), [&](const ChoiceCase& other) {
        return other.name == oneCase->name;
    });
    const bool isDefault = reinterpret_cast<const lysc_node_choice*>(node)->dflt ==
                           reinterpret_cast<const lysc_node_case*>(oneCase);
    choice->cases.push_back(oneCase);
    cases.push_back({(isTaken ? std::string(oneCase->module->name) + ":" : "") + oneCase->name,
                     {},
                     {},
                     isDefault});
    return cases.back();
}

/// One of the cases must be taken, whatever the conditions are, and a client can take it.
bool ChoiceReader::isMandatory(const lysc_node* choice) const {
    const lysc_node* parent = lysc_data_parent(choice);
    const bool isConditional =
        lysc_node_when(choice) != nullptr ||
        (parent != nullptr && isTransparentInClass(parent) && lysc_node_when(parent) != nullptr);
    const std::vector<const lysc_node*> nodes = nodesOfCases(choice);
    const auto isAdded = [this](const lysc_node* node) { return mAdded.count(node) > 0; };
    const auto isState = [](const lysc_node* node) { return (node->flags & LYS_CONFIG_R) != 0; };
    return (choice->flags & LYS_MAND_TRUE) != 0 && !isConditional &&
           std::all_of(nodes.begin(), nodes.end(), isAdded) &&
           !std::all_of(nodes.begin(), nodes.end(), isState);
}

std::vector<ChoiceDef> ChoiceReader::take() && {
    std::vector<ChoiceDef> all;
    for (Choice& choice : mChoices) {
        const lysc_node* node = choice.node;
        choice.def.isMandatory = isMandatory(node);
        if (node->parent != nullptr && node->parent->nodetype == LYS_CASE) {
            choice.def.around = caseOf(node->parent).attributes;
        }
    }
    for (Choice& choice : mChoices) {
        all.push_back(std::move(choice.def));
    }
    return all;
}

}
