// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RuleJudge.h"

#include "base/Counted.h"
#include "yang/schema/AttributeReader.h"
#include "yang/schema/ClassNodes.h"
#include "yang/source/YangContext.h"
#include "yang/types/TypeFacts.h"

#include <libyang/plugins_types.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <utility>

namespace OrvHost {
namespace {

constexpr const char* kMustTag = "must-violation";
constexpr const char* kUniqueTag = "data-not-unique";
constexpr const char* kTargetTag = "instance-required";

std::vector<lyd_node*> childrenAt(const lyd_node* parent, const lysc_node* schema,
                                  lyd_node* firstAtTop) {
    std::vector<lyd_node*> found;
    lyd_node* child = parent == nullptr ? firstAtTop : lyd_child(parent);
    for (; child != nullptr; child = child->next) {
        if (child->schema == schema) {
            found.push_back(child);
        }
    }
    return found;
}

bool isSet(const lyd_node* node) {
    return (node->flags & LYD_DEFAULT) == 0;
}

bool isInside(const lysc_node* node, const lysc_node* choiceOrCase) {
    for (node = node->parent; node != nullptr && (node->nodetype & (LYS_CHOICE | LYS_CASE)) != 0;
         node = node->parent) {
        if (node == choiceOrCase) {
            return true;
        }
    }
    return false;
}

/// True if something in that choice or case has a value.
bool isTaken(const lyd_node* parent, const lysc_node* choiceOrCase) {
    for (const lyd_node* child = lyd_child(parent); child != nullptr; child = child->next) {
        if (isSet(child) && isInside(child->schema, choiceOrCase)) {
            return true;
        }
    }
    return false;
}

/// True if the node is in no case, or in one that is taken.
bool isDue(const lyd_node* parent, const lysc_node* node) {
    return node->parent == nullptr || node->parent->nodetype != LYS_CASE ||
           isTaken(parent, node->parent);
}

std::string quoted(const Condition& condition) {
    return std::string("the condition \"") + condition.expression.text() + "\"";
}

/// The conditions of a rule as one text.
std::string conditionsOf(const Rule& rule) {
    std::string text;
    for (const Condition& condition : rule.conditions) {
        text += (text.empty() ? "" : " and ") + quoted(condition);
    }
    return text + (rule.conditions.size() > 1 ? " are true" : " is true");
}

const lyd_value& valueOf(const lyd_node* leaf) {
    return reinterpret_cast<const lyd_node_term*>(leaf)->value;
}

/// The node below an entry of a list that `unique` names, through containers; null if there is
/// none.
const lyd_node* findBelow(const lyd_node* entry, const lysc_node* schema) {
    std::vector<const lysc_node*> path;
    for (; schema != entry->schema; schema = lysc_data_parent(schema)) {
        path.push_back(schema);
    }
    const lyd_node* found = entry;
    for (auto next = path.rbegin(); next != path.rend() && found != nullptr; ++next) {
        const std::vector<lyd_node*> children = childrenAt(found, *next, nullptr);
        found = children.empty() ? nullptr : children.front();
    }
    return found;
}

}

void RuleJudge::judge(const Rule& rule, const std::string& dn) {
    lyd_node* object = dn.empty() ? nullptr : mTree.find(dn);
    if (object == nullptr && !dn.empty()) {
        return;
    }
    if (rule.owner != nullptr && rule.node == rule.owner->list) {
        if (rule.kind == Rule::Kind::Must) {
            judgeMust(rule, object);
        } else {
            judgeWhen(rule, lyd_parent(object), {object});
        }
        return;
    }
    std::vector<lyd_node*> parents{object};
    for (const lysc_node* step : rule.path) {
        std::vector<lyd_node*> next;
        for (const lyd_node* parent : parents) {
            const std::vector<lyd_node*> found = childrenAt(parent, step, mTree.first());
            next.insert(next.end(), found.begin(), found.end());
        }
        parents = std::move(next);
    }
    for (lyd_node* parent : parents) {
        const std::vector<lyd_node*> found = childrenAt(parent, rule.node, mTree.first());
        switch (rule.kind) {
        case Rule::Kind::When:
            judgeWhen(rule, parent, found);
            break;
        case Rule::Kind::Choice:
            judgeChoice(rule, parent);
            break;
        case Rule::Kind::Count:
            judgeCount(rule, parent);
            break;
        case Rule::Kind::Unique:
            judgeUnique(rule, found);
            break;
        case Rule::Kind::Distinct:
            judgeDistinct(found);
            break;
        case Rule::Kind::Must:
            std::for_each(found.begin(), found.end(), [&](lyd_node* n) { judgeMust(rule, n); });
            break;
        case Rule::Kind::Leafref:
        case Rule::Kind::Instance:
            std::for_each(found.begin(), found.end(), [&](lyd_node* n) { judgeTarget(rule, n); });
            break;
        }
    }
}

void RuleJudge::judgeWhen(const Rule& rule, lyd_node* parent, const std::vector<lyd_node*>& found) {
    bool isThere = false;
    for (lyd_node* node : found) {
        if (!isSet(node)) {
            continue;
        }
        isThere = true;
        if (const Condition* wrong = firstFalse(rule, parent, node)) {
            const bool isObject = mSchema.objectAt(node->schema) != nullptr;
            add(node, (isObject ? "it exists although " : "it has a value although ") +
                          quoted(*wrong) + " is false");
            return;
        }
    }
    if (!isThere && rule.isDemanded && isDue(parent, rule.node) &&
        firstFalse(rule, parent, nullptr) == nullptr) {
        addAbsent(parent, nameOf(rule.node),
                  "it is mandatory and has no value; " + conditionsOf(rule));
    }
}

void RuleJudge::judgeChoice(const Rule& rule, lyd_node* parent) {
    if (!isTaken(parent, rule.node) && isDue(parent, rule.node) &&
        firstFalse(rule, parent, nullptr) == nullptr) {
        addAbsent(parent, "",
                  std::string("the choice '") + rule.node->name +
                      "' is mandatory and no case of it has a value; " + conditionsOf(rule));
    }
}

void RuleJudge::judgeCount(const Rule& rule, lyd_node* parent) {
    const Bounds bounds = multiplicityOf(rule.node);
    const std::size_t count = mView.namesOf(mTree.dnOf(parent), rule.counted->className).size();
    if (static_cast<std::int64_t>(count) < bounds.lower &&
        firstFalse(rule, parent, nullptr) == nullptr) {
        addAbsent(parent, "",
                  (count == 1 ? "there is " : "there are ") + counted(count, "object") +
                      " of class '" + rule.counted->className + "' under it, expected " +
                      toText(bounds) + "; " + conditionsOf(rule));
    }
}

void RuleJudge::judgeMust(const Rule& rule, lyd_node* node) {
    const lysc_must& must = *rule.must;
    const Expression expression{must.cond, must.prefixes, rule.node->module, rule.node};
    if (isTrue(expression, node)) {
        return;
    }
    add(node,
        must.emsg != nullptr ? must.emsg
                             : std::string("the condition \"") + expression.text() + "\" is false",
        must.eapptag != nullptr ? must.eapptag : kMustTag);
}

void RuleJudge::judgeUnique(const Rule& rule, const std::vector<lyd_node*>& entries) {
    std::string names;
    for (const lysc_node* node : rule.together) {
        names += (names.empty() ? "'" : ", '") + std::string(node->name) + "'";
    }
    std::map<std::vector<std::string>, const lyd_node*> known;
    for (const lyd_node* entry : entries) {
        std::vector<std::string> values;
        for (const lysc_node* node : rule.together) {
            if (const lyd_node* found = findBelow(entry, node)) {
                values.emplace_back(lyd_get_value(found));
            }
        }
        if (values.size() < rule.together.size()) {
            continue; // what is not there is equal to nothing
        }
        const auto [first, isNew] = known.emplace(std::move(values), entry);
        if (!isNew) {
            const bool isObject = mSchema.objectAt(entry->schema) != nullptr;
            add(entry,
                "its " + names + " must differ from that of " +
                    (isObject ? mTree.dnOf(first->second) : attributeOf(first->second)),
                kUniqueTag);
        }
    }
}

void RuleJudge::judgeTarget(const Rule& rule, lyd_node* node) {
    const lyd_value& value = valueOf(node);
    lyd_node* target = nullptr;
    if (rule.kind == Rule::Kind::Instance) {
        lyd_find_target(value.target, mTree.first(), &target);
    } else {
        char* message = nullptr;
        lyd_value copy = value;
        lyplg_type_resolve_leafref(as<lysc_type_leafref>(typeOfLeaf(node->schema)), node, &copy,
                                   mTree.first(), &target, &message);
        std::free(message); // NOLINT(cppcoreguidelines-no-malloc)
    }
    mSchema.context().takeMessages();
    if (target == nullptr) {
        const std::string place =
            rule.kind == Rule::Kind::Instance
                ? ""
                : std::string(" at ") +
                      lyxp_get_expr(as<lysc_type_leafref>(typeOfLeaf(node->schema))->path);
        add(node, std::string("\"") + lyd_get_value(node) + "\" does not exist" + place,
            kTargetTag);
    }
}

void RuleJudge::judgeDistinct(const std::vector<lyd_node*>& values) {
    std::set<std::string> known;
    for (const lyd_node* value : values) {
        if (!known.insert(lyd_get_value(value)).second) {
            add(value, std::string("the value \"") + lyd_get_value(value) + "\" is there twice");
        }
    }
}

/// An expression that cannot be evaluated is false.
bool RuleJudge::isTrue(const Expression& expression, lyd_node* context) {
    ly_bool result = 0;
    const LY_ERR code =
        lyd_eval_xpath3(context, expression.module, expression.text(), LY_VALUE_SCHEMA_RESOLVED,
                        const_cast<lysc_prefix*>(expression.prefixes), // NOLINT
                        nullptr, &result);
    mSchema.context().takeMessages();
    return code == LY_SUCCESS && result != 0;
}

const Condition* RuleJudge::firstFalse(const Rule& rule, lyd_node* parent, lyd_node* node) {
    lyd_node* standIn = nullptr; // for an absent node that a condition starts from
    const Condition* found = nullptr;
    for (const Condition& condition : rule.conditions) {
        lyd_node* context = node;
        if (condition.ascent == 0 && node == nullptr) {
            if (standIn == nullptr) {
                lyd_new_opaq(parent, nullptr, rule.node->name, nullptr, nullptr,
                             rule.node->module->name, &standIn);
            }
            context = standIn;
        } else if (condition.ascent > 0) {
            context = parent;
            for (std::size_t up = 1; up < condition.ascent; ++up) {
                context = lyd_parent(context);
            }
        }
        if (!isTrue(condition.expression, context)) {
            found = &condition;
            break;
        }
    }
    lyd_free_tree(standIn);
    return found;
}

void RuleJudge::add(const lyd_node* node, std::string text, std::string tag) {
    mViolations.push_back({mTree.dnOf(node), attributeOf(node), std::move(text), std::move(tag)});
}

void RuleJudge::addAbsent(const lyd_node* parent, const std::string& name, std::string text) {
    std::string attribute = attributeOf(parent);
    attribute += (attribute.empty() || name.empty() ? "" : "/") + name;
    mViolations.push_back({mTree.dnOf(parent), std::move(attribute), std::move(text), {}});
}

std::string RuleJudge::nameOf(const lysc_node* node) const {
    const ValueShape* value = mSchema.valueAt(node);
    return value != nullptr ? value->name : node->name;
}

/// As RuleViolation has it; empty for an object.
std::string RuleJudge::attributeOf(const lyd_node* node) const {
    std::string attribute;
    for (; node != nullptr && mSchema.objectAt(node->schema) == nullptr; node = lyd_parent(node)) {
        if (mSchema.isTransparent(node->schema)) {
            continue;
        }
        std::string step = nameOf(node->schema);
        if (node->schema->nodetype == LYS_LIST) {
            step.append("[").append(std::to_string(lyd_list_pos(node))).append("]");
        }
        attribute = step.append(attribute.empty() ? "" : "/").append(attribute);
    }
    return attribute;
}

}
