// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Many clients use the loaded component at once.

#include "client/Client.h"
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

/// The work of one client in its own transaction: counts the masts that have the expected height.
/// -1 if a call is refused.
int readAll(Host& host, Client& client) {
    const Host::ReadTransaction transaction(host);
    int met = 0;
    const auto read = [&](const std::string& name) {
        const ReadValue height =
            client.get(transaction.handle(), "ManagedElement=east,Mast=" + name, "height", nullptr);
        const AttributeValue expected{ValueKind::Int, {std::int64_t{std::stoi(name)}}};
        met += toAttributeValue(height, ValueKind::Int) == expected ? 1 : 0;
        return true;
    };
    try {
        client.forEachChild(transaction.handle(), "ManagedElement=east", "Mast", read);
    } catch (const OperationError&) {
        return -1;
    }
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
    Client client(host);

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
