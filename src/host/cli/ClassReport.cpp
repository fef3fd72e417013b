// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ClassReport.h"

#include "Layout.h"
#include "Session.h"
#include "Suggestion.h"

namespace OrvHost {

namespace {

JsonValue boundsJson(const Bounds& bounds) {
    return {{"lower", bounds.lower},
            {"upper", bounds.upper == kUnbounded ? JsonValue() : JsonValue(bounds.upper)}};
}

std::string kindText(ValueKind kind) {
    switch (kind) {
    case ValueKind::Bool:
        return "boolean";
    case ValueKind::Int:
        return "integer";
    case ValueKind::Uint:
        return "unsigned integer";
    case ValueKind::Double:
        return "decimal";
    case ValueKind::Enumeration:
        return "enumeration";
    case ValueKind::String:
        return "string";
    case ValueKind::MoRef:
        return "reference";
    case ValueKind::Struct:
        return "struct";
    }
    return {};
}

std::string typeText(const AttributeDef* def) {
    if (def == nullptr) {
        return {};
    }
    const TypeDef& type = def->type;
    if (type.kind == ValueKind::Struct) {
        std::vector<std::string> members;
        for (const AttributeDef& member : type.members) {
            members.push_back(member.name);
        }
        return "struct (" + enumerate(members) + ")";
    }
    if (type.kind == ValueKind::Enumeration) {
        return "enumeration (" + enumerate(type.enumerators) + ")";
    }
    return type.description.empty() ? kindText(type.kind) : type.description;
}

JsonValue valueJson(const AttributeValue& value);

JsonValue slotJson(const Value& slot) {
    return std::visit(
        [](const auto& held) -> JsonValue {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, StructValue>) {
                JsonValue object = JsonValue::object();
                for (const NamedValue& member : held.members) {
                    object[member.first] = valueJson(member.second);
                }
                return object;
            } else {
                return held;
            }
        },
        slot);
}

JsonValue valueJson(const AttributeValue& value) {
    JsonValue values = JsonValue::array();
    for (const Value& slot : value.values) {
        values.push_back(slotJson(slot));
    }
    return values.size() == 1 ? values[0] : values;
}

std::string writableText(const AttributeDef* def) {
    if (def == nullptr) {
        return {};
    }
    return def->isNaming ? "naming" : (def->isWritable ? "" : "read-only");
}

std::string actionText(const ActionDef& action) {
    std::vector<std::string> parameters;
    for (const AttributeDef& parameter : action.parameters) {
        parameters.push_back(parameter.name);
    }
    return "  " + action.name + "(" + (parameters.empty() ? "" : enumerate(parameters)) + ")\n";
}

}

std::string boundsText(const Bounds& bounds) {
    if (bounds.lower == bounds.upper) {
        return std::to_string(bounds.lower);
    }
    return std::to_string(bounds.lower) + ".." +
           (bounds.upper == kUnbounded ? "*" : std::to_string(bounds.upper));
}

std::vector<std::string> parentNames(const Model& model, const ClassDef& moc) {
    std::vector<std::string> names;
    for (const ClassIndex parent : moc.parents) {
        names.push_back(model.classes[parent].name);
    }
    return names;
}

JsonValue toJson(const ReferenceFacts& facts) {
    return {{"class", facts.owner},
            {"attribute", facts.attribute},
            {"target", facts.target},
            {"cardinality", boundsJson(facts.cardinality)},
            {"role", facts.role},
            {"keepAtDelete", facts.keepAtDelete},
            {"opposite", facts.opposite.empty() ? JsonValue() : JsonValue(facts.opposite)}};
}

std::string associationTable(const std::vector<ReferenceFacts>& associations) {
    std::vector<std::vector<std::string>> rows;
    for (const ReferenceFacts& facts : associations) {
        rows.push_back({facts.owner, facts.attribute, facts.target, boundsText(facts.cardinality),
                        facts.opposite.empty() ? "(one way)" : facts.opposite,
                        facts.keepAtDelete ? "kept at delete" : ""});
    }
    return layOutTable({"CLASS", "ATTRIBUTE", "POINTS AT", "COUNT", "POINTED BACK BY", ""}, rows);
}

