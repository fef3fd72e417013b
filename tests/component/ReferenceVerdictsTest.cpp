// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The verdict on the unidirectional references that a transaction wrote, and what is reported
// to the client: every rule is broken, one after the other.

#include "Host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <locale>
#include <ostream>
#include <string>
#include <vector>

using namespace Scripted;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

using Texts = std::vector<std::string>;

const std::string kNoBar = " contains 0 Bar which is not within cardinality range (1..2).";

}

/// A host whose class Foo has the attribute `peer`, which refers to one or two Bar, and in which
/// Baz stands for a class that it must not refer to.
class ReferenceVerdicts : public testing::Test {
protected:
    ReferenceVerdicts() {
        host.model().moc("Top").contains("Foo").contains("Bar").contains("Baz").contains("Sub");
        host.model().moc("Foo").contains("Foo");
        host.model().uniDir("Foo", "peer", "Bar", 1, 2);
        host.mo("Top=1");
    }

    /// Writes a reference of an MO, which comes into being if it is not there.
    void write(const std::string& dn, const std::string& attribute, const Texts& references,
               unsigned long txHandle = 1) {
        host.mo(dn);
        EXPECT_EQ(host.client().set(txHandle, dn, attribute, refs(references)), OrvOk);
    }

    bool validate(unsigned long txHandle = 1) {
        bool result = false;
        EXPECT_EQ(host.resource().validate(txHandle, &result), OrvOk);
        return result;
    }

    void expectValid() {
        EXPECT_TRUE(validate());
        EXPECT_THAT(host.messages(), IsEmpty());
    }

    Host host;
};

// ---------------------------------------------------------------------------------------------
// Counts and bounds

TEST_F(ReferenceVerdicts, CountsAtBothBounds_AreValid) {
    host.start();
    write("Top=1,Foo=1", "peer", {"Top=1,Bar=1"});
    write("Top=1,Foo=2", "peer", {"Top=1,Bar=1", "Top=1,Bar=1"});
    expectValid();
}

TEST_F(ReferenceVerdicts, OneAboveTheBound_NamesCountAndBounds) {
    host.start();
    write("Top=1,Foo=2", "peer", {"Top=1,Bar=1", "Top=1,Bar=2", "Top=1,Bar=3"});
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(),
                ElementsAre("Attribute peer in Top=1,Foo=2 contains 3 Bar which is not within "
                            "cardinality range (1..2)."));
}

TEST_F(ReferenceVerdicts, OneBelowTheBound_NamesCountAndBounds) {
    host.model().uniDir("Sub", "pair", "Bar", 2, 4);
    host.start();
    write("Top=1,Sub=1", "pair", {"Top=1,Bar=1"});
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(),
                ElementsAre("Attribute pair in Top=1,Sub=1 contains 1 Bar which is not within "
                            "cardinality range (2..4)."));
}

TEST_F(ReferenceVerdicts, NoValueAtAll_NamesTheMissingClass) {
    host.start();
    write("Top=1,Foo=2", "peer", {});
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(), ElementsAre("Attribute peer in Top=1,Foo=2" + kNoBar));
}

TEST_F(ReferenceVerdicts, BoundsOfZero_RefuseOneReferenceAndNeedNone) {
    host.model().uniDir("Sub", "never", "Bar", 0, 0);
    host.start();
    write("Top=1,Sub=1", "never", {});
    expectValid();
    write("Top=1,Sub=1", "never", {"Top=1,Bar=1"});
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(),
                ElementsAre("Attribute never in Top=1,Sub=1 contains 1 Bar which is not within "
                            "cardinality range (0..0)."));
}

// Unlike those of bidirectional associations, these bounds are unsigned numbers.
TEST_F(ReferenceVerdicts, NegativeUpperBound_IsNeverExceeded) {
    host.model().uniDir("Sub", "any", "Bar", 2, -1);
    host.start();
    write("Top=1,Sub=1", "any", Texts(50, "Top=1,Bar=1"));
    expectValid();
    write("Top=1,Sub=1", "any", {"Top=1,Bar=1"});
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(),
                ElementsAre("Attribute any in Top=1,Sub=1 contains 1 Bar which is not within "
                            "cardinality range (2..18446744073709551615)."));
}

// ---------------------------------------------------------------------------------------------
// Classes

