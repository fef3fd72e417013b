// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Reads and iterators trace what they were asked and what they answer, whichever way they end.

#include "Host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>

using namespace Scripted;
using testing::ElementsAre;

namespace {

const std::string kUnit = "ManagedElement=paris,Unit=7";
const std::string kForeign = "ManagedElement=rome,Unit=7"; ///< cannot be translated

/// A read, and its entry trace up to the DN and after it.
struct TracedRead {
    std::string function;
    std::string beforeDn;
    std::string afterDn;
    OrvReturnT whenStopped;
    std::function<OrvReturnT(const Client3&, const std::string& dn)> run;
};

void PrintTo(const TracedRead& read, std::ostream* out) {
    *out << read.function;
}

}

class TracedHost : public testing::Test {
protected:
    TracedHost() {
        host.mo("ManagedElement=1,Unit=7").with("label", strings({"x"}));
        host.start();
        host.logLevel(8);
    }

    /// The traces of one run of \p function: its first and its last.
    void expectTraces(const std::string& function, const std::string& entry,
                      const std::string& exit) {
        std::vector<std::string> lines;
        for (const std::string& line : host.logs()) {
            if (line.find(" " + function + ": ") != std::string::npos) {
                lines.push_back(line);
            }
        }
        EXPECT_THAT(lines, ElementsAre("trace 9 " + function + ": " + entry,
                                       "trace2 ExtCm 14 " + function + ": " + entry,
                                       "trace 10 " + function + ": " + exit,
                                       "trace2 ExtCm 14 " + function + ": " + exit));
        ASSERT_FALSE(lines.empty());
        EXPECT_EQ(host.logs().front(), lines.front());
        EXPECT_EQ(host.logs().back(), lines.back());
        host.forget();
    }

    Host host;
};

class ReadTraces : public TracedHost, public testing::WithParamInterface<TracedRead> {
protected:
    void expectRun(const std::string& dn, OrvReturnT code, const std::string& text) {
        EXPECT_EQ(GetParam().run(host.client(), dn), code);
        expectTraces(GetParam().function, GetParam().beforeDn + dn + GetParam().afterDn,
                     " << ret: " + text);
    }
};

TEST_P(ReadTraces, EveryWayOut_IsTraced) {
    expectRun(kUnit, OrvOk, "OrvOk");
    expectRun(kForeign, OrvNotExist, "OrvNotExist");
    host.when("Router3." + GetParam().function).fails(OrvAlreadyExist);
    expectRun(kUnit, OrvAlreadyExist, "OrvAlreadyExist");
    host.logLevel(0);
    ASSERT_EQ(host.stopComponent(), OrvOk);
    host.logLevel(8);
    expectRun(kUnit, GetParam().whenStopped,
              GetParam().whenStopped == OrvFailure ? "OrvFailure" : "OrvNotActive");
}

INSTANTIATE_TEST_SUITE_P(
    Reads, ReadTraces,
    testing::Values(TracedRead{"existsMo", " >> txHandle: 3, dn: ", "", OrvNotActive,
                               [](const Client3& client, const std::string& dn) {
                                   return client.exists(3, dn).code;
                               }},
                    TracedRead{"countMoChildren", " >> txHandle: 3, dn: ", ", ", OrvNotActive,
                               [](const Client3& client, const std::string& dn) {
                                   return client.count(3, dn, "Cell").code;
                               }},
                    TracedRead{"getMoAttribute", " >> txHandle: 3, dn: ", ", attr: label",
                               OrvFailure,
                               [](const Client3& client, const std::string& dn) {
                                   return client.get(3, dn, "label").code;
                               }},
                    TracedRead{"getMoAttributes", " >> txHandle: 3, dn: ", ", ", OrvNotActive,
                               [](const Client3& client, const std::string& dn) {
                                   return client.getMany(3, dn, {"label"}).code;
                               }}));

TEST_F(TracedHost, GetMoAttribute_NullResult_IsTracedToo) {
    EXPECT_EQ(host.client().table->getMoAttribute(3, kUnit.c_str(), "label", nullptr), OrvFailure);
    expectTraces("getMoAttribute", " >> txHandle: 3, dn: " + kUnit + ", attr: label",
                 " << ret: OrvFailure");
}

TEST_F(TracedHost, Iterators_EveryWayOutIsTraced) {
    const std::string asked = " >> newMoIterator  dn: " + kUnit + ", class: Cell";
    const auto iterator = host.client().open(3, kUnit, "Cell");
    expectTraces("newMoIterator", asked, " << ret: OrvOk");
    host.when("Router3.newMoIterator").fails(OrvAlreadyExist);
    host.client().open(3, kUnit, "Cell");
    expectTraces("newMoIterator", asked, " << ret: OrvAlreadyExist");
    host.client().next(iterator.thing);
    expectTraces("nextMo", " >> ", " << ret: OrvOk");
    host.when("Router3.nextMo").fails(OrvAlreadyExist);
    host.client().next(iterator.thing);
    expectTraces("nextMo", " >> ", " << ret: OrvAlreadyExist");
    host.client().finalize(iterator.thing);
    expectTraces("finalizeMoIterator", " >> ", " << ret: OrvOk");
    host.client().finalize(4711);
    expectTraces("finalizeMoIterator", " >> ", " << ret: OrvOk");
}
