// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_RULES_RULEJUDGE_H
#define ORV_HOST_YANG_RULES_RULEJUDGE_H

#include "yang/rules/DataTree.h"
#include "yang/schema/Rule.h"

#include <libyang/libyang.h>

#include <string>
#include <vector>

namespace OrvHost {

/// Judges rules on a tree that contains all that they ask about.
class RuleJudge {
public:
    /// All arguments must outlive this object; violations are appended.
    RuleJudge(const YangSchema& schema, const ObjectView& view, const DataTree& tree,
              std::vector<RuleViolation>& violations)
        : mSchema(schema), mView(view), mTree(tree), mViolations(violations) {}

    /// \p dn: the object, which is the rule's owner; empty for the top level.
    void judge(const Rule& rule, const std::string& dn);

private:
    void judgeWhen(const Rule& rule, lyd_node* parent, const std::vector<lyd_node*>& found);
    void judgeChoice(const Rule& rule, lyd_node* parent);
    void judgeCount(const Rule& rule, lyd_node* parent);
    void judgeMust(const Rule& rule, lyd_node* node);
    void judgeUnique(const Rule& rule, const std::vector<lyd_node*>& entries);
    void judgeTarget(const Rule& rule, lyd_node* node);
    void judgeDistinct(const std::vector<lyd_node*>& values);

    bool isTrue(const Expression& expression, lyd_node* context);
    /// The first condition that is false for a node, which can be null, under that parent.
    const Condition* firstFalse(const Rule& rule, lyd_node* parent, lyd_node* node);
    void add(const lyd_node* node, std::string text, std::string tag = {});
    /// For something that is not there, called \p name.
    void addAbsent(const lyd_node* parent, const std::string& name, std::string text);
    std::string attributeOf(const lyd_node* node) const;
    std::string nameOf(const lysc_node* node) const;

    const YangSchema& mSchema;
    const ObjectView& mView;
    const DataTree& mTree;
    std::vector<RuleViolation>& mViolations;
};

}

#endif