TEST_F(ReferenceVerdicts, ClassThatIsNotPermitted_IsNamedAndThePermittedOneIsMissed) {
    host.start();
    write("Top=1,Foo=2", "peer", {"Top=1,Baz=1"});
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(),
                ElementsAre("Baz is not a valid type for attribute peer in Top=1,Foo=2",
                            "Attribute peer in Top=1,Foo=2" + kNoBar));
}

TEST_F(ReferenceVerdicts, ClassThatTheModelDoesNotKnow_ShowsTheReferenceAndTheRestIsCounted) {
    host.start();
    write("Top=1,Foo=2", "peer", {"Top=1,Nowhere=1", "Top=1,Bar=1", "Top=1,Bar=2", "Top=1,Bar=3"});
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(),
                ElementsAre("Top=1,Nowhere=1 is not a valid type for attribute peer in Top=1,Foo=2",
                            "Attribute peer in Top=1,Foo=2 contains 3 Bar which is not within "
                            "cardinality range (1..2)."));
}

TEST_F(ReferenceVerdicts, AttributeOfALaterAssociation_AllEndsOfItsNameCount) {
    host.model()
        .uniDir("Sub", "other", "Foo", 1, 1)
        .uniDir("Sub", "to", "Bar", 0, 1)
        .uniDir("Sub", "to", "Baz", 0, 1)
        .uniDir("Sub", "to", "Foo", 0, 1);
    host.start();
    write("Top=1,Sub=1", "to", {"Top=1,Foo=1", "Top=1,Baz=1", "Top=1,Bar=1"});
    expectValid();
    write("Top=1,Sub=1", "to", {"Top=1,Foo=1", "Top=1,Foo=2"});
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(),
                ElementsAre("Attribute to in Top=1,Sub=1 contains 2 Foo which is not within "
                            "cardinality range (0..1)."));
}

TEST_F(ReferenceVerdicts, TwoEndsOnOneClass_TheFirstBoundsHold) {
    host.model().uniDir("Sub", "to", "Bar", 1, 1).uniDir("Sub", "to", "Bar", 5, 9);
    host.start();
    write("Top=1,Sub=1", "to", {"Top=1,Bar=1"});
    expectValid();
    write("Top=1,Sub=1", "to", Texts(5, "Top=1,Bar=1"));
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(),
                ElementsAre("Attribute to in Top=1,Sub=1 contains 5 Bar which is not within "
                            "cardinality range (1..1)."));
}

// The model may spell one class in several ways.
TEST_F(ReferenceVerdicts, OneClassSpelledInTwoWays_IsNamedByTheFirst) {
    host.start();
    write("Top=1,Foo=1", "peer", {"Top=1,Bat.id=1", "Top=1,Baz=1"});
    host.when("Model.getMocFromDn").on("Bat").answers<unsigned long long>([this](auto& moc) {
        moc = host.model().mocFromDn("Baz=1").value();
        return OrvOk;
    });
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(),
                ElementsAre("Bat is not a valid type for attribute peer in Top=1,Foo=1",
                            "Attribute peer in Top=1,Foo=1" + kNoBar));
}

TEST_F(ReferenceVerdicts, ClassWithTheHandleZero_IsAClassLikeAnyOther) {
    host.start();
    write("Top=1,Foo=2", "peer", {"Top=1,Bar=1", "Top=1,Odd=1"});
    host.when("Model.getMocFromDn").on("Odd").answers<unsigned long long>([](auto& moc) {
        moc = 0;
        return OrvOk;
    });
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(),
                ElementsAre("Odd is not a valid type for attribute peer in Top=1,Foo=2"));
}

// The model is asked before the text is taken apart.
TEST_F(ReferenceVerdicts, ReferenceWithoutClassThatIsNoDn_IsAViolationAndNoFailure) {
    host.start();
    write("Top=1,Foo=1", "peer", {"Nowhere", "Top=1,Bar=1"});
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(),
                ElementsAre("Nowhere is not a valid type for attribute peer in Top=1,Foo=1"));
    EXPECT_THAT(host.logs(), Not(Contains(HasSubstr("Got exception"))));
}

