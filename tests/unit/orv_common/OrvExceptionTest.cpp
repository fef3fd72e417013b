// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OrvException.h"

#include "OrvReturnText.h"

#include <gtest/gtest.h>
#include <limits>
#include <set>
#include <string>
#include <thread>

TEST(OrvException, WithoutCode_IsFailureWithFormattedText) {
    const Orv::OrvException thrown("part [%s] number %d", "a=1", 7);
    EXPECT_STREQ(thrown.what(), "part [a=1] number 7");
    EXPECT_EQ(thrown.returnCode(), OrvFailure);
}

TEST(OrvException, WithCode_KeepsIt) {
    const Orv::OrvException thrown(OrvReturnT{-77}, "Could not get %s from dn", "moc");
    EXPECT_STREQ(thrown.what(), "Could not get moc from dn");
    EXPECT_EQ(thrown.returnCode(), -77);
}

TEST(OrvException, LongText_IsNotCut) {
    const std::string dn(100000, 'x');
    const Orv::OrvException thrown("dn [%s]", dn.c_str());
    EXPECT_EQ(thrown.what(), "dn [" + dn + "]");
}

TEST(OrvException, Copy_KeepsTextAndCode) {
    const Orv::OrvException original(OrvReturnT{-3}, "taken: %s", "name");
    const Orv::OrvException copy = original; // NOLINT(performance-unnecessary-copy-initialization)
    EXPECT_STREQ(copy.what(), "taken: name");
    EXPECT_EQ(copy.returnCode(), OrvAlreadyExist);
}

TEST(OrvException, CaughtAsStandardException_TellsItsText) {
    try {
        throw Orv::OrvException("a reason");
    } catch (const std::exception& caught) {
        EXPECT_STREQ(caught.what(), "a reason");
    }
}

TEST(OrvReturn, Strerror_NamedCode_IsItsName) {
    EXPECT_STREQ(Orv::OrvReturn::strerror(OrvOk), "OrvOk");
    EXPECT_STREQ(Orv::OrvReturn::strerror(OrvNotActive), "OrvNotActive");
    EXPECT_STREQ(Orv::OrvReturn::strerror(OrvFailure), "OrvFailure");
    EXPECT_STREQ(Orv::OrvReturn::strerror(OrvNotExist), "OrvNotExist");
    EXPECT_STREQ(Orv::OrvReturn::strerror(OrvAlreadyExist), "OrvAlreadyExist");
    EXPECT_STREQ(Orv::OrvReturn::strerror(OrvInvalidArgument), "OrvInvalidArgument");
    EXPECT_STREQ(Orv::OrvReturn::strerror(OrvValidationFailed), "OrvValidationFailed");
}

TEST(OrvReturn, Strerror_CodeOfTheHost_KeepsItsNumber) {
    for (const OrvReturnT code : {1, 3, -4, -77, 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(Orv::OrvReturn::strerror(code), "unknown return code " + std::to_string(code));
    }
}

TEST(OrvReturn, Strerror_OneCodeAfterTheOther_EachIsReportedAndNamesStay) {
    const char* const name = Orv::OrvReturn::strerror(OrvNotExist);
    EXPECT_STREQ(Orv::OrvReturn::strerror(std::numeric_limits<OrvReturnT>::min()),
                 "unknown return code -2147483648");
    EXPECT_STREQ(Orv::OrvReturn::strerror(-42), "unknown return code -42");
    EXPECT_STREQ(Orv::OrvReturn::strerror(7), "unknown return code 7");
    EXPECT_STREQ(name, "OrvNotExist");
}

TEST(OrvReturn, Strerror_AnotherThreadAsks_TheTextStays) {
    const char* const mine = Orv::OrvReturn::strerror(-42);
    std::string other;
    std::thread([&] { other = Orv::OrvReturn::strerror(4711); }).join();
    EXPECT_STREQ(mine, "unknown return code -42");
    EXPECT_EQ(other, "unknown return code 4711");
}

TEST(OrvReturn, Values_AreTheOnesOfTheHost) {
    const std::set<OrvReturnT> values = {
        OrvOk,           OrvNotActive,       OrvFailure,         OrvNotExist,
        OrvAlreadyExist, OrvInvalidArgument, OrvValidationFailed};
    EXPECT_EQ(values, (std::set<OrvReturnT>{0, 2, -1, -2, -3, -8, -9}));
}
