// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The steps of the operations that write, as the classes around them see them: what is told to the
// back-pointers, to the record of references and to the router, in which order and in which form.

#include "LogCapture.h"
#include "MoImpl3.h"
#include "MoImpl3_1.h"
#include "Records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

using namespace OrvExtCmRouterService;
using Scripted::readNamed;
using Scripted::readValue;
using Scripted::refs;
using Scripted::strings;
using Scripted::structs;
using testing::ElementsAre;

namespace {

constexpr unsigned long kTx = 5;
constexpr OrvReturnT kRefused = -42; ///< what nobody looks at

std::vector<std::string>* journal = nullptr;
Scripted::LogCapture* logs = nullptr;
const void* valueTold = nullptr;
const void* valueWritten = nullptr;
OrvReturnT routersCode = OrvOk;

// The record of references is not started and says so each time that it is called.
void noteReferences() {
    for (const std::string& line : logs->lines()) {
        if (line == "trace 0 setMoRef: Service is stopped" ||
            line == "log 6 deleteMo: Service is stopped") {
            journal->push_back(line.find("setMoRef") != std::string::npos ? "references: set"
                                                                          : "references: delete");
        }
    }
    logs->forget();
}

void note(const std::string& text) {
    noteReferences();
    journal->push_back(text);
}

std::string tx(unsigned long txHandle) {
    return std::to_string(txHandle) + " ";
}

/// Notes what it is told and answers each time that it has failed.
class ToldUtils : public BiDirUtils {
public:
    OrvReturnT updateBackPointersForModify(unsigned long txHandle, const char* dn,
                                           const char* attributeName,
                                           const VekMoAttributeValueContainer_3* newValue,
                                           bool isNewMo) override {
        note("back-pointers: modify " + tx(txHandle) + dn + " " + attributeName + " " +
             readValue(newValue)->text() + (isNewMo ? " new" : ""));
        valueTold = newValue;
        if (throws) {
            throw std::runtime_error("bookkeeping");
        }
        return kRefused;
    }
    OrvReturnT updateBackPointersForDelete(unsigned long txHandle, const char* dn) override {
        note("back-pointers: delete " + tx(txHandle) + dn);
        return kRefused;
    }
    OrvReturnT updatePendingBackPointer(unsigned long txHandle, const std::string& key,
                                        const char* attribute) override {
        note("back-pointers: flush " + tx(txHandle) + key + " " + attribute);
        return kRefused;
    }
    void removePendingBackPointerUpdates(unsigned long txHandle, const std::string& dn) override {
        note("back-pointers: withdraw " + tx(txHandle) + dn);
    }

    bool throws = false;
};

OrvReturnT routerSet(unsigned long txHandle, const char* dn, const char* attribute,
                     const OrvMoAttributeValueContainer_3* value) {
    note("router: set " + tx(txHandle) + dn + " " + attribute + " " + readValue(value)->text());
    valueWritten = value;
    return routersCode;
}
OrvReturnT routerCreate(unsigned long txHandle, const char* dn, const char* className,
                        const char* attrName, const char* attrValue,
                        OrvMoNamedAttributeValueContainer_3** attributes) {
    note("router: create " + tx(txHandle) + dn + " " + className + " " + attrName + " " +
         attrValue + " " + Scripted::textOf(readNamed(attributes)));
    return routersCode;
}
OrvReturnT routerDelete(unsigned long txHandle, const char* dn) {
    note("router: delete " + tx(txHandle) + dn);
    return routersCode;
}
OrvReturnT routerAction(unsigned long txHandle, const char* dn, const char* name,
                        OrvMoNamedAttributeValueContainer_3** parameters,
                        OrvMoAttributeValueResult_3* /*result*/) {
    note("router: action " + tx(txHandle) + dn + " " + name + " " +
         Scripted::textOf(readNamed(parameters)));
    return routersCode;
}
OrvReturnT routerSetMany(unsigned long txHandle, const char* dn,
                         VekMoNamedAttributeValueContainer_3** attributes) {
    note("router: set " + tx(txHandle) + dn + " " + Scripted::textOf(readNamed(attributes)));
    return routersCode;
}
OrvReturnT join(unsigned long txHandle, OrvOamSpiTransactionalResource_2* /*resource*/) {
    note("join " + std::to_string(txHandle));
    return kRefused;
}

OrvOamSpiManagedObject_3 router3 = {};
VekOamSpiManagedObject_3_1 router3_1 = {};

OrvReturnT getInterface(VekMgmtSpiInterface_1 id, void** result) {
    *result = std::string(id.interfaceVersion) == "3" ? static_cast<void*>(&router3)
                                                      : static_cast<void*>(&router3_1);
    return OrvOk;
}

class WriteSteps : public testing::Test {
protected:
    WriteSteps() {
        journal = &seen;
        logs = &capture;
        valueTold = nullptr;
        valueWritten = nullptr;
        routersCode = OrvOk;
        router3.setMoAttribute = &routerSet;
        router3.createMo = &routerCreate;
        router3.deleteMo = &routerDelete;
        router3.action = &routerAction;
        router3_1.setMoAttributes = &routerSetMany;
        transactions.transaction = &transactionTable;
        three.init(&portal, &repository);
        threeOne.init(&portal, &repository);
        three.start(OrvStateChangeReasonRequested);
        threeOne.start(OrvStateChangeReasonRequested);
        Orv::LoggingWrapper::instance()->setLevel(8);
        capture.forget();
    }

