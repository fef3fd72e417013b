// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MoInterceptorBase.h"

#include "ExtCmInterceptorRepository.h"
#include "LogCapture.h"
#include "Portal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

using OrvExtCmRouterService::ExtCmInterceptorRepository;
using OrvExtCmRouterService::MoInterceptorBase;
using Scripted::LogCapture;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Return;
using testing::StrictMock;

namespace {

// Arguments that are told apart by their value alone; nobody looks behind the pointers.
constexpr unsigned long kTx = 0xfedcba9876543210UL;
constexpr unsigned long long kHandle = 0x8877665544332211ULL;
constexpr OrvReturnT kCode = -4711;
const char* const kDn = "dn";
const char* const kName = "name";
const char* const kMore = "more";
const char* const kMost = "most";

class Router {
public:
    MOCK_METHOD(OrvReturnT, setMoAttribute,
                (unsigned long, const char*, const char*, const OrvMoAttributeValueContainer_3*));
    MOCK_METHOD(OrvReturnT, getMoAttribute,
                (unsigned long, const char*, const char*, OrvMoAttributeValueResult_3*));
    MOCK_METHOD(OrvReturnT, getMoAttributes,
                (unsigned long, const char*, const char**, OrvMoAttributeValuesResult_3*));
    MOCK_METHOD(OrvReturnT, newMoIterator,
                (unsigned long, const char*, const char*, unsigned long long*));
    MOCK_METHOD(OrvReturnT, nextMo, (unsigned long long, char**));
    MOCK_METHOD(OrvReturnT, createMo,
                (unsigned long, const char*, const char*, const char*, const char*,
                 OrvMoNamedAttributeValueContainer_3**));
    MOCK_METHOD(OrvReturnT, deleteMo, (unsigned long, const char*));
    MOCK_METHOD(OrvReturnT, action,
                (unsigned long, const char*, const char*, OrvMoNamedAttributeValueContainer_3**,
                 OrvMoAttributeValueResult_3*));
    MOCK_METHOD(OrvReturnT, finalizeMoIterator, (unsigned long long));
    MOCK_METHOD(OrvReturnT, existsMo, (unsigned long, const char*, bool*));
    MOCK_METHOD(OrvReturnT, countMoChildren,
                (unsigned long, const char*, const char*, unsigned long long*));
    MOCK_METHOD(OrvReturnT, setMoAttributes,
                (unsigned long, const char*, VekMoNamedAttributeValueContainer_3**));
};

Router* router = nullptr;

// A table slot that calls the mock's function of the same name.
template <auto Member>
struct Slot;
template <class... Arguments, OrvReturnT (Router::*Member)(Arguments...)>
struct Slot<Member> {
    static OrvReturnT call(Arguments... arguments) { return (router->*Member)(arguments...); }
};

OrvOamSpiManagedObject_3 table3 = {{},
                                   &Slot<&Router::setMoAttribute>::call,
                                   &Slot<&Router::getMoAttribute>::call,
                                   &Slot<&Router::getMoAttributes>::call,
                                   &Slot<&Router::newMoIterator>::call,
                                   &Slot<&Router::nextMo>::call,
                                   &Slot<&Router::createMo>::call,
                                   &Slot<&Router::deleteMo>::call,
                                   &Slot<&Router::action>::call,
                                   &Slot<&Router::finalizeMoIterator>::call,
                                   &Slot<&Router::existsMo>::call,
                                   &Slot<&Router::countMoChildren>::call};
VekOamSpiManagedObject_3_1 table3_1 = {{}, &Slot<&Router::setMoAttributes>::call};

class Interceptor : public MoInterceptorBase {
public:
    using MoInterceptorBase::mo3_1Router;
    using MoInterceptorBase::mo3Router;
    using MoInterceptorBase::repository;
};

class MoInterceptorBaseTest : public testing::Test {
protected:
    MoInterceptorBaseTest() {
        router = &mock;
        interceptor.mo3Router = &table3;
        interceptor.mo3_1Router = &table3_1;
    }
    ~MoInterceptorBaseTest() override { router = nullptr; }

    StrictMock<Router> mock;
    Interceptor interceptor;
    OrvMoAttributeValueResult_3 result{};
    OrvMoAttributeValuesResult_3 results{};
    OrvMoAttributeValueContainer_3 value{};
    OrvMoNamedAttributeValueContainer_3* attributes = nullptr;
    const char* names = nullptr;
    unsigned long long number = 0;
    bool flag = false;
    char* text = nullptr;
};

}

TEST_F(MoInterceptorBaseTest, New_HasNeitherRoutersNorRepository) {
    const Interceptor fresh;
    EXPECT_EQ(fresh.mo3Router, nullptr);
    EXPECT_EQ(fresh.mo3_1Router, nullptr);
    EXPECT_EQ(fresh.repository, nullptr);
}

