// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_BUILDING_MODELDRAFT_H
#define ORV_HOST_MODEL_BUILDING_MODELDRAFT_H

#include "model/Model.h"

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// \file
/// The declarations of a model's author, with classes and attributes given by name. Nothing is
/// checked here: ModelBuilder::build() checks all of it at once. Every setter returns its object,
/// so that a declaration can be written as one expression; each of the objects is a plain value.

namespace OrvHost {

/// An attribute, a member of a struct, or a parameter. By default it holds 0..1 values.
struct AttributeDraft {
    AttributeDef def; ///< except `type.members` and `type.targets`, which are in the fields below
    std::vector<AttributeDraft> members;
    std::vector<std::string> targets; ///< permitted classes of a reference; empty: any

    AttributeDraft(std::string name, ValueKind kind);

    static AttributeDraft boolean(std::string name);
    static AttributeDraft integer(std::string name);
    static AttributeDraft unsignedInteger(std::string name);
    static AttributeDraft decimal(std::string name);
    static AttributeDraft text(std::string name);
    static AttributeDraft enumeration(std::string name, std::vector<std::string> enumerators);
    static AttributeDraft reference(std::string name, std::vector<std::string> targets = {});
    static AttributeDraft structure(std::string name, std::vector<AttributeDraft> members);

    AttributeDraft& multiplicity(std::int64_t lower, std::int64_t upper);
    /// Exactly one value.
    AttributeDraft& mandatory() { return multiplicity(1, 1); }
    /// Any number of values.
    AttributeDraft& many() { return multiplicity(0, kUnbounded); }
    /// The attribute that names the object: one value, always there. The model calls it
    /// defaultNamingAttribute(class); the name given here is another name for it.
    AttributeDraft& naming();
    AttributeDraft& readOnly();
    /// It can be absent even if it is mandatory: it belongs to a case of a choice.
    AttributeDraft& conditional();
    AttributeDraft& defaultsTo(Value value);
    AttributeDraft& defaultsTo(std::vector<Value> values);
    /// See TypeDef::check.
    AttributeDraft& checkedBy(std::function<std::string(const std::string& text)> check);
    AttributeDraft& described(std::string description);
    AttributeDraft& at(SourcePosition source);
};

/// An operation of a class.
struct ActionDraft {
    std::string name;
    std::vector<AttributeDraft> parameters;
    std::optional<AttributeDraft> resultDraft;
    std::string description;

    explicit ActionDraft(std::string actionName) : name(std::move(actionName)) {}

    ActionDraft& parameter(AttributeDraft draft);
    ActionDraft& result(AttributeDraft draft);
    ActionDraft& described(std::string text);
};

/// A managed object class.
struct ClassDraft {
    ClassDef def; ///< except attributes, actions and containments: declared separately
    std::vector<AttributeDraft> attributes;
    std::vector<ActionDraft> actions;

    explicit ClassDraft(std::string name);

    /// Objects of the class may exist without a parent.
    ClassDraft& topLevel();
    /// Adds a text attribute that names the object, see AttributeDraft::naming.
    ClassDraft& key(std::string name);
    /// Adds attributes whose values together name the object, at least two, each a text or an
    /// enumeration. The naming attribute, which holds all of them (see KeyValues.h), is added by
    /// the builder.
    ClassDraft& keys(std::vector<AttributeDraft> drafts);
    ClassDraft& attribute(AttributeDraft draft);
    ClassDraft& action(ActionDraft draft);
    /// Declares that an object has attributes of one of these cases only. Attributes in cases are
    /// conditional (AttributeDraft::conditional).
    ClassDraft& choice(ChoiceDef choice);
    /// How many objects may exist under one parent.
    ClassDraft& instances(std::int64_t lower, std::int64_t upper);
    ClassDraft& described(std::string description);
    ClassDraft& at(SourcePosition source);
};

/// One reference attribute as an end of an association: the attribute `attribute` of class `owner`
/// may hold DNs of class `target`. All settings apply to this attribute and this target.
struct ReferenceDraft {
    std::string owner;
    std::string attribute;
    std::string target;
    std::string opposite; ///< the attribute of `target` that refers back; empty: unidirectional
    std::optional<Bounds> cardinality; ///< number of DNs of class `target` in the attribute
    std::string roleText;              ///< the word for these objects in messages; empty: `target`
    bool keep = false;
    SourcePosition source;

    ReferenceDraft(std::string ownerName, std::string attributeName)
        : owner(std::move(ownerName)), attribute(std::move(attributeName)) {}

    ReferenceDraft& to(std::string targetName);
    ReferenceDraft& pointedBackBy(std::string attributeName);
    /// If it is not called, the bounds are those of the attribute if that has one permitted class,
    /// and otherwise 0 to the attribute's upper bound.
    ReferenceDraft& counts(std::int64_t lower, std::int64_t upper);
    ReferenceDraft& role(std::string text);
    /// When an object of `target` is deleted, its DN stays in the attribute.
    ReferenceDraft& keepAtDelete();
    ReferenceDraft& at(SourcePosition position);
};

}

#endif
