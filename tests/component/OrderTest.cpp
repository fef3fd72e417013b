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

using namespace Scripted;
using testing::ElementsAre;
using testing::IsEmpty;

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
