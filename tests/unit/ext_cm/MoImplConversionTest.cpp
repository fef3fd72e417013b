// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Conversion of values of version 1, where copies belong to the transaction.

#include "MoImpl.h"

#include "Records.h"

#include <gtest/gtest.h>

#include <string>

using OrvExtCmRouterService::IdMappings;
using OrvExtCmRouterService::MoImpl;
using OrvExtCmRouterService::TransactionData;

using namespace Scripted;

namespace {

constexpr unsigned long kTx = 3;
constexpr char kRoot[] = "ManagedElement=1";
constexpr char kRootOutside[] = "ManagedElement=paris";
constexpr char kForeign[] = "ManagedElement=london"; // translates in neither direction

int joins = 0;
OrvReturnT join(unsigned long, OrvOamSpiTransactionalResource_2*) {
    ++joins;
    return OrvOk;
}

class MoImplConversion : public testing::Test {
protected:
    MoImplConversion() {
        joins = 0;
        transactions.transaction = &table;
        Orv::MeIdTranslator::instance()->configure("paris", "");
    }
    ~MoImplConversion() override { Orv::MeIdTranslator::instance()->configure("", ""); }

    OrvMoAttributeValueContainer* outward(OrvMoAttributeValueContainer* value) {
        return service.transformContainer(value, IdMappings::ToExternal, kTx);
    }

    Records1 records;
    OrvOamSpiTransaction_1 table{{}, &join};
    OrvOamSpiTransactionalResource_2 resource{};
    IdMappings mappings{Orv::MeIdTranslator::instance()};
    TransactionData transactions{&resource};
    MoImpl service{mappings, transactions};
};

}

TEST_F(MoImplConversion, PlainValue_IsHandedOnAndJoinsNothing) {
    for (const Value& value : {strings({kRoot}), opaque(200, {1}), none(1)}) {
        OrvMoAttributeValueContainer* const original = records.container(value);
        EXPECT_EQ(outward(original), original);
    }
    EXPECT_EQ(joins, 0);
}

TEST_F(MoImplConversion, MoRef_IsCopiedAndJoins) {
    OrvMoAttributeValueContainer* const original =
        records.container(refs({kRoot, kForeign, "A=1"}));
    OrvMoAttributeValueContainer* const converted = outward(original);
    EXPECT_NE(converted, original);
    EXPECT_EQ(readValue(converted), refs({kRootOutside, kForeign, "A=1"}));
    EXPECT_NE(converted->values[1].moRef, original->values[1].moRef) << "not a copy";
    EXPECT_EQ(joins, 1);
    EXPECT_EQ(readValue(service.transformContainer(converted, IdMappings::ToInternal, kTx)),
              refs({kRoot, kForeign, "A=1"}));
}

TEST_F(MoImplConversion, MoRef_WithoutValues_IsANewContainerAllTheSame) {
    OrvMoAttributeValueContainer* const original = records.container(refs({}));
    OrvMoAttributeValueContainer* const converted = outward(original);
    EXPECT_NE(converted, original);
    EXPECT_EQ(converted->type, OrvMoAttributeTypeMoRef_3);
    EXPECT_EQ(converted->count, 0U);
    EXPECT_EQ(joins, 1);
}

TEST_F(MoImplConversion, Struct_WithoutADirectReferenceInTheFirstValue_IsHandedOn) {
    for (const Value& value :
         {structs({{member("a", strings({"x"}))}, {member("to", refs({kRoot}))}}), structs({}),
          structs({{member("in", structs({{member("to", refs({kRoot}))}}))}}),
          andEmptyStruct(none(OrvMoAttributeTypeStruct_3))}) {
        OrvMoAttributeValueContainer* const original = records.container(value);
        EXPECT_EQ(outward(original), original);
    }
    EXPECT_EQ(joins, 0);
}

TEST_F(MoImplConversion, Struct_WithAReference_IsRebuiltToTheBottom) {
    const auto value = [](const char* dn) {
        return andEmptyStruct(structs({{member("to", refs({dn})), member("a", strings({"x"})),
                                        member("in", structs({{member("to", refs({dn}))}}))}}));
    };
    OrvMoAttributeValueContainer* const original = records.container(value(kRoot));
    OrvMoAttributeValueContainer* const converted = outward(original);
    EXPECT_EQ(readValue(converted), value(kRootOutside));
    EXPECT_EQ(readValue(original), value(kRoot));
    EXPECT_EQ(converted->values[1].structValue, nullptr);
    EXPECT_EQ(converted->values[0].structValue->next->value,
              original->values[0].structValue->next->value)
        << "a member without references needs no copy of its value";
    EXPECT_EQ(joins, 1);
}

TEST_F(MoImplConversion, TwoCopiesInOneTransaction_AreBothValidUntilItsEnd) {
    OrvMoAttributeValueContainer* const original = records.container(refs({kRoot}));
    OrvMoAttributeValueContainer* const first = outward(original);
    OrvMoAttributeValueContainer* const second = outward(original);
    EXPECT_NE(first, second);
    EXPECT_EQ(readValue(first), refs({kRootOutside}));
    EXPECT_EQ(readValue(second), refs({kRootOutside}));
    EXPECT_EQ(joins, 1);
}
