// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_MODEL_H
#define ORV_HOST_MODEL_MODEL_H

#include "Bounds.h"
#include "ChildClassTable.h"
#include "Value.h"
#include "base/Problem.h"
#include "base/TextHash.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace OrvHost {

/// Position in the attributes of a class; it never changes.
using AttributeIndex = std::uint32_t;

/// The class name that means "any class" as the target of a reference. No class of a model has this
/// name.
constexpr std::string_view kAnyClassName = "ManagedObject";

/// The name of every naming attribute: the class's name, its first letter small, and "Id". In DNs
/// it is left out. \p className must not be empty.
std::string defaultNamingAttribute(std::string className);

struct AttributeDef;

/// One of the alternatives of a choice.
struct ChoiceCase {
    std::string name;
    /// What belongs to it, also through choices inside it. The case is taken if one of these has a
    /// value.
    std::vector<std::string> attributes;
    /// Those that must have a value if the case is taken.
    std::vector<std::string> required;
    /// Its defaults apply even if no case is taken.
    bool isDefault = false;

    bool operator==(const ChoiceCase&) const = default;
};

/// Attributes of a class, or members of a struct, of which an object has those of one case only.
struct ChoiceDef {
    std::string name;
    std::vector<ChoiceCase> cases;
    bool isMandatory = false; ///< one case must be taken
    /// The attributes of the case around a choice inside a case: the choice counts only if one of
    /// them has a value. Empty: it always counts.
    std::vector<std::string> around;

    bool operator==(const ChoiceDef&) const = default;
};

/// The type of one value.
struct TypeDef {
    ValueKind kind = ValueKind::String;
    /// Enumeration: the permitted names.
    std::vector<std::string> enumerators;
    /// Struct: its members.
    std::vector<AttributeDef> members;
    /// Struct: the choices among its members.
    std::vector<ChoiceDef> choices;
    /// Bool: false says the same as no value.
    bool isFalseAbsent = false;
    /// MoRef: the permitted target classes; empty means any class.
    std::vector<ClassIndex> targets;
    /// A further check of one value in its text form, such as a range, a length or a pattern:
    /// returns the reason why the text is refused, or an empty string. May be empty. Must be
    /// callable from any number of threads at once.
    std::function<std::string(const std::string& text)> check;
    /// The type as its author wrote it, for people: "uint16", "string (1..64)".
    std::string description;

    /// Null if there is no member of that name.
    const AttributeDef* findMember(std::string_view memberName) const;
};

/// An attribute of a class, a member of a struct, or a parameter of an action.
struct AttributeDef {
    std::string name;
    TypeDef type;
    Bounds multiplicity{0, 1};
    bool isNaming = false; ///< the attribute whose value names the object among its siblings
    /// The attribute is one of several keys, the one at this position: its value is a part of the
    /// naming value (see KeyValues.h) and is not stored.
    std::optional<std::size_t> keyPosition;
    bool isWritable = true; ///< false: set by the system only
    /// True: it can be absent although the multiplicity demands values, because it belongs to a
    /// case of a choice or depends on a condition.
    bool isConditional = false;
    std::optional<AttributeValue> defaultValue;
    std::string description;
    SourcePosition source;

    /// True if a new object, or a struct, without a value for it is incomplete. What only the
    /// system sets is not demanded of those who cannot set it.
    bool isRequired() const;
    /// True if the object's name gives the value: a naming attribute, or one of several keys.
    bool isGivenByName() const { return isNaming || keyPosition; }
};

/// An operation that clients may run on objects of a class.
struct ActionDef {
    std::string name;
    std::vector<AttributeDef> parameters;
    std::optional<AttributeDef> result;
    std::string description;
};

/// A managed object class.
struct ClassDef {
    std::string name;
    std::string namingAttribute; ///< always defaultNamingAttribute(name)
    /// What the author of the model calls the key: one name, which can be that of the naming
    /// attribute and otherwise is another name for it; or the attributes that are the keys, in
    /// order, if there are several.
    std::vector<std::string> keys;
    bool isTopLevel = false;              ///< may exist without a parent
    std::vector<AttributeDef> attributes; ///< in the order of their definition
    std::vector<ChoiceDef> choices;       ///< among the attributes
    std::vector<ActionDef> actions;
    std::vector<ClassIndex> children; ///< permitted child classes, in the order of their definition
    std::vector<ClassIndex> parents;
    std::vector<ClassIndex> sortedParents; ///< the same, for look-ups
    Bounds instances;                      ///< how many may exist under one parent
    std::string description;
    SourcePosition source;

    /// The attribute with that name, or null; a single key's own name means the naming attribute.
    /// Linear in the number of attributes.
    const AttributeDef* findAttribute(std::string_view attributeName) const;
    /// The action with that name, or null.
    const ActionDef* findAction(std::string_view actionName) const;
    /// The position of what findAttribute finds, or nothing.
    std::optional<AttributeIndex> findAttributeIndex(std::string_view attributeName) const;
    /// True if an object of this class may exist under one of class `parent`. Logarithmic in the
    /// number of its parents.
    bool mayStandUnder(ClassIndex parent) const;
};

/// One end of an association. Its name is the name of the attribute that refers to `moc`; that
/// attribute belongs to the class at the opposite end.
struct AssociationEnd {
    ClassIndex moc = 0;
    std::string name;
    std::string role; ///< the word for the objects at this end, in messages about their number
    Bounds cardinality;
    /// When an object of `moc` is deleted, its DN stays in the attributes that this end is named
    /// after; otherwise it is removed from them.
    bool keepAtDelete = false;
};

/// Both directions of one association; `ends[0]` is the end that was defined first. The attribute
/// named ends[1].name belongs to class ends[0].moc, and the attribute named ends[0].name to class
/// ends[1].moc.
struct BiDirAssociation {
    AssociationEnd ends[2];
    SourcePosition source;
};

/// One direction: class `owner` has the attribute `end.name`, whose values may be of class
/// `end.moc`. One association for each permitted class.
struct UniDirAssociation {
    ClassIndex owner = 0;
    AssociationEnd end;
    SourcePosition source;
};

/// What the management framework knows about its classes: plain data, built once (see ModelBuilder)
/// and then read by any number of threads.
struct Model {
    std::vector<ClassDef> classes;
    std::vector<BiDirAssociation> biDirAssociations;
    std::vector<UniDirAssociation> uniDirAssociations;

    /// The class with that name, or nothing. Constant time.
    std::optional<ClassIndex> findClass(std::string_view name) const;

    /// The class of the object that an internal DN names. Only the classes of its steps are used:
    /// the first must be a top-level class, every other one a permitted child of the one before it.
    /// Nothing if the DN is malformed or not a legal path. A step is "Class=value" or
    /// "Class.attribute=value"; the attribute is ignored. Linear in the length of the DN, no
    /// allocation.
    std::optional<ClassIndex> findClassOfDn(std::string_view dn) const;

    /// What may stand where, for findClassOfDn. Filled by ModelBuilder.
    ChildClassTable childClasses;
    /// The position of each class in `classes`. Filled by ModelBuilder.
    std::unordered_map<std::string, ClassIndex, TextHash, std::equal_to<>> classByName;
};

}

#endif
