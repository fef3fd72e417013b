// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DnUtil.h"

#include <chrono>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using Orv::DnUtil;

namespace {

// The path as a caller builds it that takes one step after the other off the end.
std::string pathByPopping(std::string dn) {
    std::vector<std::string> leaves;
    std::string leaf;
    while (DnUtil::popLeafClass(dn, leaf)) {
        leaves.push_back(leaf);
    }
    std::string path;
    for (auto step = leaves.rbegin(); step != leaves.rend(); ++step) {
        path += (step == leaves.rbegin() ? "" : ",") + *step;
    }
    return path;
}

std::string dnOfSteps(unsigned int count) {
    std::string dn = "Root=1";
    for (unsigned int step = 1; step < count; ++step) {
        dn += ",Step.attr=" + std::to_string(step);
    }
    return dn;
}

}

TEST(DnUtil, GetMocPath_PlainSteps_JoinsTheClasses) {
    EXPECT_EQ(DnUtil::getMocPath("Parent=1,Unit=7"), "Parent,Unit");
    EXPECT_EQ(DnUtil::getMocPath("Parent=1"), "Parent");
}

TEST(DnUtil, GetMocPath_StepWithNamingAttribute_CountsByItsClass) {
    EXPECT_EQ(DnUtil::getMocPath("Parent.id=1,Unit.label=7,Leaf=2"), "Parent,Unit,Leaf");
}

TEST(DnUtil, GetMocPath_SignsInValues_BelongToTheValue) {
    EXPECT_EQ(DnUtil::getMocPath("Parent=1.2.3,Unit=a=b.c"), "Parent,Unit");
    EXPECT_EQ(DnUtil::getMocPath("Parent=,Unit=="), "Parent,Unit");
}

TEST(DnUtil, GetMocPath_EmptyDn_IsEmpty) {
    EXPECT_EQ(DnUtil::getMocPath(""), "");
}

TEST(DnUtil, GetMocPath_StepWithoutValue_IsItsClass) {
    EXPECT_EQ(DnUtil::getMocPath("Parent,Unit.label"), "Parent,Unit");
}

TEST(DnUtil, GetMocPath_AnyForm_EqualsWhatPoppingBuilds) {
    const std::vector<std::string> forms = {
        "",      "A=1",  "A=1,B=2", "A.x=1,B.y=2", "A=1.5,B=x=y", "A",       "A,B",
        ",",     ",,",   ",A=1",    ",,A=1",       "A=1,",        "A=1,,",   "A=1,,B=2",
        "=",     "=1",   "=1,B=2",  ".",           ".x=1,B=2",    "A.=1",    " A=1, B=2",
        "A=\t1", "Ä=ö,", ",=,.",    "A=1,B",       "A=1,.=,B",    "A.x.y=1", "A=1,B=2,C=3,D=4"};
    for (const std::string& form : forms) {
        EXPECT_EQ(DnUtil::getMocPath(form), pathByPopping(form)) << "[" << form << "]";
    }
}

TEST(DnUtil, GetMocPath_ThousandsOfSteps_EqualsWhatPoppingBuilds) {
    const std::string dn = dnOfSteps(5000);
    const std::string path = DnUtil::getMocPath(dn);
    EXPECT_EQ(path, pathByPopping(dn));
    EXPECT_EQ(path.substr(0, 14), "Root,Step,Step");
    EXPECT_EQ(path.size(), 4U + 4999U * 5U);
}

TEST(DnUtil, PathOperations_MillionSteps_TakeLinearTime) {
    const std::string dn = dnOfSteps(1000000);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(DnUtil::getMocPath(dn), pathByPopping(dn));
    // A quadratic walk over 20 megabytes would take hours.
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60));
}

TEST(DnUtil, PopLeafClass_StepWithNamingAttribute_GivesClassAndRest) {
    std::string dn = "Parent=1,Unit.label=7";
    std::string leaf = "before";
    EXPECT_TRUE(DnUtil::popLeafClass(dn, leaf));
    EXPECT_EQ(leaf, "Unit");
    EXPECT_EQ(dn, "Parent=1");
}

