// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The sample interceptor as it is built, loaded beside the component. The environment variables
// ORV_COMPONENT_LIBRARY and ORV_SAMPLE_LIBRARY point the tests at other builds of the two.

#include "OrvOamSpiManagedObject_3.h"
#include "SmallHost.h"

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <initializer_list>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr auto reason = OrvStateChangeReasonHostStart;

const std::string cell = "ManagedElement=1,GNBDUFunction=1,NRCellDU=7";
const std::string clientCell = "ManagedElement=paris,GNBDUFunction=1,NRCellDU=7";

std::string pathOf(const char* variable, const char* otherwise) {
    const char* const path = std::getenv(variable); // NOLINT(concurrency-mt-unsafe)
    return path != nullptr ? path : otherwise;
}

std::string samplePath() {
    return pathOf("ORV_SAMPLE_LIBRARY", ORV_SAMPLE_LIBRARY_DEFAULT);
}

std::string textOf(const OrvMoAttributeValueContainer_3* container) {
    return container->count == 1 ? container->values[0].string : "(none)";
}

// A directory that goes with its contents.
class TemporaryDirectory {
public:
    TemporaryDirectory() {
        std::string pattern = (std::filesystem::temp_directory_path() / "sampleXXXXXX").string();
        path = mkdtemp(pattern.data());
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory() { std::filesystem::remove_all(path); }

    std::filesystem::path path;
};

class SampleInterceptorTest : public ::testing::Test {
protected:
    void SetUp() override {
        component = &host.load(pathOf("ORV_COMPONENT_LIBRARY", ORV_COMPONENT_LIBRARY_DEFAULT));
        ASSERT_EQ(component->start(reason), OrvOk);
        sample = &host.load(samplePath());
        table = static_cast<OrvOamSpiManagedObject_3*>(host.find(OrvOamSpiManagedObject_3_ExtCmId));
        host.router.put(cell, "administrativeState", "UNLOCKED");
        host.router.put(cell, "operationalState", "as stored");
        host.router.put(cell, "userLabel", "north");
    }
    void TearDown() override { EXPECT_EQ(host.router.unreleased(), 0); }

    void start() { ASSERT_EQ(sample->start(reason), OrvOk); }

    // What a client reads; the code, where it is not OrvOk.
    std::string get(const std::string& dn, const char* attribute) {
        OrvMoAttributeValueResult_3 result = {nullptr, nullptr};
        const OrvReturnT code = table->getMoAttribute(1, dn.c_str(), attribute, &result);
        if (code != OrvOk) {
            return std::to_string(code);
        }
        const std::string text = textOf(result.container);
        result.release(result.container);
        return text;
    }

    std::vector<std::string> getMany(const std::string& dn,
                                     std::initializer_list<const char*> attributes) {
        std::vector<const char*> names(attributes);
        names.push_back(nullptr);
        OrvMoAttributeValuesResult_3 result = {nullptr, nullptr};
        const OrvReturnT code = table->getMoAttributes(1, dn.c_str(), names.data(), &result);
        if (code != OrvOk) {
            return {std::to_string(code)};
        }
        std::vector<std::string> texts;
        for (auto** container = result.containers; *container != nullptr; ++container) {
            texts.push_back(textOf(*container));
        }
        result.release(result.containers);
        return texts;
    }

    SmallHost host;
    OrvMgmtSpiComponent_1* component = nullptr;
    OrvMgmtSpiComponent_1* sample = nullptr;
    OrvOamSpiManagedObject_3* table = nullptr;
};

using Texts = std::vector<std::string>;

}

TEST_F(SampleInterceptorTest, Record_RequiresTheRepositoryAndOffersNothing) {
    EXPECT_EQ(sample->interfaceArray[0], nullptr);
    ASSERT_NE(sample->dependencyArray[0], nullptr);
    EXPECT_STREQ(sample->dependencyArray[0]->componentName, "OrvOamSpiExtCmRouterService");
    EXPECT_STREQ(sample->dependencyArray[0]->interfaceName, "ExtCmInterceptorRepositoryI");
    EXPECT_STREQ(sample->dependencyArray[0]->interfaceVersion, "1");
    EXPECT_EQ(sample->dependencyArray[1], nullptr);
}

