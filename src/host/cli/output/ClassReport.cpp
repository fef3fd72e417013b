// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ClassReport.h"

#include "AlignedText.h"
#include "base/Suggestion.h"

#include <algorithm>

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
        values.add(slotJson(slot));
    }
    return values.elements().size() == 1 ? values.elements().front() : values;
}

std::string writableText(const AttributeDef* def) {
    if (def == nullptr) {
        return {};
    }
    if (def->isGivenByName()) {
        return def->isNaming ? "naming" : "key";
    }
    return def->isWritable ? "" : "read-only";
}

/// What the model's author calls the key, if that is another name.
std::string keysText(const ClassDef& moc) {
    if (moc.keys.size() > 1) {
        return ", of the keys " + enumerate(moc.keys);
    }
    return moc.keys.front() == moc.namingAttribute ? "" : ", the key " + moc.keys.front();
}

/// The cases of a choice; in each what a case requires is marked.
std::string choiceText(const ChoiceDef& choice) {
    std::string text = "  " + choice.name + ", ";
    text += choice.isMandatory ? "one of these" : "at most one of these";
    text += choice.around.empty() ? "" : ", with " + enumerate(choice.around);
    text += "\n";
    for (const ChoiceCase& one : choice.cases) {
        std::vector<std::string> attributes;
        for (const std::string& attribute : one.attributes) {
            const bool isRequired = std::find(one.required.begin(), one.required.end(),
                                              attribute) != one.required.end();
            attributes.push_back(attribute + (isRequired ? " (required)" : ""));
        }
        text += "    " + one.name + ": " + enumerate(attributes) + "\n";
    }
    return text;
}

JsonValue choiceJson(const ChoiceDef& choice) {
    JsonValue cases = JsonValue::array();
    for (const ChoiceCase& one : choice.cases) {
        cases.add({{"name", one.name}, {"attributes", one.attributes}, {"required", one.required}});
    }
    return {{"name", choice.name},
            {"mandatory", choice.isMandatory},
            {"around", choice.around},
            {"cases", cases}};
}

std::string actionText(const ActionDef& action) {
    std::vector<std::string> parameters;
    for (const AttributeDef& parameter : action.parameters) {
        parameters.push_back(parameter.name);
    }
    return "  " + action.name + "(" + (parameters.empty() ? "" : enumerate(parameters)) + ")\n";
}

}

std::vector<std::string> parentNames(const Model& model, const ClassDef& moc) {
    std::vector<std::string> names;
    for (const ClassIndex parent : moc.parents) {
        names.push_back(model.classes[parent].name);
    }
    return names;
}

JsonValue toJson(const ReferenceDescription& description) {
    return {
        {"class", description.owner},
        {"attribute", description.attribute},
        {"target", description.target},
        {"cardinality", boundsJson(description.cardinality)},
        {"role", description.role},
        {"keepAtDelete", description.keepAtDelete},
        {"opposite", description.opposite.empty() ? JsonValue() : JsonValue(description.opposite)}};
}

std::string associationTable(const std::vector<ReferenceDescription>& associations) {
    std::vector<std::vector<std::string>> rows;
    rows.reserve(associations.size());
    for (const ReferenceDescription& description : associations) {
        rows.push_back({description.owner, description.attribute, description.target,
                        toText(description.cardinality),
                        description.opposite.empty() ? "(one way)" : description.opposite,
                        description.keepAtDelete ? "kept at delete" : ""});
    }
    return layOutTable({"CLASS", "ATTRIBUTE", "POINTS AT", "COUNT", "POINTED BACK BY", ""}, rows);
}

ClassReport::ClassReport(const Model& model, ClassDescription description)
    : mModel(model),
      mClass(model.classes[model.findClass(description.name).value()]),
      mDescription(std::move(description)) {}

