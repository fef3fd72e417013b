// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ModelDraft.h"

namespace OrvHost {

AttributeDraft::AttributeDraft(std::string name, ValueKind kind) {
    def.name = std::move(name);
    def.type.kind = kind;
}

AttributeDraft AttributeDraft::boolean(std::string name) {
    return {std::move(name), ValueKind::Bool};
}

AttributeDraft AttributeDraft::integer(std::string name) {
    return {std::move(name), ValueKind::Int};
}

AttributeDraft AttributeDraft::unsignedInteger(std::string name) {
    return {std::move(name), ValueKind::Uint};
}

AttributeDraft AttributeDraft::decimal(std::string name) {
    return {std::move(name), ValueKind::Double};
}

AttributeDraft AttributeDraft::text(std::string name) {
    return {std::move(name), ValueKind::String};
}

AttributeDraft AttributeDraft::enumeration(std::string name, std::vector<std::string> enumerators) {
    AttributeDraft draft(std::move(name), ValueKind::Enumeration);
    draft.def.type.enumerators = std::move(enumerators);
    return draft;
}

AttributeDraft AttributeDraft::reference(std::string name, std::vector<std::string> targets) {
    AttributeDraft draft(std::move(name), ValueKind::MoRef);
    draft.targets = std::move(targets);
    return draft;
}

AttributeDraft AttributeDraft::structure(std::string name, std::vector<AttributeDraft> members) {
    AttributeDraft draft(std::move(name), ValueKind::Struct);
    draft.members = std::move(members);
    return draft;
}

AttributeDraft& AttributeDraft::multiplicity(std::int64_t lower, std::int64_t upper) {
    def.multiplicity = {lower, upper};
    return *this;
}

AttributeDraft& AttributeDraft::naming() {
    def.isNaming = true;
    return mandatory();
}

AttributeDraft& AttributeDraft::conditional() {
    def.isConditional = true;
    return *this;
}

AttributeDraft& AttributeDraft::readOnly() {
    def.isWritable = false;
    return *this;
}

AttributeDraft& AttributeDraft::defaultsTo(Value value) {
    def.defaultValue.emplace().kind = def.type.kind;
    def.defaultValue->values.push_back(std::move(value));
    return *this;
}

AttributeDraft& AttributeDraft::defaultsTo(std::vector<Value> values) {
    def.defaultValue = AttributeValue{def.type.kind, std::move(values)};
    return *this;
}

AttributeDraft& AttributeDraft::checkedBy(std::function<std::string(const std::string&)> check) {
    def.type.check = std::move(check);
    return *this;
}

AttributeDraft& AttributeDraft::described(std::string description) {
    def.description = std::move(description);
    return *this;
}

AttributeDraft& AttributeDraft::at(SourcePosition source) {
    def.source = std::move(source);
    return *this;
}

ActionDraft& ActionDraft::parameter(AttributeDraft draft) {
    parameters.push_back(std::move(draft));
    return *this;
}

ActionDraft& ActionDraft::result(AttributeDraft draft) {
    resultDraft = std::move(draft);
    return *this;
}

ActionDraft& ActionDraft::described(std::string text) {
    description = std::move(text);
    return *this;
}

ClassDraft::ClassDraft(std::string name) {
    def.name = std::move(name);
}

ClassDraft& ClassDraft::topLevel() {
    def.isTopLevel = true;
    return *this;
}

ClassDraft& ClassDraft::key(std::string name) {
    return attribute(AttributeDraft::text(std::move(name)).naming());
}

ClassDraft& ClassDraft::keys(std::vector<AttributeDraft> drafts) {
    for (std::size_t position = 0; position < drafts.size(); ++position) {
        drafts[position].def.keyPosition = position;
        attribute(std::move(drafts[position].mandatory()));
    }
    return *this;
}

ClassDraft& ClassDraft::attribute(AttributeDraft draft) {
    attributes.push_back(std::move(draft));
    return *this;
}

ClassDraft& ClassDraft::action(ActionDraft draft) {
    actions.push_back(std::move(draft));
    return *this;
}

ClassDraft& ClassDraft::choice(ChoiceDef choice) {
    def.choices.push_back(std::move(choice));
    return *this;
}

ClassDraft& ClassDraft::instances(std::int64_t lower, std::int64_t upper) {
    def.instances = {lower, upper};
    return *this;
}

ClassDraft& ClassDraft::described(std::string description) {
    def.description = std::move(description);
    return *this;
}

ClassDraft& ClassDraft::at(SourcePosition source) {
    def.source = std::move(source);
    return *this;
}

ReferenceDraft& ReferenceDraft::to(std::string targetName) {
    target = std::move(targetName);
    return *this;
}

ReferenceDraft& ReferenceDraft::pointedBackBy(std::string attributeName) {
    opposite = std::move(attributeName);
    return *this;
}

ReferenceDraft& ReferenceDraft::counts(std::int64_t lower, std::int64_t upper) {
    cardinality = Bounds{lower, upper};
    return *this;
}

ReferenceDraft& ReferenceDraft::role(std::string text) {
    roleText = std::move(text);
    return *this;
}

ReferenceDraft& ReferenceDraft::keepAtDelete() {
    keep = true;
    return *this;
}

ReferenceDraft& ReferenceDraft::at(SourcePosition position) {
    source = std::move(position);
    return *this;
}

}
