// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Calls that every walk and every read make often, and that take no memory.

#include "FailingNew.h"
#include "Network.h"
#include "Operations.h"

#include <gtest/gtest.h>

#include <string>

namespace Scripted {
namespace {

std::size_t memoryTakenByNext(const Scene& scene, unsigned long long iterator, const char* name) {
    const OrvOamSpiManagedObject_3& table = *scene.host.client().table;
    char* found = nullptr;
    const NewWatch watch;
    const OrvReturnT code = table.nextMo(iterator, &found);
    const std::size_t taken = watch.seen();
    EXPECT_EQ(code, OrvOk);
    EXPECT_STREQ(found, name);
    return taken;
}

TEST(AllocationCounts, NextMo_TakesNoMemory) {
    Scene scene(Life::Started);
    const auto below = scene.host.client().open(1, unit("9"), "Part");
    scene.host.identity("an identity that does not fit into a short string", "");
    const auto root = scene.host.client().open(1, "", "ManagedElement");
    scene.host.forget();
    EXPECT_EQ(memoryTakenByNext(scene, below.thing, "of unit 9"), 0U);
    EXPECT_EQ(
        memoryTakenByNext(scene, root.thing, "an identity that does not fit into a short string"),
        0U);
}

TEST(AllocationCounts, LookupOfAnInterceptor_TakesNoMemory) {
    Scene scene(Life::Started);
    const std::string path = "ManagedElement,Unit,AndMoreThanFitsIntoAShortString";
    Interceptor& interceptor = scene.host.interceptor(path);
    const std::string unknown = path + ",Unknown";
    const NewWatch watch;
    const void* const found = interceptor.getInterceptor(path);
    const void* const notFound = interceptor.getInterceptor(unknown);
    const std::size_t taken = watch.seen();
    EXPECT_EQ(taken, 0U);
    EXPECT_EQ(found, interceptor.address());
    EXPECT_EQ(notFound, nullptr);
}

// The DN in both forms, of which neither fits into a short string, and what a client gets of a
// read.
TEST(AllocationCounts, PlainValues_TakeTheTwoDnsAndAView) {
    Scene scene(Life::Started);
    const OrvOamSpiManagedObject_3& table = *scene.host.client().table;
    const std::string dn = unit("9");
    OrvMoAttributeValue_3 slot = {};
    slot.string = "a label";
    const OrvMoAttributeValueContainer_3 label{OrvMoAttributeTypeString_3, 1, &slot};
    ASSERT_EQ(table.setMoAttribute(kFaultTx, dn.c_str(), "label", &label), OrvOk); // joins
    scene.host.forget();
    const NewWatch watch;
    const OrvReturnT written = table.setMoAttribute(kFaultTx, dn.c_str(), "label", &label);
    const std::size_t takenByWrite = watch.seen();
    const OrvReturnT read = table.getMoAttribute(kFaultTx, dn.c_str(), "label", &scene.read);
    const std::size_t takenByRead = watch.seen() - takenByWrite;
    scene.giveBack(read);
    EXPECT_EQ(written, OrvOk);
    EXPECT_EQ(read, OrvOk);
    EXPECT_EQ(takenByWrite, 2U);
    EXPECT_EQ(takenByRead, 3U);
}

}
}
