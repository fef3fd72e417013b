// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SampleStore.h"

#include <gtest/gtest.h>

#include <malloc.h>

#include <chrono>
#include <cstdlib>
#include <iostream>

namespace OrvHost {
namespace {

// A sanitizer's allocator cannot be asked for sizes. A million is for optimised builds; the cost of
// an object does not depend on their number.
#ifdef ORV_SANITIZED
constexpr bool kIsSanitized = true;
constexpr std::size_t kNetworks = 10;
#elif defined(__OPTIMIZE__)
constexpr bool kIsSanitized = false;
constexpr std::size_t kNetworks = 1000;
#else
constexpr bool kIsSanitized = false;
constexpr std::size_t kNetworks = 50;
#endif
constexpr std::size_t kNodesInANetwork = 1000;

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

std::size_t heapInUse() {
    return mallinfo2().uordblks + mallinfo2().hblkhd;
}

std::string networkDn(std::size_t number) {
    return "Network=" + std::to_string(number);
}

std::string nodeDn(std::size_t number) {
    return networkDn(number / kNodesInANetwork) + ",Node=" + std::to_string(number);
}

/// Nine attributes of a usual mixture, two of them references with one value each.
std::vector<NamedValue> nineAttributes(std::size_t number) {
    const AttributeValue latitude{ValueKind::Double, {48.0 + static_cast<double>(number)}};
    const StructValue position{{{"latitude", latitude}, {"contact", refs({nodeDn(number ^ 1U)})}}};
    return {{"label", text("Node number " + std::to_string(number))},
            {"height", integer(static_cast<std::int64_t>(number % 120))},
            {"power", {ValueKind::Double, {46.5}}},
            {"enabled", {ValueKind::Bool, {number % 2 == 0}}},
            {"port", natural(number % 65536)},
            {"mode", choice("blue")},
            {"serial", text("SN-" + std::to_string(100000000 + number))},
            {"peers", refs({nodeDn(number ^ 1U)})},
            {"position", {ValueKind::Struct, {position}}}};
}

void loadAll(MoStore& store) {
    for (std::size_t network = 0; network < kNetworks; ++network) {
        store.load(networkDn(network), {});
    }
    for (std::size_t node = 0; node < kNetworks * kNodesInANetwork; ++node) {
        store.load(nodeDn(node), nineAttributes(node));
    }
}

void print(const char* what, double value, const char* unit) {
    std::cout << "  " << what << ": " << value << " " << unit << "\n";
}

/// One store for all tests, because filling it takes long.
class StoreMemoryTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        const std::size_t before = heapInUse();
        const auto begin = Clock::now();
        theStore = new MoStore(sampleStoreModel());
        loadAll(*theStore);
        seconds = secondsSince(begin);
        heap = heapInUse() - before;
    }
    static void TearDownTestSuite() {
        delete theStore;
        theStore = nullptr;
    }

    static inline MoStore* theStore = nullptr;
    static inline double seconds = 0;
    static inline std::size_t heap = 0;
    MoStore& store = *theStore;
};

TEST_F(StoreMemoryTest, Load_ObjectsOfNineAttributes_CostAFewHundredBytesEach) {
    const StoreMemory memory = store.memory();
    const auto objects = static_cast<double>(store.size());
    ASSERT_EQ(store.size(), kNetworks * (kNodesInANetwork + 1));

    const auto perObject = [objects](std::size_t bytes) {
        return static_cast<double>(bytes) / objects;
    };
    print("objects", objects, "");
    print("node", perObject(memory.nodes), "bytes per object");
    print("record", perObject(memory.records), "bytes per object");
    print("child lists", perObject(memory.childLists), "bytes per object");
    print("index", perObject(memory.index), "bytes per object");
    print("together", perObject(memory.total()), "bytes per object");
    print("together with the allocator's share", perObject(heap), "bytes per object");
    print("load", objects / seconds / 1000, "thousand objects per second");
    EXPECT_LT(perObject(memory.total()), 400.0);
    if (!kIsSanitized) {
        EXPECT_LT(perObject(heap), 400.0);
        EXPECT_GT(heap, memory.total());
    }
}

TEST_F(StoreMemoryTest, FindAndWalk_EveryObjectIsThere) {
    const auto tx = store.begin(1);
    const std::size_t expected = kNetworks * kNodesInANetwork;
    const std::size_t reads = 20000;
    const auto beginOfReads = Clock::now();
    for (std::size_t read = 0; read < reads; ++read) {
        EXPECT_TRUE(tx->exists(nodeDn((read * 7919) % expected)));
    }
    print("found by DN", secondsSince(beginOfReads) / reads * 1e9, "ns");

    const auto begin = Clock::now();
    std::size_t seen = 0;
    ChildCursor networks = tx->children("", "Network");
    for (std::string network; tx->next(networks, network);) {
        ChildCursor nodes = tx->children("Network=" + network, "Node");
        for (std::string node; tx->next(nodes, node);) {
            ++seen;
        }
    }
    EXPECT_EQ(seen, expected);
    print("walked", static_cast<double>(seen) / secondsSince(begin) / 1e6, "million per second");
}

}
}