TEST(DnUtil, PopLeafClass_LastStep_LeavesNothing) {
    std::string dn = "Parent=1";
    std::string leaf;
    EXPECT_TRUE(DnUtil::popLeafClass(dn, leaf));
    EXPECT_EQ(leaf, "Parent");
    EXPECT_EQ(dn, "");
}

TEST(DnUtil, PopLeafClass_EmptyDn_LeavesBothUntouched) {
    std::string dn;
    std::string leaf = "before";
    EXPECT_FALSE(DnUtil::popLeafClass(dn, leaf));
    EXPECT_EQ(dn, "");
    EXPECT_EQ(leaf, "before");
}

TEST(DnUtil, ValidateMoNamingAttr_NullOrEmpty_IsRefused) {
    EXPECT_FALSE(DnUtil::validateMoNamingAttr(nullptr));
    EXPECT_FALSE(DnUtil::validateMoNamingAttr(""));
}

TEST(DnUtil, ValidateMoNamingAttr_OrdinaryTexts_AreAccepted) {
    for (const char* text : {"1", "gnb-7", "a b", "x.y:z/w", "0", "#", "a'b", "(1)[2]{3}", "~"}) {
        EXPECT_TRUE(DnUtil::validateMoNamingAttr(text)) << text;
    }
}

TEST(DnUtil, ValidateMoNamingAttr_ReservedSignAnywhere_IsRefused) {
    for (const char sign : std::string(",=+\"\\<>;")) {
        const std::string text(1, sign);
        EXPECT_FALSE(DnUtil::validateMoNamingAttr(text.c_str())) << sign;
        EXPECT_FALSE(DnUtil::validateMoNamingAttr((text + "a").c_str())) << sign;
        EXPECT_FALSE(DnUtil::validateMoNamingAttr(("a" + text).c_str())) << sign;
        EXPECT_FALSE(DnUtil::validateMoNamingAttr(("a" + text + "b").c_str())) << sign;
    }
}

TEST(DnUtil, ValidateMoNamingAttr_ControlCharacters_AreRefused) {
    for (int code = 1; code < 0x20; ++code) {
        const std::string text = std::string("a") + static_cast<char>(code) + "b";
        EXPECT_FALSE(DnUtil::validateMoNamingAttr(text.c_str())) << code;
    }
    EXPECT_FALSE(DnUtil::validateMoNamingAttr("a\x7f"));
    EXPECT_FALSE(DnUtil::validateMoNamingAttr("a\xc2\x80"));
    EXPECT_FALSE(DnUtil::validateMoNamingAttr("a\xc2\x9f"));
    EXPECT_TRUE(DnUtil::validateMoNamingAttr("a\xc2\xa0"));
}

TEST(DnUtil, ValidateMoNamingAttr_SpaceAtAnEnd_IsRefused) {
    EXPECT_FALSE(DnUtil::validateMoNamingAttr(" "));
    EXPECT_FALSE(DnUtil::validateMoNamingAttr(" a"));
    EXPECT_FALSE(DnUtil::validateMoNamingAttr("a "));
}

TEST(DnUtil, ValidateMoNamingAttr_WellFormedUtf8_IsAccepted) {
    for (const char* text :
         {"\xc3\xa9", "\xdf\xbf", "\xe0\xa0\x80", "\xed\x9f\xbf", "\xee\x80\x80", "\xef\xbf\xbf",
          "\xf0\x90\x80\x80", "\xf4\x8f\xbf\xbf", "a\xe2\x82\xacz"}) {
        EXPECT_TRUE(DnUtil::validateMoNamingAttr(text)) << text;
    }
}

TEST(DnUtil, ValidateMoNamingAttr_MalformedUtf8_IsRefused) {
    for (const char* text :
         {"\x80", "\xbf", "\xc0\x80", "\xc1\xbf", "\xc3", "a\xc3", "\xc3z", "\xe0\x9f\xbf",
          "\xe2\x82", "\xe2\x82z", "\xed\xa0\x80", "\xed\xbf\xbf", "\xf0\x8f\xbf\xbf",
          "\xf0\x9f\x98", "\xf4\x90\x80\x80", "\xf5\x80\x80\x80", "\xfe", "\xff", "ok\xff"}) {
        EXPECT_FALSE(DnUtil::validateMoNamingAttr(text));
    }
}
