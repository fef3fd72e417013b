// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Each version has one table, so it has one object at a time.

#include "MoImpl.h"
#include "MoImpl3.h"
#include "MoImpl3_1.h"

#include <gtest/gtest.h>

using namespace OrvExtCmRouterService;

namespace {

class ServiceLife : public testing::Test {
protected:
    OrvOamSpiTransactionalResource_2 resource{};
    IdMappings mappings{Orv::MeIdTranslator::instance()};
    TransactionData transactions{&resource};
    BiDirUtils biDirUtils;
    UniDirValidator uniDirValidator;
};

}

// The end of one object frees the table's place for the next.
TEST_F(ServiceLife, OneAfterTheOther_EachHasTheTypeToItself) {
    for (int round = 0; round < 2; ++round) {
        MoImpl3_1 service(mappings, transactions, biDirUtils, uniDirValidator);
        EXPECT_EQ(service.getMoInterface()->setMoAttributes(1, "A=1", nullptr), OrvNotActive);
    }
}

// A second object would take over a table that is in use.
TEST_F(ServiceLife, SecondAtATime_EndsTheProcess) {
    const MoImpl one(mappings, transactions);
    EXPECT_DEATH({ const MoImpl another(mappings, transactions); }, "!_instance");
    const MoImpl3 three(mappings, transactions, biDirUtils, uniDirValidator);
    EXPECT_DEATH({ const MoImpl3 another(mappings, transactions, biDirUtils, uniDirValidator); },
                 "!_instance");
    const MoImpl3_1 threeOne(mappings, transactions, biDirUtils, uniDirValidator);
    EXPECT_DEATH({ const MoImpl3_1 another(mappings, transactions, biDirUtils, uniDirValidator); },
                 "!_instance");
}
