// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Scene.h"

#include "MemoryGauge.h"
#include "RanModel.h"
#include "RanNetwork.h"
#include "Tally.h"
#include "Values.h"
#include "base/Environment.h"
#include "runtime/DataSet.h"

#include <stdexcept>

namespace Soak {

using namespace OrvHost;

namespace {

constexpr std::uint32_t kObjects = 1200;

void require(bool isTrue, const std::string& what) {
    if (!isTrue) {
        throw std::runtime_error(what);
    }
}

/// Actions succeed; the one with a result returns a struct.
std::optional<AttributeValue> act(const ActionCall& call) {
    if (call.action.name != "changePci") {
        return std::nullopt;
    }
    return structure({{"previous", natural(1)}, {"informed", natural(call.parameters.size())}});
}

}

Scene::Scene(unsigned writers, Tally& tally) : Scene(writers, tally, nullptr, {}) {}

Scene::Scene(unsigned writers, Tally& tally, CommitLog& log, const std::string& host)
    : Scene(writers, tally, &log, host) {}

Scene::Scene(unsigned writers, Tally& tally, CommitLog* log, const std::string& host)
    : mModel(RanGenerator::readRanModel()) {
    for (unsigned writer = 0; writer < writers; ++writer) {
        mCasts.emplace_back("w" + std::to_string(writer));
    }
    mCasts.emplace_back("all");
    HostOptions options;
    options.preferredIdentity = "north";
    mHost = std::make_unique<Host>(mModel.model, options);
    const bool isFirst = log == nullptr || log->isNew();
    if (isFirst) {
        loadNetwork(mHost->store());
    }
    if (log != nullptr) {
        mHost->store().attach(*log, host);
    }
    mHost->router().setActionHandler(&act);
    mGauge.emplace(*mHost, &MemoryGauge::costOf);
    mTap.emplace(mHost->router(), tally);
    startComponent();
    mClients.emplace(*mHost);
    if (isFirst) {
        makeStage();
    }
}

void Scene::loadNetwork(MoStore& store) {
    DataSet data(store.model());
    const RanGenerator::RanNetwork network(RanGenerator::RanPlan::forSize(kObjects), 1);
    network.generate([&](const DataObject& object) {
        data.add({object.dn, object.attributes, {}});
    });
    require(data.check().problems.empty(), "the network is not consistent");
    require(data.moveInto(store).empty(), "the store refuses the network");
}

void Scene::startComponent() {
    // Another build of it, as for the component tests.
    mHost->loadComponent(environmentVariable("ORV_COMPONENT_LIBRARY").value_or(EXT_CM_PATH));
    for (const ComponentReport& report : mHost->start()) {
        require(report.state == ComponentState::Started, report.name + ": " + report.problem);
    }
}

void Scene::makeStage() {
    const unsigned long tx = mHost->transactions().begin();
    for (const Cast& cast : mCasts) {
        require(codeOf([&] { createUnits(tx, cast); }) == OrvOk,
                "the parents of a cast are refused");
    }
    for (std::size_t counter = 0; counter < kCounters; ++counter) {
        const NewObject object = parseNewObject(mModel.model, counterDn(counter));
        const OrvReturnT code = codeOf([&] {
            client3().create(tx, object,
                             {{"arfcnDL", natural(1)}, {"configuredMaxTxPower", integer(0)}});
        });
        require(code == OrvOk, "a counter is refused");
    }
    const TransactionOutcome outcome = mHost->transactions().commit(tx);
    require(outcome.accepted, "the stage is refused: " + outcome.reason);
}

void Scene::createUnits(unsigned long txHandle, const Cast& cast) {
    client3().create(txHandle, parseNewObject(mModel.model, cast.distributedUnit()),
                     {{"gNBId", natural(1)}, {"gNBDUId", natural(1)}});
    client3().create(txHandle, parseNewObject(mModel.model, cast.antennaUnit()), {});
}

std::string Scene::counterDn(std::size_t counter) {
    return kRoot + ",GNBDUFunction=1,NRSectorCarrier=counter-" + std::to_string(counter);
}

}
