// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Sequences of writes that easily go wrong in systems that keep references consistent.

#include "Host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

using namespace Scripted;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

using Texts = std::vector<std::string>;

}

/// The attribute `ys` of the class X belongs together with the attribute `xs` of the class Y, and
/// `next` of the class N with `previous` of others of its kind.
class BackPointerSequences : public testing::Test {
protected:
    BackPointerSequences() {
        host.model().biDir({"X", "ys"}, {"Y", "xs"});
        host.model().biDir({"N", "next"}, {"N", "previous"});
    }

    void startWith(const Texts& dns) {
        for (const std::string& dn : dns) {
            host.mo(dn);
        }
        host.start();
    }

    void set(const std::string& dn, const std::string& attribute, const Texts& references,
             unsigned long txHandle = 1) const {
        EXPECT_EQ(host.client().set(txHandle, dn, attribute, refs(references)), OrvOk);
    }
    void createX(const std::string& name, const Texts& ys) const {
        EXPECT_EQ(host.client().create(1, "R=1", "X", "xId", name, {{"ys", refs(ys)}}), OrvOk);
    }
    void createY(const std::string& name) const {
        EXPECT_EQ(host.client().create(1, "R=1", "Y", "yId", name), OrvOk);
    }
    void remove(const std::string& dn) const { EXPECT_EQ(host.client().remove(1, dn), OrvOk); }
    Texts references(const std::string& dn, const std::string& attribute) const {
        return host.world().references(dn, attribute);
    }

    bool validate(unsigned long txHandle = 1) const {
        bool result = false;
        EXPECT_EQ(host.resource().validate(txHandle, &result), OrvOk);
        return result;
    }
    void expectValid() const {
        EXPECT_TRUE(validate());
        EXPECT_THAT(host.messages(), IsEmpty());
    }

    Host host;
};

// -------------------------------------------------------------------------------------------------
// Both sides

TEST_F(BackPointerSequences, BothSidesSetInOneTransaction_EachStandsOnce) {
    startWith({"X=1", "Y=1", "X=2", "Y=2"});
    set("X=1", "ys", {"Y=1"});
    set("Y=1", "xs", {"X=1"});
    set("Y=2", "xs", {"X=2"});
    set("X=2", "ys", {"Y=2"});
    for (const std::string name : {"1", "2"}) {
        EXPECT_THAT(references("X=" + name, "ys"), ElementsAre("Y=" + name));
        EXPECT_THAT(references("Y=" + name, "xs"), ElementsAre("X=" + name));
    }
    expectValid();
}

// Each MO that is created with its reference makes the other side's back-pointer, without a look at
// what is there already.
TEST_F(BackPointerSequences, BothSidesGivenAtCreation_StandTwiceOnBothSides) {
    startWith({});
    createX("1", {"R=1,Y=1"});
    EXPECT_EQ(host.client().create(1, "R=1", "Y", "yId", "1", {{"xs", refs({"R=1,X=1"})}}), OrvOk);
    EXPECT_THAT(references("R=1,X=1", "ys"), ElementsAre("R=1,Y=1", "R=1,Y=1"));
    EXPECT_THAT(references("R=1,Y=1", "xs"), ElementsAre("R=1,X=1", "R=1,X=1"));
}

TEST_F(BackPointerSequences, BothSidesCleared_BothAreEmpty) {
    startWith({"X=1", "Y=1"});
    set("X=1", "ys", {"Y=1"});
    set("X=1", "ys", {}, 2);
    set("Y=1", "xs", {}, 2);
    EXPECT_THAT(references("X=1", "ys"), IsEmpty());
    EXPECT_THAT(references("Y=1", "xs"), IsEmpty());
    EXPECT_TRUE(validate(2));
}

TEST_F(BackPointerSequences, OneSideSetTheOtherCleared_TheLastWriteWinsOnBothSides) {
    startWith({"X=1", "Y=1"});
    set("X=1", "ys", {"Y=1"});
    set("Y=1", "xs", {});
    EXPECT_THAT(references("X=1", "ys"), IsEmpty());
    EXPECT_THAT(references("Y=1", "xs"), IsEmpty());
}

// -------------------------------------------------------------------------------------------------
// Lists