ClassReport::ClassReport(Session& session, ClassIndex moc)
    : mModel(session.model()), mClass(mModel.classes[moc]) {
    const RepositoryFacts repository(session.host());
    const RepositoryFacts::Moc handle = repository.find(mClass.name);
    mAttributes = repository.attributes(handle);
    mChildren = repository.children(handle);
    mReferences = repository.references(handle);
}

JsonValue ClassReport::attributeJson(const AttributeFacts& facts) const {
    const AttributeDef* def = mClass.findAttribute(facts.name);
    JsonValue document{{"name", facts.name},
                       {"typeCode", facts.typeCode},
                       {"multiplicity", boundsJson(facts.multiplicity)}};
    if (!facts.referencedClass.empty()) {
        document["referencedClass"] = facts.referencedClass;
    }
    if (def != nullptr) {
        document["type"] = typeText(def);
        document["naming"] = def->isNaming;
        document["writable"] = def->isWritable;
        document["default"] = def->defaultValue ? valueJson(*def->defaultValue) : JsonValue();
        document["description"] = def->description;
    }
    return document;
}

// The repository tells a single permitted class; where there are several the model tells which.
std::string ClassReport::referenceText(const AttributeFacts& facts) const {
    const AttributeDef* def = mClass.findAttribute(facts.name);
    if (facts.referencedClass.empty()) {
        return typeText(def);
    }
    if (def == nullptr || def->type.targets.size() < 2) {
        const bool isAny = facts.referencedClass == "ManagedObject";
        return "reference to " + (isAny ? "any class" : facts.referencedClass);
    }
    std::vector<std::string> targets;
    for (const ClassIndex target : def->type.targets) {
        targets.push_back(mModel.classes[target].name);
    }
    return "reference to " + enumerate(targets);
}

std::vector<std::string> ClassReport::attributeRow(const AttributeFacts& facts) const {
    const AttributeDef* def = mClass.findAttribute(facts.name);
    const bool hasDefault = def != nullptr && def->defaultValue;
    return {"  " + facts.name, boundsText(facts.multiplicity),
            hasDefault ? scalarText(valueJson(*def->defaultValue)) : "", writableText(def),
            referenceText(facts)};
}

JsonValue ClassReport::json() const {
    JsonValue attributes = JsonValue::array();
    for (const AttributeFacts& facts : mAttributes) {
        attributes.push_back(attributeJson(facts));
    }
    JsonValue references = JsonValue::array();
    for (const ReferenceFacts& facts : mReferences) {
        references.push_back(toJson(facts));
    }
    JsonValue actions = JsonValue::array();
    for (const ActionDef& action : mClass.actions) {
        actions.push_back({{"name", action.name}, {"description", action.description}});
    }
    return {{"name", mClass.name},
            {"namingAttribute", mClass.namingAttribute},
            {"topLevel", mClass.isTopLevel},
            {"parents", parentNames(mModel, mClass)},
            {"children", mChildren},
            {"instances", boundsJson(mClass.instances)},
            {"attributes", attributes},
            {"associations", references},
            {"actions", actions},
            {"description", mClass.description}};
}

std::string ClassReport::text() const {
    std::string text = mClass.name + ", named by " + mClass.namingAttribute + "\n";
    if (!mClass.description.empty()) {
        text += mClass.description + "\n";
    }
    text += "stands under: " +
            (mClass.isTopLevel ? "(top level)" : enumerate(parentNames(mModel, mClass))) + ", " +
            boundsText(mClass.instances) + " of them\n";
    text += "contains: " + enumerate(mChildren) + "\n\n";
    std::vector<std::vector<std::string>> rows;
    for (const AttributeFacts& facts : mAttributes) {
        rows.push_back(attributeRow(facts));
    }
    text += layOutTable({"  ATTRIBUTE", "VALUES", "DEFAULT", "", "TYPE"}, rows);
    if (!mReferences.empty()) {
        text += "\nassociations\n" + associationTable(mReferences);
    }
    if (!mClass.actions.empty()) {
        text += "\nactions\n";
    }
    for (const ActionDef& action : mClass.actions) {
        text += actionText(action);
    }
    return text;
}

}
