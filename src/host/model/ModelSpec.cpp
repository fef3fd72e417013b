// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ModelSpec.h"

namespace OrvHost {

AttributeSpec::AttributeSpec(std::string name, ValueKind kind) {
    def.name = std::move(name);
    def.type.kind = kind;
}

AttributeSpec AttributeSpec::boolean(std::string name) {
    return {std::move(name), ValueKind::Bool};
}

AttributeSpec AttributeSpec::integer(std::string name) {
    return {std::move(name), ValueKind::Int};
}

AttributeSpec AttributeSpec::unsignedInteger(std::string name) {
    return {std::move(name), ValueKind::Uint};
}

AttributeSpec AttributeSpec::decimal(std::string name) {
    return {std::move(name), ValueKind::Double};
}

AttributeSpec AttributeSpec::text(std::string name) {
    return {std::move(name), ValueKind::String};
}

AttributeSpec AttributeSpec::enumeration(std::string name, std::vector<std::string> enumerators) {
    AttributeSpec spec(std::move(name), ValueKind::Enumeration);
    spec.def.type.enumerators = std::move(enumerators);
    return spec;
}

AttributeSpec AttributeSpec::reference(std::string name, std::vector<std::string> targets) {
    AttributeSpec spec(std::move(name), ValueKind::MoRef);
    spec.targets = std::move(targets);
    return spec;
}

AttributeSpec AttributeSpec::structure(std::string name, std::vector<AttributeSpec> members) {
    AttributeSpec spec(std::move(name), ValueKind::Struct);
    spec.members = std::move(members);
    return spec;
}

AttributeSpec& AttributeSpec::multiplicity(std::int64_t lower, std::int64_t upper) {
    def.multiplicity = {lower, upper};
    return *this;
}

AttributeSpec& AttributeSpec::naming() {
    def.isNaming = true;
    return mandatory();
}

AttributeSpec& AttributeSpec::readOnly() {
    def.isWritable = false;
    return *this;
}

AttributeSpec& AttributeSpec::defaultsTo(Value value) {
    def.defaultValue.emplace().kind = def.type.kind;
    def.defaultValue->values.push_back(std::move(value));
    return *this;
}

AttributeSpec& AttributeSpec::defaultsTo(std::vector<Value> values) {
    def.defaultValue = AttributeValue{def.type.kind, std::move(values)};
    return *this;
}

AttributeSpec& AttributeSpec::checkedBy(std::function<std::string(const std::string&)> check) {
    def.type.check = std::move(check);
    return *this;
}

AttributeSpec& AttributeSpec::typeNamed(std::string description) {
    def.type.description = std::move(description);
    return *this;
}

AttributeSpec& AttributeSpec::described(std::string description) {
    def.description = std::move(description);
    return *this;
}

AttributeSpec& AttributeSpec::at(SourcePosition source) {
    def.source = std::move(source);
    return *this;
}

ActionSpec& ActionSpec::parameter(AttributeSpec spec) {
    parameters.push_back(std::move(spec));
    return *this;
}

ActionSpec& ActionSpec::result(AttributeSpec spec) {
    resultSpec = std::move(spec);
    return *this;
}

ActionSpec& ActionSpec::described(std::string text) {
    description = std::move(text);
    return *this;
}

ClassSpec::ClassSpec(std::string name) {
    def.name = std::move(name);
}

ClassSpec& ClassSpec::topLevel() {
    def.isTopLevel = true;
    return *this;
}

ClassSpec& ClassSpec::key(std::string name) {
    return attribute(AttributeSpec::text(std::move(name)).naming());
}

ClassSpec& ClassSpec::attribute(AttributeSpec spec) {
    attributes.push_back(std::move(spec));
    return *this;
}

ClassSpec& ClassSpec::action(ActionSpec spec) {
    actions.push_back(std::move(spec));
    return *this;
}

ClassSpec& ClassSpec::instances(std::int64_t lower, std::int64_t upper) {
    def.instances = {lower, upper};
    return *this;
}

ClassSpec& ClassSpec::described(std::string description) {
    def.description = std::move(description);
    return *this;
}

ClassSpec& ClassSpec::at(SourcePosition source) {
    def.source = std::move(source);
    return *this;
}

ReferenceSpec& ReferenceSpec::to(std::string targetName) {
    target = std::move(targetName);
    return *this;
}

ReferenceSpec& ReferenceSpec::pointedBackBy(std::string attributeName) {
    opposite = std::move(attributeName);
    return *this;
}

ReferenceSpec& ReferenceSpec::counts(std::int64_t lower, std::int64_t upper) {
    cardinality = Bounds{lower, upper};
    return *this;
}

ReferenceSpec& ReferenceSpec::role(std::string text) {
    roleText = std::move(text);
    return *this;
}

ReferenceSpec& ReferenceSpec::keepAtDelete() {
    keep = true;
    return *this;
}

ReferenceSpec& ReferenceSpec::at(SourcePosition position) {
    source = std::move(position);
    return *this;
}

}
