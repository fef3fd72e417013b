// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "WriteCheck.h"

#include "AttributeBytes.h"
#include "DnUtil.h"
#include "base/DnView.h"
#include "model/ChoiceCheck.h"
#include "model/KeyValues.h"
#include "model/ValueCheck.h"

#include <algorithm>

namespace OrvHost {

namespace {

std::string quoted(std::string_view text) {
    return "'" + std::string(text) + "'";
}

std::string nameOf(const ClassDef& moc, const AttributeDef& attribute) {
    return "attribute " + quoted(attribute.name) + " of class " + quoted(moc.name);
}

template <class Named>
std::string listOf(const std::vector<Named>& all) {
    std::string text;
    for (const Named& one : all) {
        text += (text.empty() ? "" : ", ") + one.name;
    }
    return text.empty() ? "nothing" : text;
}

std::string listOf(const Model& model, const std::vector<ClassIndex>& classes) {
    std::string text;
    for (const ClassIndex moc : classes) {
        text += (text.empty() ? "" : ", ") + model.classes[moc].name;
    }
    return text.empty() ? "nothing" : text;
}

std::string whyBadName(const ClassDef& moc, const std::string& name) {
    if (!Orv::DnUtil::validateMoNamingAttr(name.c_str())) {
        return "expected a text without control characters and , = + \" \\ < > ; and without a "
               "space at either end";
    }
    const AttributeDef* naming = moc.findAttribute(moc.namingAttribute);
    if (naming == nullptr) {
        return {};
    }
    return whyRefused(naming->type, Value(name));
}

std::string whyBadReference(const AttributeValue& value);

std::string whyBadReference(const Value& value, ValueKind kind) {
    if (kind == ValueKind::MoRef) {
        const std::string& dn = std::get<std::string>(value);
        const DnView parts(dn);
        return parts.isValid()
                   ? std::string()
                   : quoted(dn) + " is no DN, expected steps Class=value with commas between; " +
                         parts.whyInvalid();
    }
    if (kind == ValueKind::Struct) {
        for (const NamedValue& member : std::get<StructValue>(value).members) {
            std::string reason = whyBadReference(member.second);
            if (!reason.empty()) {
                return "member \"" + member.first + "\": " + reason;
            }
        }
    }
    return {};
}

std::string whyBadReference(const AttributeValue& value) {
    for (const Value& one : value.values) {
        std::string reason = whyBadReference(one, value.kind);
        if (!reason.empty()) {
            return reason;
        }
    }
    return {};
}

// As whyRefused, but without the number of values: see WriteCheck::value.
std::string whyRefusedReferences(const AttributeDef& def, const AttributeValue& value) {
    if (value.kind != def.type.kind) {
        return whyRefused(def, value);
    }
    for (const Value& one : value.values) {
        std::string reason = whyRefused(def.type, one);
        if (!reason.empty()) {
            return reason;
        }
    }
    return {};
}

std::string whyRefusedValue(const AttributeDef& def, const AttributeValue& value) {
    std::string reason = def.type.kind == ValueKind::MoRef ? whyRefusedReferences(def, value)
                                                           : whyRefused(def, value);
    return reason.empty() ? whyBadReference(value) : reason;
}

bool isMissing(const AttributeDef& def, bool withReferences) {
    const bool counts = withReferences || def.type.kind != ValueKind::MoRef;
    return counts && def.isRequired();
}

}

AttributeIndex WriteCheck::requireAttribute(const ClassDef& moc, std::string_view name) {
    const auto index = moc.findAttributeIndex(name);
    if (!index) {
        throw HostError(OrvNotExist, "class " + quoted(moc.name) + " has no attribute " +
                                         quoted(name) +
                                         ", expected one of: " + listOf(moc.attributes));
    }
    return *index;
}

ClassIndex WriteCheck::requireClass(const Model& model, std::string_view name) {
    const auto moc = model.findClass(name);
    if (!moc) {
        throw HostError(OrvNotExist, "there is no class " + quoted(name));
    }
    return *moc;
}

void WriteCheck::containment(const Model& model, const ClassDef* parent, ClassIndex moc) {
    const ClassDef& child = model.classes[moc];
    if (parent == nullptr && !child.isTopLevel) {
        throw HostError(OrvHostNotContained, "objects of class " + quoted(child.name) +
                                                 " do not stand at the top level, expected a "
                                                 "parent of class: " +
                                                 listOf(model, child.parents));
    }
    if (parent != nullptr &&
        !child.mayStandUnder(static_cast<ClassIndex>(parent - model.classes.data()))) {
        throw HostError(OrvHostNotContained,
                        "objects of class " + quoted(child.name) + " do not stand under class " +
                            quoted(parent->name) +
                            ", expected there: " + listOf(model, parent->children));
    }
}

void WriteCheck::name(const ClassDef& moc, const std::string& name) {
    const std::string reason = whyBadName(moc, name);
    if (!reason.empty()) {
        throw HostError(OrvInvalidArgument, quoted(name) + " cannot name an object of class " +
                                                quoted(moc.name) + ": " + reason);
    }
}

void WriteCheck::value(const ClassDef& moc, AttributeIndex index, const AttributeValue& value,
                       Writer writer) {
    const AttributeDef& def = moc.attributes[index];
    if (def.isGivenByName()) {
        throw HostError(OrvHostNotWritable,
                        nameOf(moc, def) + " names the object and cannot be set");
    }
    if (!def.isWritable && writer == Writer::Client) {
        throw HostError(OrvHostNotWritable, nameOf(moc, def) + " is set by the system only");
    }
    const std::string reason = whyRefusedValue(def, value);
    if (!reason.empty()) {
        const std::string& type = def.type.description;
        throw HostError(OrvInvalidArgument,
                        nameOf(moc, def) + (type.empty() ? "" : " (" + type + ")") + ": " + reason);
    }
}

void WriteCheck::noDoubles(const std::vector<NamedValue>& values) {
    if (values.size() < 2) {
        return;
    }
    std::vector<std::string_view> names;
    names.reserve(values.size());
    for (const NamedValue& value : values) {
        names.emplace_back(value.first);
    }
    std::sort(names.begin(), names.end());
    const auto twice = std::adjacent_find(names.begin(), names.end());
    if (twice != names.end()) {
        throw HostError(OrvInvalidArgument,
                        "attribute " + quoted(*twice) + " is given more than once");
    }
}

std::string WriteCheck::initial(const ClassDef& moc, const std::string& name,
                                const std::vector<NamedValue>& values, Writer writer) {
    noDoubles(values);
    std::string bytes;
    for (const NamedValue& named : values) {
        const AttributeIndex index = requireAttribute(moc, named.first);
        const AttributeDef& def = moc.attributes[index];
        if (!def.isGivenByName()) {
            value(moc, index, named.second, writer);
            AttributeBytes::write(moc, bytes, index, named.second);
        } else if (named.second != nameValue(moc, def, name)) {
            throw HostError(OrvInvalidArgument,
                            nameOf(moc, def) + " differs from the name " + quoted(name));
        }
    }
    return bytes;
}

std::vector<std::string> WriteCheck::missing(const ClassDef& moc, std::string_view bytes,
                                             bool withReferences) {
    std::vector<std::string> names;
    for (AttributeIndex index = 0; index < moc.attributes.size(); ++index) {
        const AttributeDef& def = moc.attributes[index];
        if (isMissing(def, withReferences) && !AttributeBytes::has(bytes, index)) {
            names.push_back(def.name);
        }
    }
    return names;
}

std::vector<std::string> WriteCheck::wrongChoices(const ClassDef& moc, std::string_view bytes,
                                                  std::string_view changes) {
    return OrvHost::wrongChoices(
        moc.choices, [&](const std::string& name) { return isPresent(moc, name, bytes, changes); });
}

bool WriteCheck::isDefaultInUse(const ClassDef& moc, const std::string& name,
                                std::string_view bytes, std::string_view changes) {
    return OrvHost::isDefaultInUse(moc.choices, name, [&](const std::string& other) {
        return isPresent(moc, other, bytes, changes);
    });
}

bool WriteCheck::isPresent(const ClassDef& moc, const std::string& name, std::string_view bytes,
                           std::string_view changes) {
    const auto index = moc.findAttributeIndex(name);
    const auto values = index ? AttributeBytes::find(bytes, changes, *index) : std::nullopt;
    if (!values) {
        return false;
    }
    const TypeDef& type = moc.attributes[*index].type;
    return !type.isFalseAbsent || OrvHost::isPresent(type, AttributeBytes::valuesOf(type, *values));
}

AttributeValue WriteCheck::nameValue(const ClassDef& moc, const AttributeDef& def,
                                     std::string_view name) {
    if (!def.keyPosition) {
        return {def.type.kind, {Value(std::string(name))}};
    }
    const auto keys = splitKeys(name, moc.keys.size());
    return {def.type.kind,
            keys ? std::vector<Value>{(*keys)[*def.keyPosition]} : std::vector<Value>()};
}

}
