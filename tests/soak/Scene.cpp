// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Scene.h"

#include "RanModel.h"
#include "RanNetwork.h"
#include "Tally.h"
#include "runtime/DataSet.h"

#include <stdexcept>

namespace Soak {

using namespace OrvHost;
using namespace Scripted;

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
    const auto number = [](std::uint64_t value) {
        return AttributeValue{ValueKind::Uint, {value}};
    };
    return AttributeValue{
        ValueKind::Struct,
        {StructValue{{{"previous", number(1)}, {"informed", number(call.parameters.size())}}}}};
}

}

Scene::Scene(unsigned writers, Tally& tally) : mModel(RanGenerator::readRanModel()) {
    for (unsigned writer = 0; writer < writers; ++writer) {
        mCasts.emplace_back("w" + std::to_string(writer));
    }
    mCasts.emplace_back("all");
    HostOptions options;
    options.preferredIdentity = "north";
    mHost = std::make_unique<Host>(mModel.model, options);
    loadNetwork();
    mHost->router().setActionHandler(&act);
    mTap.emplace(mModel.model, mHost->router(), tally);
    startComponent();
    findTables();
    makeStage();
}

void Scene::loadNetwork() {
    DataSet data(mModel.model);
    const RanGenerator::RanNetwork network(RanGenerator::RanPlan::forSize(kObjects), 1);
    network.generate([&](const DataObject& object) {
        data.add({object.dn, object.attributes, {}});
    });
    require(data.check().empty(), "the network is not consistent");
    require(data.moveInto(mHost->store()).empty(), "the store refuses the network");
}

void Scene::startComponent() {
    mHost->loadComponent(EXT_CM_PATH);
    for (const ComponentReport& report : mHost->start()) {
        require(report.state == ComponentState::Started, report.name + ": " + report.problem);
    }
}

void Scene::findTables() {
    auto* table3 = mHost->find<OrvOamSpiManagedObject_3>(OrvOamSpiManagedObject_3_ExtCmId);
    auto* table3_1 = mHost->find<VekOamSpiManagedObject_3_1>(VekOamSpiManagedObject_3_1_ExtCmId);
    auto* table1 = mHost->find<OrvOamSpiManagedObject_1>(OrvOamSpiManagedObject_1_ExtCmId);
    require(table3 != nullptr && table3_1 != nullptr && table1 != nullptr, "a table is missing");
    mClient3.emplace(*table3);
    mClient3_1.emplace(*table3_1);
    mClient1.emplace(*table1);
}

void Scene::makeStage() {
    const unsigned long tx = mHost->transactions().begin();
    for (const Cast& cast : mCasts) {
        require(createUnits(tx, cast) == OrvOk, "the parents of a cast are refused");
    }
    for (std::size_t counter = 0; counter < kCounters; ++counter) {
        const OrvReturnT code =
            mClient3->create(tx, kRoot + ",GNBDUFunction=1", "NRSectorCarrier", "nRSectorCarrierId",
                             "counter-" + std::to_string(counter),
                             {{"arfcnDL", opaque(OrvMoAttributeTypeUint64_3, {1})},
                              {"configuredMaxTxPower", opaque(OrvMoAttributeTypeInt64_3, {0})}});
        require(code == OrvOk, "a counter is refused");
    }
    const TransactionOutcome outcome = mHost->transactions().commit(tx);
    require(outcome.accepted, "the stage is refused: " + outcome.reason);
    mHost->threadContext().clear();
    RouterTap::endTransaction();
}

OrvReturnT Scene::createUnits(unsigned long txHandle, const Cast& cast) const {
    const Scripted::Value number = opaque(OrvMoAttributeTypeUint64_3, {1});
    const OrvReturnT code = mClient3->create(txHandle, kRoot, "GNBDUFunction", "gNBDUFunctionId",
                                             cast.name(), {{"gNBId", number}, {"gNBDUId", number}});
    return code != OrvOk ? code
                         : mClient3->create(txHandle, kRoot + ",Equipment=1", "AntennaUnit",
                                            "antennaUnitId", cast.name(), {});
}

std::string Scene::counterDn(std::size_t counter) {
    return kRoot + ",GNBDUFunction=1,NRSectorCarrier=counter-" + std::to_string(counter);
}

}
