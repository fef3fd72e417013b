// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What becomes of transactions when memory runs out in the middle of them.

#include "FailingAllocations.h"
#include "OrvInterfaceBinders.h"
#include "transactions/TransactionService.h"

#include <gmock/gmock.h>

#include <new>

namespace OrvHost {
namespace {

OrvReturnT ok(unsigned long) {
    return OrvOk;
}

class TransactionMemoryTest : public testing::Test {
protected:
    /// One allocation of \p work fails, each in its turn. Calls \p check after each, and once after
    /// none has failed.
    template <class Work, class Check>
    void letEachFail(const Work& work, const Check& check) {
        bool hasFailed = true;
        int failures = -1;
        for (long number = 0; hasFailed; ++number, ++failures) {
            FailingAllocations::failAfter(number);
            const OrvReturnT code = work();
            hasFailed = FailingAllocations::stop();
            check(code);
            ASSERT_EQ(service.openCount(), 0U) << number;
        }
        EXPECT_GT(failures, 0);
    }

    OrvOamSpiTransactionalResource_2 resource{
        orvSpiOfferedBy(OrvOamSpiTransactionalResource_2_ExtCmId, "One"),
        &ok,
        &ok,
        &ok,
        &ok,
        &ok,
        [](unsigned long, bool* result) {
            *result = true;
            return OrvOk;
        }};
    ThreadContext context;
    TransactionService service{context};
};

TEST_F(TransactionMemoryTest, Begin_WithoutMemory_LeavesNothing) {
    service.enrolInEach(&resource);
    unsigned long begun = 0;
    letEachFail([&] { return service.getMasterInterface()->begin(&begun); },
                [&](OrvReturnT code) {
                    if (code == OrvOk) {
                        EXPECT_TRUE(service.abort(begun).accepted);
                    }
                });
}

// Who wants to join may not look at the code, and goes on: then nobody would ask it.
TEST_F(TransactionMemoryTest, Join_WithoutMemory_MakesTheTransactionInvalid) {
    unsigned long begun = 0;
    letEachFail(
        [&] {
            {
                const FailingAllocations::Spared spared;
                begun = service.begin();
            }
            return service.getTransactionInterface()->join(begun, &resource);
        },
        [&](OrvReturnT code) {
            EXPECT_EQ(service.validate(begun).accepted, code == OrvOk);
            EXPECT_EQ(service.commit(begun).accepted, code == OrvOk);
        });
}

TEST_F(TransactionMemoryTest, RefusedCommit_WithoutMemory_IsRefusedAndEnds) {
    resource.validate = [](unsigned long, bool* result) {
        *result = false;
        return OrvOk;
    };
    service.enrolInEach(&resource);
    letEachFail(
        [&] {
            unsigned long begun = 0;
            {
                const FailingAllocations::Spared spared;
                begun = service.begin();
            }
            return service.getMasterInterface()->commit(begun);
        },
        [&](OrvReturnT code) { EXPECT_EQ(code, OrvValidationFailed); });
}

}
}