    std::vector<std::string> steps() {
        noteReferences();
        return seen;
    }

    std::vector<std::string> seen;
    Scripted::LogCapture capture;
    Scripted::Records records;
    OrvOamSpiTransaction_1 transactionTable{{}, &join};
    OrvOamSpiTransactionalResource_2 resource{};
    OrvMgmtSpiInterfacePortal_1 portal{{}, &getInterface, nullptr, nullptr, nullptr};
    ExtCmInterceptorRepository repository;
    IdMappings mappings{Orv::MeIdTranslator::instance()};
    TransactionData transactions{&resource};
    ToldUtils utils;
    UniDirValidator uniDirValidator;
    MoImpl3 three{mappings, transactions, utils, uniDirValidator};
    MoImpl3_1 threeOne{mappings, transactions, utils, uniDirValidator};
    OrvOamSpiManagedObject_3& table3 = *three.getMoInterface();
    VekOamSpiManagedObject_3_1& table3_1 = *threeOne.getMoInterface();
};

}

TEST_F(WriteSteps, CreateMo_RouterFirstThenEachReferenceAndTheFlushLast) {
    auto** attributes = records.named({{"a", refs({"X=1"})},
                                       {"b", strings({"y"})},
                                       {"c", structs({{Scripted::member("to", refs({"X=2"}))}})},
                                       {"d", refs({})}});
    EXPECT_EQ(table3.createMo(kTx, "P=1", "Unit", "label", "7", attributes), OrvOk);
    EXPECT_THAT(steps(),
                ElementsAre("join 5",
                            "router: create 5 P=1 Unit label 7 {a: MoRef['X=1'], b: String['y'], "
                            "c: Struct[{to: MoRef['X=2']}], d: MoRef[]}",
                            "back-pointers: modify 5 P=1,Unit.label=7 a MoRef['X=1'] new",
                            "references: set",
                            "back-pointers: modify 5 P=1,Unit.label=7 d MoRef[] new",
                            "references: set", "back-pointers: flush 5 P=1,Unit.label=7 label"));
}

TEST_F(WriteSteps, CreateMo_WithoutAttributes_StillFlushes) {
    EXPECT_EQ(table3.createMo(kTx, "P=1", "Unit", "unitId", "7", nullptr), OrvOk);
    EXPECT_THAT(steps(), ElementsAre("join 5", "router: create 5 P=1 Unit unitId 7 {}",
                                     "back-pointers: flush 5 P=1,Unit=7 unitId"));
}

TEST_F(WriteSteps, CreateMo_RouterRefuses_NobodyIsTold) {
    routersCode = -7;
    auto** attributes = records.named({{"a", refs({"X=1"})}});
    EXPECT_EQ(table3.createMo(kTx, "P=1", "Unit", "unitId", "7", attributes), -7);
    EXPECT_THAT(steps(),
                ElementsAre("join 5", "router: create 5 P=1 Unit unitId 7 {a: MoRef['X=1']}"));
}