TEST_F(SampleInterceptorTest, Get_ServedAttribute_FollowsTheAdministrativeState) {
    start();
    EXPECT_EQ(get(clientCell, "operationalState"), "ENABLED");
    host.router.put(cell, "administrativeState", "SHUTTINGDOWN");
    EXPECT_EQ(get(clientCell, "operationalState"), "ENABLED");
    host.router.put(cell, "administrativeState", "LOCKED");
    EXPECT_EQ(get(clientCell, "operationalState"), "DISABLED");
}

TEST_F(SampleInterceptorTest, Get_NoAdministrativeState_CountsAsLocked) {
    start();
    const std::string other = "ManagedElement=paris,GNBDUFunction=1,NRCellDU=8";
    EXPECT_EQ(get(other, "operationalState"), "DISABLED");
    EXPECT_EQ(getMany(other, {"operationalState"}), (Texts{"DISABLED"}));
}

TEST_F(SampleInterceptorTest, Get_OtherAttribute_ComesFromTheRouter) {
    start();
    EXPECT_EQ(get(clientCell, "userLabel"), "north");
    EXPECT_EQ(get(clientCell, "administrativeState"), "UNLOCKED");
    EXPECT_EQ(get(clientCell, "missing"), "(none)");
}

TEST_F(SampleInterceptorTest, Get_OtherClass_ComesFromTheRouter) {
    start();
    host.router.put("ManagedElement=1,GNBDUFunction=1", "operationalState", "as stored");
    EXPECT_EQ(get("ManagedElement=paris,GNBDUFunction=1", "operationalState"), "as stored");
}

TEST_F(SampleInterceptorTest, GetMany_ServedAttributeAnywhere_AgreesWithTheSingleRead) {
    start();
    EXPECT_EQ(getMany(clientCell, {"operationalState"}), (Texts{"ENABLED"}));
    EXPECT_EQ(getMany(clientCell, {"operationalState", "userLabel"}), (Texts{"ENABLED", "north"}));
    EXPECT_EQ(getMany(clientCell, {"userLabel", "operationalState"}), (Texts{"north", "ENABLED"}));
    EXPECT_EQ(getMany(clientCell, {"administrativeState", "operationalState", "missing",
                                   "operationalState", "administrativeState"}),
              (Texts{"UNLOCKED", "ENABLED", "(none)", "ENABLED", "UNLOCKED"}));
}

TEST_F(SampleInterceptorTest, GetMany_WithoutServedAttribute_ComesFromTheRouter) {
    start();
    EXPECT_EQ(getMany(clientCell, {"userLabel", "administrativeState"}),
              (Texts{"north", "UNLOCKED"}));
    EXPECT_EQ(getMany(clientCell, {}), Texts{});
}

TEST_F(SampleInterceptorTest, Get_RouterRefuses_PassesTheCode) {
    start();
    host.router.refuse(-77);
    EXPECT_EQ(get(clientCell, "operationalState"), "-77");
    EXPECT_EQ(get(clientCell, "userLabel"), "-77");
    EXPECT_EQ(getMany(clientCell, {"userLabel", "operationalState"}), (Texts{"-77"}));
    EXPECT_EQ(getMany(clientCell, {"userLabel"}), (Texts{"-77"}));
}

TEST_F(SampleInterceptorTest, Set_AnyAttribute_ReachesTheRouter) {
    start();
    OrvMoAttributeValue_3 slot = {"south"};
    OrvMoAttributeValueContainer_3 value = {OrvMoAttributeTypeString_3, 1, &slot};
    EXPECT_EQ(table->setMoAttribute(1, clientCell.c_str(), "userLabel", &value), OrvOk);
    EXPECT_EQ(table->setMoAttribute(1, clientCell.c_str(), "operationalState", &value), OrvOk);
    EXPECT_EQ(host.router.writes(),
              (Texts{cell + " userLabel=south", cell + " operationalState=south"}));
    host.router.refuse(-5);
    EXPECT_EQ(table->setMoAttribute(1, clientCell.c_str(), "operationalState", &value), -5);
}

TEST_F(SampleInterceptorTest, Set_LockedCell_CannotShutDown) {
    start();
    OrvMoAttributeValue_3 slot = {"SHUTTINGDOWN"};
    OrvMoAttributeValueContainer_3 value = {OrvMoAttributeTypeEnumeration_3, 1, &slot};
    host.router.put(cell, "administrativeState", "LOCKED");
    EXPECT_EQ(table->setMoAttribute(1, clientCell.c_str(), "administrativeState", &value),
              OrvValidationFailed);
    EXPECT_EQ(table->setMoAttribute(1, clientCell.c_str(), "userLabel", &value), OrvOk);
    host.router.put(cell, "administrativeState", "UNLOCKED");
    EXPECT_EQ(table->setMoAttribute(1, clientCell.c_str(), "administrativeState", &value), OrvOk);
    EXPECT_EQ(host.router.writes(), (Texts{cell + " userLabel=SHUTTINGDOWN",
                                           cell + " administrativeState=SHUTTINGDOWN"}));
}

