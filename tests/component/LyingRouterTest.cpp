// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// A host that answers with a success and does not bring what it says: values that cannot be read,
// functions that throw when a value is handed back, portals without a table.

#include "Names.h"
#include "Network.h"
#include "Records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Scripted;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

constexpr std::int32_t kString = OrvMoAttributeTypeString_3;
constexpr std::int32_t kMoRef = OrvMoAttributeTypeMoRef_3;
constexpr std::int32_t kStruct = OrvMoAttributeTypeStruct_3;

using MembersList = std::vector<Members>;

Value asStruct(const Members& members) {
    return structs(MembersList{members});
}

/// A reference to a cell, in the router's form, and one without a text.
Value referenceAndNone() {
    std::vector<Slot> slots(2);
    slots[0].text = cellInside("1");
    return Value(kMoRef, slots);
}

/// A value of the router, and what a client gets for it.
struct Lie {
    std::string name;
    Value value;
    std::string outside;  ///< in version 3
    std::string outside1; ///< in version 1
};

void PrintTo(const Lie& lie, std::ostream* out) {
    *out << lie.name;
}

Lie untouched(const std::string& name, const Value& value) {
    return {name, value, value.text(), value.text()};
}

// A value of which one part cannot be read is passed on as it is, the other parts too.
std::vector<Lie> lies() {
    const Member near = member("near", refs({cellInside("1")}));
    const Member bare = bareMember("bare");
    const Member nameless = member(kNoName, strings({"x"}));
    const Value mixed = asStruct({near, bare});
    return {
        untouched("ReferencesWithoutArray", none(kMoRef).counting(2)),
        untouched("ReferenceWithoutText", nullText(kMoRef)),
        untouched("SecondReferenceWithoutText", referenceAndNone()),
        untouched("StructsWithoutArray", none(kStruct).counting(2)),
        untouched("MemberWithoutValueBeforeAReference", asStruct({bare, near})),
        {"MemberWithoutValueAfterAReference", mixed,
         "Struct[{near: MoRef['ManagedElement=paris,Cell=1'], bare: Type0[]}]", mixed.text()},
        untouched("MemberWithoutValueAndNoReference", asStruct({bare})),
        untouched("MemberWithoutName", asStruct({near, nameless})),
        untouched("ReferenceWithoutName", asStruct({member(kNoName, refs({cellInside("1")}))})),
        untouched("MembersReferenceWithoutText", asStruct({near, member("ref", nullText(kMoRef))})),
        untouched("MembersReferencesWithoutArray",
                  asStruct({member("refs", none(kMoRef).counting(1))})),
        untouched("InnerStructsWithoutArray",
                  asStruct({near, member("inner", none(kStruct).counting(1))})),
        untouched("InnerReferenceWithoutText",
                  asStruct({near, member("inner", asStruct({member("ref", nullText(kMoRef))}))})),
        untouched("TextWithoutText", nullText(kString)),
        untouched("TextsWithoutArray", none(kString).counting(2)),
        untouched("NumbersWithoutArray", none(2).counting(2)),
        untouched("HostsTypeThatIsNoPointer", opaque(200, {1, 2})),
    };
}

}

class LyingResult : public Network, public testing::WithParamInterface<Lie> {
protected:
    /// \p call answers with the lie.
    void lieFrom(const std::string& call) {
        host.when(call).answers<OrvMoAttributeValueResult_3>(
            [this](OrvMoAttributeValueResult_3& out) {
                host.results().give("lie", GetParam().value, out);
                return OrvOk;
            });
    }

    void lieAmongManyFrom(const std::string& call) {
        host.when(call).answers<OrvMoAttributeValuesResult_3>(
            [this](OrvMoAttributeValuesResult_3& out) {
                host.results().giveAll(
                    "lie", {GetParam().value, refs({cellInside("2")}), GetParam().value}, out);
                return OrvOk;
            });
    }

    void lieInVersion1From(const std::string& call) {
        host.when(call).answers<OrvMoAttributeValueContainer*>(
            [this](OrvMoAttributeValueContainer*& out) {
                out = records1.container(GetParam().value);
                return OrvOk;
            });
    }

    static void expectLie(const Read& read) {
        EXPECT_EQ(read.code, OrvOk);
        ASSERT_NE(read.record.container, nullptr);
        EXPECT_EQ(read.value()->text(), GetParam().outside);
    }

    void expectHandedBack(const std::string& function) const {
        EXPECT_THAT(host.calls("Producer."), ElementsAre(function + "('lie')"));
    }

    Records1 records1;
};

TEST_P(LyingResult, RoutersRead_IsPassedOnAsItIs) {
    lieFrom("Router3.getMoAttribute");
    expectLie(client().get(1, unit("7"), "label"));
    expectHandedBack("Producer.release");
}

