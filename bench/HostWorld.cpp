// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "HostWorld.h"

#include "client/OfferedTable.h"
#include "model/building/ModelBuilder.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace OrvBench {

namespace {

using namespace OrvHost;

Model makeModel(const HostShape& shape) {
    return ModelBuilder()
        .add(ClassDraft("ManagedElement").topLevel().key("managedElementId"))
        .add(ClassDraft("Site").key("siteId"))
        .add(ClassDraft("Antenna")
                 .key("antennaId")
                 .attribute(AttributeDraft::text("label"))
                 .attribute(AttributeDraft::integer("height"))
                 .attribute(AttributeDraft::reference("near", {"Mast"}).many())
                 .attribute(AttributeDraft::reference("masts", {"Mast"})
                                .multiplicity(shape.masts.lower, shape.masts.upper)))
        .add(ClassDraft("Mast")
                 .key("mastId")
                 .attribute(AttributeDraft::text("label"))
                 .attribute(AttributeDraft::reference("antennas", {"Antenna"})
                                .multiplicity(shape.antennas.lower, shape.antennas.upper)))
        .contain("ManagedElement", "Site")
        .contain("Site", "Antenna")
        .contain("ManagedElement", "Mast")
        .biDir(ReferenceDraft("Antenna", "masts"), ReferenceDraft("Mast", "antennas"))
        .uniDir(ReferenceDraft("Antenna", "near"), {"Mast"})
        .build();
}

AttributeValue one(ValueKind kind, std::string text) {
    return {kind, {Value(std::move(text))}};
}

void load(MoStore& store, const HostShape& shape) {
    store.load("ManagedElement=1", {});
    store.load(HostWorld::site(), {});
    for (int number = 0; number < shape.antennaCount; ++number) {
        std::vector<NamedValue> values = {
            {"label", one(ValueKind::String, "antenna " + std::to_string(number))}};
        if (shape.areMounted) {
            values.emplace_back("masts", one(ValueKind::MoRef, HostWorld::mast(number)));
        }
        store.load(HostWorld::antenna(number), values);
    }
    for (int number = 0; number < shape.mastCount; ++number) {
        std::vector<NamedValue> values;
        if (shape.areMounted) {
            values.emplace_back("antennas", one(ValueKind::MoRef, HostWorld::antenna(number)));
        }
        store.load(HostWorld::mast(number), values);
    }
}

}

void require(bool isTrue, const char* what) {
    if (!isTrue) {
        std::fprintf(stderr, "%s: not as expected\n", what);
        std::abort();
    }
}

HostWorld::HostWorld(const std::string& component, const HostShape& shape)
    : mModel(makeModel(shape)), mHost(std::make_unique<Host>(mModel, HostOptions())) {
    load(mHost->store(), shape);
    mHost->loadComponent(component);
    for (const ComponentReport& report : mHost->start()) {
        require(report.state == ComponentState::Started, report.problem.c_str());
    }
    mTable = requireOffered<OrvOamSpiManagedObject_3>(*mHost, OrvOamSpiManagedObject_3_ExtCmId);
}

std::string HostWorld::antenna(int number) {
    return site() + ",Antenna=" + std::to_string(number);
}

std::string HostWorld::mast(int number) {
    return "ManagedElement=1,Mast=" + std::to_string(number);
}

void HostWorld::commit(unsigned long txHandle) {
    const TransactionOutcome outcome = mHost->transactions().commit(txHandle);
    require(outcome.accepted, outcome.reason.c_str());
}

void HostWorld::abort(unsigned long txHandle) {
    require(mHost->transactions().abort(txHandle).accepted, "abort");
}

void HostWorld::set(unsigned long txHandle, const std::string& dn, const char* attribute,
                    const Value3& value) const {
    require(mTable->setMoAttribute(txHandle, dn.c_str(), attribute, value.container()) == OrvOk,
            attribute);
}

std::vector<std::string> HostWorld::texts(unsigned long txHandle, const std::string& dn,
                                          const char* attribute) const {
    OrvMoAttributeValueResult_3 result{};
    require(mTable->getMoAttribute(txHandle, dn.c_str(), attribute, &result) == OrvOk, attribute);
    std::vector<std::string> found;
    for (std::uint32_t at = 0; at < result.container->count; ++at) {
        found.emplace_back(result.container->values[at].string);
    }
    result.release(result.container);
    return found;
}

unsigned long long HostWorld::count(unsigned long txHandle, const std::string& parent,
                                    const char* className) const {
    unsigned long long found = 0;
    require(mTable->countMoChildren(txHandle, parent.c_str(), className, &found) == OrvOk,
            className);
    return found;
}

}