TEST_F(BackPointerSequences, ListReplaced_WhatGoesBeforeWhatComesEachInTheOrderOfItsList) {
    startWith({"X=1", "Y=1", "Y=2", "Y=3", "Y=4", "Y=5"});
    set("X=1", "ys", {"Y=3", "Y=1", "Y=2"});
    host.forget();
    set("X=1", "ys", {"Y=5", "Y=2", "Y=4"});
    EXPECT_THAT(host.calls("VekRouter3.setMoAttribute"),
                ElementsAre("VekRouter3.setMoAttribute(1, 'Y=3', 'xs', MoRef[])",
                            "VekRouter3.setMoAttribute(1, 'Y=1', 'xs', MoRef[])",
                            "VekRouter3.setMoAttribute(1, 'Y=5', 'xs', MoRef['X=1'])",
                            "VekRouter3.setMoAttribute(1, 'Y=4', 'xs', MoRef['X=1'])"));
}

TEST_F(BackPointerSequences, ValueGivenTwice_IsAddedTwiceAndOneMoreOrLessIsNoDifference) {
    startWith({"X=1", "Y=1"});
    set("X=1", "ys", {"Y=1", "Y=1"});
    EXPECT_THAT(references("Y=1", "xs"), ElementsAre("X=1", "X=1"));
    host.forget();
    set("X=1", "ys", {"Y=1"});
    EXPECT_THAT(host.calls("VekRouter3.setMoAttribute"), IsEmpty());
    set("X=1", "ys", {"Y=1", "Y=1", "Y=1"});
    EXPECT_THAT(host.calls("VekRouter3.setMoAttribute"), IsEmpty());
    set("X=1", "ys", {});
    EXPECT_THAT(references("Y=1", "xs"), IsEmpty());
}

TEST_F(BackPointerSequences, SingleReferenceMovedAndMovedBack_LeavesNothingBehind) {
    host.model().biDir({"P", "q", 0, 1, "qs"}, {"Q", "p", 0, 1, "ps"});
    startWith({"P=1", "Q=1", "Q=2"});
    set("P=1", "q", {"Q=1"});
    set("P=1", "q", {"Q=2"});
    EXPECT_THAT(references("Q=1", "p"), IsEmpty());
    EXPECT_THAT(references("Q=2", "p"), ElementsAre("P=1"));
    set("P=1", "q", {"Q=1"});
    EXPECT_THAT(references("Q=1", "p"), ElementsAre("P=1"));
    EXPECT_THAT(references("Q=2", "p"), IsEmpty());
    expectValid();
}

TEST_F(BackPointerSequences, SameViolationWrittenAgainAndAgain_IsReportedOnce) {
    host.model().moc("X").reference("ys", "Y", 0, 1);
    startWith({"X=1", "Y=1", "Y=2"});
    set("X=1", "ys", {"Y=1", "Y=2"});
    set("X=1", "ys", {"Y=2", "Y=1"});
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(),
                ElementsAre("Multiplicity of attribute ys in X=1 is not in range (0..1)."));
}

// -------------------------------------------------------------------------------------------------
// Several associations

TEST_F(BackPointerSequences, TwoAssociationsBetweenTheSameMos_AreKeptApartAndLeftInTheirOrder) {
    host.model().biDir({"X", "spares"}, {"Y", "users"});
    startWith({"X=1", "Y=1"});
    set("X=1", "ys", {"Y=1"});
    set("X=1", "spares", {"Y=1"});
    EXPECT_THAT(references("Y=1", "xs"), ElementsAre("X=1"));
    EXPECT_THAT(references("Y=1", "users"), ElementsAre("X=1"));
    set("X=1", "ys", {});
    EXPECT_THAT(references("Y=1", "xs"), IsEmpty());
    EXPECT_THAT(references("Y=1", "users"), ElementsAre("X=1"));
    set("X=1", "ys", {"Y=1"});
    host.forget();
    remove("Y=1");
    EXPECT_THAT(host.calls("VekRouter3.setMoAttribute"),
                ElementsAre("VekRouter3.setMoAttribute(1, 'X=1', 'ys', MoRef[])",
                            "VekRouter3.setMoAttribute(1, 'X=1', 'spares', MoRef[])"));
}

