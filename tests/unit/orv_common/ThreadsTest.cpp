// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Component.h"
#include "LoggingWrapper.h"
#include "MeIdTranslator.h"
#include "OrvOamSpiManagedObject_3.h"
#include "Portal.h"

#include <atomic>
#include <barrier>
#include <chrono>
#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr std::size_t threadCount = 8;

// Runs `work` on several threads that begin together.
void onThreads(const std::function<void(std::size_t)>& work) {
    std::barrier begin(static_cast<std::ptrdiff_t>(threadCount));
    std::vector<std::thread> threads;
    for (std::size_t index = 0; index < threadCount; ++index) {
        threads.emplace_back([&, index] {
            begin.arrive_and_wait();
            work(index);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}

// First in this program, so that the race is for the building of the one object.
TEST(LoggingWrapperThreads, Instance_FirstUseFromManyThreads_IsOne) {
    std::vector<Orv::LoggingWrapper*> seen(threadCount);
    onThreads([&](std::size_t index) { seen[index] = Orv::LoggingWrapper::instance(); });
    EXPECT_NE(seen.front(), nullptr);
    EXPECT_EQ(std::set<Orv::LoggingWrapper*>(seen.begin(), seen.end()).size(), 1U);
}

namespace {

std::atomic<int> built{0};

// Takes its time to be built, so that all threads come while it is.
class SlowComponent : public Orv::Component<SlowComponent> {
public:
    SlowComponent() : Component("SlowComponent") {
        ++built;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }

private:
    OrvReturnT initialize(const char*) override { return OrvOk; }
    void terminate() override {}
    OrvReturnT start(OrvStateChangeReason) override { return OrvOk; }
    OrvReturnT stop(OrvStateChangeReason) override { return OrvOk; }
};

}

TEST(ComponentThreads, Instance_FirstUseFromManyThreads_IsBuiltOnce) {
    std::vector<SlowComponent*> seen(threadCount);
    onThreads([&](std::size_t index) { seen[index] = &SlowComponent::instance(); });
    EXPECT_EQ(built, 1);
    EXPECT_EQ(std::set<SlowComponent*>(seen.begin(), seen.end()).size(), 1U);
}

TEST(LoggingWrapperThreads, Printf_FromManyThreads_GivesEachRecordWholeAndOneAtATime) {
    std::vector<std::string> texts; // no lock of its own: the wrapper calls one at a time
    auto* wrapper = Orv::LoggingWrapper::instance();
    wrapper->setSink([&](const Orv::LogRecord& record) { texts.push_back(record.text); });
    onThreads([&](std::size_t index) {
        for (int line = 0; line < 200; ++line) {
            wrapper->log_printf("f", 4, 1, "thread %zu line %d", index, line);
            wrapper->setLevel(wrapper->get_level());
        }
    });
    wrapper->setSink(nullptr);
    EXPECT_EQ(texts.size(), threadCount * 200);
    EXPECT_EQ(std::set<std::string>(texts.begin(), texts.end()).size(), threadCount * 200);
}

TEST(LoggingWrapperThreads, SetSink_WhileOthersLog_LeavesNoCallInTheOldSink) {
    auto* wrapper = Orv::LoggingWrapper::instance();
    std::atomic<bool> done{false};
    std::thread writer([&] {
        while (!done) {
            wrapper->trace_printf("a", "f", 1, 0, "text");
        }
    });
    for (int round = 0; round < 200; ++round) {
        int calls = 0; // gone at the end of the round: a late call would be seen by the sanitizers
        wrapper->setSink([&calls](const Orv::LogRecord&) { ++calls; });
        wrapper->setSink(nullptr);
        EXPECT_GE(calls, 0);
    }
    done = true;
    writer.join();
}

TEST(MeIdTranslatorThreads, Translate_WhileTheHostConfigures_GivesOneIdentityOrTheOther) {
    auto* translator = Orv::MeIdTranslator::instance();
    translator->configure("first", "");
    onThreads([&](std::size_t index) {
        for (int round = 0; round < 500; ++round) {
            if (index == 0) {
                translator->configure(round % 2 == 0 ? "second identity" : "first", "fallback");
                continue;
            }
            const std::string external = translator->toExternalDn("ManagedElement=1,A=1");
            EXPECT_TRUE(external == "ManagedElement=first,A=1" ||
                        external == "ManagedElement=second identity,A=1")
                << external;
            translator->toInternalDn("ManagedElement=first,A=1");
        }
    });
    translator->configure("", "");
}

TEST(MeIdTranslatorThreads, Identity_ReadByMany_IsTheSameText) {
    auto* translator = Orv::MeIdTranslator::instance();
    translator->configure("gnb-7", "");
    onThreads([&](std::size_t) {
        for (int round = 0; round < 500; ++round) {
            EXPECT_STREQ(translator->identity(), "gnb-7");
        }
    });
    translator->configure("", "");
}

namespace {

OrvOamSpiManagedObject_3 router = {};
std::atomic<int> lookups{0};

OrvReturnT lookUpEverySecond(VekMgmtSpiInterface_1, void** result) {
    if (++lookups % 2 == 1) {
        return OrvNotExist;
    }
    *result = &router;
    return OrvOk;
}

}

TEST(PortalThreads, GetInterface_FromManyThreads_GivesTheTableOrNothing) {
    const VekMgmtSpiInterface_1 id = {"Component", "Interface", "3"};
    for (int round = 0; round < 50; ++round) {
        Orv::Portal::instance()->attach(&lookUpEverySecond);
        onThreads([&](std::size_t) {
            auto* found = Orv::Portal::instance()->getInterface<OrvOamSpiManagedObject_3>(id);
            EXPECT_TRUE(found == nullptr || found == &router);
        });
        EXPECT_EQ(Orv::Portal::instance()->getInterface<OrvOamSpiManagedObject_3>(id), &router);
        Orv::Portal::instance()->detach();
    }
}
