// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_RULECHECK_H
#define ORV_HOST_MODEL_RULECHECK_H

#include "Value.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// \file
/// Rules about objects that the model itself does not represent, such as conditions in the language
/// of its modules. The host asks a RuleCheck at the validation of a transaction and for data at its
/// start; who made the model implements it.

namespace OrvHost {

/// The state that rules are checked on: all objects, as a transaction would leave them. All DNs are
/// internal ones.
class ObjectView {
public:
    virtual ~ObjectView() = default;

    virtual bool exists(const std::string& dn) const = 0;
    /// The values that were set, without the naming attribute and without defaults. The object
    /// must exist.
    virtual std::vector<NamedValue> valuesOf(const std::string& dn) const = 0;
    /// The names of the objects of one class under one parent, which must exist; at the top level
    /// if \p parentDn is empty.
    virtual std::vector<std::string> namesOf(const std::string& parentDn,
                                             const std::string& className) const = 0;
};

/// An object that a transaction has changed.
struct TouchedObject {
    enum class Kind : std::uint8_t { Deleted, Created, Changed };

    std::string dn;
    Kind kind = Kind::Changed;
    std::vector<std::string> attributes; ///< those whose values differ
};

/// An object that does not follow a rule.
struct RuleViolation {
    std::string dn;        ///< internal; empty: the top level
    std::string attribute; ///< a member of a struct as "box/member", of a list as "box[2]/member";
                           ///< empty: the object itself
    std::string text;      ///< what is wrong, or the rule's own message
    std::string tag;       ///< the rule's own word for programs (error-app-tag); may be empty
};

/// A violation as one message: "DN: attribute 'NAME': TEXT (error-app-tag TAG)".
std::string toText(const RuleViolation& violation);

/// What a check has cost.
struct RuleCost {
    std::size_t objects = 0; ///< that were looked at
    std::chrono::microseconds time{0};
};

struct RuleReport {
    std::vector<RuleViolation> violations; ///< all of them
    RuleCost cost;
};

/// Checks rules. Any number of threads may use one object.
class RuleCheck {
public:
    virtual ~RuleCheck() = default;

    /// Checks the rules that the touched objects can have broken, those of other objects included.
    virtual RuleReport check(const ObjectView& view,
                             const std::vector<TouchedObject>& touched) const = 0;
    /// Checks all rules of all objects.
    virtual RuleReport checkAll(const ObjectView& view) const = 0;
};

}

#endif
