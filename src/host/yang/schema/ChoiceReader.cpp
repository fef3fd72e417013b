// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ChoiceReader.h"

#include <algorithm>
#include <string>
#include <utility>

namespace OrvHost {
namespace {

bool isChoiceOrCase(const lysc_node* node) {
    return (node->nodetype & (LYS_CHOICE | LYS_CASE)) != 0;
}

template <class Named>
Named* findNamed(std::vector<Named>& all, const std::string& name) {
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const Named& one) { return one.name == name; });
    return found == all.end() ? nullptr : &*found;
}

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
        choice = mChoices.insert(mChoices.end(), Choice{node, {}});
        choice->def.name = node->name;
    }
    if (ChoiceCase* known = findNamed(choice->def.cases, oneCase->name)) {
        return *known;
    }
    choice->def.cases.push_back({oneCase->name, {}, {}});
    return choice->def.cases.back();
}

/// True if every node of data in the cases was added.
bool ChoiceReader::isComplete(const lysc_node* parent) const {
    for (const lysc_node* child = lysc_node_child(parent); child != nullptr; child = child->next) {
        if (isChoiceOrCase(child) ? !isComplete(child) : mAdded.count(child) == 0) {
            return false;
        }
    }
    return true;
}

std::vector<ChoiceDef> ChoiceReader::take() && {
    std::vector<ChoiceDef> all;
    for (Choice& choice : mChoices) {
        const lysc_node* node = choice.node;
        choice.def.isMandatory = (node->flags & LYS_MAND_TRUE) != 0 &&
                                 (node->flags & LYS_CONFIG_R) == 0 &&
                                 lysc_node_when(node) == nullptr && isComplete(node);
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
