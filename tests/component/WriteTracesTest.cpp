// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The traces of the operations that write: an entry with the arguments and an exit on each way out.

#include "Network.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

using namespace Scripted;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

/// One operation on an MO that the test chooses.
struct Traced {
    std::string name;
    std::string file;
    std::string function;
    std::string arguments; ///< as the entry shows them after the DN
    std::function<OrvReturnT(const Host&, const std::string& dn)> run;
};

void PrintTo(const Traced& traced, std::ostream* out) {
    *out << traced.name;
}

std::vector<Traced> tracedOperations() {
    return {
        {"set3", "MoImpl3", "setMoAttribute", ", attr: label",
         [](const Host& host, const std::string& dn) {
             return host.client().set(1, dn, "label", strings({"y"}));
         }},
        {"create3", "MoImpl3", "createMo", ", class: Part, attrname: partId, attrvalue: 5",
         [](const Host& host, const std::string& dn) {
             return host.client().create(1, dn, "Part", "partId", "5");
         }},
        {"delete3", "MoImpl3", "deleteMo", "",
         [](const Host& host, const std::string& dn) { return host.client().remove(1, dn); }},
        {"action3", "MoImpl3", "action", ", name: go",
         [](const Host& host, const std::string& dn) {
             return host.client().action(1, dn, "go").code;
         }},
        {"set3_1", "MoImpl3_1", "setMoAttributes", "",
         [](const Host& host, const std::string& dn) {
             return host.client3_1().set(1, dn, {{"label", strings({"y"})}});
         }},
        {"get1", "MoImpl", "getMoAttribute", ", attr: label",
         [](const Host& host, const std::string& dn) {
             return host.client1().get(1, dn, "label").code;
         }},
        {"set1", "MoImpl", "setMoAttribute", ", attr: label",
         [](const Host& host, const std::string& dn) {
             return host.client1().set(1, dn, "label", strings({"y"}));
         }},
        {"create1", "MoImpl", "createMo", ", class: Part, attrname: partId, attrvalue: 5",
         [](const Host& host, const std::string& dn) {
             return host.client1().create(1, dn, "Part", "partId", "5");
         }},
        {"delete1", "MoImpl", "deleteMo", "",
         [](const Host& host, const std::string& dn) { return host.client1().remove(1, dn); }},
        {"action1", "MoImpl", "action", ", name: go", [](const Host& host, const std::string& dn) {
             return host.client1().action(1, dn, "go").code;
         }}};
}

}

class WriteTraces : public Network, public testing::WithParamInterface<Traced> {
protected:
    /// The two records of the entry and the two of the exit, first and last of all.
    void expectFramed(const std::string& dn) const {
        const Traced& traced = GetParam();
        const std::string entry = traced.function + ":  >> txHandle: 1, dn: " + dn;
        const std::string exit = traced.function + ":  << ";
        const std::vector<std::string> logs = host.logs();
        ASSERT_GE(logs.size(), 4U);
        EXPECT_THAT(logs.at(0), StartsWith("trace 9 " + entry + traced.arguments));
        EXPECT_THAT(logs.at(1), StartsWith("trace2 ExtCm 14 " + entry + traced.arguments));
        EXPECT_THAT(logs.at(logs.size() - 2), StartsWith("trace 10 " + exit));
        EXPECT_THAT(logs.back(), StartsWith("trace2 ExtCm 14 " + exit));
        EXPECT_EQ(host.logRecords().front().file, "src/ext_cm/src/" + traced.file);
        EXPECT_EQ(host.logRecords().back().file, "src/ext_cm/src/" + traced.file);
    }

    OrvReturnT run(const std::string& dn) { return GetParam().run(host, dn); }
};

TEST_P(WriteTraces, Success_IsFramed) {
    host.logLevel(8);
    EXPECT_EQ(run(unit("7")), OrvOk);
    expectFramed(unit("7"));
}

TEST_P(WriteTraces, ForeignDn_IsFramed) {
    host.logLevel(8);
    EXPECT_EQ(run(kForeignDn), OrvNotExist);
    expectFramed(kForeignDn);
}

TEST_P(WriteTraces, Stopped_IsFramed) {
    ASSERT_EQ(host.stopComponent(), OrvOk);
    host.logLevel(8).forget();
    EXPECT_EQ(run(unit("7")), OrvNotActive);
    expectFramed(unit("7"));
}

TEST_P(WriteTraces, RouterRefuses_IsFramed) {
    const std::string router = GetParam().file == "MoImpl"    ? "Router1."
                               : GetParam().file == "MoImpl3" ? "Router3."
                                                              : "Router3_1.";
    host.when(router + GetParam().function).fails(-42);
    host.logLevel(8);
    EXPECT_EQ(run(unit("7")), -42);
    expectFramed(unit("7"));
}

TEST_P(WriteTraces, Level7_NoTrace) {
    host.logLevel(7);
    EXPECT_EQ(run(unit("7")), OrvOk);
    EXPECT_THAT(host.logs(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Operations, WriteTraces, testing::ValuesIn(tracedOperations()),
                         [](const auto& tested) { return tested.param.name; });

class RefusedId : public Network {};

TEST_F(RefusedId, EveryVersion_ClosesItsTraces) {
    const Value bad = strings({"a,b"});
    const std::string id = "networkManagedElementId";
    host.logLevel(8);
    EXPECT_EQ(client().set(1, unit("7"), id, bad), OrvValidationFailed);
    EXPECT_THAT(host.logs().back(), StartsWith("trace2 ExtCm 14 setMoAttribute:  << "));
    EXPECT_EQ(host.client3_1().set(1, unit("7"), {{id, bad}}), OrvInvalidArgument);
    EXPECT_THAT(host.logs().back(), StartsWith("trace2 ExtCm 14 setMoAttributes:  << "));
    EXPECT_EQ(host.client1().set(1, unit("7"), id, bad), OrvInvalidArgument);
    EXPECT_THAT(host.logs().back(), StartsWith("trace2 ExtCm 14 setMoAttribute:  << "));
    host.forget();
    EXPECT_EQ(host.client1().set(1, unit("7"), id), OrvInvalidArgument);
    EXPECT_THAT(host.logs().back(), StartsWith("trace2 ExtCm 14 setMoAttribute:  << "));
}
