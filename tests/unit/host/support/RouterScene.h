// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_HOST_SUPPORT_ROUTERSCENE_H
#define ORV_TESTS_HOST_SUPPORT_ROUTERSCENE_H

#include "SampleStore.h"
#include "router/CmRouter.h"
#include "transactions/TransactionService.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvHost {

/// A router over the sample store, with a transaction service, and the router's tables.
class RouterScene : public testing::Test, protected SampleStore {
protected:
    RouterScene();

    /// Commits the current transaction and begins the next.
    TransactionOutcome commit();
    /// Removes the latest message and returns its text; empty if there is none.
    std::string lastMessage();

    ThreadContext context;
    CmRouter router{model, store, context};
    TransactionService service{context}; // after its participant, because its destructor calls that
    OrvOamSpiManagedObject_1& v1 = *router.getInterface1();
    OrvOamSpiManagedObject_3& v3 = *router.getInterface3();
    VekOamSpiManagedObject_3_1& v3_1 = *router.getInterface3_1();
    unsigned long tx = 0;
};

}

#endif