TEST_F(BackPointerSequences, TwoAssociationsThroughOneAttribute_EachForItsOwnClass) {
    host.model().moc("P").reference("others", "ManagedObject");
    host.model().biDir({"P", "others"}, {"Y", "ps"});
    host.model().biDir({"P", "others"}, {"Z", "ps"});
    startWith({"P=1", "Y=1", "Z=1"});
    set("P=1", "others", {"Z=1", "Y=1"});
    EXPECT_THAT(host.calls("VekRouter3.setMoAttribute"),
                ElementsAre("VekRouter3.setMoAttribute(1, 'Y=1', 'ps', MoRef['P=1'])",
                            "VekRouter3.setMoAttribute(1, 'Z=1', 'ps', MoRef['P=1'])"));
    set("P=1", "others", {"Z=1"});
    EXPECT_THAT(references("Y=1", "ps"), IsEmpty());
    EXPECT_THAT(references("Z=1", "ps"), ElementsAre("P=1"));
}

// As far as the component can tell this is one association for each of the two.
TEST_F(BackPointerSequences, TwoAssociationsThroughOneAttributeToOneClass_AreBothFollowed) {
    host.model().biDir({"X", "ys"}, {"Y", "zs"});
    startWith({"X=1", "Y=1"});
    set("X=1", "ys", {"Y=1"});
    EXPECT_THAT(references("Y=1", "xs"), ElementsAre("X=1"));
    EXPECT_THAT(references("Y=1", "zs"), ElementsAre("X=1"));
}

// With one name on both ends the name does not tell which end lies here: a write on the first end's
// side takes that end for the far one, finds no target of its own class and changes none.
TEST_F(BackPointerSequences, OneNameOnBothEnds_IsFollowedFromTheSecondEndsSideOnly) {
    host.model().biDir({"P", "peers"}, {"Q", "peers"});
    startWith({"P=1", "Q=1"});
    set("P=1", "peers", {"Q=1"});
    EXPECT_THAT(references("Q=1", "peers"), IsEmpty());
    set("P=1", "peers", {});
    set("Q=1", "peers", {"P=1"});
    EXPECT_THAT(references("P=1", "peers"), ElementsAre("Q=1"));
}

TEST_F(BackPointerSequences, ClassInNoAssociation_IsNeitherReadNorJudged) {
    host.model().moc("P").reference("others", "Y");
    startWith({"P=1", "Y=1"});
    set("P=1", "others", {"Y=1"});
    EXPECT_THAT(host.calls("VekRouter3."), IsEmpty());
    expectValid();
    EXPECT_THAT(host.calls("VekRouter3."), IsEmpty());
}

// -------------------------------------------------------------------------------------------------
// A class associated with itself

TEST_F(BackPointerSequences, ReferenceToItself_HasItsBackPointerInItself) {
    startWith({"N=1"});
    set("N=1", "next", {"N=1"});
    EXPECT_THAT(references("N=1", "previous"), ElementsAre("N=1"));
    expectValid();
    set("N=1", "next", {});
    EXPECT_THAT(references("N=1", "previous"), IsEmpty());
    set("N=1", "previous", {"N=1"});
    EXPECT_THAT(references("N=1", "next"), ElementsAre("N=1"));
    remove("N=1");
    expectValid();
}

TEST_F(BackPointerSequences, CreatedWithAReferenceToItself_HasItsBackPointer) {
    startWith({});
    EXPECT_EQ(host.client().create(1, "R=1", "N", "nId", "1", {{"next", refs({"R=1,N=1"})}}),
              OrvOk);
    EXPECT_THAT(references("R=1,N=1", "previous"), ElementsAre("R=1,N=1"));
}

/// An association of the class K with itself, K=1 in the middle of it.
class KeptEndOfTheSameClass : public BackPointerSequences {
protected:
    void startWithKept(bool first, bool second) {
        host.model().biDir({"K", "b", 0, 1000, "references", first},
                           {"K", "a", 0, 1000, "references", second});
        host.mo("K=1").with("b", refs({"K=2"})).with("a", refs({"K=3"}));
        host.mo("K=2").with("a", refs({"K=1"}));
        host.mo("K=3").with("b", refs({"K=1"}));
        host.start();
    }
};