// Handles grow in the order in which the classes were described, not in that of the alphabet.
TEST_F(ReferenceVerdicts, SeveralClassesRefused_GoByTheirHandlesAndTheMissingOnesFollow) {
    for (const char* const name : {"Zed", "Cat", "Eel", "Sub2"}) {
        host.model().moc(name);
    }
    host.model().uniDir("Sub2", "to", "Zed", 2, 2).uniDir("Sub2", "to", "Bar", 1, 1);
    host.start();
    write("Top=1,Sub2=1", "to", {"Eel=1", "Cat=1", "Zed=1"});
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(),
                ElementsAre("Attribute to in Top=1,Sub2=1 contains 1 Zed which is not within "
                            "cardinality range (2..2).",
                            "Cat is not a valid type for attribute to in Top=1,Sub2=1",
                            "Eel is not a valid type for attribute to in Top=1,Sub2=1",
                            "Attribute to in Top=1,Sub2=1 contains 0 Bar which is not within "
                            "cardinality range (1..1)."));
}

TEST_F(ReferenceVerdicts, NamesOfAttributes_AreComparedExactly) {
    host.model().uniDir("Sub", "Peer", "Foo", 1, 1).uniDir("Sub", "peers", "Foo", 1, 1);
    host.model().uniDir("Sub", "peer", "Baz", 1, 1);
    host.start();
    write("Top=1,Sub=1", "peer", {"Top=1,Baz=1"});
    expectValid();
}

TEST_F(ReferenceVerdicts, NamelessEnd_MatchesNothing) {
    host.start();
    host.when("Model.getEndStringProperty").answers<const char*>([](const char*& name) {
        name = nullptr;
        return OrvOk;
    });
    write("Top=1,Foo=1", "peer", {});
    expectValid();
    EXPECT_THAT(host.logs(), IsEmpty());
}

TEST_F(ReferenceVerdicts, NamelessClass_IsNamedByNothing) {
    host.start();
    write("Top=1,Foo=1", "peer", {});
    host.when("Model.getGeneralStringProperty").answers<const char*>([](const char*& name) {
        name = nullptr;
        return OrvOk;
    });
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(), ElementsAre("Attribute peer in Top=1,Foo=1 contains 0  which is "
                                             "not within cardinality range (1..2)."));
}

/// Writes a dot between every two digits, as a host's locale may.
class GroupingDigits : public std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\2"; }
};

TEST_F(ReferenceVerdicts, LocaleThatGroupsDigits_DoesNotShowInMessages) {
    host.model().uniDir("Sub", "any", "Bar", 1000, 2000);
    host.model().biDir({"Foo", "bazs", 1000, 2000, "bazs"}, {"Baz", "foos"});
    host.start();
    write("Top=1,Sub=1", "any", {"Top=1,Bar=1"});
    write("Top=1,Foo=1", "bazs", {"Top=1,Baz=1"});
    const std::locale before =
        std::locale::global(std::locale(std::locale::classic(), new GroupingDigits));
    const bool valid = validate();
    std::locale::global(before);
    EXPECT_FALSE(valid);
    EXPECT_THAT(host.messages(),
                ElementsAre("Attribute bazs in Top=1,Foo=1 contains 1 bazs which is not within "
                            "cardinality range (1000..2000).",
                            "Attribute any in Top=1,Sub=1 contains 1 Bar which is not within "
                            "cardinality range (1000..2000)."));
}

// ---------------------------------------------------------------------------------------------
// What is recorded and what is not

TEST_F(ReferenceVerdicts, LastWriteOfAnAttribute_IsTheOneThatCounts) {
    host.start();
    write("Top=1,Foo=1", "peer", {"Top=1,Baz=1"});
    write("Top=1,Foo=1", "peer", {"Top=1,Bar=1"});
    expectValid();
}

TEST_F(ReferenceVerdicts, ReferenceOfABidirectionalAssociation_IsNotJudgedHere) {
    host.model().biDir({"Foo", "bazs"}, {"Baz", "foos"});
    host.start();
    write("Top=1,Foo=1", "bazs", {});
    expectValid();
    EXPECT_THAT(host.calls("Model.getUniDirEnd"), testing::SizeIs(1)) << "asked at the write only";
}

TEST_F(ReferenceVerdicts, DeletedMo_TakesItsRecordsAndThoseBelowAndNoOthers) {
    host.start();
    write("Top=1,Foo=1", "peer", {});
    write("Top=1,Foo=1,Foo=2", "peer", {});
    write("Top=1,Foo=10", "peer", {});
    EXPECT_EQ(host.client().remove(1, "Top=1,Foo=1"), OrvOk);
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(), ElementsAre("Attribute peer in Top=1,Foo=10" + kNoBar));
    EXPECT_EQ(host.client().remove(1, "Top=1,Foo=10"), OrvOk);
    EXPECT_TRUE(validate());
}

