// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The component is loaded and registered, and has never been started.

#include "Network.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Scripted;
using testing::IsEmpty;

class NotYetStarted : public testing::Test {
protected:
    NotYetStarted() {
        host.load();
        EXPECT_EQ(host.init(), OrvOk);
        host.forget();
    }

    Host host;
};

TEST_F(NotYetStarted, EveryWriteOfEveryVersion_IsNotActive) {
    EXPECT_EQ(host.client().create(1, kRoot, "Unit", "unitId", "9"), OrvNotActive);
    EXPECT_EQ(host.client().set(1, unit("7"), "label", strings({"y"})), OrvNotActive);
    EXPECT_EQ(host.client().remove(1, unit("7")), OrvNotActive);
    EXPECT_EQ(host.client().action(1, unit("7"), "go").code, OrvNotActive);
    EXPECT_EQ(host.client3_1().set(1, unit("7"), {}), OrvNotActive);
    EXPECT_EQ(host.client1().get(1, unit("7"), "label").code, OrvNotActive);
    EXPECT_EQ(host.client1().set(1, unit("7"), "label", strings({"y"})), OrvNotActive);
    EXPECT_EQ(host.client1().create(1, kRoot, "Unit", "unitId", "9"), OrvNotActive);
    EXPECT_EQ(host.client1().remove(1, unit("7")), OrvNotActive);
    EXPECT_EQ(host.client1().action(1, unit("7"), "go").code, OrvNotActive);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(NotYetStarted, ThePhases_AreOkAndTheVerdictIsFalse) {
    const OrvOamSpiTransactionalResource_2& resource = host.resource();
    EXPECT_EQ(resource.join(1), OrvOk);
    EXPECT_EQ(resource.prepare(1), OrvOk);
    EXPECT_EQ(resource.commit(1), OrvOk);
    EXPECT_EQ(resource.abort(1), OrvOk);
    bool result = true;
    EXPECT_EQ(resource.validate(1, &result), OrvOk);
    EXPECT_FALSE(result);
    EXPECT_EQ(resource.finish(1), OrvOk);
    EXPECT_THAT(host.calls(), IsEmpty());
}
