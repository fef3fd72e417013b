// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "EditWorld.h"

#include "base/DnView.h"
#include "model/building/ModelBuilder.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace EditTests {

namespace {

// The transaction service counts from 1 and will not reach this number.
constexpr TransactionId kReader = kNoTransaction - 1;

HostOptions knownAsEast() {
    HostOptions options;
    options.preferredIdentity = "east";
    return options;
}

void require(bool holds, const std::string& text) {
    if (!holds) {
        throw std::logic_error(text);
    }
}

/// One side of an association with its far side.
struct Side {
    std::string moc;
    std::string attribute;
    std::string farClass;
    std::string farAttribute;
};

std::vector<Side> sidesOf(const Model& model) {
    std::vector<Side> sides;
    for (const BiDirAssociation& association : model.biDirAssociations) {
        for (const int near : {0, 1}) {
            const AssociationEnd& here = association.ends[near];
            const AssociationEnd& far = association.ends[1 - near];
            sides.push_back(
                {model.classes[here.moc].name, far.name, model.classes[far.moc].name, here.name});
        }
    }
    return sides;
}

}

Model makeModel() {
    return ModelBuilder()
        .add(ClassDraft("ManagedElement").topLevel().key("managedElementId"))
        .add(ClassDraft("Area")
                 .key("areaId")
                 .attribute(AttributeDraft::text("label"))
                 .attribute(AttributeDraft::reference("members", {"Unit", "Port"}).many())
                 .attribute(AttributeDraft::reference("keeps", {"Unit"}).many())
                 .attribute(AttributeDraft::reference("plan", {"Area"}).many()))
        .add(ClassDraft("Unit")
                 .key("unitId")
                 .attribute(AttributeDraft::text("label"))
                 .attribute(AttributeDraft::integer("size").defaultsTo(std::int64_t{5}))
                 .attribute(AttributeDraft::text("need").mandatory())
                 .attribute(AttributeDraft::text("tags").many())
                 .attribute(AttributeDraft::text("status").readOnly())
                 .attribute(AttributeDraft::reference("ports", {"Port"}).many())
                 .attribute(AttributeDraft::reference("peers", {"Unit"}).many())
                 .attribute(AttributeDraft::reference("peerOf", {"Unit"}).many())
                 .attribute(AttributeDraft::reference("friends", {"Unit"}).many())
                 .attribute(AttributeDraft::reference("area", {"Area"}))
                 .attribute(AttributeDraft::reference("keptBy", {"Area"}).many()))
        .add(ClassDraft("Port")
                 .key("portId")
                 .attribute(AttributeDraft::reference("unit", {"Unit"}))
                 .attribute(AttributeDraft::reference("area", {"Area"})))
        .contain("ManagedElement", "Area")
        .contain("Area", "Area")
        .contain("Area", "Unit")
        .contain("Area", "Port")
        .contain("Unit", "Port")
        .biDir(ReferenceDraft("Unit", "ports"), ReferenceDraft("Port", "unit"))
        .biDir(ReferenceDraft("Unit", "peers"), ReferenceDraft("Unit", "peerOf"))
        .biDir(ReferenceDraft("Unit", "friends"), ReferenceDraft("Unit", "friends"))
        .biDir(ReferenceDraft("Unit", "area"), ReferenceDraft("Area", "members"))
        .biDir(ReferenceDraft("Area", "members"), ReferenceDraft("Port", "area"))
        .biDir(ReferenceDraft("Area", "keeps").keepAtDelete(), ReferenceDraft("Unit", "keptBy"))
        .uniDir(ReferenceDraft("Area", "plan"), {"Area"})
        .build();
}

std::string classNameOf(const std::string& dn) {
    return std::string(DnView(dn).last().type());
}

std::string parentDnOf(const std::string& dn) {
    return std::string(DnView(dn).parent().text());
}

bool isBelowOrSame(const std::string& dn, const std::string& top) {
    return DnView(dn).isAtOrBelow(DnView(top));
}

