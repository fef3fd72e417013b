// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// While the host or an interceptor works on a client's call, no lock of the component keeps other
// transactions waiting.

#include "Network.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <ostream>
#include <string>
#include <vector>

using namespace Scripted;

namespace {

constexpr unsigned long kOther = 99;

/// A client's operation, and a call of the host that is made on its way.
struct Callee {
    std::string name;
    std::string call;
    std::function<OrvReturnT(Host&)> run;
};

void PrintTo(const Callee& callee, std::ostream* out) {
    *out << callee.name;
}

OrvReturnT setCells(Host& host) {
    return host.client().set(1, unit("7"), "cells", refs({cell("1")}));
}
OrvReturnT setCellsIntercepted(Host& host) {
    host.interceptor("ManagedElement,Unit");
    return setCells(host);
}
OrvReturnT createUnit(Host& host) {
    return host.client().create(1, kRoot, "Unit", "unitId", "9", {{"cells", refs({cell("1")})}});
}
OrvReturnT deleteUnit(Host& host) {
    return host.client().remove(1, unit("7"));
}
OrvReturnT act(Host& host) {
    return host.client().action(1, unit("7"), "go", {{"to", refs({cell("1")})}}).code;
}
OrvReturnT setMany(Host& host) {
    return host.client3_1().set(1, unit("7"), {{"cells", refs({cell("1")})}});
}
OrvReturnT setManyIntercepted(Host& host) {
    host.interceptor("ManagedElement,Unit");
    return setMany(host);
}
OrvReturnT set1(Host& host) {
    return host.client1().set(1, unit("7"), "cells", refs({cell("1")}));
}
OrvReturnT get1(Host& host) {
    return host.client1().get(1, unit("7"), "cells").code;
}
OrvReturnT create1(Host& host) {
    return host.client1().create(1, kRoot, "Unit", "unitId", "9");
}
OrvReturnT delete1(Host& host) {
    return host.client1().remove(1, unit("7"));
}
OrvReturnT act1(Host& host) {
    return host.client1().action(1, unit("7"), "go", {refs({cell("1")})}).code;
}

std::vector<Callee> callees() {
    return {{"Set", "Router3.setMoAttribute", setCells},
            {"SetIntercepted", "Interceptor.setMoAttribute", setCellsIntercepted},
            {"SetAsksTheModel", "Model.getMocFromDn", setCells},
            {"SetAsksForTheSites", "Model.getFirstUniDirAssociation", setCells},
            {"SetReadsTheOldValue", "VekRouter3.getMoAttribute", setCells},
            {"Create", "Router3.createMo", createUnit},
            {"CreateAsksTheModel", "Model.getMocFromDn", createUnit},
            {"Delete", "Router3.deleteMo", deleteUnit},
            {"DeleteAsksTheModel", "Model.getMocFromDn", deleteUnit},
            {"Action", "Router3.action", act},
            {"SetMany", "Router3_1.setMoAttributes", setMany},
            {"SetManyIntercepted", "Interceptor.setMoAttributes", setManyIntercepted},
            {"Version1Set", "Router1.setMoAttribute", set1},
            {"Version1Get", "Router1.getMoAttribute", get1},
            {"Version1Create", "Router1.createMo", create1},
            {"Version1Delete", "Router1.deleteMo", delete1},
            {"Version1Action", "Router1.action", act1}};
}

}

class NoLockHeld : public Network, public testing::WithParamInterface<Callee> {
protected:
    /// Another client on a thread of its own, through every lock there is.
    void useFromAnotherThread() {
        other = std::async(std::launch::async, [this] {
            EXPECT_EQ(client().set(kOther, unit("8"), "cells", refs({cell("2")})), OrvOk);
            EXPECT_EQ(host.client3_1().set(kOther, unit("8"), {{"site", refs({site("1")})}}),
                      OrvOk);
            EXPECT_EQ(client().open(kOther, kRoot, "Unit").code, OrvOk);
            EXPECT_EQ(host.client1().open(kOther, kRoot, "Unit").code, OrvOk);
            EXPECT_TRUE(validate(kOther));
            EXPECT_EQ(host.resource().finish(kOther), OrvOk);
        });
        served = other.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
    }

    bool served = false;

private:
    std::future<void> other; ///< waited for when the operation has let go of what it holds
};

TEST_P(NoLockHeld, AnotherThread_IsServedMeanwhile) {
    host.when(GetParam().call).once().runs([this] { useFromAnotherThread(); });
    EXPECT_EQ(GetParam().run(host), OrvOk);
    EXPECT_TRUE(served);
}

INSTANTIATE_TEST_SUITE_P(Callees, NoLockHeld, testing::ValuesIn(callees()),
                         [](const auto& tested) { return tested.param.name; });
