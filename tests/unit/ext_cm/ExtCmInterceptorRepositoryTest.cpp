// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ExtCmInterceptorRepository.h"

#include "LogCapture.h"
#include "MoInterceptorBase.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <type_traits>

using OrvExtCmRouterService::ExtCmInterceptorRepository;
using OrvExtCmRouterService::MoInterceptorBase;
using Scripted::LogCapture;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

int destroyed = 0;

class Interceptor : public MoInterceptorBase {
public:
    ~Interceptor() override { ++destroyed; }
};

std::string pointerText(const void* pointer) {
    char text[32];
    std::snprintf(text, sizeof text, "%p", pointer);
    return text;
}

class RepositoryTest : public testing::Test {
protected:
    ExtCmInterceptorRepository repository;
    Interceptor first;
    Interceptor second;
};

}

static_assert(!std::is_polymorphic_v<ExtCmInterceptorRepository>,
              "the identity must be the first word of the object");

TEST_F(RepositoryTest, New_BeginsWithItsIdentity) {
    EXPECT_EQ(static_cast<void*>(repository.getInterface()), static_cast<void*>(&repository));
    EXPECT_STREQ(repository.getInterface()->componentName, "OrvOamSpiExtCmRouterService");
    EXPECT_STREQ(repository.getInterface()->interfaceName, "ExtCmInterceptorRepositoryI");
    EXPECT_STREQ(repository.getInterface()->interfaceVersion, "1");
}

TEST_F(RepositoryTest, GetInterceptor_Empty_GivesNull) {
    EXPECT_EQ(repository.getInterceptor("A"), nullptr);
    EXPECT_EQ(repository.getInterceptor(""), nullptr);
}

TEST_F(RepositoryTest, RegisterClass_TakenPath_IsRefusedAndTheFirstStays) {
    EXPECT_EQ(repository.registerClass(first, "A,B"), OrvOk);
    EXPECT_EQ(repository.registerClass(second, "A,B"), OrvAlreadyExist);
    EXPECT_EQ(repository.getInterceptor("A,B"), &first);
}

TEST_F(RepositoryTest, RegisterClass_SameObjectSamePath_IsRefusedToo) {
    EXPECT_EQ(repository.registerClass(first, "A"), OrvOk);
    EXPECT_EQ(repository.registerClass(first, "A"), OrvAlreadyExist);
}

TEST_F(RepositoryTest, RegisterClass_OneObjectUnderTwoPaths_IsFoundUnderBoth) {
    EXPECT_EQ(repository.registerClass(first, "A"), OrvOk);
    EXPECT_EQ(repository.registerClass(first, "B"), OrvOk);
    EXPECT_EQ(repository.getInterceptor("A"), &first);
    EXPECT_EQ(repository.getInterceptor("B"), &first);
}

TEST_F(RepositoryTest, GetInterceptor_MatchesTheWholePathAndNothingElse) {
    repository.registerClass(first, "A,B");
    for (const char* other : {"A", "A,", "A,B,C", "A,b", " A,B", "A,B ", "B", ""}) {
        EXPECT_EQ(repository.getInterceptor(other), nullptr) << other;
    }
    repository.registerClass(second, "A,B,C");
    EXPECT_EQ(repository.getInterceptor("A,B"), &first);
    EXPECT_EQ(repository.getInterceptor("A,B,C"), &second);
}

TEST_F(RepositoryTest, EmptyText_IsAPathLikeAnyOther) {
    EXPECT_EQ(repository.registerClass(first, ""), OrvOk);
    EXPECT_EQ(repository.getInterceptor(""), &first);
    EXPECT_EQ(repository.registerClass(second, ""), OrvAlreadyExist);
    repository.deregisterClass("");
    EXPECT_EQ(repository.getInterceptor(""), nullptr);
}

TEST_F(RepositoryTest, DeregisterClass_FreesThePath) {
    repository.registerClass(first, "A");
    repository.deregisterClass("A");
    EXPECT_EQ(repository.getInterceptor("A"), nullptr);
    EXPECT_EQ(repository.registerClass(second, "A"), OrvOk);
    EXPECT_EQ(repository.getInterceptor("A"), &second);
}

TEST_F(RepositoryTest, DeregisterClass_UnknownPath_ChangesAndReportsNothing) {
    repository.registerClass(first, "A,B");
    LogCapture log;
    Orv::LoggingWrapper::instance()->setLevel(15);
    repository.deregisterClass("A");
    repository.deregisterClass("A,B,C");
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(repository.getInterceptor("A,B"), &first);
}

TEST_F(RepositoryTest, Destruction_DeletesNoInterceptor) {
    destroyed = 0;
    {
        ExtCmInterceptorRepository shortLived;
        shortLived.registerClass(first, "A");
        shortLived.registerClass(second, "B");
    }
    EXPECT_EQ(destroyed, 0);
}

TEST_F(RepositoryTest, Traces_TellPathInterceptorAndRefusal) {
    LogCapture log;
    Orv::LoggingWrapper::instance()->setLevel(8);
    repository.registerClass(first, "A");
    repository.registerClass(second, "A");
    repository.getInterceptor("A");
    repository.getInterceptor("B");
    const std::string firstText = pointerText(static_cast<MoInterceptorBase*>(&first));
    const std::string secondText = pointerText(static_cast<MoInterceptorBase*>(&second));
    const std::string refusal = "Interceptor with mocPath A is already registered";
    EXPECT_THAT(
        log.lines(),
        ElementsAre(
            "trace 9 registerClass:  >> interceptor: " + firstText + ", mocPath: A ",
            "trace2 ExtCm 14 registerClass:  >> interceptor: " + firstText + ", mocPath: A ",
            "trace 9 registerClass:  >> interceptor: " + secondText + ", mocPath: A ",
            "trace2 ExtCm 14 registerClass:  >> interceptor: " + secondText + ", mocPath: A ",
            "trace 0 registerClass: " + refusal, "trace2 ExtCm 14 registerClass: " + refusal,
            "trace 9 getInterceptor:  >> mocPath: A ",
            "trace2 ExtCm 14 getInterceptor:  >> mocPath: A ",
            "trace 0 getInterceptor: Found interceptor: " + firstText,
            "trace2 ExtCm 14 getInterceptor: Found interceptor: " + firstText,
            "trace 9 getInterceptor:  >> mocPath: B ",
            "trace2 ExtCm 14 getInterceptor:  >> mocPath: B "));
}