TEST_P(LyingResult, InterceptorsRead_IsPassedOnAsItIs) {
    host.interceptor("ManagedElement,Unit");
    lieFrom("Interceptor.getMoAttribute");
    expectLie(client().get(1, unit("7"), "label"));
    expectHandedBack("Producer.release");
}

TEST_P(LyingResult, AmongMany_TheOthersAreConverted) {
    lieAmongManyFrom("Router3.getMoAttributes");
    lieAmongManyFrom("Interceptor.getMoAttributes");
    for (const bool intercepted : {false, true}) {
        if (intercepted) {
            host.interceptor("ManagedElement,Unit");
        }
        {
            const ReadMany read = client().getMany(1, unit("7"), {"label", "cells", "place"});
            EXPECT_EQ(read.code, OrvOk);
            const std::vector<Value> values = read.values();
            ASSERT_THAT(values, SizeIs(3));
            EXPECT_EQ(values[0].text(), GetParam().outside);
            EXPECT_EQ(values[1], refs({cell("2")}));
            EXPECT_EQ(values[2].text(), GetParam().outside);
        }
        expectHandedBack("Producer.releaseAll");
        host.forget();
    }
}

TEST_P(LyingResult, Action_IsPassedOnAsItIs) {
    lieFrom("Router3.action");
    expectLie(client().action(1, unit("7"), "go"));
    expectHandedBack("Producer.release");
}

TEST_P(LyingResult, Version1_IsPassedOnAsItIs) {
    lieInVersion1From("Router1.getMoAttribute");
    lieInVersion1From("Router1.action");
    const auto read = host.client1().get(1, unit("7"), "label");
    EXPECT_EQ(read.code, OrvOk);
    EXPECT_EQ(readValue(read.thing)->text(), GetParam().outside1);
    const auto acted = host.client1().action(1, unit("7"), "go");
    EXPECT_EQ(acted.code, OrvOk);
    EXPECT_EQ(readValue(acted.thing)->text(), GetParam().outside1);
}

INSTANTIATE_TEST_SUITE_P(Lies, LyingResult, testing::ValuesIn(lies()),
                         [](const auto& tested) { return tested.param.name; });

class LyingRouter : public Network {
protected:
    void giveFrom(const std::string& call, const Value& value) {
        host.when(call).answers<OrvMoAttributeValueResult_3>(
            [this, value](OrvMoAttributeValueResult_3& out) {
                host.results().give("given", value, out);
                return OrvOk;
            });
    }

    Read rootId() const { return client().get(1, kRoot, "managedElementId"); }
    Answer<OrvMoAttributeValueContainer*> rootId1() const {
        return host.client1().get(1, kRoot, "managedElementId");
    }

    Records1 records1;
};

TEST_F(LyingRouter, RootsIdWithoutText_IsLeftAsItIs) {
    for (const Value& id : {nullText(kString), none(kString).counting(1)}) {
        giveFrom("Router3.getMoAttribute", id);
        const Read read = rootId();
        EXPECT_EQ(read.code, OrvOk);
        EXPECT_EQ(read.value()->text(), id.text());
        auto* const container = records1.container(id);
        host.when("Router1.getMoAttribute")
            .answers<OrvMoAttributeValueContainer*>([&](OrvMoAttributeValueContainer*& out) {
                out = container;
                return OrvOk;
            });
        EXPECT_EQ(rootId1().code, OrvOk);
        EXPECT_EQ(rootId1().thing, container);
    }
}

TEST_F(LyingRouter, RootsIdWithoutContainer_IsNoValue) {
    host.when("Router3.getMoAttribute").fails(OrvOk);
    host.when("Router1.getMoAttribute").fails(OrvOk);
    const Read read = rootId();
    EXPECT_EQ(read.code, OrvOk);
    EXPECT_EQ(read.value(), none(0));
    EXPECT_EQ(rootId1().code, OrvOk);
    EXPECT_EQ(rootId1().thing, nullptr);
}

TEST_F(LyingRouter, RootsIdAmongManyWithoutText_IsLeftAsItIs) {
    host.when("Router3.getMoAttributes")
        .answers<OrvMoAttributeValuesResult_3>([this](OrvMoAttributeValuesResult_3& out) {
            host.results().giveAll("root", {nullText(kString), strings({"1"})}, out);
            return OrvOk;
        });
    const ReadMany read = client().getMany(1, kRoot, {"managedElementId", "managedElementId"});
    EXPECT_THAT(read.values(), ElementsAre(nullText(kString), strings({"paris"})));
}

