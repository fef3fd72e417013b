// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SampleStore.h"

#include "model/ModelBuilder.h"

namespace OrvHost {

namespace {

AttributeSpec position() {
    return AttributeSpec::structure(
        "position",
        {AttributeSpec::decimal("latitude").mandatory(), AttributeSpec::text("names").many(),
         AttributeSpec::reference("contact", {"Node"}),
         AttributeSpec::structure("inner", {AttributeSpec::integer("depth")}).many()});
}

ClassSpec node() {
    return ClassSpec("Node")
        .key("id")
        .attribute(AttributeSpec::text("label"))
        .attribute(AttributeSpec::integer("height"))
        .attribute(AttributeSpec::decimal("power"))
        .attribute(AttributeSpec::boolean("enabled"))
        .attribute(AttributeSpec::unsignedInteger("port").checkedBy([](const std::string& port) {
            return std::stoull(port) > 65535 ? "expected 0..65535" : std::string();
        }))
        .attribute(AttributeSpec::enumeration("mode", {"red", "green", "blue"})
                       .defaultsTo(Value(std::string("green"))))
        .attribute(AttributeSpec::text("tags").multiplicity(0, 3))
        .attribute(AttributeSpec::text("serial").readOnly())
        .attribute(AttributeSpec::reference("peers", {"Node"}).multiplicity(0, 2))
        .attribute(position())
        .action(ActionSpec("reset")
                    .parameter(AttributeSpec::unsignedInteger("delay").mandatory())
                    .parameter(AttributeSpec::enumeration("how", {"soft", "hard"})
                                   .defaultsTo(Value(std::string("soft"))))
                    .result(AttributeSpec::integer("outcome")));
}

std::string whyNoSlot(const std::string& slot) {
    return slot.size() == 1 && slot[0] >= '0' && slot[0] <= '9' ? "" : "expected a digit";
}

Model build() {
    return ModelBuilder()
        .add(ClassSpec("Network").topLevel().key("id").attribute(AttributeSpec::text("label")))
        .add(node())
        .add(ClassSpec("Card")
                 .attribute(AttributeSpec::text("slot").naming().checkedBy(whyNoSlot))
                 .attribute(AttributeSpec::text("kind").mandatory())
                 .attribute(AttributeSpec::reference("home", {"Node"}).multiplicity(1, 1)))
        .add(ClassSpec("Rack").key("id"))
        .add(ClassSpec("Fan").key("id").instances(1, 2))
        .add(ClassSpec("Box").key("id").attribute(AttributeSpec::text("label")))
        .contain("Network", "Node")
        .contain("Network", "Box")
        .contain("Node", "Card")
        .contain("Node", "Rack")
        .contain("Rack", "Fan")
        .contain("Box", "Box")
        .uniDir(ReferenceSpec("Node", "peers"), {"Node"})
        .uniDir(ReferenceSpec("Card", "home"), {"Node"})
        .build();
}

AttributeValue manyTexts(ValueKind kind, const std::vector<std::string>& values) {
    return {kind, {values.begin(), values.end()}};
}

}

const Model& sampleModel() {
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
