// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BenchHost.h"

#include "client/OfferedTable.h"
#include "model/building/ModelBuilder.h"
#include "runtime/DataSet.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <utility>
#include <vector>

namespace OrvBench {

namespace {

using namespace OrvHost;

constexpr const char* identity = "Harbour-North";

Model makeModel() {
    const auto text = [](const char* name) { return AttributeDraft::text(name); };
    return ModelBuilder()
        .add(ClassDraft("ManagedElement").topLevel().key("managedElementId"))
        .add(ClassDraft("Mast")
                 .key("mastId")
                 .attribute(AttributeDraft::integer("height"))
                 .attribute(text("label"))
                 .attribute(text("owner"))
                 .attribute(text("networkManagedElementId"))
                 .attribute(AttributeDraft::structure("position", {text("place"), text("note")}))
                 .attribute(AttributeDraft::structure(
                     "feed", {text("place"), AttributeDraft::reference("from")}))
                 .attribute(AttributeDraft::reference("antennas", {"Antenna"}).many())
                 .attribute(AttributeDraft::reference("neighbours", {"Mast"}).many())
                 .action(ActionDraft("inspect")
                             .parameter(text("reason"))
                             .parameter(AttributeDraft::reference("inspector"))
                             .result(AttributeDraft::reference("inspected"))))
        .add(ClassDraft("Site").key("siteId"))
        .add(ClassDraft("Antenna")
                 .key("antennaId")
                 .attribute(text("label"))
                 .attribute(AttributeDraft::reference("mast", {"Mast"})))
        .contain("ManagedElement", "Mast")
        .contain("ManagedElement", "Site")
        .contain("Site", "Antenna")
        .biDir(ReferenceDraft("Mast", "antennas"), ReferenceDraft("Antenna", "mast"))
        .uniDir(ReferenceDraft("Mast", "neighbours"), {"Mast"})
        .build();
}

AttributeValue one(ValueKind kind, Value value) {
    return {kind, {std::move(value)}};
}

std::string mastDn(int mast) {
    return "ManagedElement=1,Mast=" + std::to_string(mast);
}

StructValue feedOf(int mast) {
    return StructValue({{"place", one(ValueKind::String, std::string("foot of the mast"))},
                        {"from", one(ValueKind::MoRef, mastDn((mast + 1) % BenchHost::masts))}});
}

StructValue positionOf(int mast) {
    return StructValue({{"place", one(ValueKind::String, "berth " + std::to_string(mast))},
                        {"note", one(ValueKind::String, std::string("behind the crane"))}});
}

void addMasts(DataSet& data) {
    for (int mast = 0; mast < BenchHost::masts; ++mast) {
        const std::string number = std::to_string(mast);
        data.add({mastDn(mast),
                  {{"height", one(ValueKind::Int, std::int64_t{mast})},
                   {"label", one(ValueKind::String, "mast number " + number)},
                   {"owner", one(ValueKind::String, std::string("harbour authority"))},
                   {"position", one(ValueKind::Struct, positionOf(mast))},
                   {"feed", one(ValueKind::Struct, feedOf(mast))},
                   {"neighbours", one(ValueKind::MoRef, mastDn((mast + 1) % BenchHost::masts))}},
                  {}});
    }
}

// The antennas of one site are all on different masts, so that each removed antenna is a write to
// another mast.
void addSite(DataSet& data, const std::string& site, int antennas, bool mounted) {
    const std::string dn = "ManagedElement=1,Site=" + site;
    data.add({dn, {}, {}});
    for (int antenna = 0; antenna < antennas; ++antenna) {
        std::vector<NamedValue> attributes = {
            {"label", one(ValueKind::String, "antenna " + std::to_string(antenna))}};
        if (mounted) {
            attributes.emplace_back("mast", one(ValueKind::MoRef, mastDn(antenna)));
        }
        data.add({dn + ",Antenna=" + std::to_string(antenna), std::move(attributes), {}});
    }
}

void load(Host& host) {
    DataSet data(host.model());
    data.add({"ManagedElement=1", {}, {}});
    addMasts(data);
    for (const int size : BenchHost::sizes) {
        addSite(data, "n" + std::to_string(size), size, true);
    }
    addSite(data, "free", BenchHost::freeAntennas, false);
    data.repair();
    std::vector<std::string> problems = data.check().problems;
    if (problems.empty()) {
        problems = data.moveInto(host.store());
    }
    if (!problems.empty()) {
        throw std::runtime_error("data: " + problems.front());
    }
}

void startAll(Host& host) {
    for (const ComponentReport& report : host.start()) {
        if (report.state != ComponentState::Started) {
            throw std::runtime_error(report.name + ": " + report.problem);
        }
    }
}

HostOptions options() {
    HostOptions made;
    made.preferredIdentity = identity;
    return made;
}

}

void check(OrvReturnT code, const char* what) {
    if (code != OrvOk) {
        std::fprintf(stderr, "%s: code %d\n", what, code);
        std::abort();
    }
}

BenchHost::BenchHost(const std::string& component)
    : mModel(makeModel()), mHost(std::make_unique<Host>(mModel, options())) {
    load(*mHost);
    mHost->loadComponent(component);
    startAll(*mHost);
    findTables();
}

BenchHost::~BenchHost() = default;

void BenchHost::findTables() {
    Host& h = *mHost;
    mComponent = {"component",
                  std::string("ManagedElement=") + identity,
                  requireOffered<OrvOamSpiManagedObject_1>(h, OrvOamSpiManagedObject_1_ExtCmId),
                  requireOffered<OrvOamSpiManagedObject_3>(h, OrvOamSpiManagedObject_3_ExtCmId),
                  requireOffered<VekOamSpiManagedObject_3_1>(h, VekOamSpiManagedObject_3_1_ExtCmId),
                  requireOffered<OrvOamSpiTransactionalResource_2>(
                      h, OrvOamSpiTransactionalResource_2_ExtCmId)};
    mRouter = {"router",
               "ManagedElement=1",
               h.router().getInterface1(),
               h.router().getInterface3(),
               h.router().getInterface3_1(),
               h.router().getResource()};
}

unsigned long BenchHost::begin() {
    return mHost->transactions().begin();
}

void BenchHost::abort(unsigned long txHandle) {
    check(mHost->transactions().abort(txHandle).code, "abort");
}

}