TEST_F(MoInterceptorBaseTest, GetMoAttribute_IsForwarded) {
    EXPECT_CALL(mock, getMoAttribute(kTx, kDn, kName, &result)).WillOnce(Return(kCode));
    EXPECT_EQ(interceptor.getMoAttribute(kTx, kDn, kName, &result), kCode);
}

TEST_F(MoInterceptorBaseTest, GetMoAttributes_IsForwarded) {
    EXPECT_CALL(mock, getMoAttributes(kTx, kDn, &names, &results)).WillOnce(Return(kCode));
    EXPECT_EQ(interceptor.getMoAttributes(kTx, kDn, &names, &results), kCode);
}

TEST_F(MoInterceptorBaseTest, SetMoAttribute_IsForwarded) {
    EXPECT_CALL(mock, setMoAttribute(kTx, kDn, kName, &value)).WillOnce(Return(kCode));
    EXPECT_EQ(interceptor.setMoAttribute(kTx, kDn, kName, &value), kCode);
}

TEST_F(MoInterceptorBaseTest, SetMoAttributes_IsForwardedToTheOtherTable) {
    EXPECT_CALL(mock, setMoAttributes(kTx, kDn, &attributes)).WillOnce(Return(kCode));
    interceptor.mo3Router = nullptr;
    EXPECT_EQ(interceptor.setMoAttributes(kTx, kDn, &attributes), kCode);
}

TEST_F(MoInterceptorBaseTest, NewMoIterator_IsForwarded) {
    EXPECT_CALL(mock, newMoIterator(kTx, kDn, kName, &number)).WillOnce(Return(kCode));
    EXPECT_EQ(interceptor.newMoIterator(kTx, kDn, kName, &number), kCode);
}

TEST_F(MoInterceptorBaseTest, NextMo_PassesTheHandleWhole) {
    EXPECT_CALL(mock, nextMo(kHandle, &text)).WillOnce(Return(kCode));
    EXPECT_EQ(interceptor.nextMo(kHandle, &text), kCode);
}

TEST_F(MoInterceptorBaseTest, CreateMo_IsForwarded) {
    EXPECT_CALL(mock, createMo(kTx, kDn, kName, kMore, kMost, &attributes)).WillOnce(Return(kCode));
    EXPECT_EQ(interceptor.createMo(kTx, kDn, kName, kMore, kMost, &attributes), kCode);
}

TEST_F(MoInterceptorBaseTest, DeleteMo_IsForwarded) {
    EXPECT_CALL(mock, deleteMo(kTx, kDn)).WillOnce(Return(kCode));
    EXPECT_EQ(interceptor.deleteMo(kTx, kDn), kCode);
}

TEST_F(MoInterceptorBaseTest, Action_IsForwarded) {
    EXPECT_CALL(mock, action(kTx, kDn, kName, &attributes, &result)).WillOnce(Return(kCode));
    const Interceptor& constant = interceptor;
    EXPECT_EQ(constant.action(kTx, kDn, kName, &attributes, &result), kCode);
}

TEST_F(MoInterceptorBaseTest, FinalizeMoIterator_PassesTheHandleWhole) {
    EXPECT_CALL(mock, finalizeMoIterator(kHandle)).WillOnce(Return(kCode));
    const Interceptor& constant = interceptor;
    EXPECT_EQ(constant.finalizeMoIterator(kHandle), kCode);
}

TEST_F(MoInterceptorBaseTest, ExistsMo_IsForwarded) {
    EXPECT_CALL(mock, existsMo(kTx, kDn, &flag)).WillOnce(Return(kCode));
    EXPECT_EQ(interceptor.existsMo(kTx, kDn, &flag), kCode);
}

TEST_F(MoInterceptorBaseTest, CountMoChildren_IsForwarded) {
    EXPECT_CALL(mock, countMoChildren(kTx, kDn, kName, &number)).WillOnce(Return(kCode));
    EXPECT_EQ(interceptor.countMoChildren(kTx, kDn, kName, &number), kCode);
}

TEST_F(MoInterceptorBaseTest, Forwarding_WritesNoTrace) {
    EXPECT_CALL(mock, deleteMo).WillOnce(Return(OrvOk));
    LogCapture log;
    Orv::LoggingWrapper::instance()->setLevel(15);
    interceptor.deleteMo(kTx, kDn);
    EXPECT_THAT(log.lines(), IsEmpty());
}

