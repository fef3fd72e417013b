// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Many clients use the loaded component at once.

#include "model/building/ModelBuilder.h"
#include "runtime/DataSet.h"
#include "runtime/Host.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

using namespace OrvHost;

constexpr int kThreads = 4;
constexpr int kRounds = 50;
constexpr int kMasts = 20;

constexpr VekMgmtSpiInterface_1 kClientTable = OrvOamSpiManagedObject_3_ExtCmId;

/// The work of one client in its own transaction: counts the masts that have the expected height.
int readAll(Host& host, OrvOamSpiManagedObject_3* client) {
    const Host::ReadTransaction transaction(host);
    unsigned long long iterator = 0;
    if (client->newMoIterator(transaction.handle(), "ManagedElement=east", "Mast", &iterator) !=
        OrvOk) {
        return -1;
    }
    int met = 0;
    char* name = nullptr;
    while (client->nextMo(iterator, &name) == OrvOk && name != nullptr) {
        const std::string dn = std::string("ManagedElement=east,Mast=") + name;
        OrvMoAttributeValueResult_3 result{};
        if (client->getMoAttribute(transaction.handle(), dn.c_str(), "height", &result) == OrvOk) {
            met += result.container->values[0].int64 == std::stoi(name) ? 1 : 0;
            result.release(result.container);
        }
    }
    client->finalizeMoIterator(iterator);
    return met;
}

TEST(HostThreadsTest, Readers_SideBySide_SeeAllObjects) {
    const Model model =
        ModelBuilder()
            .add(ClassDraft("ManagedElement").topLevel().key("managedElementId"))
            .add(ClassDraft("Mast").key("mastId").attribute(AttributeDraft::integer("height")))
            .contain("ManagedElement", "Mast")
            .build();
    HostOptions options;
    options.preferredIdentity = "east";
    Host host(model, options);
    DataSet data(model);
    data.add({"ManagedElement=1", {}, {}});
    for (std::int64_t mast = 0; mast < kMasts; ++mast) {
        data.add({"ManagedElement=1,Mast=" + std::to_string(mast),
                  {{"height", {ValueKind::Int, {mast}}}},
                  {}});
    }
    ASSERT_TRUE(data.moveInto(host.store()).empty());
    host.loadComponent(EXT_CM_PATH);
    host.start();
    auto* client = host.find<OrvOamSpiManagedObject_3>(kClientTable);
    ASSERT_NE(client, nullptr);

    std::atomic<int> complete{0};
    std::vector<std::thread> clients;
    for (int thread = 0; thread < kThreads; ++thread) {
        clients.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round) {
                complete += readAll(host, client) == kMasts ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : clients) {
        thread.join();
    }
    EXPECT_EQ(complete, kThreads * kRounds);
    EXPECT_EQ(host.transactions().openCount(), 0u);
}

}