TEST_F(SampleInterceptorTest, Set_ValueWithoutAText_IsForTheRouter) {
    start();
    host.router.put(cell, "administrativeState", "LOCKED");
    OrvMoAttributeValue_3 slot = {nullptr};
    OrvMoAttributeValueContainer_3 value = {OrvMoAttributeTypeEnumeration_3, 1, &slot};
    EXPECT_EQ(table->setMoAttribute(1, clientCell.c_str(), "administrativeState", &value), OrvOk);
    value.values = nullptr;
    EXPECT_EQ(table->setMoAttribute(1, clientCell.c_str(), "administrativeState", &value), OrvOk);
    EXPECT_EQ(host.router.writes(),
              (Texts{cell + " administrativeState=(null)", cell + " administrativeState=(null)"}));
}

TEST_F(SampleInterceptorTest, Life_BeforeStartAndAfterStop_TheRouterServes) {
    EXPECT_EQ(get(clientCell, "operationalState"), "as stored");
    start();
    EXPECT_EQ(get(clientCell, "operationalState"), "ENABLED");
    EXPECT_EQ(sample->stop(reason), OrvOk);
    EXPECT_EQ(get(clientCell, "operationalState"), "as stored");
    start();
    EXPECT_EQ(get(clientCell, "operationalState"), "ENABLED");
}

TEST_F(SampleInterceptorTest, Life_StartAndStopTwice_ChangeNothingMore) {
    EXPECT_EQ(sample->stop(reason), OrvOk);
    start();
    start();
    EXPECT_EQ(get(clientCell, "operationalState"), "ENABLED");
    EXPECT_EQ(sample->stop(reason), OrvOk);
    EXPECT_EQ(sample->stop(reason), OrvOk);
    EXPECT_EQ(get(clientCell, "operationalState"), "as stored");
}

// A copy of the file is a component of its own, with an interceptor of its own.
TEST_F(SampleInterceptorTest, Life_AnotherInterceptorServesTheCells_IsRefusedAndLeavesItThere) {
    const TemporaryDirectory directory;
    const std::filesystem::path copy = directory.path / "copy.so";
    std::filesystem::copy_file(samplePath(), copy);
    OrvMgmtSpiComponent_1& second = host.load(copy.string());
    start();
    EXPECT_EQ(second.start(reason), OrvAlreadyExist);
    EXPECT_EQ(second.stop(reason), OrvOk);
    EXPECT_EQ(get(clientCell, "operationalState"), "ENABLED");
    EXPECT_EQ(sample->stop(reason), OrvOk);
    EXPECT_EQ(second.start(reason), OrvOk);
    EXPECT_EQ(get(clientCell, "operationalState"), "ENABLED");
}

TEST(SampleInterceptorAlone, Start_WithoutTheComponent_IsRefused) {
    SmallHost host;
    OrvMgmtSpiComponent_1& sample = host.load(samplePath());
    EXPECT_EQ(sample.start(reason), OrvFailure);
    EXPECT_EQ(sample.stop(reason), OrvOk);
}

TEST_F(SampleInterceptorTest, Threads_ManyReaders_SeeOneStateOrTheOther) {
    start();
    std::atomic<int> reading{4};
    std::vector<std::thread> readers;
    for (int reader = reading; reader > 0; --reader) {
        readers.emplace_back([&] {
            for (int round = 0; round < 500; ++round) {
                const std::string state = get(clientCell, "operationalState");
                EXPECT_TRUE(state == "ENABLED" || state == "DISABLED") << state;
                const Texts both = getMany(clientCell, {"userLabel", "operationalState"});
                EXPECT_EQ(both.size(), 2U);
            }
            --reading;
        });
    }
    for (bool locked = true; reading > 0; locked = !locked) {
        host.router.put(cell, "administrativeState", locked ? "LOCKED" : "UNLOCKED");
    }
    for (std::thread& reader : readers) {
        reader.join();
    }
}