TEST_F(ReferenceVerdicts, StoppedAndStartedAgain_NothingOfBeforeIsJudged) {
    host.start();
    write("Top=1,Foo=1", "peer", {});
    EXPECT_EQ(host.stopComponent(), OrvOk);
    EXPECT_EQ(host.startComponent(), OrvOk);
    expectValid();
}

TEST_F(ReferenceVerdicts, DeletedMoThatWasNeverWritten_ChangesNothing) {
    host.start();
    write("Top=1,Foo=1", "peer", {});
    for (const char* const dn :
         {"Top=1,Foo=2", "Top=1,Sub=1", "Top=2,Foo=1", "Top=1,Foo=1,Foo=2"}) {
        host.mo(dn);
        EXPECT_EQ(host.client().remove(1, dn), OrvOk);
    }
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(), ElementsAre("Attribute peer in Top=1,Foo=1" + kNoBar));
}

TEST_F(ReferenceVerdicts, SameDnInTwoTransactions_IsJudgedApart) {
    host.start();
    write("Top=1,Foo=1", "peer", {}, 1);
    write("Top=1,Foo=1", "peer", {"Top=1,Bar=1"}, 2);
    EXPECT_FALSE(validate(1));
    EXPECT_TRUE(validate(2));
    EXPECT_EQ(host.resource().finish(1), OrvOk);
    EXPECT_TRUE(validate(1));
}

// ---------------------------------------------------------------------------------------------
// Several violations, and their order

TEST_F(ReferenceVerdicts, EveryViolation_IsReportedParentsFirstInByteOrder) {
    host.model().uniDir("Sub", "b", "Bar", 1, 2).uniDir("Sub", "a", "Bar", 1, 2);
    host.start();
    write("Top=1,Sub=1", "b", {});
    write("Top=1,Sub=1", "a", {});
    write("Top=1,Foo=9", "peer", {});
    write("Top=1,Foo=5", "peer", {"Top=1,Bar=1"});
    write("Top=1,Foo=10,Foo=1", "peer", {});
    write("Top=1,Foo=10", "peer", {});
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(), ElementsAre("Attribute peer in Top=1,Foo=10" + kNoBar,
                                             "Attribute peer in Top=1,Foo=10,Foo=1" + kNoBar,
                                             "Attribute peer in Top=1,Foo=9" + kNoBar,
                                             "Attribute a in Top=1,Sub=1" + kNoBar,
                                             "Attribute b in Top=1,Sub=1" + kNoBar));
}

TEST_F(ReferenceVerdicts, NamingAttributeInTheDn_IsLeftOutOfTheMessage) {
    host.start();
    write("Top.topId=1,Foo.fooId=2", "peer", {});
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(), ElementsAre("Attribute peer in Top=1,Foo=2" + kNoBar));
}

// ---------------------------------------------------------------------------------------------
// Failures of the model and DNs that are none

TEST_F(ReferenceVerdicts, ModelFailsOnTheSecondOfThree_KeepsTheFirstMessageAndLogs) {
    host.start();
    for (const char* const dn : {"Top=1,Foo=1", "Top=1,Foo=2", "Top=1,Foo=3"}) {
        write(dn, "peer", {});
    }
    host.when("Model.getEndMoc").nth(2).fails(-17);
    host.forget();
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(), ElementsAre("Attribute peer in Top=1,Foo=1" + kNoBar));
    EXPECT_THAT(host.logs(),
                ElementsAre("log 4 validate: Got exception [Could not get moc] return code -17",
                            "trace2 ExtCm 4 validate: Got exception [Could not get moc] return "
                            "code -17"));
}

/// A call of the model that fails, and what the log says then.
struct ModelFailure {
    const char* call;
    int nth;
    const char* text;
};

void PrintTo(const ModelFailure& failure, std::ostream* out) {
    *out << failure.call << " " << failure.nth;
}

class ModelFailsUnderAVerdict : public ReferenceVerdicts,
                                public testing::WithParamInterface<ModelFailure> {};

TEST_P(ModelFailsUnderAVerdict, NoVerdict_TheLogTellsWhichAnswerIsMissing) {
    host.start();
    write("Top=1,Foo=1", "peer", {"Top=1,Bar=1"});
    host.when(GetParam().call).nth(GetParam().nth).fails(-17);
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(), IsEmpty());
    EXPECT_THAT(host.logs(), Contains("log 4 validate: Got exception [" +
                                      std::string(GetParam().text) + "] return code -17"));
}

