// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What is done before what, where nothing but the order shows.

#include "Network.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <string>
#include <utility>
#include <vector>

using namespace Scripted;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class Order : public Network {
protected:
    /// While the back-pointers of a written reference are edited, interceptors come and go.
    void whileRecording(std::function<void()> work) {
        host.when("VekRouter3.setMoAttribute").on("'unit'").once().runs(std::move(work));
    }

    OrvReturnT setCells() { return client().set(1, unit("7"), "cells", refs({cell("1")})); }
    OrvReturnT setCellsAmongMany() {
        return host.client3_1().set(1, unit("7"), {{"cells", refs({cell("1")})}});
    }

    const std::string path = "ManagedElement,Unit";
};

TEST_F(Order, Set_InterceptorThatComesWhileReferencesAreRecorded_IsAsked) {
    Interceptor& late = host.bareInterceptor("late");
    late.initialize();
    whileRecording([&] { EXPECT_EQ(late.registerClass(path), OrvOk); });
    EXPECT_EQ(setCells(), OrvOk);
    EXPECT_THAT(host.calls("Interceptor."),
                ElementsAre("Interceptor.setMoAttribute('late', 1, 'ManagedElement=1,Unit=7', "
                            "'cells', MoRef['ManagedElement=1,Cell=1'])"));
    EXPECT_THAT(host.calls("Router3."), IsEmpty());
}

TEST_F(Order, Set_InterceptorThatGoesWhileReferencesAreRecorded_IsNotAsked) {
    Interceptor& gone = host.interceptor(path);
    whileRecording([&] { gone.deregisterClass(path); });
    EXPECT_EQ(setCells(), OrvOk);
    EXPECT_THAT(host.calls("Interceptor."), IsEmpty());
    EXPECT_EQ(host.calls("Router3.").size(), 1U);
}

TEST_F(Order, SetMany_InterceptorThatComesWhileReferencesAreRecorded_IsAsked) {
    Interceptor& late = host.bareInterceptor("late");
    late.initialize();
    whileRecording([&] { EXPECT_EQ(late.registerClass(path), OrvOk); });
    EXPECT_EQ(setCellsAmongMany(), OrvOk);
    EXPECT_THAT(host.calls("Interceptor."),
                ElementsAre("Interceptor.setMoAttributes('late', 1, 'ManagedElement=1,Unit=7', "
                            "{cells: MoRef['ManagedElement=1,Cell=1']})"));
}

TEST_F(Order, SetMany_InterceptorThatGoesWhileReferencesAreRecorded_IsNotAsked) {
    Interceptor& gone = host.interceptor(path);
    whileRecording([&] { gone.deregisterClass(path); });
    EXPECT_EQ(setCellsAmongMany(), OrvOk);
    EXPECT_THAT(host.calls("Interceptor."), IsEmpty());
    EXPECT_EQ(host.calls("Router3_1.").size(), 1U);
}

namespace {

const std::string kTooManySites = "Attribute site in ManagedElement=1,Unit=7 contains 2 Site which "
                                  "is not within cardinality range (0..1).";
const std::string kTooManyCells = "Attribute cells in ManagedElement=1,Unit=7 contains 3 cells "
                                  "which is not within cardinality range (0..2).";

}

/// What has been traced when the host is called.
class OrderOfTraces : public Network {
protected:
    OrderOfTraces() { host.logLevel(8); }

    void lookAt(const std::string& call) {
        host.when(call).once().runs([this] { tracedBefore = host.logs(); });
    }

    std::vector<std::string> tracedBefore;
};

TEST_F(OrderOfTraces, JudgedPair_IsTracedBeforeTheHostIsAsked) {
    EXPECT_EQ(client().set(1, unit("7"), "label", refs({})), OrvOk);
    lookAt("VekRouter3.existsMo");
    EXPECT_FALSE(validate(1));
    EXPECT_THAT(tracedBefore,
                Contains("trace 0 validateBiDirs: Validating: ManagedElement=1,Unit=7, label"));
}

TEST_F(OrderOfTraces, ValueThatCannotBeRead_IsTracedBeforeItGoesBack) {
    static std::function<void()> onRelease;
    onRelease = [this] { tracedBefore = host.logs(); };
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({})), OrvOk);
    host.when("VekRouter3.getMoAttribute")
        .answers<OrvMoAttributeValueResult_3>([](OrvMoAttributeValueResult_3& out) {
            static OrvMoAttributeValueContainer_3 value = {OrvMoAttributeTypeMoRef_3, 0, nullptr};
            out = {[](OrvMoAttributeValueContainer_3*) { onRelease(); }, &value};
            return -42;
        });
    EXPECT_FALSE(validate(1));
    EXPECT_THAT(tracedBefore, Contains("trace 0 validateBiDirs: Failed to retrieve "
                                       "ManagedElement=1,Unit=7 value from cells, return code = "
                                       "-42"));
}

// The two validators differ here, and clients' logs have always shown it so.
TEST_F(OrderOfTraces, MessageOfBackPointers_IsGivenToTheClientAndThenTraced) {
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("1"), cell("2"), cell("3")})), OrvOk);
    lookAt("ThreadContext.addMessage");
    EXPECT_FALSE(validate(1));
    const std::string trace = "trace 0 addThreadContextMessage: " + kTooManyCells;
    EXPECT_THAT(tracedBefore, Not(Contains(trace)));
    EXPECT_THAT(host.logs(), Contains(trace));
}

TEST_F(OrderOfTraces, MessageOfReferences_IsTracedAndThenGivenToTheClient) {
    EXPECT_EQ(client().set(1, unit("7"), "site", refs({site("1"), site("1")})), OrvOk);
    lookAt("ThreadContext.addMessage");
    EXPECT_FALSE(validate(1));
    EXPECT_THAT(tracedBefore, Contains("trace 0 addMessage: Adding message to thread context: [" +
                                       kTooManySites + "]"));
}

namespace {

/// Runs some work on another thread at one record of the log, and waits for it there.
class OrderOfLocks : public Network {
protected:
    /// At the first record with \p text. The sink keeps the others from logging until it is done,
    /// so the work must have nothing to say: the level is 0 from then on.
    void atRecord(const std::string& text, const std::function<void()>& work) {
        Orv::LoggingWrapper::instance()->setSink([this, text, work](const Orv::LogRecord& record) {
            if (record.text == text && !other.valid()) {
                host.logLevel(0);
                other = std::async(std::launch::async, work);
                served = other.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
            }
        });
        host.logLevel(8);
    }

    bool served = false;

private:
    std::future<void> other; ///< waited for when the operation has let go of what it holds
};

}

// The end of a transaction takes the lock of the back-pointers that wait.
TEST_F(OrderOfLocks, BackPointersThatWait_TheKeyIsTracedBeforeTheirLockIsTaken) {
    atRecord(" >> key = " + unitInside("9"),
             [this] { EXPECT_EQ(host.resource().finish(99), OrvOk); });
    EXPECT_EQ(client().create(1, kRoot, "Unit", "unitId", "9"), OrvOk);
    EXPECT_TRUE(served);
}