AttributeValue refs(const Dns& dns) {
    return {ValueKind::MoRef, std::vector<Value>(dns.begin(), dns.end())};
}

Dns dnsOf(const AttributeValue& value) {
    Dns dns;
    for (const Value& one : value.values) {
        dns.push_back(std::get<std::string>(one));
    }
    return dns;
}

Dns refsIn(const State& state, const std::string& dn, const std::string& attribute) {
    const auto object = state.find(dn);
    if (object == state.end()) {
        return {};
    }
    const auto found = object->second.find(attribute);
    return found != object->second.end() ? dnsOf(found->second) : Dns();
}

EditWorld::EditWorld() : mHost(mModel, knownAsEast()) {
    mHost.store().load("ManagedElement=1", {});
    mHost.loadComponent(EXT_CM_PATH);
    for (const ComponentReport& report : mHost.start()) {
        require(report.state == ComponentState::Started, report.name + ": " + report.problem);
    }
    mClients = std::make_unique<Clients>(mHost);
}

EditWorld::~EditWorld() {
    mClients.reset();
    mHost.shutdown();
}

State EditWorld::read(unsigned long txHandle, Dns* order) {
    State state;
    Dns dns;
    readBelow(txHandle, kRoot, mModel.classes[*mModel.findClass("ManagedElement")], state, dns);
    if (order != nullptr) {
        *order = std::move(dns);
    }
    return state;
}

void EditWorld::readBelow(unsigned long txHandle, const std::string& dn, const ClassDef& moc,
                          State& state, Dns& order) {
    order.push_back(dn);
    auto& attributes = state[dn];
    std::vector<std::string> names;
    for (const AttributeDef& def : moc.attributes) {
        names.push_back(def.name);
    }
    for (const NamedReadValue& read : mClients->version3().get(txHandle, dn, names, &moc)) {
        const AttributeDef& def = *moc.findAttribute(read.first);
        const auto value = toAttributeValue(read.second, def.type.kind);
        require(value.has_value(), dn + "." + def.name + " is of an unknown type");
        if (!def.isNaming && !value->values.empty()) {
            attributes[def.name] = *value;
        }
    }
    for (const ClassIndex child : moc.children) {
        const ClassDef& childMoc = mModel.classes[child];
        Dns dns;
        mClients->version3().forEachChild(txHandle, dn, childMoc.name,
                                          [&](const std::string& name) {
                                              dns.push_back(DnView(dn).child(childMoc.name, name));
                                              return true;
                                          });
        for (const std::string& childDn : dns) {
            readBelow(txHandle, childDn, childMoc, state, order);
        }
    }
}

std::vector<std::string> EditWorld::recount() {
    const auto transaction = mHost.store().begin(kReader);
    std::vector<std::string> dns{"ManagedElement=1"};
    for (std::size_t at = 0; at < dns.size(); ++at) {
        const std::string dn = dns[at];
        for (const ClassIndex child : transaction->classOf(dn).children) {
            const std::string& className = mModel.classes[child].name;
            ChildCursor cursor = transaction->children(dn, className);
            std::string name;
            while (transaction->next(cursor, name)) {
                dns.push_back(dn + "," + className + "=" + name);
            }
        }
    }
    std::vector<std::string> problems;
    for (const Side& side : sidesOf(mModel)) {
        for (const std::string& dn : dns) {
            if (classNameOf(dn) != side.moc) {
                continue;
            }
            for (const std::string& target : dnsOf(transaction->get(dn, side.attribute))) {
                if (classNameOf(target) != side.farClass || !transaction->exists(target)) {
                    continue;
                }
                const Dns back = dnsOf(transaction->get(target, side.farAttribute));
                const auto count = std::count(back.begin(), back.end(), dn);
                if (count != 1) {
                    problems.push_back(dn + "." + side.attribute + " names " + target + ", which " +
                                       "names it " + std::to_string(count) + " times in " +
                                       side.farAttribute);
                }
            }
        }
    }
    return problems;
}

}
