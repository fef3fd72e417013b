// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The names of members in a struct that version 1 has rebuilt: like all of it they live as long as
// the transaction, whatever becomes of the names that they were made from.

#include "Network.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>

using namespace Scripted;

namespace {

/// A struct value with a reference in it, in memory that is overwritten when it goes out of use.
class PassingStruct {
public:
    explicit PassingStruct(const std::string& reference) : mReference(reference) {
        mSlot.moRef = mReference.c_str();
        mStruct.structValue = &mOuter;
    }
    PassingStruct(const PassingStruct&) = delete;
    PassingStruct& operator=(const PassingStruct&) = delete;

    OrvMoAttributeValueContainer* container() { return &mContainer; }

    void overwriteNames() {
        std::memset(mOuterName, '?', sizeof(mOuterName) - 1);
        std::memset(mInnerName, '?', sizeof(mInnerName) - 1);
    }

private:
    std::string mReference;
    char mOuterName[6] = "outer";
    char mInnerName[6] = "inner";
    OrvMoAttributeValue mSlot = {};
    OrvMoAttributeValueContainer mValue = {OrvMoAttributeTypeMoRef_3, 1, &mSlot};
    OrvMoStructMember mInner = {mInnerName, &mValue, nullptr};
    OrvMoStructMember mOuter = {mOuterName, &mValue, &mInner};
    OrvMoAttributeValue mStruct = {};
    OrvMoAttributeValueContainer mContainer = {OrvMoAttributeTypeStruct_3, 1, &mStruct};
};

}

class Version1Names : public Network {
protected:
    /// \p call answers with \p value.
    void routerAnswers(const std::string& call, PassingStruct& value) {
        host.when(call).answers<OrvMoAttributeValueContainer*>(
            [&value](OrvMoAttributeValueContainer*& out) {
                out = value.container();
                return OrvOk;
            });
    }

    static void expectStruct(const OrvMoAttributeValueContainer* seen,
                             const std::string& reference) {
        EXPECT_EQ(readValue(seen), structs({{member("outer", refs({reference})),
                                             member("inner", refs({reference}))}}));
    }
};

TEST_F(Version1Names, WhatAClientReads_IsWholeWithoutTheRoutersTexts) {
    PassingStruct routers(cellInside("1"));
    routerAnswers("Router1.getMoAttribute", routers);
    const auto got = host.client1().get(1, unit("7"), "s");
    routers.overwriteNames();
    expectStruct(got.thing, cell("1"));
}

TEST_F(Version1Names, WhatAnActionAnswers_IsWholeWithoutTheRoutersTexts) {
    PassingStruct routers(cellInside("1"));
    routerAnswers("Router1.action", routers);
    const auto got = host.client1().action(1, unit("7"), "go");
    routers.overwriteNames();
    expectStruct(got.thing, cell("1"));
}

TEST_F(Version1Names, WhatTheRouterIsGiven_IsWholeUntilTheTransactionIsFinished) {
    PassingStruct clients(cell("1"));
    const auto client1 = host.client1();
    EXPECT_EQ(client1.table->setMoAttribute(1, unit("7").c_str(), "s", clients.container()), OrvOk);
    const void* const seen = host.callRecords("Router1.").at(0).arguments.at(3).address;
    clients.overwriteNames();
    expectStruct(static_cast<const OrvMoAttributeValueContainer*>(seen), cellInside("1"));
}
