// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Handles and bounds of which the uppermost bit is set.

#include "Network.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using namespace Scripted;
using testing::Contains;
using testing::ElementsAre;

class LargeNumbers : public Network {
protected:
    /// The model answers \p call with \p handle, which nobody knows what to do with.
    void answerWith(const std::string& call, unsigned long long handle) {
        host.when(call).answers<unsigned long long>([handle](unsigned long long& out) {
            out = handle;
            return OrvOk;
        });
    }
};

TEST_F(LargeNumbers, AssociationHandles_AreTracedUnsigned) {
    answerWith("Model.getFirstBiDirAssociation", 0x8000'0000'0000'0001ULL);
    host.when("Model.getNextBiDirAssociation")
        .once()
        .answers<unsigned long long>([](unsigned long long& next) {
            next = 0xFFFF'FFFF'FFFF'FFFFULL;
            return OrvOk;
        });
    host.logLevel(8);
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({})), OrvOk);
    for (const std::string handle : {"9223372036854775809", "18446744073709551615"}) {
        const std::string text = "getBidirsForMoc: Found BiDir with handle " + handle;
        EXPECT_THAT(host.logs(), Contains("trace 0 " + text));
        EXPECT_THAT(host.logs(), Contains("trace2 ExtCm 14 " + text));
    }
}

TEST(LargeBounds, OfReferences_AreComparedAndShownUnsigned) {
    Host host;
    describeNetwork(host);
    host.model().uniDir("Cell", "site", "Site", -2, -1);
    host.start();
    EXPECT_EQ(host.client().set(1, cell("1"), "site", refs({site("1")})), OrvOk);
    EXPECT_EQ(host.client().set(1, cell("2"), "site", refs({})), OrvOk);
    bool result = true;
    EXPECT_EQ(host.resource().validate(1, &result), OrvOk);
    EXPECT_FALSE(result);
    const std::string outside = " Site which is not within cardinality range "
                                "(18446744073709551614..18446744073709551615).";
    EXPECT_THAT(host.messages(),
                ElementsAre("Attribute site in " + cellInside("1") + " contains 1" + outside,
                            "Attribute site in " + cellInside("2") + " contains 0" + outside));
}