TEST_F(KeptEndOfTheSameClass, FirstEnd_OnlyTheOtherAttributeIsFollowed) {
    startWithKept(true, false);
    remove("K=1");
    EXPECT_THAT(references("K=2", "a"), ElementsAre("K=1"));
    EXPECT_THAT(references("K=3", "b"), IsEmpty());
    EXPECT_THAT(host.calls("VekRouter3.getMoAttribute"),
                Not(Contains("VekRouter3.getMoAttribute(1, 'K=1', 'b')")));
}

TEST_F(KeptEndOfTheSameClass, SecondEnd_OnlyTheFirstAttributeIsFollowed) {
    startWithKept(false, true);
    remove("K=1");
    EXPECT_THAT(references("K=2", "a"), IsEmpty());
    EXPECT_THAT(references("K=3", "b"), ElementsAre("K=1"));
}

TEST_F(KeptEndOfTheSameClass, NoneAndTheFirstReadFails_TheOtherAttributeIsFollowed) {
    startWithKept(false, false);
    host.when("VekRouter3.getMoAttribute").on("'K=1', 'b'").returns(-42);
    remove("K=1");
    EXPECT_THAT(references("K=2", "a"), ElementsAre("K=1"));
    EXPECT_THAT(references("K=3", "b"), IsEmpty());
}

// -------------------------------------------------------------------------------------------------
// Deleted

TEST_F(BackPointerSequences, SubtreeDeleted_ReferencesFromOutsideAndInsideAreGone) {
    host.model().moc("P").contains("X").contains("Y");
    startWith({"P=1", "P=1,X=1", "P=1,Y=1", "X=9", "Y=9"});
    set("P=1,X=1", "ys", {"P=1,Y=1", "Y=9"});
    set("X=9", "ys", {"P=1,Y=1", "Y=9"});
    remove("P=1");
    EXPECT_THAT(references("X=9", "ys"), ElementsAre("Y=9"));
    EXPECT_THAT(references("Y=9", "xs"), ElementsAre("X=9"));
    expectValid();
}

TEST_F(BackPointerSequences, DeletedWithValuesOfNoAndOfAnotherClass_TheyArePassedOverSilently) {
    host.model().moc("Z");
    host.mo("X=1").with("ys", refs({"Z=1", "Q=1", "Y=1"}));
    host.mo("Y=1").with("xs", refs({"X=1"}));
    startWith({"Z=1"});
    host.logLevel(3);
    remove("X=1");
    EXPECT_THAT(references("Y=1", "xs"), IsEmpty());
    EXPECT_THAT(host.calls("VekRouter3.existsMo"), ElementsAre("VekRouter3.existsMo(1, 'Y=1')"));
    EXPECT_THAT(host.logs(), IsEmpty());
}

TEST_F(BackPointerSequences, FarSideLeftBelowItsLowerBoundByADelete_IsReportedThere) {
    host.model().biDir({"P", "qs"}, {"Q", "ps", 1, 2, "owners"});
    startWith({"P=1", "Q=1"});
    set("P=1", "qs", {"Q=1"});
    remove("P=1");
    EXPECT_FALSE(validate());
    EXPECT_THAT(host.messages(), ElementsAre("Attribute ps in Q=1 contains 0 owners which is not "
                                             "within cardinality range (1..2)."));
}

TEST_F(BackPointerSequences, TargetDeletedAndCreatedAgain_HoldsWhatIsWrittenAnew) {
    startWith({"R=1,X=1", "R=1,Y=1"});
    set("R=1,X=1", "ys", {"R=1,Y=1"});
    remove("R=1,Y=1");
    EXPECT_THAT(references("R=1,X=1", "ys"), IsEmpty());
    createY("1");
    EXPECT_THAT(references("R=1,Y=1", "xs"), IsEmpty());
    set("R=1,X=1", "ys", {"R=1,Y=1"});
    EXPECT_THAT(references("R=1,Y=1", "xs"), ElementsAre("R=1,X=1"));
    expectValid();
}

// -------------------------------------------------------------------------------------------------
// Additions that wait. The target is deleted and created again to see what is still queued.

