// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RuleReader.h"

#include "yang/schema/AttributeReader.h"
#include "yang/schema/ChoiceReader.h"
#include "yang/types/TypeFacts.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace OrvHost {
namespace {

constexpr const char* kOtherObjects = "it asks about other objects";

bool isState(const lysc_node* node) {
    return (node->flags & LYS_CONFIG_R) != 0;
}

bool isLeaf(const lysc_node* node) {
    return (node->nodetype & (LYS_LEAF | LYS_LEAFLIST)) != 0;
}

const lysc_node_list* asList(const lysc_node* node) {
    return reinterpret_cast<const lysc_node_list*>(node);
}

bool hasDefault(const lysc_node* node) {
    switch (node->nodetype) {
    case LYS_LEAF:
        return reinterpret_cast<const lysc_node_leaf*>(node)->dflt != nullptr;
    case LYS_LEAFLIST:
        return reinterpret_cast<const lysc_node_leaflist*>(node)->dflts != nullptr;
    default:
        return false;
    }
}

/// The steps up in the data from a node to one above it; nothing if it is not above.
std::optional<std::size_t> ascentTo(const lysc_node* context, const lysc_node* node) {
    for (std::size_t ascent = 0; node != nullptr; ++ascent, node = lysc_data_parent(node)) {
        if (node == context) {
            return ascent;
        }
    }
    return std::nullopt;
}

bool hasLeafrefWithTarget(const lysc_type* type) {
    return type->basetype == LY_TYPE_LEAFREF && as<lysc_type_leafref>(type)->require_instance != 0;
}

bool hasPathWithTarget(const lysc_type* type) {
    return type->basetype == LY_TYPE_INST && as<lysc_type_instanceid>(type)->require_instance != 0;
}

bool hasTargetInUnion(const lysc_type* type) {
    if (type->basetype != LY_TYPE_UNION) {
        return false;
    }
    const auto* types = as<lysc_type_union>(type)->types;
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; i < LY_ARRAY_COUNT(types); ++i) {
        if (hasLeafrefWithTarget(types[i]) || hasPathWithTarget(types[i])) {
            return true;
        }
    }
    return false;
}

}

std::vector<const lysc_node*> pathBelow(const ObjectShape* object, const lysc_node* node) {
    std::vector<const lysc_node*> path;
    const lysc_node* end = object != nullptr ? object->list : nullptr;
    if (node != end) {
        for (node = lysc_data_parent(node); node != end; node = lysc_data_parent(node)) {
            path.push_back(node);
        }
    }
    std::reverse(path.begin(), path.end());
    return path;
}

std::vector<Rule> RuleReader::read(const YangSchema& schema) {
    mSchema = &schema;
    for (const lysc_node* node : mSeen) {
        readNode(node);
    }
    return std::move(mRules);
}

void RuleReader::readNode(const lysc_node* node) {
    readWhen(node);
    readMusts(node);
    if (node->nodetype == LYS_LIST) {
        readUniques(node);
        readKeys(node);
    }
    if (isLeaf(node)) {
        readTarget(node);
    }
    readDistinct(node);
}

/// True if the node is an object, or an attribute or a part of one.
bool RuleReader::isPlaced(const lysc_node* node) const {
    const ObjectShape* object = enclosingObject(*mSchema, node);
    return object != nullptr && (node == object->list || object->isKey(node) ||
                                 mSchema->isTransparent(node) || mSchema->valueAt(node) != nullptr);
}

/// Why no rule about the node can be evaluated, whatever it says; empty if one can.
std::string RuleReader::whyNot(const lysc_node* node) const {
    if (!isPlaced(node)) {
        return "it does not belong to an object";
    }
    return isState(node) ? "it is about state, which only the system gives" : "";
}

/// The reach of an expression of a rule about the node.
Reach RuleReader::reachFor(const lysc_node* node, const Expression& expression) const {
    Reach reach;
    reach.whyNot = whyNot(node);
    return reach.whyNot.empty() ? reachOf(*mSchema, expression) : reach;
}

Rule RuleReader::ruleOf(Rule::Kind kind, const lysc_node* node) const {
    Rule rule;
    rule.kind = kind;
    rule.owner = enclosingObject(*mSchema, node);
    rule.node = node;
    rule.path = pathBelow(rule.owner, node);
    if (rule.owner != nullptr) {
        const ValueShape* attribute = attributeAt(*mSchema, node, *rule.owner);
        rule.attribute = attribute != nullptr ? attribute->name : "";
    }
    return rule;
}

