// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ChoiceCases.h"

#include <libyang/libyang.h>

#include <algorithm>

namespace OrvHost {

namespace {

bool isChoiceOrCase(const lysc_node* node) {
    return node != nullptr && (node->nodetype & (LYS_CHOICE | LYS_CASE)) != 0;
}

/// The case of \p choice that \p node is in, also through choices inside it; null if in none.
const lysc_node* caseIn(const lysc_node* choice, const lysc_node* node) {
    for (const lysc_node* around = node->parent; isChoiceOrCase(around); around = around->parent) {
        if (around->parent == choice) {
            return around;
        }
    }
    return nullptr;
}

/// An element without an operation that only leads to others sets what these set.
bool setsSomething(const lyd_node* element, EditOperation operation) {
    if (operation != EditOperation::None) {
        return !takesAway(operation);
    }
    for (const lyd_node* child = lyd_child(element); child != nullptr; child = child->next) {
        if (setsSomething(child, ownOperation(child).value_or(EditOperation::None))) {
            return true;
        }
    }
    return false;
}

}

const lysc_node* choiceBetween(const lysc_node* one, const lysc_node* other) {
    for (const lysc_node* around = one->parent; isChoiceOrCase(around); around = around->parent) {
        if (around->nodetype != LYS_CHOICE) {
            continue;
        }
        const lysc_node* otherCase = caseIn(around, other);
        if (otherCase != nullptr && otherCase != caseIn(around, one)) {
            return around;
        }
    }
    return nullptr;
}

void TakenCases::add(const lyd_node* element, EditOperation operation, const lysc_node* node) {
    if (isChoiceOrCase(node->parent) && setsSomething(element, operation)) {
        mTaken.emplace(node, element);
    }
}

const lyd_node* TakenCases::secondCase() const {
    for (const auto& [node, element] : mTaken) {
        if (exclude(node)) {
            return element;
        }
    }
    return nullptr;
}

bool TakenCases::exclude(const lysc_node* node) const {
    return std::any_of(mTaken.begin(), mTaken.end(), [node](const auto& taken) {
        return choiceBetween(taken.first, node) != nullptr;
    });
}

}