namespace {

// What the host's lookup was asked for, "component interface version", and what it lacks.
std::vector<std::string> asked;
std::set<std::string> lacking;
ExtCmInterceptorRepository* offered = nullptr;
void* leftByFailure = nullptr;

OrvReturnT lookUp(VekMgmtSpiInterface_1 id, void** result) {
    asked.push_back(std::string(id.componentName) + " " + id.interfaceName + " " +
                    id.interfaceVersion);
    if (lacking.count(asked.back()) != 0) {
        if (leftByFailure != nullptr) {
            *result = leftByFailure;
        }
        return OrvNotExist;
    }
    const std::string name = id.interfaceName;
    *result = name == "OrvOamSpiManagedObject"        ? static_cast<void*>(&table3)
              : name == "VekOamSpiManagedObject"      ? static_cast<void*>(&table3_1)
              : name == "ExtCmInterceptorRepositoryI" ? static_cast<void*>(offered)
                                                      : nullptr;
    return OrvOk;
}

const std::string kAsk3 = "OrvOamSpiCmRouterService OrvOamSpiManagedObject 3";
const std::string kAsk3_1 = "VekOamSpiCmRouterService VekOamSpiManagedObject 3_1";
const std::string kAskRepository = "OrvOamSpiExtCmRouterService ExtCmInterceptorRepositoryI 1";

class MoInterceptorBaseInitialize : public testing::Test {
protected:
    MoInterceptorBaseInitialize() {
        asked.clear();
        lacking.clear();
        offered = &repository;
        leftByFailure = nullptr;
        Orv::Portal::instance()->attach(&lookUp);
    }
    ~MoInterceptorBaseInitialize() override { Orv::Portal::instance()->detach(); }

    ExtCmInterceptorRepository repository;
    Interceptor interceptor;
    LogCapture log;
};

}

TEST_F(MoInterceptorBaseInitialize, All_AreAskedForInOrderAndKept) {
    interceptor.initialize();
    EXPECT_THAT(asked, ElementsAre(kAsk3, kAsk3_1, kAskRepository));
    EXPECT_EQ(interceptor.mo3Router, &table3);
    EXPECT_EQ(interceptor.mo3_1Router, &table3_1);
    EXPECT_EQ(interceptor.repository, &repository);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(MoInterceptorBaseInitialize, SecondTime_TablesComeFromTheCacheAndTheRepositoryDoesNot) {
    interceptor.initialize();
    asked.clear();
    interceptor.initialize();
    EXPECT_THAT(asked, ElementsAre(kAskRepository));
    EXPECT_EQ(interceptor.repository, &repository);
}

TEST_F(MoInterceptorBaseInitialize, NoRouter3_1_LeavesThatFieldNullAndLogsUnderCommon) {
    lacking = {kAsk3_1};
    interceptor.initialize();
    EXPECT_EQ(interceptor.mo3Router, &table3);
    EXPECT_EQ(interceptor.mo3_1Router, nullptr);
    EXPECT_EQ(interceptor.repository, &repository);
    EXPECT_THAT(
        log.lines(),
        ElementsAre(
            testing::AllOf(testing::StartsWith("log 4 "),
                           testing::EndsWith(": Interface VekOamSpiManagedObject not found")),
            testing::AllOf(testing::StartsWith("trace2 Common 4 "),
                           testing::EndsWith(": Interface VekOamSpiManagedObject not found"))));
}

TEST_F(MoInterceptorBaseInitialize, NoRouter3_LeavesThatFieldNullAndGoesOn) {
    lacking = {kAsk3};
    interceptor.initialize();
    EXPECT_EQ(interceptor.mo3Router, nullptr);
    EXPECT_THAT(asked, ElementsAre(kAsk3, kAsk3_1, kAskRepository));
}

TEST_F(MoInterceptorBaseInitialize, NoRepository_LogsUnderTheComponentAndReturns) {
    lacking = {kAskRepository};
    interceptor.initialize();
    EXPECT_EQ(interceptor.repository, nullptr);
    const std::string text = "Interface ExtCmInterceptorRepositoryI not found";
    EXPECT_THAT(log.lines(),
                ElementsAre("log 4 initialize: " + text, "trace2 ExtCm 4 initialize: " + text));
    EXPECT_EQ(log.records().back().file, "src/ext_cm/src/MoInterceptorBase");
}

TEST_F(MoInterceptorBaseInitialize, RepositoryRefused_TheFieldKeepsWhatTheCallLeft) {
    lacking = {kAskRepository};
    leftByFailure = &repository;
    interceptor.initialize();
    EXPECT_EQ(interceptor.repository, &repository);
    EXPECT_EQ(log.lines().size(), 2U);
}

TEST_F(MoInterceptorBaseInitialize, NoHost_LogsAllThree) {
    Orv::Portal::instance()->detach();
    interceptor.initialize();
    EXPECT_THAT(asked, IsEmpty());
    EXPECT_EQ(interceptor.mo3Router, nullptr);
    EXPECT_EQ(interceptor.mo3_1Router, nullptr);
    EXPECT_EQ(interceptor.repository, nullptr);
    EXPECT_EQ(log.lines().size(), 6U);
    EXPECT_EQ(log.lines().back(),
              "trace2 ExtCm 4 initialize: Interface ExtCmInterceptorRepositoryI not found");
}

TEST_F(MoInterceptorBaseInitialize, Traces_EntryAndExit) {
    Orv::LoggingWrapper::instance()->setLevel(8);
    interceptor.initialize();
    EXPECT_THAT(log.lines(),
                ElementsAre("trace 9 initialize:  >> ", "trace2 ExtCm 14 initialize:  >> ",
                            "trace 10 initialize:  << ", "trace2 ExtCm 14 initialize:  << "));
}
