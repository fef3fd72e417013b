// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Readers of a log know the operations of the back-pointers by name: each message comes from the
// operation that it belongs to, also if that one consists of others.

#include "Network.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

using namespace Scripted;
using testing::Contains;

namespace {

constexpr OrvReturnT kHostsOwnCode = -42;

/// One message, and how it comes about.
struct Said {
    std::string name;
    std::string form; ///< "trace 0" or "log 3", for example
    std::string function;
    std::string text;
    std::function<void(Host& host)> when;
    std::function<void(Host& host)> given; ///< before the component is started; may be missing
};

void PrintTo(const Said& said, std::ostream* out) {
    *out << said.name;
}

// What clients do.

void setCells(Host& host, const std::vector<std::string>& names) {
    std::vector<std::string> dns;
    for (const std::string& name : names) {
        dns.push_back(cell(name));
    }
    EXPECT_EQ(host.client().set(1, unit("7"), "cells", refs(dns)), OrvOk);
}
void setOneCell(Host& host) {
    setCells(host, {"1"});
}
void setAndClearOneCell(Host& host) {
    setCells(host, {"1"});
    setCells(host, {});
}
void deleteUnit(Host& host) {
    EXPECT_EQ(host.client().remove(1, unit("7")), OrvOk);
}
void validate(Host& host) {
    bool valid = false;
    EXPECT_EQ(host.resource().validate(1, &valid), OrvOk);
}
void violate(Host& host) {
    setCells(host, {"1", "2", "3"});
    validate(host);
}

/// Before the work, \p call about \p text fails.
std::function<void(Host&)> failing(const std::string& call, const std::string& text,
                                   const std::function<void(Host&)>& work) {
    return [=](Host& host) {
        host.when(call).on(text).fails(kHostsOwnCode);
        work(host);
    };
}

const std::string kUnit = "ManagedElement=1,Unit=7";
const std::string kCell = "ManagedElement=1,Cell=1";
const std::string kViolation = "Attribute cells in ManagedElement=1,Unit=7 contains 3 cells which "
                               "is not within cardinality range (0..2).";

std::string noMoc(const std::string& dn) {
    return "Failed to look up MOC from DN. dn=" + dn + ", ret=-42";
}
std::string notReadable(const std::string& attribute, const std::string& dn) {
    return "Error code -42 received when reading attribute " + attribute + " in " + dn + ".";
}

std::vector<Said> saidOfTheModel() {
    const auto withoutModel = [](Host& host) { host.without(Part::ModelRepository); };
    const std::string noModel = "VekOamSpiModelRepository_4T pointer is null.";
    return {
        {"NoAssociation", "trace 0", "getBidirsForMoc", "MOC is not part of any BiDirs.",
         [](Host& host) { host.client().set(1, site("1"), "label", refs({})); }, nullptr},
        {"FirstEnd", "trace 0", "findAssociationEnd",
         "First association end attribute name is unit", setOneCell, nullptr},
        {"NoModelToModify", "log 3", "updateBackPointersForModify", noModel, setOneCell,
         withoutModel},
        {"NoModelToDelete", "log 3", "updateBackPointersForDelete", noModel, deleteUnit,
         withoutModel},
        {"NoClassToModify", "log 3", "updateBackPointersForModify", noMoc(kUnit),
         failing("Model.getMocFromDn", kUnit, setOneCell), nullptr},
        {"NoClassOfAnAddedReference", "log 3", "updateBackPointersForModify", noMoc(kCell),
         failing("Model.getMocFromDn", kCell, setOneCell), nullptr},
        {"NoClassOfARemovedReference", "log 3", "updateBackPointersForModify", noMoc(kCell),
         [](Host& host) {
             setOneCell(host);
             failing("Model.getMocFromDn", kCell, [](Host& after) { setCells(after, {}); })(host);
         },
         nullptr},
        {"NoClassToDelete", "log 3", "updateBackPointersForDelete", noMoc(kUnit),
         failing("Model.getMocFromDn", kUnit, deleteUnit), nullptr},
        {"NoClassOfAChildToDelete", "log 3", "updateBackPointersForDelete", noMoc(kUnit),
         failing("Model.getMocFromDn", kUnit,
                 [](Host& host) { EXPECT_EQ(host.client().remove(1, kRoot), OrvOk); }),
         nullptr},
        {"NoClassOfTheDeletedItself", "log 3", "updateBackpointers", noMoc(kUnit),
         [](Host& host) {
             host.when("Model.getMocFromDn").on(kUnit).nth(2).fails(kHostsOwnCode);
             deleteUnit(host);
         },
         nullptr},
        {"ContainmentsFail", "log 3", "updateBackPointersForDelete",
         "Model repository returned error code -42",
         failing("Model.getNextContainment", "",
                 [](Host& host) { EXPECT_EQ(host.client().remove(1, kRoot), OrvOk); }),
         nullptr},
    };
}

std::vector<Said> saidOfEdits() {
    return {
        {"ModifyIsEntered", "trace 9", "updateBackPointersForModify",
         " >> dn = ManagedElement=1,Unit=7, attributeName = cells", setOneCell, nullptr},
        {"ReferenceComes", "trace 0", "getMoRefDiff", "DN to be added to backpointer: " + kCell,
         setOneCell, nullptr},
        {"ReferenceGoes", "trace 0", "getMoRefDiff", "DN to be removed from backpointer: " + kCell,
         setAndClearOneCell, nullptr},
        {"OldValueNotReadable", "trace 0", "updateBackPointersForModify",
         "Failed to retrieve cells value from ManagedElement=1,Unit=7, return code = -42",
         failing("VekRouter3.getMoAttribute", kUnit, setOneCell), nullptr},
        {"FarValueToExtendNotReadable", "trace 0", "addMoToBackPointer", notReadable("unit", kCell),
         failing("VekRouter3.getMoAttribute", kCell, setOneCell), nullptr},
        {"FarValueToShortenNotReadable", "trace 0", "removeMoFromBackPointer",
         notReadable("unit", kCell),
         [](Host& host) {
             setOneCell(host);
             failing("VekRouter3.getMoAttribute", kCell,
                     [](Host& after) { setCells(after, {}); })(host);
         },
         nullptr},
        {"FarValueNotWritable", "trace 0", "setMoAttr",
         "Error code -42 received when setting attribute unit in ManagedElement=1,Cell=1.",
         failing("VekRouter3.setMoAttribute", kCell, setOneCell), nullptr},
        {"ValueOfTheDeletedNotReadable", "trace 0", "updateBackpointers",
         notReadable("cells", kUnit), failing("VekRouter3.getMoAttribute", kUnit, deleteUnit),
         nullptr},
        {"NewMoIsAsked", "trace 9", "updatePendingBackPointer", " >> key = ManagedElement=1,Cell=9",
         [](Host& host) { host.client().create(1, kRoot, "Cell", "cellId", "9"); }, nullptr},
        {"NewMoIsNotThere", "trace 0", "updatePendingBackPointer",
         "ManagedElement=1,Cell=9 doesn't exist or couldn't be read",
         [](Host& host) {
             setCells(host, {"9"});
             host.when("VekRouter3.existsMo").on("Cell=9").fails(kHostsOwnCode);
             host.client().create(1, kRoot, "Cell", "cellId", "9");
         },
         nullptr},
    };
}

std::vector<Said> saidOfVerdicts() {
    return {
        {"PairIsJudged", "trace 0", "validateBiDirs", "Validating: ManagedElement=1,Unit=7, cells",
         [](Host& host) {
             setOneCell(host);
             validate(host);
         },
         nullptr},
        {"ValueToBeJudgedNotReadable", "trace 0", "validateBiDirs",
         "Failed to retrieve ManagedElement=1,Unit=7 value from cells, return code = -42",
         [](Host& host) {
             setOneCell(host);
             failing("VekRouter3.getMoAttribute", kUnit, validate)(host);
         },
         nullptr},
        {"Violation", "trace 0", "addThreadContextMessage", kViolation, violate, nullptr},
        {"ViolationNotTaken", "log 4", "addThreadContextMessage",
         "Failed to add message to thread context. Message: [" + kViolation + "]",
         failing("ThreadContext.addMessage", "", violate), nullptr},
        {"NoThreadContext", "log 3", "addThreadContextMessage", "ExtCm ThreadContext is null",
         violate, [](Host& host) { host.without(Part::ThreadContext); }},
    };
}

std::vector<Said> allSaid() {
    std::vector<Said> all;
    for (const auto& some : {saidOfTheModel(), saidOfEdits(), saidOfVerdicts()}) {
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

}

class BackPointerMessages : public testing::TestWithParam<Said> {
protected:
    BackPointerMessages() {
        describeNetwork(host);
        // The attribute itself takes any number of cells; the association two.
        host.model().moc("Unit").reference("cells", "Cell");
        if (GetParam().given) {
            GetParam().given(host);
        }
        host.start();
        host.logLevel(8);
    }

    Host host;
};

TEST_P(BackPointerMessages, EachMessage_NamesItsOperation) {
    const Said& said = GetParam();
    GetParam().when(host);
    const std::string message = said.function + ": " + said.text;
    EXPECT_THAT(host.logs(), Contains(said.form + " " + message));
    bool isInTheNewFormToo = false;
    for (const Orv::LogRecord& record : host.logRecords()) {
        if (record.text == said.text) {
            EXPECT_EQ(record.function, said.function);
            isInTheNewFormToo |= record.form == Orv::LogRecord::Form::TraceV2;
        }
    }
    EXPECT_TRUE(isInTheNewFormToo);
}

INSTANTIATE_TEST_SUITE_P(Messages, BackPointerMessages, testing::ValuesIn(allSaid()),
                         [](const auto& tested) { return tested.param.name; });

TEST(BackPointerMessagesOfAWalk, EachAssociation_IsFoundByTheSameOperation) {
    Host host;
    describeNetwork(host);
    host.model().biDir({"Unit", "spares"}, {"Cell", "spareOf"});
    host.start();
    host.logLevel(8);
    setOneCell(host);
    int found = 0;
    for (const Orv::LogRecord& record : host.logRecords()) {
        if (record.form == Orv::LogRecord::Form::Trace &&
            record.text.rfind("Found BiDir with handle ", 0) == 0) {
            EXPECT_EQ(record.function, "getBidirsForMoc");
            ++found;
        }
    }
    EXPECT_EQ(found, 2);
}