INSTANTIATE_TEST_SUITE_P(
    EveryCall, ModelFailsUnderAVerdict,
    testing::Values(
        ModelFailure{"Model.getMocFromDn", 1, "Could not get moc from dn"},
        ModelFailure{"Model.getUniDirEnd", 1, "Could not look up association end"},
        ModelFailure{"Model.getEndStringProperty", 1, "Could not look up string property"},
        ModelFailure{"Model.getEndMoc", 1, "Could not get moc"},
        ModelFailure{"Model.getMocGeneralProperties", 1, "Could not get general properties handle"},
        ModelFailure{"Model.getGeneralStringProperty", 1,
                     "Could not get name from general properties handle"},
        ModelFailure{"Model.getEndIntProperty", 1, "Could not get int property"},
        ModelFailure{"Model.getEndIntProperty", 2, "Could not get int property"},
        ModelFailure{"Model.getNextUniDirAssociation", 1,
                     "Could not get next uni dir association"}));

class ModelFailsUnderAWrite : public ReferenceVerdicts,
                              public testing::WithParamInterface<ModelFailure> {};

TEST_P(ModelFailsUnderAWrite, TheLogTellsWhichAnswerIsMissingAndNothingIsRecorded) {
    host.model().uniDir("Foo", "second", "Bar", 1, 1);
    host.start();
    host.when(GetParam().call).nth(GetParam().nth).fails(-17);
    write("Top=1,Foo=1", "second", {});
    EXPECT_THAT(host.logs(), Contains("log 4 setMoRef: Got exception [" +
                                      std::string(GetParam().text) + "] return code -17"));
    EXPECT_TRUE(validate());
}

INSTANTIATE_TEST_SUITE_P(
    EveryCall, ModelFailsUnderAWrite,
    testing::Values(
        ModelFailure{"Model.getFirstUniDirAssociation", 1, "Failed to look up association handle"},
        ModelFailure{"Model.getUniDirEnd", 1, "Failed to look up association end handle."},
        ModelFailure{"Model.getEndStringProperty", 2, "Failed to look up association end name."},
        ModelFailure{"Model.getNextUniDirAssociation", 1, "Failed to look up next association"}));

TEST_F(ReferenceVerdicts, ModelFailsAfterAMessage_TheMessageStays) {
    host.start();
    write("Top=1,Foo=1", "peer", {"Top=1,Nowhere=1", "Top=1,Bar=1"});
    host.when("Model.getMocFromDn").on("Bar=1").fails(-17);
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(), ElementsAre("Top=1,Nowhere=1 is not a valid type for attribute "
                                             "peer in Top=1,Foo=1"));
}

TEST_F(ReferenceVerdicts, ModelFailsUnderAWrite_TheWriteGoesOnAndEscapesTheCheck) {
    host.start();
    host.when("Model.getUniDirEnd").once().fails(-17);
    write("Top=1,Foo=1", "peer", {});
    EXPECT_THAT(host.logs(), Contains("log 4 setMoRef: Got exception [Failed to look up "
                                      "association end handle.] return code -17"));
    EXPECT_THAT(host.world().attribute("Top=1,Foo=1", "peer"), testing::Optional(refs({})));
    EXPECT_TRUE(validate());
}

TEST_F(ReferenceVerdicts, ZeroHandleForTheWrittenMo_IsAFailedLookup) {
    host.start();
    host.when("Model.getMocFromDn").nth(2).answers<unsigned long long>([](unsigned long long& moc) {
        moc = 0;
        return OrvOk; // the first question is that of the back-pointers
    });
    write("Top=1,Foo=1", "peer", {});
    EXPECT_THAT(host.logs(),
                Contains("log 4 setMoRef: Failed to look up MOC. dn: Top=1,Foo=1, rc: 0"));
    EXPECT_TRUE(validate());
}

TEST_F(ReferenceVerdicts, WriteToADnThatIsNone_IsLoggedAndEscapesTheCheck) {
    host.start();
    write("Top=1,Foo", "peer", {}); // of a class, going by its last step
    EXPECT_THAT(host.logs(), Contains("log 4 setMoRef: Got exception [Dn::Dn: got malformed dnPart "
                                      "[Foo] dn [Top=1,Foo]] return code -1"));
    write("Top=,Foo=1", "peer", {});
    EXPECT_THAT(host.logs(), Contains("log 4 setMoRef: Got exception [Dn::Dn: got empty type in dn "
                                      "[Top=]] return code -1"));
    EXPECT_TRUE(validate());
}