void RuleReader::note(const lysc_node* carrier, const lysc_node* node, const std::string& what) {
    mNotes.count(what, mLocator.of(carrier), pathOf(node));
}

/// Adds the conditions that the carrier, which is the node or around it, sets for the node. False
/// if one of them cannot be evaluated, which is noted.
bool RuleReader::addConditions(const lysc_node* carrier, const lysc_node* node,
                               std::vector<Condition>& conditions, Reach& reach) {
    bool isComplete = true;
    lysc_when** const whens = lysc_node_when(carrier);
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; i < LY_ARRAY_COUNT(whens); ++i) {
        const Expression expression{whens[i]->cond, whens[i]->prefixes, carrier->module,
                                    whens[i]->context};
        const Reach found = reachFor(node, expression);
        const auto ascent = ascentTo(expression.context, node);
        std::string reason = found.whyNot;
        if (reason.empty() && (!found.isOwn || !ascent)) {
            reason = kOtherObjects;
        }
        if (!reason.empty()) {
            isComplete = false;
            note(carrier, node,
                 std::string("`when \"") + expression.text() + "\"` is not evaluated: " + reason +
                     "; what it guards can always be there and is never demanded");
            continue;
        }
        conditions.push_back({expression, *ascent});
        reach.addReads(found);
    }
    return isComplete;
}

void RuleReader::readWhen(const lysc_node* node) {
    const bool isTransparent = mSchema->isTransparent(node);
    if (isTransparent && isPlaced(node)) {
        return; // with each attribute in it
    }
    Rule rule = ruleOf(Rule::Kind::When, node);
    bool isComplete = addConditions(node, node, rule.conditions, rule.reach);
    std::vector<const lysc_node*> choices;
    const lysc_node* around = node->parent;
    for (; around != nullptr; around = around->parent) {
        const bool isChoice = around->nodetype == LYS_CHOICE;
        if (!isChoice && around->nodetype != LYS_CASE &&
            !(mSchema->isTransparent(around) && isPlaced(around))) {
            break;
        }
        isComplete = addConditions(around, node, rule.conditions, rule.reach) && isComplete;
        if (isChoice) {
            choices.push_back(around);
        }
    }
    // What cannot be evaluated has been noted with this node.
    if (isComplete) {
        std::for_each(choices.begin(), choices.end(),
                      [&](const lysc_node* choice) { readChoice(choice, node); });
    }
    if (rule.conditions.empty()) {
        return;
    }
    const bool isObject = rule.owner != nullptr && node == rule.owner->list;
    if (isObject && isComplete) {
        readCount(node, rule.conditions, rule.reach);
    }
    rule.isDemanded = isComplete && !isObject && !lysc_is_key(node) && !hasDefault(node) &&
                      multiplicityOf(node).lower > 0;
    mRules.push_back(std::move(rule));
}

/// A mandatory choice under conditions of its own, or of the container `attributes` around it.
void RuleReader::readChoice(const lysc_node* choice, const lysc_node* node) {
    const std::vector<const lysc_node*> nodes = nodesOfCases(choice);
    const auto isAttribute = [this](const lysc_node* one) {
        return mSchema->valueAt(one) != nullptr;
    };
    if ((choice->flags & LYS_MAND_TRUE) == 0 ||
        !std::all_of(nodes.begin(), nodes.end(), isAttribute) ||
        std::all_of(nodes.begin(), nodes.end(), isState) || !mChoices.insert(choice).second) {
        return;
    }
    Rule rule = ruleOf(Rule::Kind::Choice, node);
    rule.node = choice;
    bool isComplete = addConditions(choice, node, rule.conditions, rule.reach);
    const lysc_node* parent = lysc_data_parent(choice);
    if (mSchema->isTransparent(parent)) {
        isComplete = addConditions(parent, node, rule.conditions, rule.reach) && isComplete;
    }
    if (isComplete && !rule.conditions.empty()) {
        mRules.push_back(std::move(rule));
    }
}

void RuleReader::readCount(const lysc_node* list, const std::vector<Condition>& conditions,
                           const Reach& reach) {
    const ObjectShape* parent = enclosingObject(*mSchema, list->parent);
    const bool isInCase = list->parent != nullptr && list->parent->nodetype == LYS_CASE;
    if (parent == nullptr || isInCase || isState(list) || asList(list)->min == 0) {
        return;
    }
    Rule rule;
    rule.kind = Rule::Kind::Count;
    rule.owner = parent;
    rule.node = list;
    rule.path = pathBelow(parent, list);
    rule.conditions = conditions;
    rule.reach = reach;
    rule.counted = mSchema->objectAt(list);
    mRules.push_back(std::move(rule));
}

