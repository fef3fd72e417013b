// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// A host may put a helper library of its own in the place of ours, and traces may fail there. What
// this program defines takes precedence over the library, so these tests have one of their own.

#include "LoggingWrapper.h"
#include "MoImpl3.h"
#include "messages/Tracing.h"

#include <gtest/gtest.h>

#include <new>

namespace {

int traces = 0;       // written so far
int failingTrace = 0; // the number of the one that fails; 0: none

}

void Orv::LoggingWrapper::trace_printf(const char* /*file*/, const char* /*function*/, int /*line*/,
                                       int /*kind*/, const char* /*format*/, ...) {
    if (++traces == failingTrace) {
        throw std::bad_alloc();
    }
}

namespace OrvExtCmRouterService {
namespace {

int released = 0;
int reads = 0;

class TraceFailure : public testing::Test {
protected:
    TraceFailure() {
        Orv::LoggingWrapper::instance()->setLevel(8);
        failingTrace = 0;
        released = 0;
        reads = 0;
        router.getMoAttribute = [](unsigned long, const char*, const char*,
                                   OrvMoAttributeValueResult_3* out) {
            static OrvMoAttributeValueContainer_3 value = {OrvMoAttributeTypeMoRef_3, 0, nullptr};
            ++reads;
            *out = {[](OrvMoAttributeValueContainer_3*) { ++released; }, &value};
            return OrvOk;
        };
        service.init(&portal, &interceptors);
        service.start(OrvStateChangeReasonRequested);
    }
    ~TraceFailure() override {
        failingTrace = 0;
        Orv::LoggingWrapper::instance()->setLevel(4);
    }

    OrvReturnT readWithFailingTrace(int number) {
        traces = 0;
        failingTrace = number;
        result = {};
        return service.getMoInterface()->getMoAttribute(1, "A=1", "label", &result);
    }

    /// How many traces a read writes when none fails.
    int countTraces() {
        EXPECT_EQ(readWithFailingTrace(0), OrvOk);
        result.release(result.container);
        reads = 0;
        released = 0;
        return traces;
    }

    static OrvReturnT answer(OrvReturnT code) { return ORV_TRACE_RESULT(code); }

    static OrvOamSpiManagedObject_3 router;
    OrvMgmtSpiInterfacePortal_1 portal{{},
                                       [](VekMgmtSpiInterface_1, void** found) {
                                           *found = &router;
                                           return OrvOk;
                                       },
                                       nullptr,
                                       nullptr,
                                       nullptr};
    OrvOamSpiTransactionalResource_2 resource{};
    ExtCmInterceptorRepository interceptors;
    IdMappings mappings{Orv::MeIdTranslator::instance()};
    TransactionData transactions{&resource};
    BiDirUtils biDirUtils;
    UniDirValidator uniDirValidator;
    MoImpl3 service{mappings, transactions, biDirUtils, uniDirValidator};
    OrvMoAttributeValueResult_3 result{};
};

OrvOamSpiManagedObject_3 TraceFailure::router = {};

TEST_F(TraceFailure, Entry_NothingIsDone) {
    EXPECT_EQ(readWithFailingTrace(1), OrvFailure);
    EXPECT_EQ(reads, 0);
    EXPECT_EQ(result.container, nullptr);
}

TEST_F(TraceFailure, OnTheWay_NothingIsHandedOutNorKept) {
    const int last = countTraces();
    ASSERT_GE(last, 2);
    for (int number = 1; number < last; ++number) {
        EXPECT_EQ(readWithFailingTrace(number), OrvFailure) << "trace " << number;
        EXPECT_EQ(result.container, nullptr) << "trace " << number;
        EXPECT_EQ(released, reads) << "trace " << number;
    }
}

// What has been handed out is the client's, and a client looks at it only if the code says so.
TEST_F(TraceFailure, Exit_TheAnswerStands) {
    const int last = countTraces();
    EXPECT_EQ(readWithFailingTrace(last), OrvOk);
    EXPECT_EQ(traces, last);
    ASSERT_NE(result.container, nullptr);
    result.release(result.container);
    EXPECT_EQ(released, 1);
}

TEST_F(TraceFailure, Result_IsGivenBack) {
    traces = 0;
    failingTrace = 1;
    EXPECT_EQ(answer(OrvNotExist), OrvNotExist);
    EXPECT_EQ(traces, 1);
}

}
}
