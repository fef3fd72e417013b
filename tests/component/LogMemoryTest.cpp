// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The helper library's log when memory runs out.

#include "FailingNew.h"
#include "LogCapture.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace Scripted {
namespace {

// An operation that has done its work must not be reported as failed because of a trace.
TEST(AllocationFaultsOfTheLog, NoMemoryForARecord_DropsItAndThrowsNothing) {
    const LogCapture capture;
    Orv::LoggingWrapper& wrapper = *Orv::LoggingWrapper::instance();
    constexpr const char* kFunction = "aFunctionWhoseNameIsNotShort";
    constexpr const char* kText = "a text that does not fit into a short string: %d";
    const std::vector<std::function<void()>> forms = {
        [&] { wrapper.log_printf(kFunction, 3, 1, kText, 7); },
        [&] { wrapper.trace_printf("a/source/with/a/long/path", kFunction, 7, 9, kText, 7); },
        [&] {
            wrapper.trace_v2_printf(1, 14, "a/source/with/a/long/path", kFunction, 7, kText, 7);
        },
    };
    std::size_t written = 0;
    for (const std::function<void()>& write : forms) {
        bool sprung = true;
        for (std::size_t failing = 1; sprung; ++failing) {
            {
                const NewWatch watch(failing);
                EXPECT_NO_THROW(write());
                sprung = watch.sprung();
            }
            written += sprung ? 0 : 1;
            EXPECT_EQ(capture.records().size(), written);
        }
    }
    EXPECT_EQ(watchedBlocks(), 0U);
}

}
}
