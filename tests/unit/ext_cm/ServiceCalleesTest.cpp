// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Whom version 3 calls, where the shared object does not show it: a service stopped on its own, and
// an interceptor that overrides one operation.

#include "MoImpl3.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace OrvExtCmRouterService;
using testing::ElementsAre;

namespace {

constexpr OrvReturnT kCode = -4711;
std::vector<std::string> calls;
OrvMoAttributeValueContainer_3 written = {};

OrvReturnT join(unsigned long, OrvOamSpiTransactionalResource_2*) {
    return OrvOk;
}

OrvReturnT newMoIterator(unsigned long, const char*, const char*, unsigned long long* iterator) {
    *iterator = 1;
    return OrvOk;
}

OrvReturnT finalizeMoIterator(unsigned long long) {
    calls.emplace_back("finalizeMoIterator");
    return OrvOk;
}

OrvReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attrName,
                          const OrvMoAttributeValueContainer_3* value) {
    calls.push_back("setMoAttribute " + std::to_string(txHandle) + " " + dn + " " + attrName);
    written = *value;
    return kCode;
}

OrvOamSpiManagedObject_3 router = {};
OrvOamSpiManagedObject_3 interceptorsRouter = {};

OrvReturnT getInterface(VekMgmtSpiInterface_1, void** result) {
    *result = &router;
    return OrvOk;
}

class ReadsOnly : public MoInterceptorBase {
public:
    ReadsOnly() { mo3Router = &interceptorsRouter; }

    OrvReturnT getMoAttribute(unsigned long, char const* dn, char const* attrName,
                              OrvMoAttributeValueResult_3*) override {
        calls.push_back(std::string("overridden ") + dn + " " + attrName);
        return kCode;
    }
};

class ServiceCallees : public testing::Test {
protected:
    ServiceCallees() {
        calls.clear();
        router.newMoIterator = &newMoIterator;
        router.finalizeMoIterator = &finalizeMoIterator;
        interceptorsRouter.setMoAttribute = &setMoAttribute;
        transactions.transaction = &transactionTable;
        service.init(&portal, &repository);
        service.start(OrvStateChangeReasonRequested);
    }

    OrvOamSpiTransaction_1 transactionTable{{}, &join};
    OrvOamSpiTransactionalResource_2 resource{};
    OrvMgmtSpiInterfacePortal_1 portal{{}, &getInterface, nullptr, nullptr, nullptr};
    ExtCmInterceptorRepository repository;
    IdMappings mappings{Orv::MeIdTranslator::instance()};
    TransactionData transactions{&resource};
    BiDirUtils biDirUtils;
    UniDirValidator uniDirValidator;
    MoImpl3 service{mappings, transactions, biDirUtils, uniDirValidator};
    OrvOamSpiManagedObject_3& table = *service.getMoInterface();
};

}

// The component drops the iterators when it stops; this service alone does not.
TEST_F(ServiceCallees, Finalize_StoppedWithTheIteratorLiving_CallsNobody) {
    unsigned long long iterator = 0;
    ASSERT_EQ(table.newMoIterator(1, "A=1", "B", &iterator), OrvOk);
    EXPECT_EQ(table.finalizeMoIterator(iterator), OrvOk);
    EXPECT_THAT(calls, ElementsAre("finalizeMoIterator"));
    ASSERT_EQ(service.stop(OrvStateChangeReasonRequested), OrvOk);
    EXPECT_NE(MoImpl3::MoIterator::find(iterator), nullptr);
    EXPECT_EQ(table.finalizeMoIterator(iterator), OrvOk);
    EXPECT_EQ(calls.size(), 1U);
}

TEST_F(ServiceCallees, InterceptorOfReads_ReadIsItsOwnAndAWriteReachesItsRouterUnchanged) {
    ReadsOnly interceptor;
    ASSERT_EQ(repository.registerClass(interceptor, "A"), OrvOk);
    OrvMoAttributeValueResult_3 result = {nullptr, nullptr};
    EXPECT_EQ(table.getMoAttribute(1, "A=1", "label", &result), kCode);
    EXPECT_EQ(result.container, nullptr);
    OrvMoAttributeValue_3 slot = {};
    slot.string = "x";
    const OrvMoAttributeValueContainer_3 value = {OrvMoAttributeTypeString_3, 1, &slot};
    EXPECT_EQ(table.setMoAttribute(7, "A=1", "label", &value), kCode);
    EXPECT_THAT(calls, ElementsAre("overridden A=1 label", "setMoAttribute 7 A=1 label"));
    EXPECT_EQ(written.type, value.type);
    EXPECT_EQ(written.count, value.count);
    EXPECT_EQ(written.values, value.values);
}
