// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// A code that only the host knows reaches the client as it is, and its number stands in the trace.

#include "Network.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

using namespace Scripted;

namespace {

/// One operation that answers with the code of one call.
struct Passing {
    std::string name;
    std::string call;
    std::function<OrvReturnT(const Host& host)> run;
};

void PrintTo(const Passing& passing, std::ostream* out) {
    *out << passing.name;
}

std::vector<Passing> readsOfVersion3() {
    return {
        {"Exists", "Router3.existsMo",
         [](const Host& host) { return host.client().exists(1, unit("7")).code; }},
        {"Count", "Router3.countMoChildren",
         [](const Host& host) { return host.client().count(1, kRoot, "Unit").code; }},
        {"Get", "Router3.getMoAttribute",
         [](const Host& host) { return host.client().get(1, unit("7"), "label").code; }},
        {"GetMany", "Router3.getMoAttributes",
         [](const Host& host) { return host.client().getMany(1, unit("7"), {"label"}).code; }},
        {"Open", "Router3.newMoIterator",
         [](const Host& host) { return host.client().open(1, kRoot, "Unit").code; }},
        {"Next", "Router3.nextMo",
         [](const Host& host) {
             return host.client().next(host.client().open(1, kRoot, "Unit").thing).code;
         }},
    };
}

std::vector<Passing> writesOfVersion3() {
    return {
        {"Set", "Router3.setMoAttribute",
         [](const Host& host) { return host.client().set(1, unit("7"), "label", strings({"y"})); }},
        {"Create", "Router3.createMo",
         [](const Host& host) { return host.client().create(1, kRoot, "Cell", "cellId", "9"); }},
        {"Delete", "Router3.deleteMo",
         [](const Host& host) { return host.client().remove(1, unit("7")); }},
        {"Action", "Router3.action",
         [](const Host& host) { return host.client().action(1, unit("7"), "go").code; }},
        {"SetMany", "Router3_1.setMoAttributes",
         [](const Host& host) {
             return host.client3_1().set(1, unit("7"), {{"label", strings({"y"})}});
         }},
    };
}

std::vector<Passing> allOfVersion1() {
    return {
        {"Version1Get", "Router1.getMoAttribute",
         [](const Host& host) { return host.client1().get(1, unit("7"), "label").code; }},
        {"Version1Set", "Router1.setMoAttribute",
         [](const Host& host) {
             return host.client1().set(1, unit("7"), "label", strings({"y"}));
         }},
        {"Version1Create", "Router1.createMo",
         [](const Host& host) { return host.client1().create(1, kRoot, "Cell", "cellId", "9"); }},
        {"Version1Delete", "Router1.deleteMo",
         [](const Host& host) { return host.client1().remove(1, unit("7")); }},
        {"Version1Action", "Router1.action",
         [](const Host& host) { return host.client1().action(1, unit("7"), "go").code; }},
        {"Version1Open", "Router1.newMoIterator",
         [](const Host& host) { return host.client1().open(1, kRoot, "Unit").code; }},
        {"Version1Next", "Router1.nextMo",
         [](const Host& host) {
             return host.client1().next(host.client1().open(1, kRoot, "Unit").thing).code;
         }},
    };
}

std::vector<Passing> allPassing() {
    std::vector<Passing> all;
    for (const auto& some : {readsOfVersion3(), writesOfVersion3(), allOfVersion1()}) {
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

}

class ForeignCodes : public Network, public testing::WithParamInterface<Passing> {};

TEST_P(ForeignCodes, ExitTrace_ShowsTheNumber) {
    const std::string& call = GetParam().call;
    const std::string function = call.substr(call.find('.') + 1);
    for (const OrvReturnT code :
         {OrvReturnT{-42}, OrvReturnT{4711}, std::numeric_limits<OrvReturnT>::min(),
          std::numeric_limits<OrvReturnT>::max()}) {
        host.when(call).fails(code);
        host.logLevel(8).forget();
        EXPECT_EQ(GetParam().run(host), code);
        EXPECT_EQ(host.logs().back(), "trace2 ExtCm 14 " + function +
                                          ":  << ret: unknown return code " + std::to_string(code));
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, ForeignCodes, testing::ValuesIn(allPassing()),
                         [](const auto& tested) { return tested.param.name; });