JsonValue ClassReport::attributeJson(const AttributeDescription& description) const {
    const AttributeDef* def = mClass.findAttribute(description.name);
    JsonValue document{{"name", description.name},
                       {"typeCode", description.typeCode},
                       {"multiplicity", boundsJson(description.multiplicity)}};
    if (!description.referencedClass.empty()) {
        document["referencedClass"] = description.referencedClass;
    }
    if (def != nullptr) {
        document["type"] = typeText(def);
        document["naming"] = def->isNaming;
        document["writable"] = def->isWritable && !def->isGivenByName();
        document["default"] = def->defaultValue ? valueJson(*def->defaultValue) : JsonValue();
        document["description"] = def->description;
    }
    return document;
}

// The repository names a single permitted class only; if there are several, the model has them.
std::string ClassReport::referenceText(const AttributeDescription& description) const {
    const AttributeDef* def = mClass.findAttribute(description.name);
    if (description.referencedClass.empty()) {
        return typeText(def);
    }
    if (def == nullptr || def->type.targets.size() < 2) {
        const bool isAny = description.referencedClass == kAnyClassName;
        return "reference to " + (isAny ? "any class" : description.referencedClass);
    }
    std::vector<std::string> targets;
    for (const ClassIndex target : def->type.targets) {
        targets.push_back(mModel.classes[target].name);
    }
    return "reference to " + enumerate(targets);
}

std::vector<std::string> ClassReport::attributeRow(const AttributeDescription& description) const {
    const AttributeDef* def = mClass.findAttribute(description.name);
    const bool hasDefault = def != nullptr && def->defaultValue;
    return {"  " + description.name, toText(description.multiplicity),
            hasDefault ? scalarText(valueJson(*def->defaultValue)) : "", writableText(def),
            referenceText(description)};
}

JsonValue ClassReport::json() const {
    JsonValue attributes = JsonValue::array();
    for (const AttributeDescription& description : mDescription.attributes) {
        attributes.add(attributeJson(description));
    }
    JsonValue choices = JsonValue::array();
    for (const ChoiceDef& choice : mClass.choices) {
        choices.add(choiceJson(choice));
    }
    JsonValue references = JsonValue::array();
    for (const ReferenceDescription& description : mDescription.references) {
        references.add(toJson(description));
    }
    JsonValue actions = JsonValue::array();
    for (const ActionDef& action : mClass.actions) {
        actions.add({{"name", action.name}, {"description", action.description}});
    }
    return {{"name", mClass.name},
            {"namingAttribute", mClass.namingAttribute},
            {"keys", mClass.keys},
            {"topLevel", mClass.isTopLevel},
            {"parents", parentNames(mModel, mClass)},
            {"children", mDescription.children},
            {"instances", boundsJson(mClass.instances)},
            {"attributes", attributes},
            {"choices", choices},
            {"associations", references},
            {"actions", actions},
            {"description", mClass.description}};
}

std::string ClassReport::text() const {
    std::string text =
        mClass.name + ", named by " + mClass.namingAttribute + keysText(mClass) + "\n";
    if (!mClass.description.empty()) {
        text += mClass.description + "\n";
    }
    text += "stands under: " +
            (mClass.isTopLevel ? "(top level)" : enumerate(parentNames(mModel, mClass))) + ", " +
            toText(mClass.instances) + " of them\n";
    text += "contains: " + enumerate(mDescription.children) + "\n\n";
    std::vector<std::vector<std::string>> rows;
    for (const AttributeDescription& description : mDescription.attributes) {
        rows.push_back(attributeRow(description));
    }
    text += layOutTable({"  ATTRIBUTE", "VALUES", "DEFAULT", "", "TYPE"}, rows);
    if (!mClass.choices.empty()) {
        text += "\nchoices\n";
    }
    for (const ChoiceDef& choice : mClass.choices) {
        text += choiceText(choice);
    }
    if (!mDescription.references.empty()) {
        text += "\nassociations\n" + associationTable(mDescription.references);
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
