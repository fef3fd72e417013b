// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Built with and without assertions: a second serving object must end the process in both.

#include "ServedMocks.h"

#include <gtest/gtest.h>

namespace {

const OrvMgmtSpiInterface_1 identity = {"TheComponent", "TheInterface", "TheVersion"};

template <template <class> class Binder, class Served>
void bindTwice() {
    Served first;
    Served second;
    const Binder<Served> firstBinder(identity, first);
    const Binder<Served> secondBinder(identity, second);
}

}

TEST(BinderDeath, SecondTransactionalResource_EndsTheProcess) {
    EXPECT_DEATH((bindTwice<Orv::TransactionalResource2Binder, ServedResource>()), "!_instance");
}

TEST(BinderDeath, SecondManagedObject1_EndsTheProcess) {
    EXPECT_DEATH((bindTwice<Orv::ManagedObject1Binder, ServedObject1>()), "!_instance");
}

TEST(BinderDeath, SecondManagedObject3_EndsTheProcess) {
    EXPECT_DEATH((bindTwice<Orv::ManagedObject3Binder, ServedObject3>()), "!_instance");
}

TEST(BinderDeath, SecondManagedObject3_1_EndsTheProcess) {
    EXPECT_DEATH((bindTwice<Orv::ManagedObject3_1Binder, ServedObject3_1>()), "!_instance");
}
