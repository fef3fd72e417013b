// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// How long memory of the component lives: what an operation needs goes with its return, what is
// kept for a transaction with finish.

#include "FailingNew.h"
#include "Network.h"
#include "Operations.h"

#include <gtest/gtest.h>

#include <cstddef>

namespace Scripted {
namespace {

/// The blocks that \p work leaves behind.
template <class Work>
std::size_t leftBy(const Work& work) {
    const std::size_t before = watchedBlocks();
    {
        const NewWatch watch;
        work();
    }
    return watchedBlocks() - before;
}

class TransactionMemory : public testing::Test {
protected:
    TransactionMemory() {
        const Value place = structs({{member("to", refs({cell("1")}))}});
        scene.value = scene.records.container(place);
        scene.named = scene.records.named({{"place", place}, {"label", strings({"y"})}});
        scene.value1 = scene.records1.container(refs({cell("1"), cell("2")}));
        scene.host.mo(unitInside("7")).with("cells", refs({cellInside("1")}));
    }

    const OrvOamSpiManagedObject_1& v1() const { return *scene.host.client1().table; }
    const OrvOamSpiManagedObject_3& v3() const { return *scene.host.client().table; }

    Scene scene{Life::Started};
    const char* const dn = "ManagedElement=paris,Unit=7";
};

// Structs are converted and have no bookkeeping, so that the joined transaction is all that stays.
TEST_F(TransactionMemory, Writes_KeepNothingBeyondTheirReturn) {
    EXPECT_GT(leftBy([&] { v3().setMoAttribute(kFaultTx, dn, "place", scene.value); }), 0U);
    EXPECT_EQ(leftBy([&] { v3().setMoAttribute(kFaultTx, dn, "place", scene.value); }), 0U);
    EXPECT_EQ(leftBy([&] {
                  v3().createMo(kFaultTx, "ManagedElement=paris", "Unit", "label", "new",
                                scene.named);
              }),
              0U);
    EXPECT_EQ(leftBy([&] { v3().action(kFaultTx, dn, "go", scene.named, &scene.read); }), 0U);
    EXPECT_EQ(
        leftBy([&] { scene.host.client3_1().table->setMoAttributes(kFaultTx, dn, scene.named); }),
        0U);
    EXPECT_EQ(leftBy([&] { v3().deleteMo(kFaultTx, "ManagedElement=paris,Site=9"); }), 0U);
    EXPECT_EQ(scene.host.resource().finish(kFaultTx), OrvOk);
    EXPECT_EQ(watchedBlocks(), 0U);
}

TEST_F(TransactionMemory, Version1Values_LiveUntilFinish) {
    const auto get = [&] { v1().getMoAttribute(kFaultTx, dn, "cells", &scene.read1); };
    const auto set = [&] { v1().setMoAttribute(kFaultTx, dn, "cells", scene.value1); };
    EXPECT_GT(leftBy(get), 0U);
    EXPECT_GT(leftBy(get), 0U) << "a copy of its own";
    EXPECT_GT(leftBy(set), 0U);
    EXPECT_EQ(scene.host.resource().prepare(kFaultTx), OrvOk);
    EXPECT_EQ(scene.host.resource().commit(kFaultTx), OrvOk);
    EXPECT_EQ(readValue(scene.read1), refs({cell("1")}));
    EXPECT_EQ(scene.host.resource().finish(kFaultTx), OrvOk);
    EXPECT_EQ(watchedBlocks(), 0U);
}

TEST_F(TransactionMemory, Version1PlainValues_TouchNone) {
    EXPECT_EQ(leftBy([&] { v1().getMoAttribute(kFaultTx, dn, "label", &scene.read1); }), 0U);
    EXPECT_EQ(leftBy([&] { v1().createMo(kFaultTx, dn, "Part", "partId", "1"); }), 0U);
    EXPECT_EQ(leftBy([&] { v1().deleteMo(kFaultTx, dn); }), 0U);
}

}
}