TEST_F(LyingRouter, MoreContainersThanNames_AreConvertedAsPlainValues) {
    host.when("Router3.getMoAttributes")
        .answers<OrvMoAttributeValuesResult_3>([this](OrvMoAttributeValuesResult_3& out) {
            host.results().giveAll(
                "root", {strings({"1"}), strings({"1"}), strings({"1"}), refs({cellInside("1")})},
                out);
            return OrvOk;
        });
    // What comes after the end of the names does not belong to them.
    const char* names[] = {"managedElementId", nullptr, "managedElementId", "managedElementId"};
    ReadMany read;
    read.code = client().table->getMoAttributes(1, kRoot.c_str(), names, &read.record);
    EXPECT_EQ(read.code, OrvOk);
    EXPECT_THAT(read.values(),
                ElementsAre(strings({"paris"}), strings({"1"}), strings({"1"}), refs({cell("1")})));
}

TEST_F(LyingRouter, NoNamesAndContainersAllTheSame_AreConvertedAsPlainValues) {
    host.when("Router3.getMoAttributes")
        .answers<OrvMoAttributeValuesResult_3>([this](OrvMoAttributeValuesResult_3& out) {
            host.results().giveAll("root", {strings({"1"}), refs({cellInside("1")})}, out);
            return OrvOk;
        });
    const ReadMany read = client().getMany(1, kRoot, {});
    EXPECT_THAT(read.values(), ElementsAre(strings({"1"}), refs({cell("1")})));
}

TEST_F(LyingRouter, Version1WithoutContainer_IsNull) {
    host.when("Router1.getMoAttribute").fails(OrvOk);
    host.when("Router1.action").fails(OrvOk);
    EXPECT_EQ(host.client1().get(1, unit("7"), "cells").code, OrvOk);
    EXPECT_EQ(host.client1().get(1, unit("7"), "cells").thing, nullptr);
    EXPECT_EQ(host.client1().action(1, unit("7"), "go").code, OrvOk);
    EXPECT_EQ(host.client1().action(1, unit("7"), "go").thing, nullptr);
    EXPECT_THAT(host.calls("Transaction."), IsEmpty());
}

TEST_F(LyingRouter, ChildThatIsGivenForEver_IsTakenOnce) {
    host.model().moc("Unit").contains("Part");
    char name[] = "1";
    host.when("VekRouter3.nextMo").answers<char*>([&](char*& out) {
        out = name;
        return OrvOk;
    });
    EXPECT_EQ(client().remove(1, unit("7")), OrvOk);
    EXPECT_THAT(host.calls("Model.getMocFromDn"),
                Contains(HasSubstr("'ManagedElement=1,Unit=7,Part=1'")).Times(2))
        << "on the way down, and when it leaves its far sides";
    EXPECT_THAT(host.calls("VekRouter3.finalizeMoIterator"), SizeIs(1));
    EXPECT_FALSE(host.world().exists(unitInside("7")));
}

TEST_F(LyingRouter, ChildThatIsGivenTwice_HidesNoOther) {
    host.model().moc("Unit").contains("Part");
    std::vector<std::string> names = {"1", "1", "2"};
    std::size_t next = 0;
    host.when("VekRouter3.nextMo").answers<char*>([&](char*& out) {
        out = next < names.size() ? names[next].data() : nullptr;
        ++next;
        return OrvOk;
    });
    EXPECT_EQ(client().remove(1, unit("7")), OrvOk);
    for (const std::string part : {"Part=1'", "Part=2'"}) {
        EXPECT_THAT(host.calls("Model.getMocFromDn"), Contains(HasSubstr(part)).Times(2));
    }
}

TEST_F(LyingRouter, ChildOfEveryChild_IsCutOffWithOneLog) {
    host.model().moc("Unit").contains("Part");
    host.model().moc("Part").contains("Part");
    char name[] = "1";
    bool isFirst = false;
    host.when("VekRouter3.nextMo").answers<char*>([&](char*& out) {
        isFirst = !isFirst; // one child for each iterator
        out = isFirst ? name : nullptr;
        return OrvOk;
    });
    host.script().keepCalls(false);
    host.logLevel(3);
    EXPECT_EQ(client().remove(1, unit("7")), OrvOk);
    host.logLevel(0);
    EXPECT_THAT(host.logs(), Contains(HasSubstr("A subtree to delete does not end")).Times(2))
        << "in both forms";
    EXPECT_FALSE(host.world().exists(unitInside("7")));
}