TEST_F(BackPointerSequences, ExistenceOfTheTargetIsUnknown_WaitsUntilItIsCreated) {
    startWith({"R=1,X=1", "R=1,Y=1"});
    host.when("VekRouter3.existsMo").once().returns(-42);
    set("R=1,X=1", "ys", {"R=1,Y=1"});
    EXPECT_THAT(references("R=1,Y=1", "xs"), IsEmpty());
    remove("R=1,Y=1");
    createY("1");
    EXPECT_THAT(references("R=1,Y=1", "xs"), ElementsAre("R=1,X=1"));
}

TEST_F(BackPointerSequences, ExistenceOfALostTargetIsUnknown_WhatWaitsIsWithdrawn) {
    startWith({"R=1,X=1", "R=1,Y=1"});
    set("R=1,X=1", "ys", {"R=1,Y=1", "R=1,Y=2"});
    host.when("VekRouter3.existsMo").once().returns(-42);
    set("R=1,X=1", "ys", {"R=1,Y=2"});
    EXPECT_THAT(references("R=1,Y=1", "xs"), ElementsAre("R=1,X=1"));
    createY("2");
    EXPECT_THAT(references("R=1,Y=2", "xs"), IsEmpty());
}

TEST_F(BackPointerSequences, NewTargetCannotBeSeen_WaitsForALaterOne) {
    startWith({"R=1,X=1"});
    set("R=1,X=1", "ys", {"R=1,Y=1"});
    host.when("VekRouter3.existsMo").once().fails(-42);
    createY("1");
    EXPECT_THAT(references("R=1,Y=1", "xs"), IsEmpty());
    remove("R=1,Y=1");
    createY("1");
    EXPECT_THAT(references("R=1,Y=1", "xs"), ElementsAre("R=1,X=1"));
}

// Seen at first and then, for one of two, no longer: that one waits on, and the walk ends.
TEST_F(BackPointerSequences, NewTargetLostFromSight_OneWaitsOnAndTheOtherIsWritten) {
    startWith({"R=1,X=1", "R=1,X=2"});
    set("R=1,X=1", "ys", {"R=1,Y=1"});
    set("R=1,X=2", "ys", {"R=1,Y=1"});
    host.when("VekRouter3.existsMo").nth(2).fails(-42);
    createY("1");
    EXPECT_THAT(references("R=1,Y=1", "xs"), ElementsAre("R=1,X=2"));
    remove("R=1,Y=1");
    createY("1");
    EXPECT_THAT(references("R=1,Y=1", "xs"), ElementsAre("R=1,X=1"));
}

TEST_F(BackPointerSequences, NewTargetCannotBeReadOrWritten_WhatWaitedIsLostWithATrace) {
    startWith({"R=1,X=1", "R=1,X=2"});
    set("R=1,X=1", "ys", {"R=1,Y=1"});
    set("R=1,X=2", "ys", {"R=1,Y=1"});
    host.logLevel(8);
    host.when("VekRouter3.getMoAttribute").once().fails(-42);
    host.when("VekRouter3.setMoAttribute").once().fails(-43);
    createY("1");
    EXPECT_THAT(host.logs(), Contains(HasSubstr(
                                 "Error code -42 received when reading attribute xs in R=1,Y=1.")));
    EXPECT_THAT(host.logs(), Contains(HasSubstr(
                                 "Error code -43 received when setting attribute xs in R=1,Y=1.")));
    remove("R=1,Y=1");
    createY("1");
    EXPECT_THAT(references("R=1,Y=1", "xs"), IsEmpty());
}

TEST_F(BackPointerSequences, NewTargetsWriteThrows_WhatWaitedWaitsOn) {
    startWith({"R=1,X=1"});
    set("R=1,X=1", "ys", {"R=1,Y=1"});
    host.when("VekRouter3.setMoAttribute").once().throws(std::runtime_error("router"));
    EXPECT_EQ(host.client().create(1, "R=1", "Y", "yId", "1"), OrvFailure);
    EXPECT_THAT(references("R=1,Y=1", "xs"), IsEmpty());
    remove("R=1,Y=1");
    createY("1");
    EXPECT_THAT(references("R=1,Y=1", "xs"), ElementsAre("R=1,X=1"));
}
