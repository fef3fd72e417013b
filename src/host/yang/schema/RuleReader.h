// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_RULEREADER_H
#define ORV_HOST_YANG_SCHEMA_RULEREADER_H

#include "yang/schema/ModelNotes.h"
#include "yang/schema/Rule.h"
#include "yang/source/SourceLocator.h"

#include <libyang/libyang.h>

#include <set>
#include <string>
#include <vector>

namespace OrvHost {

/// Reads the rules of the modules that the model itself does not represent. A `when` is read if it
/// asks only about the object that it stands in and the object's ancestors; the other rules are
/// read on request. What is not read is noted.
class RuleReader {
public:
    RuleReader(const SourceLocator& locator, ModelNotes& notes)
        : mLocator(locator), mNotes(notes) {}

    /// Reads all rules, not only `when`.
    void readAll() { mReadsAll = true; }

    /// Takes a node into account. The notes have the order of these calls.
    void see(const lysc_node* node) { mSeen.push_back(node); }

    /// The rules of the nodes that were seen. The schema must be complete.
    std::vector<Rule> read(const YangSchema& schema);

private:
    void readNode(const lysc_node* node);
    void readWhen(const lysc_node* node);
    void readChoice(const lysc_node* choice, const lysc_node* node);
    void readCount(const lysc_node* list, const std::vector<Condition>& conditions,
                   const Reach& reach);
    void readMusts(const lysc_node* node);
    void readUniques(const lysc_node* node);
    void readKeys(const lysc_node* node);
    void readTarget(const lysc_node* node);
    void readDistinct(const lysc_node* node);

    bool addConditions(const lysc_node* carrier, const lysc_node* node,
                       std::vector<Condition>& conditions, Reach& reach);
    bool isPlaced(const lysc_node* node) const;
    std::string whyNot(const lysc_node* node) const;
    Reach reachFor(const lysc_node* node, const Expression& expression) const;
    Rule ruleOf(Rule::Kind kind, const lysc_node* node) const;
    void note(const lysc_node* carrier, const lysc_node* node, const std::string& what);

    const SourceLocator& mLocator;
    ModelNotes& mNotes;
    bool mReadsAll = false;
    std::vector<const lysc_node*> mSeen;

    const YangSchema* mSchema = nullptr; ///< while rules are read
    std::set<const lysc_node*> mChoices; ///< that were read
    std::vector<Rule> mRules;
};

}

#endif
