// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SampleStore.h"

#include "model/building/ModelBuilder.h"

namespace OrvHost {

namespace {

AttributeDraft position() {
    return AttributeDraft::structure(
        "position",
        {AttributeDraft::decimal("latitude").mandatory(), AttributeDraft::text("names").many(),
         AttributeDraft::reference("contact", {"Node"}),
         AttributeDraft::structure("inner", {AttributeDraft::integer("depth")}).many()});
}

ClassDraft node() {
    return ClassDraft("Node")
        .key("id")
        .attribute(AttributeDraft::text("label"))
        .attribute(AttributeDraft::integer("height"))
        .attribute(AttributeDraft::decimal("power"))
        .attribute(AttributeDraft::boolean("enabled"))
        .attribute(AttributeDraft::unsignedInteger("port").checkedBy([](const std::string& port) {
            return std::stoull(port) > 65535 ? "expected 0..65535" : std::string();
        }))
        .attribute(AttributeDraft::enumeration("mode", {"red", "green", "blue"})
                       .defaultsTo(Value(std::string("green"))))
        .attribute(AttributeDraft::text("tags").multiplicity(0, 3))
        .attribute(AttributeDraft::text("serial").readOnly())
        .attribute(AttributeDraft::reference("peers", {"Node"}).multiplicity(0, 2))
        .attribute(position())
        .action(ActionDraft("reset")
                    .parameter(AttributeDraft::unsignedInteger("delay").mandatory())
                    .parameter(AttributeDraft::enumeration("how", {"soft", "hard"})
                                   .defaultsTo(Value(std::string("soft"))))
                    .result(AttributeDraft::integer("outcome")));
}

std::string whyNoSlot(const std::string& slot) {
    return slot.size() == 1 && slot[0] >= '0' && slot[0] <= '9' ? "" : "expected a digit";
}

Model build() {
    return ModelBuilder()
        .add(ClassDraft("Network").topLevel().key("id").attribute(AttributeDraft::text("label")))
        .add(node())
        .add(ClassDraft("Card")
                 .attribute(AttributeDraft::text("slot").naming().checkedBy(whyNoSlot))
                 .attribute(AttributeDraft::text("kind").mandatory())
                 .attribute(AttributeDraft::reference("home", {"Node"}).multiplicity(1, 1)))
        .add(ClassDraft("Rack").key("id"))
        .add(ClassDraft("Fan").key("id").instances(1, 2))
        .add(ClassDraft("Box").key("id").attribute(AttributeDraft::text("label")))
        .contain("Network", "Node")
        .contain("Network", "Box")
        .contain("Node", "Card")
        .contain("Node", "Rack")
        .contain("Rack", "Fan")
        .contain("Box", "Box")
        .uniDir(ReferenceDraft("Node", "peers"), {"Node"})
        .uniDir(ReferenceDraft("Card", "home"), {"Node"})
        .build();
}

AttributeValue manyTexts(ValueKind kind, const std::vector<std::string>& values) {
    return {kind, {values.begin(), values.end()}};
}

}

const Model& sampleStoreModel() {
    static const Model model = build();
    return model;
}

AttributeValue texts(const std::vector<std::string>& values) {
    return manyTexts(ValueKind::String, values);
}

AttributeValue refs(const std::vector<std::string>& dns) {
    return manyTexts(ValueKind::MoRef, dns);
}

std::vector<std::string> namesOf(const StoreTransaction& transaction, const std::string& parent,
                                 const std::string& className) {
    std::vector<std::string> names;
    ChildCursor cursor = transaction.children(parent, className);
    for (std::string name; transaction.next(cursor, name);) {
        names.push_back(name);
    }
    return names;
}

HostError errorOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const HostError& error) {
        return error;
    }
    return {OrvOk, ""};
}

OrvReturnT codeOf(const std::function<void()>& call) {
    return errorOf(call).code();
}

SampleStore::SampleStore() {
    store.load("Network=1", {{"label", text("home")}});
    store.load("Network=1,Node=a", {{"label", text("first")}, {"serial", text("S-1")}});
    store.load("Network=1,Node=b", {});
}

}
