// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MeIdTranslator.h"

#include <gtest/gtest.h>

namespace {

class MeIdTranslatorTest : public ::testing::Test {
protected:
    void SetUp() override { translator.configure("gnb-7", "fallback"); }
    void TearDown() override { translator.configure("", ""); }

    Orv::MeIdTranslator& translator = *Orv::MeIdTranslator::instance();
};

}

TEST_F(MeIdTranslatorTest, Instance_IsOne) {
    EXPECT_EQ(Orv::MeIdTranslator::instance(), &translator);
}

TEST_F(MeIdTranslatorTest, Translate_RootWithIdentity_IsExchangedBothWays) {
    EXPECT_EQ(translator.toInternalDn("ManagedElement=gnb-7"), "ManagedElement=1");
    EXPECT_EQ(translator.toInternalDn("ManagedElement=gnb-7,Cell=gnb-7"),
              "ManagedElement=1,Cell=gnb-7");
    EXPECT_EQ(translator.toExternalDn("ManagedElement=1"), "ManagedElement=gnb-7");
    EXPECT_EQ(translator.toExternalDn("ManagedElement=1,Cell=1"), "ManagedElement=gnb-7,Cell=1");
}

TEST_F(MeIdTranslatorTest, Translate_RootWithNamingAttribute_KeepsItsForm) {
    EXPECT_EQ(translator.toInternalDn("ManagedElement.id=gnb-7,Cell=1"),
              "ManagedElement.id=1,Cell=1");
    EXPECT_EQ(translator.toExternalDn("ManagedElement.id=1,Cell=1"),
              "ManagedElement.id=gnb-7,Cell=1");
}

TEST_F(MeIdTranslatorTest, Translate_RootWithAnotherValue_CannotBeTranslated) {
    EXPECT_EQ(translator.toInternalDn("ManagedElement=gnb-8"), "");
    EXPECT_EQ(translator.toInternalDn("ManagedElement=gnb-77,Cell=1"), "");
    EXPECT_EQ(translator.toInternalDn("ManagedElement=1,Cell=1"), "");
    EXPECT_EQ(translator.toInternalDn("ManagedElement=fallback"), "");
    EXPECT_EQ(translator.toExternalDn("ManagedElement=gnb-7,Cell=1"), "");
    EXPECT_EQ(translator.toExternalDn("ManagedElement=11"), "");
}

TEST_F(MeIdTranslatorTest, Translate_RootWithoutValue_CannotBeTranslated) {
    for (const char* dn :
         {"ManagedElement", "ManagedElement=", "ManagedElement,Cell=1",
          "ManagedElement=,Cell=gnb-7", "ManagedElement.id", "ManagedElement,=1"}) {
        EXPECT_EQ(translator.toInternalDn(dn), "") << dn;
        EXPECT_EQ(translator.toExternalDn(dn), "") << dn;
    }
}

TEST_F(MeIdTranslatorTest, Translate_AnotherFirstClass_PassesUnchanged) {
    for (const char* dn : {"Cell=1", "ManagedElements=gnb-7", "managedElement=gnb-7",
                           "SubNetwork=1,ManagedElement=gnb-7", " ManagedElement=gnb-7", "=", ",",
                           "no steps at all"}) {
        EXPECT_EQ(translator.toInternalDn(dn), dn);
        EXPECT_EQ(translator.toExternalDn(dn), dn);
    }
}

TEST_F(MeIdTranslatorTest, Translate_EmptyDn_IsEmpty) {
    EXPECT_EQ(translator.toInternalDn(""), "");
    EXPECT_EQ(translator.toExternalDn(""), "");
}

TEST_F(MeIdTranslatorTest, Translate_NoPreferredIdentity_TakesTheFallback) {
    translator.configure("", "fallback");
    EXPECT_EQ(translator.toInternalDn("ManagedElement=fallback,A=1"), "ManagedElement=1,A=1");
    EXPECT_EQ(translator.toExternalDn("ManagedElement=1,A=1"), "ManagedElement=fallback,A=1");
    EXPECT_STREQ(translator.identity(), "fallback");
}

// A text that is shorter after the exchange is put together in another way than a longer one.
TEST_F(MeIdTranslatorTest, Translate_IdentityOfAnyLength_KeepsWhatStandsAroundIt) {
    for (std::size_t length = 1; length < 60; ++length) {
        const std::string identity(length, 'x');
        translator.configure(identity, "");
        for (const std::string rest : {"", ",A=1", ",Cell=1,Antenna=a value of some length"}) {
            for (const std::string start : {"ManagedElement=", "ManagedElement.id="}) {
                const std::string outside = start + identity + rest;
                const std::string inside = start + "1" + rest;
                EXPECT_EQ(translator.toInternalDn(outside), inside);
                EXPECT_EQ(translator.toExternalDn(inside), outside);
            }
        }
    }
}

TEST_F(MeIdTranslatorTest, Translate_NoIdentityAtAll_CannotTranslateTheRoot) {
    translator.configure("", "");
    EXPECT_EQ(translator.toInternalDn("ManagedElement=1"), "");
    EXPECT_EQ(translator.toInternalDn("ManagedElement="), "");
    EXPECT_EQ(translator.toExternalDn("ManagedElement=1"), "");
    EXPECT_EQ(translator.toInternalDn("Cell=1"), "Cell=1");
    EXPECT_STREQ(translator.identity(), "");
}

TEST_F(MeIdTranslatorTest, Translate_IdentityEqualToTheInternalOne_KeepsTheDn) {
    translator.configure("1", "");
    EXPECT_EQ(translator.toInternalDn("ManagedElement=1,A=2"), "ManagedElement=1,A=2");
    EXPECT_EQ(translator.toExternalDn("ManagedElement=1,A=2"), "ManagedElement=1,A=2");
}

TEST_F(MeIdTranslatorTest, Identity_Preferred_StaysReadableUntilTheNextConfigure) {
    const char* identity = translator.identity();
    EXPECT_EQ(translator.toInternalDn("ManagedElement=gnb-7"), "ManagedElement=1");
    EXPECT_EQ(translator.identity(), identity);
    EXPECT_STREQ(identity, "gnb-7");
}

TEST_F(MeIdTranslatorTest, StartAndStop_KeepTheIdentities) {
    translator.start();
    EXPECT_STREQ(translator.identity(), "gnb-7");
    translator.stop();
    EXPECT_STREQ(translator.identity(), "gnb-7");
}