TEST_F(WriteSteps, CreateMo_BookkeepingThrows_TheRestIsNotDone) {
    utils.throws = true;
    auto** attributes = records.named({{"a", refs({"X=1"})}, {"b", refs({"X=2"})}});
    EXPECT_EQ(table3.createMo(kTx, "P=1", "Unit", "unitId", "7", attributes), OrvFailure);
    EXPECT_EQ(steps().size(), 3U);
    EXPECT_EQ(steps().back(), "back-pointers: modify 5 P=1,Unit=7 a MoRef['X=1'] new");
}

TEST_F(WriteSteps, SetMoAttribute_BookkeepingFirstAndOneViewForAll) {
    const auto* value = records.container(refs({"X=1", "X=2"}));
    EXPECT_EQ(table3.setMoAttribute(kTx, "P=1,Unit=7", "a", value), OrvOk);
    EXPECT_THAT(steps(),
                ElementsAre("join 5", "back-pointers: modify 5 P=1,Unit=7 a MoRef['X=1', 'X=2']",
                            "references: set", "router: set 5 P=1,Unit=7 a MoRef['X=1', 'X=2']"));
    EXPECT_EQ(valueTold, valueWritten);
    EXPECT_NE(valueTold, value);
}

TEST_F(WriteSteps, SetMoAttribute_NoReference_OnlyTheRouterIsTold) {
    EXPECT_EQ(table3.setMoAttribute(kTx, "P=1", "a", nullptr), OrvOk);
    EXPECT_EQ(table3.setMoAttribute(kTx, "P=1", "a", records.container(strings({"y"}))), OrvOk);
    EXPECT_THAT(steps(), ElementsAre("join 5", "router: set 5 P=1 a Type0[]",
                                     "router: set 5 P=1 a String['y']"));
}

TEST_F(WriteSteps, SetMoAttributes_OneReferenceIsDoneWithBeforeTheNext) {
    auto** attributes =
        records.named({{"a", refs({"X=1"})}, {"b", strings({"y"})}, {"c", refs({})}});
    EXPECT_EQ(table3_1.setMoAttributes(kTx, "P=1", attributes), OrvOk);
    EXPECT_THAT(steps(),
                ElementsAre("join 5", "back-pointers: modify 5 P=1 a MoRef['X=1']",
                            "references: set", "back-pointers: modify 5 P=1 c MoRef[]",
                            "references: set",
                            "router: set 5 P=1 {a: MoRef['X=1'], b: String['y'], c: MoRef[]}"));
}

TEST_F(WriteSteps, DeleteMo_ThreeStepsOfBookkeepingAndThenTheRouter) {
    routersCode = -7;
    EXPECT_EQ(table3.deleteMo(kTx, "P=1,Unit=7"), -7);
    EXPECT_THAT(steps(), ElementsAre("join 5", "back-pointers: delete 5 P=1,Unit=7",
                                     "back-pointers: withdraw 5 P=1,Unit=7", "references: delete",
                                     "router: delete 5 P=1,Unit=7"));
}

TEST_F(WriteSteps, Action_NobodyButTheRouterIsTold) {
    auto** parameters = records.named({{"a", refs({"X=1"})}});
    OrvMoAttributeValueResult_3 result{nullptr, nullptr};
    EXPECT_EQ(table3.action(kTx, "P=1", "go", parameters, &result), OrvOk);
    EXPECT_THAT(steps(), ElementsAre("join 5", "router: action 5 P=1 go {a: MoRef['X=1']}"));
}

TEST_F(WriteSteps, RefusedId_JoinsAndTellsNobody) {
    const auto bad = strings({"a,b"});
    EXPECT_EQ(table3.setMoAttribute(kTx, "P=1", "networkManagedElementId", records.container(bad)),
              OrvValidationFailed);
    auto** attributes = records.named({{"a", refs({"X=1"})}, {"networkManagedElementId", bad}});
    EXPECT_EQ(table3_1.setMoAttributes(kTx + 1, "P=1", attributes), OrvInvalidArgument);
    EXPECT_THAT(steps(), ElementsAre("join 5", "join 6"));
}
