// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What all table functions have in common: codes, exceptions, and when they trace and log.

#include "Host.h"

#include <Poco/Exception.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <ostream>
#include <stdexcept>
#include <string>

using namespace Scripted;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

/// One operation of a client that ends in one call of the router.
struct Operation {
    std::string name;
    std::string call;
    std::function<OrvReturnT(const Host&)> run;
};

void PrintTo(const Operation& operation, std::ostream* out) {
    *out << operation.name;
}

std::vector<Operation> readOperations() {
    return {{"exists", "Router3.existsMo",
             [](const Host& host) { return host.client().exists(1, "A=1").code; }},
            {"count", "Router3.countMoChildren",
             [](const Host& host) { return host.client().count(1, "A=1", "B").code; }},
            {"get", "Router3.getMoAttribute",
             [](const Host& host) { return host.client().get(1, "A=1", "label").code; }},
            {"getMany", "Router3.getMoAttributes",
             [](const Host& host) { return host.client().getMany(1, "A=1", {"label"}).code; }},
            {"open", "Router3.newMoIterator",
             [](const Host& host) { return host.client().open(1, "A=1", "B").code; }},
            {"next", "Router3.nextMo",
             [](const Host& host) {
                 return host.client().next(host.client().open(1, "A=1", "B").thing).code;
             }},
            {"get1", "Router1.getMoAttribute",
             [](const Host& host) { return host.client1().get(1, "A=1", "label").code; }},
            {"open1", "Router1.newMoIterator",
             [](const Host& host) { return host.client1().open(1, "A=1", "B").code; }},
            {"next1", "Router1.nextMo", [](const Host& host) {
                 return host.client1().next(host.client1().open(1, "A=1", "B").thing).code;
             }}};
}

}

class AnyOperation : public testing::TestWithParam<Operation> {
protected:
    AnyOperation() {
        host.mo("A=1").with("label", strings({"x"}));
        host.start();
    }

    Host host;
};

TEST_P(AnyOperation, UnknownCodeOfTheRouter_ComesBackUnchanged) {
    for (const OrvReturnT code : {-5, 3, 4711, -1000000}) {
        host.when(GetParam().call).fails(code);
        EXPECT_EQ(GetParam().run(host), code);
    }
}

TEST_P(AnyOperation, RouterThrowsAStandardException_IsAFailureAndTheNextCallIsServed) {
    host.when(GetParam().call).nth(1).throws(std::runtime_error("router"));
    host.when(GetParam().call).nth(2).throws(std::bad_alloc());
    host.when(GetParam().call).nth(3).throws(Poco::SystemException("cannot lock mutex"));
    EXPECT_EQ(GetParam().run(host), OrvFailure);
    EXPECT_EQ(GetParam().run(host), OrvFailure);
    EXPECT_EQ(GetParam().run(host), OrvFailure);
    EXPECT_EQ(GetParam().run(host), OrvOk);
    EXPECT_THAT(host.logs(), IsEmpty());
}

TEST_P(AnyOperation, RouterThrowsSomethingElse_Passes) {
    host.when(GetParam().call).once().throws(42);
    EXPECT_THROW(GetParam().run(host), int);
    EXPECT_EQ(GetParam().run(host), OrvOk);
}

TEST_P(AnyOperation, Level7_NoTrace) {
    host.logLevel(7);
    EXPECT_EQ(GetParam().run(host), OrvOk);
    EXPECT_THAT(host.logs(), IsEmpty());
}

TEST_P(AnyOperation, Level8_EveryTraceGoesOutInBothForms) {
    host.logLevel(8);
    EXPECT_EQ(GetParam().run(host), OrvOk);
    const auto records = host.logRecords();
    ASSERT_FALSE(records.empty());
    ASSERT_EQ(records.size() % 2, 0U);
    for (std::size_t i = 0; i < records.size(); i += 2) {
        EXPECT_EQ(records[i].form, Orv::LogRecord::Form::Trace);
        EXPECT_EQ(records[i + 1].form, Orv::LogRecord::Form::TraceV2);
        EXPECT_EQ(records[i + 1].level, 14);
        EXPECT_EQ(records[i + 1].subsystem, Orv::Trace::ExtCm);
        EXPECT_EQ(records[i].text, records[i + 1].text);
        EXPECT_EQ(records[i].function, records[i + 1].function);
        EXPECT_EQ(records[i].file, records[i + 1].file);
        EXPECT_EQ(records[i].line, records[i + 1].line);
    }
}

TEST_P(AnyOperation, Level8_TheOperationOpensAndClosesTheTraces) {
    const std::string function = GetParam().call.substr(GetParam().call.find('.') + 1);
    host.logLevel(8);
    EXPECT_EQ(GetParam().run(host), OrvOk);
    EXPECT_THAT(host.logs(), Contains(StartsWith("trace 9 " + function + ":  >> ")));
    EXPECT_THAT(host.logs().back(), StartsWith("trace2 ExtCm 14 " + function + ":  << "));
}

INSTANTIATE_TEST_SUITE_P(Reads, AnyOperation, testing::ValuesIn(readOperations()));

TEST(Gate, Level3_LetsALogOfLevel3OutAndNoneOfLevel4) {
    Host host;
    host.without(Part::Router1).without(Part::ModelRepository).logLevel(3).load();
    ASSERT_EQ(host.init(), OrvOk);
    EXPECT_EQ(host.startComponent(), OrvFailure);
    EXPECT_THAT(host.logs(), ElementsAre("log 3 start: Could not lookup cmrouterservice",
                                         "trace2 ExtCm 3 start: Could not lookup cmrouterservice"));
}

TEST(Gate, Level2_LetsNoLogOut) {
    Host host;
    host.without(Part::Router1).without(Part::ModelRepository).logLevel(2).load();
    ASSERT_EQ(host.init(), OrvOk);
    EXPECT_EQ(host.startComponent(), OrvFailure);
    EXPECT_THAT(host.logs(), IsEmpty());
}

TEST(Trace, FileIsThePathOfTheSource) {
    Host host;
    host.start();
    host.logLevel(8);
    host.client().exists(1, "A=1");
    EXPECT_EQ(host.logRecords().at(0).file, "src/ext_cm/src/MoImpl3");
}
