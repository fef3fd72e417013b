// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The router's table through the life of a service of each version.

#include "MoImpl.h"
#include "MoImpl3.h"
#include "MoImpl3_1.h"

#include <gtest/gtest.h>

using namespace OrvExtCmRouterService;

namespace {

int lookups = 0;
OrvReturnT answer = OrvOk;
char table; // nobody looks into it

OrvReturnT getInterface(VekMgmtSpiInterface_1, void** result) {
    ++lookups;
    *result = answer == OrvOk ? &table : nullptr;
    return answer;
}

class Served1 : public MoImpl {
public:
    using MoImpl::getCmRouter;
    using MoImpl::MoImpl;
};

class Served3 : public MoImpl3 {
public:
    using MoImpl3::getCmRouter;
    using MoImpl3::MoImpl3;
};

class ServiceLife : public testing::Test {
protected:
    ServiceLife() {
        lookups = 0;
        answer = OrvOk;
    }

    template <class Service>
    void expectLife(Service& service) {
        constexpr OrvStateChangeReason reason = OrvStateChangeReasonRequested;
        EXPECT_EQ(lookups, 0) << "init only stores";
        EXPECT_EQ(routerOf(service), nullptr);
        answer = -4711;
        EXPECT_EQ(service.start(reason), OrvFailure);
        answer = OrvOk;
        EXPECT_EQ(service.start(reason), OrvOk);
        EXPECT_EQ(routerOf(service), &table);
        EXPECT_EQ(service.start(reason), OrvOk);
        EXPECT_EQ(lookups, 2) << "a start while started asks nobody";
        EXPECT_EQ(service.stop(reason), OrvOk);
        EXPECT_EQ(routerOf(service), nullptr);
        EXPECT_EQ(service.stop(reason), OrvOk);
        EXPECT_EQ(service.start(reason), OrvOk);
        EXPECT_EQ(lookups, 3);
    }

    template <class Service>
    static const void* routerOf(Service& service) {
        return service.getCmRouter();
    }

    OrvMgmtSpiInterfacePortal_1 portal{{}, &getInterface, nullptr, nullptr, nullptr};
    OrvOamSpiTransactionalResource_2 resource{};
    ExtCmInterceptorRepository repository;
    IdMappings mappings{Orv::MeIdTranslator::instance()};
    TransactionData transactions{&resource};
    BiDirUtils biDirUtils;
    UniDirValidator uniDirValidator;
};

void expectIdentity(const VekMgmtSpiInterface_1& identity, const char* name, const char* version) {
    EXPECT_STREQ(identity.componentName, "OrvOamSpiExtCmRouterService");
    EXPECT_STREQ(identity.interfaceName, name);
    EXPECT_STREQ(identity.interfaceVersion, version);
}

}

TEST_F(ServiceLife, Version1) {
    Served1 service(mappings, transactions);
    expectIdentity(service.getMoInterface()->identity, "OrvOamSpiManagedObject", "1");
    EXPECT_EQ(service.init(&portal), OrvOk);
    expectLife(service);
}

TEST_F(ServiceLife, Version3) {
    Served3 service(mappings, transactions, biDirUtils, uniDirValidator);
    expectIdentity(service.getMoInterface()->identity, "OrvOamSpiManagedObject", "3");
    EXPECT_EQ(service.init(&portal, &repository), OrvOk);
    expectLife(service);
}

TEST_F(ServiceLife, Version3_1) {
    MoImpl3_1 service(mappings, transactions, biDirUtils, uniDirValidator);
    expectIdentity(service.getMoInterface()->identity, "VekOamSpiManagedObject", "3_1");
    EXPECT_EQ(service.init(&portal, &repository), OrvOk);
    expectLife(service);
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
    const Served1 one(mappings, transactions);
    EXPECT_DEATH({ const Served1 another(mappings, transactions); }, "!_instance");
    const Served3 three(mappings, transactions, biDirUtils, uniDirValidator);
    EXPECT_DEATH({ const Served3 another(mappings, transactions, biDirUtils, uniDirValidator); },
                 "!_instance");
    const MoImpl3_1 threeOne(mappings, transactions, biDirUtils, uniDirValidator);
    EXPECT_DEATH({ const MoImpl3_1 another(mappings, transactions, biDirUtils, uniDirValidator); },
                 "!_instance");
}
