// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Many host threads in one component at once. What a wrong lock would do shows under
// ThreadSanitizer; what it would answer wrong shows here.

#include "Host.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

using namespace Scripted;

namespace {

constexpr unsigned long kThreads = 4;
constexpr int kRounds = 200;
const std::string kUnit = "ManagedElement=paris,Unit=7";
const std::string kUnitInside = "ManagedElement=1,Unit=7";
const std::string kPath = "ManagedElement,Unit";

/// Runs \p work on kThreads threads at once, each with its number from 0.
void onThreads(const std::function<void(unsigned long)>& work) {
    std::atomic<unsigned long> ready{0};
    std::vector<std::thread> threads;
    for (unsigned long i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            ++ready;
            while (ready < kThreads) {
                std::this_thread::yield();
            }
            work(i);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}

class Threads : public testing::Test {
protected:
    Threads() {
        host.mo("ManagedElement=1").with("managedElementId", strings({"1"}));
        host.mo(kUnitInside)
            .with("label", strings({"x"}))
            .with("to", refs({kUnitInside, kUnitInside}))
            .with("in", structs({{member("to", refs({kUnitInside}))}}));
        host.mo("ManagedElement=1,Unit=8");
        host.start();
        host.script().keepCalls(false);
    }

    void readEverything() const {
        const Client3 client = host.client();
        EXPECT_EQ(client.get(1, kUnit, "to").value(), refs({kUnit, kUnit}));
        EXPECT_EQ(client.get(1, kUnit, "in").value(), structs({{member("to", refs({kUnit}))}}));
        EXPECT_EQ(client.get(1, "ManagedElement=paris", "managedElementId").value(),
                  strings({"paris"}));
        EXPECT_EQ(client.getMany(1, kUnit, {"label", "to"}).values().size(), 2U);
        EXPECT_TRUE(client.exists(1, kUnit).thing);
        EXPECT_EQ(client.count(1, "ManagedElement=paris", "Unit").thing, 2U);
        EXPECT_EQ(client.get(1, "ManagedElement=rome", "label").code, OrvNotExist);
    }

    void iterateOnce(unsigned long txHandle) const {
        const Client3 client = host.client();
        const auto below = client.open(txHandle, "ManagedElement=paris", "Unit");
        const auto root = client.open(txHandle, "", "ManagedElement");
        EXPECT_EQ(client.next(below.thing).thing, "7");
        EXPECT_EQ(client.next(root.thing).thing, "paris");
        EXPECT_EQ(client.next(below.thing).thing, "8");
        EXPECT_EQ(client.next(below.thing).thing, "(null)");
        EXPECT_EQ(client.finalize(below.thing), OrvOk);
        EXPECT_EQ(client.next(4711).code, OrvNotActive);
    }

    Host host;
};

TEST_F(Threads, ReadersOfOneMo_AllSeeTheSame) {
    onThreads([&](unsigned long) {
        for (int i = 0; i < kRounds; ++i) {
            readEverything();
        }
    });
}

TEST_F(Threads, IteratorsOfOwnTransactions_LiveAndDieApart) {
    onThreads([&](unsigned long thread) {
        for (int i = 0; i < kRounds; ++i) {
            const unsigned long txHandle = static_cast<unsigned long>(i) * kThreads + thread;
            iterateOnce(txHandle);
            EXPECT_EQ(host.resource().finish(txHandle), OrvOk);
        }
    });
}

TEST_F(Threads, OneTransactionEnds_TheIteratorsOfTheOthersGoOn) {
    onThreads([&](unsigned long thread) {
        const Client3 client = host.client();
        for (int i = 0; i < kRounds; ++i) {
            const auto mine = client.open(thread, "ManagedElement=paris", "Unit");
            EXPECT_EQ(client.next(mine.thing).thing, "7");
            EXPECT_EQ(host.resource().finish(thread), OrvOk);
            EXPECT_EQ(host.resource().finish(thread), OrvOk);
        }
    });
}

TEST_F(Threads, BothVersionsIterate_TheirHandlesStayApart) {
    onThreads([&](unsigned long thread) {
        for (int i = 0; i < kRounds; ++i) {
            const auto old = host.client1().open(thread, "ManagedElement=paris", "Unit");
            const auto current = host.client().open(thread, "ManagedElement=paris", "Unit");
            EXPECT_EQ(host.client1().next(old.thing).thing, "7");
            EXPECT_EQ(host.client().next(current.thing).thing, "7");
            EXPECT_EQ(host.resource().finish(thread), OrvOk);
        }
    });
}

TEST_F(Threads, InterceptorsComeAndGoWhileOthersRead_EachReadHasOneAnswer) {
    Interceptor& one = host.interceptor(kPath);
    std::atomic<bool> done{false};
    onThreads([&](unsigned long thread) {
        if (thread == 0) {
            for (int i = 0; i < kRounds; ++i) {
                one.deregisterClass(kPath);
                EXPECT_EQ(one.registerClass(kPath), OrvOk);
                EXPECT_EQ(one.registerClass("other"), i == 0 ? OrvOk : OrvAlreadyExist);
                std::this_thread::yield();
            }
            done = true;
            return;
        }
        do {
            EXPECT_EQ(host.client().get(1, kUnit, "label").value(), strings({"x"}));
        } while (!done);
    });
}

TEST_F(Threads, InterceptorsForManyPaths_EachFindsItsOwn) {
    std::vector<Interceptor*> interceptors;
    for (unsigned long i = 0; i < kThreads; ++i) {
        interceptors.push_back(&host.interceptor("path" + std::to_string(i)));
    }
    onThreads([&](unsigned long thread) {
        Interceptor& mine = *interceptors[thread];
        for (int i = 0; i < kRounds; ++i) {
            const std::string path = std::to_string(thread) + "," + std::to_string(i);
            EXPECT_EQ(mine.registerClass(path), OrvOk);
            EXPECT_EQ(mine.getInterceptor(path), mine.address());
            mine.deregisterClass(path);
            EXPECT_EQ(mine.getInterceptor(path), nullptr);
        }
    });
}

TEST_F(Threads, ValidatingAndFinishing_BesideReaders) {
    onThreads([&](unsigned long thread) {
        for (int i = 0; i < kRounds; ++i) {
            if (thread % 2 == 0) {
                readEverything();
            } else {
                bool result = false;
                EXPECT_EQ(host.resource().join(thread), OrvOk);
                EXPECT_EQ(host.resource().validate(thread, &result), OrvOk);
                EXPECT_TRUE(result);
                EXPECT_EQ(host.resource().finish(thread), OrvOk);
            }
        }
    });
}

TEST_F(Threads, TracingAtFullLevel_BesideReadersAndIterators) {
    host.logLevel(8);
    onThreads([&](unsigned long thread) {
        for (int i = 0; i < 10; ++i) {
            readEverything();
            iterateOnce(thread);
            EXPECT_EQ(host.resource().finish(thread), OrvOk);
        }
    });
    EXPECT_FALSE(host.logRecords().empty());
}

TEST_F(Threads, WritersOfOwnTransactions_EachSeesItsOwnVerdict) {
    host.model().biDir({"Unit", "cells", 0, 1}, {"Cell", "unit", 0, 1});
    host.model().uniDir("Unit", "site", "Site", 0, 1);
    onThreads([&](unsigned long thread) {
        const std::string name = "w" + std::to_string(thread);
        const std::string mine = "ManagedElement=paris,Unit=" + name;
        const std::string cell = "ManagedElement=paris,Cell=" + name;
        for (int i = 0; i < 50; ++i) {
            bool result = false;
            EXPECT_EQ(host.client().create(thread, "ManagedElement=paris", "Unit", "unitId", name,
                                           {{"cells", refs({cell})}}),
                      OrvOk);
            EXPECT_EQ(host.client().create(thread, "ManagedElement=paris", "Cell", "cellId", name),
                      OrvOk);
            EXPECT_EQ(host.client3_1().set(thread, mine, {{"site", refs({"Site=1"})}}), OrvOk);
            EXPECT_EQ(host.resource().validate(thread, &result), OrvOk);
            EXPECT_TRUE(result);
            EXPECT_EQ(host.world().references("ManagedElement=1,Cell=" + name, "unit"),
                      std::vector<std::string>{"ManagedElement=1,Unit=" + name});
            EXPECT_EQ(host.client().set(thread, mine, "site", refs({"Site=1", "Site=2"})), OrvOk);
            EXPECT_EQ(host.resource().validate(thread, &result), OrvOk);
            EXPECT_FALSE(result);
            EXPECT_EQ(host.client().remove(thread, mine), OrvOk);
            EXPECT_EQ(host.client().remove(thread, cell), OrvOk);
            EXPECT_EQ(host.resource().finish(thread), OrvOk);
        }
    });
}

TEST_F(Threads, Version1BesideVersion3_EachKeepsItsMemory) {
    onThreads([&](unsigned long thread) {
        for (int i = 0; i < kRounds; ++i) {
            const auto old = host.client1().get(thread, kUnit, "to");
            EXPECT_EQ(readValue(old.thing), refs({kUnit, kUnit}));
            EXPECT_EQ(host.client().get(thread, kUnit, "to").value(), refs({kUnit, kUnit}));
            EXPECT_EQ(host.resource().finish(thread), OrvOk);
        }
    });
}