// Clients lie too: nothing is nothing to release.
TEST_F(LyingRouter, ReleaseOfNothing_DoesNothing) {
    const Read read = client().get(1, unit("7"), "label");
    const ReadMany readMany = client().getMany(1, unit("7"), {"label"});
    ASSERT_EQ(read.code, OrvOk);
    ASSERT_EQ(readMany.code, OrvOk);
    host.forget();
    read.record.release(nullptr);
    readMany.record.release(nullptr);
    OrvMoAttributeValueContainer_3* none[] = {nullptr};
    readMany.record.release(none);
    EXPECT_THAT(host.calls(), IsEmpty());
}

// -------------------------------------------------------------------------------------------------
// Bookkeeping from values that are not references

namespace {

struct NoReferences {
    std::string name;
    Value value;
};

void PrintTo(const NoReferences& none, std::ostream* out) {
    *out << none.name;
}

std::string readFailure(const std::string& attribute, const std::string& dn) {
    return "Error code -1 received when reading attribute " + attribute + " in " + dn + ".";
}

}

class NotReferences : public Network, public testing::WithParamInterface<NoReferences> {
protected:
    NotReferences() {
        host.mo(unitInside("7")).with("cells", refs({cellInside("1"), cellInside("2")}));
        for (const std::string name : {"1", "2"}) {
            host.mo(cellInside(name)).with("unit", refs({unitInside("7")}));
        }
    }

    /// The bookkeeping reads this of \p attribute of \p dn.
    void misread(const std::string& dn, const std::string& attribute) {
        host.when("VekRouter3.getMoAttribute")
            .on("'" + dn + "', '" + attribute + "'")
            .answers<OrvMoAttributeValueResult_3>([this](OrvMoAttributeValueResult_3& out) {
                host.results().give("misread", GetParam().value, out);
                return OrvOk;
            });
    }

    void expectTraced(const std::string& function, const std::string& text) const {
        EXPECT_THAT(host.logs(), Contains("trace 0 " + function + ": " + text));
    }

    std::vector<std::string> backPointersOf(const std::string& name) const {
        return host.world().references(cellInside(name), "unit");
    }

    std::vector<std::string> backPointerWrites() const {
        return host.calls("VekRouter3.setMoAttribute");
    }
};

TEST_P(NotReferences, OldValue_CountsAsNone) {
    misread(unitInside("7"), "cells");
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("3")})), OrvOk);
    EXPECT_EQ(host.client3_1().set(1, unit("8"), {{"cells", refs({cell("2")})}}), OrvOk);
    EXPECT_THAT(backPointersOf("1"), ElementsAre(unitInside("7"))) << "not known to have gone";
    EXPECT_THAT(backPointersOf("2"), ElementsAre(unitInside("7"), unitInside("8")));
    EXPECT_THAT(backPointersOf("3"), ElementsAre(unitInside("7")));
    EXPECT_THAT(host.world().references(unitInside("7"), "cells"), ElementsAre(cellInside("3")));
}

TEST_P(NotReferences, FarValueToBeExtended_IsAFailedReadAndNotWritten) {
    misread(cellInside("3"), "unit");
    host.logLevel(8);
    EXPECT_EQ(client().set(1, unit("8"), "cells", refs({cell("3"), cell("2")})), OrvOk);
    expectTraced("addMoToBackPointer", readFailure("unit", cellInside("3")));
    EXPECT_THAT(backPointerWrites(),
                ElementsAre("VekRouter3.setMoAttribute(1, 'ManagedElement=1,Cell=2', 'unit', "
                            "MoRef['ManagedElement=1,Unit=7', 'ManagedElement=1,Unit=8'])"));
}

TEST_P(NotReferences, FarValueToBeShortened_IsAFailedReadAndNotWritten) {
    misread(cellInside("1"), "unit");
    host.logLevel(8);
    EXPECT_EQ(client().set(1, unit("7"), "cells", refs({})), OrvOk);
    expectTraced("removeMoFromBackPointer", readFailure("unit", cellInside("1")));
    EXPECT_THAT(backPointerWrites(), ElementsAre("VekRouter3.setMoAttribute(1, "
                                                 "'ManagedElement=1,Cell=2', 'unit', MoRef[])"));
}

TEST_P(NotReferences, FarValueOfANewMo_IsAFailedReadAndWhatWaitedIsGone) {
    ASSERT_EQ(client().set(1, unit("8"), "cells", refs({cell("9")})), OrvOk);
    misread(cellInside("9"), "unit");
    host.logLevel(8).forget();
    EXPECT_EQ(client().create(1, kRoot, "Cell", "cellId", "9"), OrvOk);
    expectTraced("addMoToBackPointer", readFailure("unit", cellInside("9")));
    EXPECT_THAT(backPointerWrites(), IsEmpty());
}