TEST_F(ReferenceVerdicts, DeleteOfADnThatIsNone_IsLoggedAndChangesNothing) {
    host.start();
    write("Top=1,Foo=1", "peer", {});
    host.mo("Top=1,,Foo=1");
    EXPECT_EQ(host.client().remove(1, "Top=1,,Foo=1"), OrvOk);
    EXPECT_THAT(host.logs(),
                Contains("log 4 deleteMo: Got exception [Dn::Dn: got malformed dnPart [] dn "
                         "[Top=1,,Foo=1]] return code -1"));
    EXPECT_FALSE(validate());
}

TEST_F(ReferenceVerdicts, ReferenceThatIsNoDn_GivesNoVerdict) {
    host.start();
    write("Top=1,Foo=1", "peer", {"Top,Bar=1"});
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(), IsEmpty());
    EXPECT_THAT(host.logs(), Contains("log 4 validate: Got exception [Dn::Dn: got malformed dnPart "
                                      "[Top] dn [Top,Bar=1]] return code -1"));
}

// ---------------------------------------------------------------------------------------------
// What is traced

TEST_F(ReferenceVerdicts, Level8_ValidateTracesEachAttributeAndTheVerdict) {
    host.start();
    write("Top=1,Foo=1", "peer", {"Top=1,Bar=1"});
    write("Top=1,Foo=2", "peer", {});
    host.logLevel(8).forget();
    EXPECT_FALSE(validate());
    Texts traces;
    for (const std::string& line : host.logs()) {
        if (line.rfind("trace 0 ", 0) == 0) {
            traces.push_back(line);
        }
    }
    EXPECT_THAT(traces,
                ElementsAre("trace 0 validate: dn Top=1,Foo=1 result: 1",
                            "trace 0 addMessage: Adding message to thread context: [Attribute peer "
                            "in Top=1,Foo=2" +
                                kNoBar + "]",
                            "trace 0 validate: dn Top=1,Foo=2 result: 0",
                            "trace 0 validate: Validate tx: 1 result: 0 return code: -9"));
}

TEST_F(ReferenceVerdicts, Level8_FinishTracesAnUnknownTransactionOnly) {
    host.start();
    write("Top=1,Foo=1", "peer", {});
    host.logLevel(8).forget();
    const std::string unknown = "trace 0 finish: Could not find transaction 1\n";
    EXPECT_EQ(host.resource().finish(1), OrvOk);
    EXPECT_THAT(host.logs(), Not(Contains(HasSubstr("Could not find"))));
    EXPECT_EQ(host.resource().finish(1), OrvOk);
    EXPECT_THAT(host.logs(), Contains(unknown).Times(1));
}

// Without a repository a write is only traced as not recorded, a delete is logged.
TEST_F(ReferenceVerdicts, NoRepository_IsTracedForAWriteAndLoggedForADelete) {
    host.without(Part::ModelRepository).start();
    host.logLevel(6).forget();
    write("Top=1,Foo=1", "peer", {});
    EXPECT_THAT(host.logs(), Not(Contains(HasSubstr("Service is stopped"))));
    EXPECT_EQ(host.client().remove(1, "Top=1,Foo=1"), OrvOk);
    EXPECT_THAT(host.logs(), Contains("log 6 deleteMo: Service is stopped").Times(1));
    host.logLevel(8).forget();
    write("Top=1,Foo=1", "peer", {});
    EXPECT_THAT(host.logs(), Contains("trace 0 setMoRef: Service is stopped").Times(1));
    host.forget();
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.logs(), Contains("trace 0 validate: Service is stopped").Times(1));
    EXPECT_THAT(host.logs(), Not(Contains(HasSubstr("Validate tx"))));
}

TEST_F(ReferenceVerdicts, NoRepositoryAtLevel5_ADeleteSaysNothing) {
    host.without(Part::ModelRepository).start();
    host.mo("Top=1,Foo=1");
    host.logLevel(5).forget();
    EXPECT_EQ(host.client().remove(1, "Top=1,Foo=1"), OrvOk);
    EXPECT_THAT(host.logs(), Not(Contains(StartsWith("log 6"))));
}
