// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Where the translator has its place in start and stop, and what has been done by then. The helper
// library's own start and stop of it do nothing that could be seen: those below take their place
// for every shared object in the process, so these tests have a program of their own.

#include "Host.h"
#include "MeIdTranslator.h"
#include "Names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>

using namespace Scripted;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::function<void()> duringStop;

void record(const char* call) {
    Stage::current().script.record(Call{call, {}, nullptr});
}

}

void Orv::MeIdTranslator::start() {
    record("Translator.start");
}

void Orv::MeIdTranslator::stop() {
    record("Translator.stop");
    if (duringStop) {
        std::exchange(duringStop, nullptr)();
    }
}

TEST(TranslatorLife, Start_IsAfterTheRoutersAndBeforeTheTransactionTable) {
    Host host;
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    host.forget();
    ASSERT_EQ(host.startComponent(), OrvOk);
    EXPECT_THAT(host.calls(),
                ElementsAre(kLookUpVekRouter3, kLookUpModel, kLookUpThreadContext, kAskRouter1,
                            kAskRouter3, kAskRouter3_1, "Translator.start()", kAskTransaction));
}

TEST(TranslatorLife, StartWhileStarted_RunsAgain) {
    Host host;
    host.start();
    ASSERT_EQ(host.startComponent(), OrvOk);
    EXPECT_THAT(host.calls(), ElementsAre("Translator.start()", kAskTransaction));
}

TEST(TranslatorLife, StartThatFails_DoesNotReachIt) {
    for (const Part router : {Part::Router1, Part::Router3, Part::Router3_1}) {
        Host host;
        host.without(router).load();
        ASSERT_EQ(host.init(), OrvOk);
        ASSERT_EQ(host.startComponent(), OrvFailure);
        EXPECT_THAT(host.calls("Translator."), IsEmpty()) << testing::PrintToString(router);
        EXPECT_EQ(host.with(router).startComponent(), OrvOk);
        EXPECT_THAT(host.calls("Translator."), ElementsAre("Translator.start()"));
    }
}

TEST(TranslatorLife, Stop_IsAfterTheInterfacesAndTheirMemoryAndBeforeTheValidators) {
    Host host;
    host.mo("A=1");
    host.start();
    const auto iterator = host.client().open(1, "", "A");
    const auto old = host.client1().open(2, "", "A");
    ASSERT_EQ(iterator.code, OrvOk);
    ASSERT_EQ(old.code, OrvOk);
    bool seen = false;
    bool verdict = false;
    duringStop = [&] {
        seen = true;
        EXPECT_EQ(host.client1().remove(3, "A=1"), OrvNotActive);
        EXPECT_EQ(host.client().exists(3, "A=1").code, OrvNotActive);
        EXPECT_EQ(host.client3_1().set(3, "A=1", {}), OrvNotActive);
        EXPECT_EQ(host.client().next(iterator.thing).code, OrvNotActive);
        EXPECT_EQ(host.client1().next(old.thing).code, OrvNotActive);
        EXPECT_EQ(host.resource().validate(3, &verdict), OrvOk);
        EXPECT_TRUE(verdict) << "the validators are still there";
    };
    EXPECT_EQ(host.stopComponent(), OrvOk);
    EXPECT_TRUE(seen);
    EXPECT_EQ(host.resource().validate(3, &verdict), OrvOk);
    EXPECT_FALSE(verdict) << "and gone now";
}

TEST(TranslatorLife, StopWhileStopped_RunsAgain) {
    Host host;
    host.start();
    ASSERT_EQ(host.stopComponent(), OrvOk);
    ASSERT_EQ(host.stopComponent(), OrvOk);
    EXPECT_THAT(host.calls(), ElementsAre("Translator.stop()", "Translator.stop()"));
}
