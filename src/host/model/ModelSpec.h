// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_MODELSPEC_H
#define ORV_HOST_MODEL_MODELSPEC_H

#include "Model.h"

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// \file
/// What a model's author says, with classes and attributes told by name. Nothing is checked here:
/// ModelBuilder::build() checks all of it at once. Every setter returns its object, so that a
/// declaration reads as one sentence; each of the objects is a plain value.

namespace OrvHost {

/// An attribute, a member of a struct, or a parameter. Without further words it holds 0..1 values.
struct AttributeSpec {
    AttributeDef def; ///< but for `type.members` and `type.targets`, which are told below
    std::vector<AttributeSpec> members;
    std::vector<std::string> targets; ///< permitted classes of a reference; empty: any

    AttributeSpec(std::string name, ValueKind kind);

    static AttributeSpec boolean(std::string name);
    static AttributeSpec integer(std::string name);
    static AttributeSpec unsignedInteger(std::string name);
    static AttributeSpec decimal(std::string name);
    static AttributeSpec text(std::string name);
    static AttributeSpec enumeration(std::string name, std::vector<std::string> enumerators);
    static AttributeSpec reference(std::string name, std::vector<std::string> targets = {});
    static AttributeSpec structure(std::string name, std::vector<AttributeSpec> members);

    AttributeSpec& multiplicity(std::int64_t lower, std::int64_t upper);
    /// Exactly one value.
    AttributeSpec& mandatory() { return multiplicity(1, 1); }
    /// Any number of values.
    AttributeSpec& many() { return multiplicity(0, kUnbounded); }
    /// The attribute that names the object: one value, always there.
    AttributeSpec& naming();
    AttributeSpec& readOnly();
    AttributeSpec& defaultsTo(Value value);
    AttributeSpec& defaultsTo(std::vector<Value> values);
    /// See TypeDef::check.
    AttributeSpec& checkedBy(std::function<std::string(const std::string& text)> check);
    AttributeSpec& typeNamed(std::string description);
    AttributeSpec& described(std::string description);
    AttributeSpec& at(SourcePosition source);
};

/// An operation of a class.
struct ActionSpec {
    std::string name;
    std::vector<AttributeSpec> parameters;
    std::optional<AttributeSpec> resultSpec;
    std::string description;

    explicit ActionSpec(std::string actionName) : name(std::move(actionName)) {}

    ActionSpec& parameter(AttributeSpec spec);
    ActionSpec& result(AttributeSpec spec);
    ActionSpec& described(std::string text);
};

/// A managed object class.
struct ClassSpec {
    ClassDef def; ///< but for its attributes, actions and containments, which are told below
    std::vector<AttributeSpec> attributes;
    std::vector<ActionSpec> actions;

    explicit ClassSpec(std::string name);

    /// Its objects may stand without a parent.
    ClassSpec& topLevel();
    /// Adds a text attribute of that name that names the object.
    ClassSpec& key(std::string name);
    ClassSpec& attribute(AttributeSpec spec);
    ClassSpec& action(ActionSpec spec);
    /// How many may stand under one parent.
    ClassSpec& instances(std::int64_t lower, std::int64_t upper);
    ClassSpec& described(std::string description);
    ClassSpec& at(SourcePosition source);
};

/// One reference attribute as an end of an association: the attribute `attribute` of class `owner`
/// may hold DNs of class `target`. All facts belong to this attribute and this target.
struct ReferenceSpec {
    std::string owner;
    std::string attribute;
    std::string target;
    std::string opposite; ///< the attribute of `target` that points back; empty: unidirectional
    std::optional<Bounds> cardinality; ///< number of DNs of class `target` in the attribute
    std::string roleText;              ///< the word for what is counted; empty: `target`
    bool keep = false;
    SourcePosition source;

    ReferenceSpec(std::string ownerName, std::string attributeName)
        : owner(std::move(ownerName)), attribute(std::move(attributeName)) {}

    ReferenceSpec& to(std::string targetName);
    ReferenceSpec& pointedBackBy(std::string attributeName);
    /// Without it, the bounds are those of the attribute if it has one permitted class, and
    /// otherwise 0 to the attribute's upper bound.
    ReferenceSpec& counts(std::int64_t lower, std::int64_t upper);
    ReferenceSpec& role(std::string text);
    /// When an object of `target` is deleted, its DN stays in the attribute.
    ReferenceSpec& keepAtDelete();
    ReferenceSpec& at(SourcePosition position);
};

}

#endif