TEST_P(NotReferences, ValueOfADeletedMo_CountsAsNone) {
    misread(unitInside("7"), "cells");
    EXPECT_EQ(client().remove(1, unit("7")), OrvOk);
    EXPECT_THAT(backPointerWrites(), IsEmpty());
    EXPECT_FALSE(host.world().exists(unitInside("7")));
}

TEST_P(NotReferences, FarValueOfADeletedMo_IsAFailedReadAndTheOthersAreWritten) {
    misread(cellInside("1"), "unit");
    host.logLevel(8);
    EXPECT_EQ(client().remove(1, unit("7")), OrvOk);
    expectTraced("removeMoFromBackPointer", readFailure("unit", cellInside("1")));
    EXPECT_THAT(backPointersOf("2"), IsEmpty());
    EXPECT_FALSE(host.world().exists(unitInside("7")));
}

TEST_P(NotReferences, ValueToBeJudged_IsAFailedReadAndFalseWithoutAMessage) {
    ASSERT_EQ(client().set(1, unit("7"), "cells", refs({cell("3")})), OrvOk);
    misread(unitInside("7"), "cells");
    host.logLevel(8).forget();
    EXPECT_FALSE(validate(1));
    expectTraced("validateBiDirs",
                 "Failed to retrieve ManagedElement=1,Unit=7 value from cells, return code = -1");
    EXPECT_THAT(host.messages(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Values, NotReferences,
    testing::Values(NoReferences{"Number", opaque(2, {42})},
                    NoReferences{"NumbersWithoutArray", none(2).counting(2)},
                    NoReferences{"Texts", strings({"x", "y"})},
                    NoReferences{"TextThatIsADn", strings({"ManagedElement=1,Cell=1"})},
                    NoReferences{"Struct", asStruct({member("a", refs({cellInside("1")}))})},
                    NoReferences{"ReferencesWithoutArray", none(kMoRef).counting(2)},
                    NoReferences{"ReferenceWithoutText", nullText(kMoRef)},
                    NoReferences{"SecondReferenceWithoutText", referenceAndNone()}),
    [](const auto& tested) { return tested.param.name; });

class OddReferences : public Network {
protected:
    /// The bookkeeping reads \p value of every attribute.
    void readEverywhere(const Value& value) {
        host.when("VekRouter3.getMoAttribute")
            .answers<OrvMoAttributeValueResult_3>([this, value](OrvMoAttributeValueResult_3& out) {
                host.results().give("odd", value, out);
                return OrvOk;
            });
    }
};

TEST_F(OddReferences, NoValuesOfAnyType_AreNoReferences) {
    for (const Value& value :
         {none(2), none(kString), none(0), none(kMoRef).withArray(), opaque(2, {42}).counting(0)}) {
        readEverywhere(value);
        EXPECT_EQ(client().set(1, unit("7"), "cells", refs({cell("1")})), OrvOk);
        EXPECT_THAT(host.calls("VekRouter3.setMoAttribute"),
                    ElementsAre("VekRouter3.setMoAttribute(1, 'ManagedElement=1,Cell=1', 'unit', "
                                "MoRef['ManagedElement=1,Unit=7'])"));
        EXPECT_TRUE(validate(1));
        host.forget();
    }
}

TEST_F(OddReferences, TooManyOfAnotherType_TheMultiplicityIsReportedFirst) {
    host.model().moc("Cell").reference("unit", "Unit", 0, 1);
    ASSERT_EQ(client().set(1, unit("7"), "cells", refs({cell("1")})), OrvOk);
    readEverywhere(none(2).counting(3));
    EXPECT_FALSE(validate(1));
    EXPECT_THAT(host.messages(), ElementsAre("Multiplicity of attribute unit in "
                                             "ManagedElement=1,Cell=1 is not in range (0..1)."));
}

// A number of a class that has associations, written as references: the model decides.
TEST_F(OddReferences, NumberWrittenAsReferences_IsReportedAsNoReference) {
    host.model().moc("Unit").attribute("load", 2);
    host.mo(unitInside("7")).with("load", opaque(2, {42}));
    EXPECT_EQ(client().set(1, unit("7"), "load", refs({cell("1")})), OrvOk);
    EXPECT_THAT(host.calls("VekRouter3.setMoAttribute"), IsEmpty());
    EXPECT_FALSE(validate(1));
    EXPECT_THAT(host.messages(),
                ElementsAre("Attribute load in ManagedElement=1,Unit=7 is not a MO ref."));
}

TEST_F(OddReferences, NumberWrittenAsReferencesAndReadAsOne_IsReportedTheSame) {
    host.model().moc("Unit").attribute("load", 2);
    host.mo(unitInside("7")).with("load", opaque(2, {42}));
    host.when("Router3.setMoAttribute").fails(OrvOk);
    host.when("Router3_1.setMoAttributes").fails(OrvOk);
    EXPECT_EQ(client().set(1, unit("7"), "load", refs({cell("1")})), OrvOk);
    EXPECT_EQ(host.client3_1().set(2, unit("7"), {{"load", refs({cell("1")})}}), OrvOk);
    for (const unsigned long txHandle : {1UL, 2UL}) {
        EXPECT_FALSE(validate(txHandle));
    }
    const std::string message = "Attribute load in ManagedElement=1,Unit=7 is not a MO ref.";
    EXPECT_THAT(host.messages(), ElementsAre(message, message));
}

// -------------------------------------------------------------------------------------------------
// Values that cannot be handed back

namespace {

int releases = 0;

template <class Thrown>
void throwingRelease(OrvMoAttributeValueContainer_3* /*container*/) {
    ++releases;
    throw Thrown();
}

template <class Thrown>
void throwingReleaseOfMany(OrvMoAttributeValueContainer_3** /*containers*/) {
    ++releases;
    throw Thrown();
}

struct HostsException : std::runtime_error {
    HostsException() : std::runtime_error("host") {}
};

}

template <class Thrown>
class ThrowingRelease : public Network {
protected:
    ThrowingRelease() {
        host.mo(unitInside("7")).with("cells", refs({cellInside("1"), cellInside("2")}));
        for (const std::string name : {"1", "2"}) {
            host.mo(cellInside(name)).with("unit", refs({unitInside("7")}));
        }
        releases = 0;
    }

    OrvMoAttributeValueResult_3 result(const Value& value) {
        return {&throwingRelease<Thrown>, records.container(value)};
    }

    /// Each read of the bookkeeping of \p attribute gives \p value and ends with \p code.
    void readAs(const std::string& attribute, const Value& value, OrvReturnT code = OrvOk) {
        host.when("VekRouter3.getMoAttribute")
            .on(", '" + attribute + "'")
            .template answers<OrvMoAttributeValueResult_3>(
                [this, value, code](OrvMoAttributeValueResult_3& out) {
                    out = result(value);
                    return code;
                });
    }

    int reads() const { return static_cast<int>(host.calls("VekRouter3.getMoAttribute").size()); }

    Records records;
};

using Throwables = testing::Types<HostsException, std::bad_alloc, int>;
TYPED_TEST_SUITE(ThrowingRelease, Throwables);

TYPED_TEST(ThrowingRelease, Bookkeeping_GoesOn) {
    this->readAs("cells", refs({cellInside("1"), cellInside("2")}));
    this->readAs("unit", refs({unitInside("7")}));
    EXPECT_EQ(this->client().set(1, unit("7"), "cells", refs({cell("2"), cell("3")})), OrvOk);
    EXPECT_EQ(this->client().remove(1, unit("7")), OrvOk);
    EXPECT_EQ(this->reads(), 6);
    EXPECT_EQ(releases, 6);
    EXPECT_THAT(this->host.calls("VekRouter3.setMoAttribute"), SizeIs(4));
    EXPECT_FALSE(this->host.world().exists(unitInside("7")));
}

TYPED_TEST(ThrowingRelease, BookkeepingOfReadsThatFail_GoesOn) {
    this->readAs("unit", refs({unitInside("7")}), -42);
    EXPECT_EQ(this->client().set(1, unit("8"), "cells", refs({cell("3")})), OrvOk);
    this->readAs("cells", refs({cellInside("1")}), -42);
    EXPECT_EQ(this->client().set(1, unit("7"), "cells", refs({cell("3")})), OrvOk);
    EXPECT_EQ(this->client().remove(1, unit("7")), OrvOk);
    EXPECT_EQ(releases, 3);
    EXPECT_THAT(this->host.calls("VekRouter3.setMoAttribute"), IsEmpty());
}

TYPED_TEST(ThrowingRelease, Validation_JudgesAllTheSame) {
    ASSERT_EQ(this->client().set(1, unit("7"), "cells", refs({cell("3")})), OrvOk);
    this->host.forget();
    this->readAs("cells", refs({cellInside("3")}));
    this->readAs("unit", refs({unitInside("7")}));
    EXPECT_TRUE(this->validate(1));
    EXPECT_EQ(releases, this->reads());
    this->readAs("cells", refs({cellInside("1"), cellInside("2"), cellInside("3")}));
    EXPECT_FALSE(this->validate(1));
    EXPECT_THAT(this->host.messages(), SizeIs(1));
    this->readAs("cells", opaque(2, {42}));
    EXPECT_FALSE(this->validate(1));
    this->readAs("cells", refs({cellInside("3")}), -42);
    EXPECT_FALSE(this->validate(1));
    EXPECT_EQ(releases, this->reads());
}

TYPED_TEST(ThrowingRelease, ClientsRelease_FreesTheViewAllTheSame) {
    for (const std::string function : {"Router3.getMoAttribute", "Router3.action"}) {
        this->host.when(function).template answers<OrvMoAttributeValueResult_3>(
            [this](OrvMoAttributeValueResult_3& out) {
                out = this->result(refs({cellInside("1")}));
                return OrvOk;
            });
    }
    Read read = this->client().get(1, unit("7"), "cells");
    EXPECT_EQ(read.value(), refs({cell("1")}));
    EXPECT_NO_THROW(read.release());
    EXPECT_EQ(releases, 1);
    Read acted = this->client().action(1, unit("7"), "go");
    EXPECT_EQ(acted.value(), refs({cell("1")}));
    EXPECT_NO_THROW(acted.release());
    EXPECT_EQ(releases, 2);
}

TYPED_TEST(ThrowingRelease, ClientsReleaseOfMany_FreesTheViewsAllTheSame) {
    this->host.when("Router3.getMoAttributes")
        .template answers<OrvMoAttributeValuesResult_3>([this](OrvMoAttributeValuesResult_3& out) {
            out = {&throwingReleaseOfMany<TypeParam>,
                   this->records.array({refs({cellInside("1")}), strings({"x"})})};
            return OrvOk;
        });
    ReadMany read = this->client().getMany(1, unit("7"), {"cells", "label"});
    EXPECT_THAT(read.values(), ElementsAre(refs({cell("1")}), strings({"x"})));
    EXPECT_NO_THROW(read.release());
    EXPECT_EQ(releases, 1);
}

// -------------------------------------------------------------------------------------------------
// Tables that are not there

class NoTable : public testing::TestWithParam<std::string> {};

TEST_P(NoTable, PortalReportsSuccess_StartFailsAsIfThereWereNone) {
    Host host;
    describeNetwork(host);
    host.load();
    ASSERT_EQ(host.init(), OrvOk);
    host.when("Portal1.getInterface").on(GetParam()).once().fails(OrvOk);
    host.forget();
    EXPECT_EQ(host.startComponent(), OrvFailure);
    EXPECT_THAT(host.logs(), Contains("log 3 start: Could not lookup cmrouterservice"));
    EXPECT_EQ(host.calls().back(), GetParam());
    EXPECT_EQ(host.startComponent(), OrvOk);
    EXPECT_EQ(host.client().set(1, unit("7"), "cells", refs({cell("1")})), OrvOk);
    EXPECT_EQ(host.client3_1().set(1, unit("7"), {{"label", strings({"y"})}}), OrvOk);
    EXPECT_EQ(host.client1().get(1, unit("7"), "cells").code, OrvOk);
}

INSTANTIATE_TEST_SUITE_P(Routers, NoTable, testing::Values(kAskRouter1, kAskRouter3, kAskRouter3_1),
                         [](const auto& tested) {
                             return tested.param == kAskRouter1   ? "Version1"
                                    : tested.param == kAskRouter3 ? "Version3"
                                                                  : "Version3_1";
                         });

namespace {

/// An operation that joins its transaction.
struct Joining {
    std::string name;
    std::function<OrvReturnT(const Host& host, unsigned long txHandle)> run;
};

void PrintTo(const Joining& joining, std::ostream* out) {
    *out << joining.name;
}

std::vector<Joining> joiningOperations() {
    return {
        {"Set",
         [](const Host& host, unsigned long txHandle) {
             return host.client().set(txHandle, unit("7"), "label", strings({"y"}));
         }},
        {"Create",
         [](const Host& host, unsigned long txHandle) {
             return host.client().create(txHandle, kRoot, "Cell", "cellId", "9");
         }},
        {"Delete",
         [](const Host& host, unsigned long txHandle) {
             return host.client().remove(txHandle, unit("7"));
         }},
        {"Action",
         [](const Host& host, unsigned long txHandle) {
             return host.client().action(txHandle, unit("7"), "go").code;
         }},
        {"Open",
         [](const Host& host, unsigned long txHandle) {
             return host.client().open(txHandle, kRoot, "Unit").code;
         }},
        {"SetMany",
         [](const Host& host, unsigned long txHandle) {
             return host.client3_1().set(txHandle, unit("7"), {{"label", strings({"y"})}});
         }},
        {"Version1Set",
         [](const Host& host, unsigned long txHandle) {
             return host.client1().set(txHandle, unit("7"), "cells", refs({cell("1")}));
         }},
        {"Version1Get",
         [](const Host& host, unsigned long txHandle) {
             return host.client1().get(txHandle, unit("7"), "cells").code;
         }},
        {"Version1GetOfTheRootsId",
         [](const Host& host, unsigned long txHandle) {
             return host.client1().get(txHandle, kRoot, "managedElementId").code;
         }},
        {"Version1Action",
         [](const Host& host, unsigned long txHandle) {
             return host.client1().action(txHandle, unit("7"), "go", {refs({cell("1")})}).code;
         }},
        {"Version1Open",
         [](const Host& host, unsigned long txHandle) {
             return host.client1().open(txHandle, kRoot, "Unit").code;
         }},
    };
}

}

class NoTransactionTable : public testing::TestWithParam<Joining> {
protected:
    NoTransactionTable() { describeNetwork(host); }

    /// No transaction can be joined from here on.
    void loseTheTable() {
        host.without(Part::TransactionTable);
        ASSERT_EQ(host.startComponent(), OrvOk);
        host.forget();
    }

    static bool writes(const std::string& call) {
        return call.find(".set") != std::string::npos ||
               call.find(".create") != std::string::npos ||
               call.find(".delete") != std::string::npos ||
               call.find(".action") != std::string::npos;
    }

    /// The operation fails, says why, and has written nothing.
    void expectFailure(unsigned long txHandle) {
        host.forget();
        EXPECT_EQ(GetParam().run(host, txHandle), OrvFailure);
        const std::vector<Orv::LogRecord> records = host.logRecords();
        EXPECT_EQ(std::count_if(records.begin(), records.end(),
                                [](const Orv::LogRecord& record) {
                                    return record.form == Orv::LogRecord::Form::Log &&
                                           record.level == 3;
                                }),
                  1);
        const std::vector<std::string> calls = host.calls();
        EXPECT_TRUE(std::none_of(calls.begin(), calls.end(), writes))
            << testing::PrintToString(calls);
    }

    Host host;
};

TEST_P(NoTransactionTable, NeverFound_OperationFailsUntilThereIsOne) {
    host.without(Part::TransactionTable).start();
    expectFailure(1);
    expectFailure(1);
    host.with(Part::TransactionTable);
    ASSERT_EQ(host.startComponent(), OrvOk);
    host.forget();
    EXPECT_EQ(GetParam().run(host, 1), OrvOk);
    EXPECT_THAT(host.calls("Transaction."),
                ElementsAre("Transaction.join(1, OrvOamSpiTransactionalResource)"));
}

TEST_P(NoTransactionTable, KnownTransaction_GoesOn) {
    host.start();
    ASSERT_EQ(host.client().set(1, unit("8"), "label", strings({"y"})), OrvOk);
    loseTheTable();
    EXPECT_EQ(GetParam().run(host, 1), OrvOk);
    EXPECT_THAT(host.logs(), IsEmpty());
}

TEST_P(NoTransactionTable, OtherTransaction_Fails) {
    host.start();
    ASSERT_EQ(host.client().set(1, unit("8"), "label", strings({"y"})), OrvOk);
    loseTheTable();
    expectFailure(2);
    EXPECT_EQ(host.resource().finish(1), OrvOk);
    expectFailure(1);
}

TEST_P(NoTransactionTable, PortalReportsSuccessAndGivesNone_TheSame) {
    host.when("Portal1.getInterface").on("OrvOamSpiTransactionService").once().fails(OrvOk);
    host.start();
    expectFailure(1);
}

INSTANTIATE_TEST_SUITE_P(Operations, NoTransactionTable, testing::ValuesIn(joiningOperations()),
                         [](const auto& tested) { return tested.param.name; });

TEST(OperationsThatDoNotJoin, NoTransactionTable_AreServed) {
    Host host;
    describeNetwork(host);
    host.without(Part::TransactionTable).start();
    EXPECT_TRUE(host.client().exists(1, unit("7")).thing);
    EXPECT_EQ(host.client().get(1, unit("7"), "label").code, OrvOk);
    EXPECT_EQ(host.client1().get(1, unit("7"), "label").code, OrvOk);
    EXPECT_EQ(host.client1().set(1, unit("7"), "label", strings({"y"})), OrvOk);
    EXPECT_EQ(host.client1().create(1, kRoot, "Cell", "cellId", "9"), OrvOk);
    EXPECT_EQ(host.client1().remove(1, cell("9")), OrvOk);
    bool valid = false;
    EXPECT_EQ(host.resource().validate(1, &valid), OrvOk);
    EXPECT_TRUE(valid);
    EXPECT_EQ(host.resource().finish(1), OrvOk);
    EXPECT_THAT(host.logs(), Not(Contains(EndsWith("transaction table"))));
}