void RuleReader::readMusts(const lysc_node* node) {
    const lysc_must* musts = lysc_node_musts(node);
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; i < LY_ARRAY_COUNT(musts); ++i) {
        if (!mReadsAll) {
            note(node, node, "`must` statements are not evaluated");
            return;
        }
        const Expression expression{musts[i].cond, musts[i].prefixes, node->module, node};
        Rule rule = ruleOf(Rule::Kind::Must, node);
        rule.reach = reachFor(node, expression);
        if (!rule.reach.whyNot.empty()) {
            note(node, node,
                 std::string("`must \"") + expression.text() +
                     "\"` is not evaluated: " + rule.reach.whyNot);
            continue;
        }
        rule.must = &musts[i];
        mRules.push_back(std::move(rule));
    }
}

void RuleReader::readUniques(const lysc_node* node) {
    const auto* uniques = asList(node)->uniques;
    LY_ARRAY_COUNT_TYPE i = 0;
    for (i = 0; i < LY_ARRAY_COUNT(uniques); ++i) {
        if (!mReadsAll) {
            note(node, node, "`unique` statements are not evaluated");
            return;
        }
        const ObjectShape* object = mSchema->objectAt(node);
        const std::string reason = whyNot(node);
        if (!reason.empty()) {
            note(node, node, "`unique` is not evaluated: " + reason);
            return;
        }
        Rule rule = ruleOf(Rule::Kind::Unique, node);
        if (object != nullptr) {
            rule.owner = enclosingObject(*mSchema, node->parent);
            rule.path = pathBelow(rule.owner, node);
            rule.reach.isOwn = false;
            rule.reach.root = rule.owner;
        }
        LY_ARRAY_COUNT_TYPE k = 0;
        for (k = 0; k < LY_ARRAY_COUNT(uniques[i]); ++k) {
            rule.together.push_back(&uniques[i][k]->node);
            if (object != nullptr) {
                rule.reach.addReadOf(*mSchema, rule.together.back());
            }
        }
        mRules.push_back(std::move(rule));
    }
}

/// The keys of structs; those of objects differ always.
void RuleReader::readKeys(const lysc_node* node) {
    if (!mReadsAll || isState(node) || mSchema->objectAt(node) != nullptr || !isPlaced(node)) {
        return;
    }
    Rule rule = ruleOf(Rule::Kind::Unique, node);
    const lysc_node* key = lysc_node_child(node);
    for (; key != nullptr && lysc_is_key(key); key = key->next) {
        rule.together.push_back(key);
    }
    if (!rule.together.empty()) {
        mRules.push_back(std::move(rule));
    }
}

void RuleReader::readTarget(const lysc_node* node) {
    const lysc_type* type = typeOfLeaf(node);
    const bool isLeafref = hasLeafrefWithTarget(type);
    const bool isInUnion = hasTargetInUnion(type);
    if (!isLeafref && !hasPathWithTarget(type) && !isInUnion) {
        return;
    }
    if (!mReadsAll || isInUnion) {
        note(node, node,
             std::string("leafrefs and instance-identifiers") + (isInUnion ? " in a union" : "") +
                 " are values like others: that what they name exists is not checked");
        return;
    }
    Rule rule = ruleOf(isLeafref ? Rule::Kind::Leafref : Rule::Kind::Instance, node);
    if (isLeafref) {
        const auto* leafref = as<lysc_type_leafref>(type);
        rule.reach = reachFor(node, {leafref->path, leafref->prefixes, node->module, node});
    } else {
        rule.reach.whyNot = whyNot(node);
        rule.reach.isOwn = false;
        rule.reach.readsAll = true;
    }
    rule.needsValue = !rule.attribute.empty() && !hasDefault(node);
    if (rule.reach.whyNot.empty()) {
        mRules.push_back(std::move(rule));
    } else {
        note(node, node, "that what the value names exists is not checked: " + rule.reach.whyNot);
    }
}

void RuleReader::readDistinct(const lysc_node* node) {
    if (mReadsAll && node->nodetype == LYS_LEAFLIST && !isState(node) && isPlaced(node)) {
        mRules.push_back(ruleOf(Rule::Kind::Distinct, node));
    }
}

}
