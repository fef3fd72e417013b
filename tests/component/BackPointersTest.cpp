// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What follows on the far side when a client writes, creates and deletes, as the host sees it.

#include "Host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

const std::string kRoot = "R=1";

std::string x(const std::string& name) {
    return kRoot + ",X=" + name;
}
std::string y(const std::string& name) {
    return kRoot + ",Y=" + name;
}
std::string n(const std::string& name) {
    return kRoot + ",N=" + name;
}

}

/// Below a root there are objects of the class X, whose `ys` belong together with the `xs` of the
/// class Y, and objects of the class N, whose `next` belong together with the `previous` of others.
class BackPointers : public testing::Test {
protected:
    BackPointers() {
        host.model().moc("R").contains("X").contains("Y");
        host.model().moc("X").contains("X");
        host.model().biDir({"X", "ys"}, {"Y", "xs"});
        host.model().biDir({"N", "next"}, {"N", "previous"});
        host.mo(kRoot);
    }

    OrvReturnT set(unsigned long tx, const std::string& dn, const std::string& attribute,
                   const Texts& references) const {
        return host.client().set(tx, dn, attribute, refs(references));
    }
    OrvReturnT createX(unsigned long tx, const std::string& name, const Texts& ys) const {
        return host.client().create(tx, kRoot, "X", "xId", name, {{"ys", refs(ys)}});
    }
    OrvReturnT createY(unsigned long tx, const std::string& name) const {
        return host.client().create(tx, kRoot, "Y", "yId", name);
    }
    Texts references(const std::string& dn, const std::string& attribute) const {
        return host.world().references(dn, attribute);
    }

    /// The MOs that a validation of \p tx looks at, which must find nothing wrong.
    Texts judged(unsigned long tx) {
        host.forget();
        bool result = false;
        EXPECT_EQ(host.resource().validate(tx, &result), OrvOk);
        EXPECT_TRUE(result);
        return namedBy("VekRouter3.existsMo");
    }

    /// The DNs of calls of the router, in their order.
    Texts namedBy(const std::string& call) const {
        Texts dns;
        for (const Call& each : host.callRecords(call)) {
            dns.push_back(each.arguments.at(1).text);
        }
        return dns;
    }

    Host host;
};

TEST_F(BackPointers, SameListInAnotherOrder_IsJudgedAndWritesNothing) {
    host.mo(x("1")).with("ys", refs({y("1"), y("2")}));
    host.mo(y("1")).with("xs", refs({x("1")}));
    host.mo(y("2")).with("xs", refs({x("1")}));
    host.start();
    EXPECT_EQ(set(1, x("1"), "ys", {y("2"), y("1")}), OrvOk);
    EXPECT_THAT(host.calls("VekRouter3."),
                ElementsAre("VekRouter3.getMoAttribute(1, 'R=1,X=1', 'ys')"));
    EXPECT_THAT(judged(1), ElementsAre("'R=1,X=1'"));
}

TEST_F(BackPointers, NamedAlready_StandsTwice) {
    host.mo(x("1"));
    host.mo(y("1")).with("xs", refs({x("1")}));
    host.start();
    EXPECT_EQ(set(1, x("1"), "ys", {y("1")}), OrvOk);
    EXPECT_THAT(references(y("1"), "xs"), ElementsAre(x("1"), x("1")));
    EXPECT_THAT(judged(1), ElementsAre("'R=1,X=1'", "'R=1,Y=1'"));
}

TEST_F(BackPointers, NamedTwice_OnlyTheFirstGoes) {
    host.mo(x("1")).with("ys", refs({y("1")}));
    host.mo(y("1")).with("xs", refs({x("9"), x("1"), x("8"), x("1")}));
    host.start();
    EXPECT_EQ(set(1, x("1"), "ys", {}), OrvOk);
    EXPECT_THAT(references(y("1"), "xs"), ElementsAre(x("9"), x("8"), x("1")));
}

TEST_F(BackPointers, NotNamedAtAll_IsWrittenUnchangedAndJudged) {
    host.mo(x("1")).with("ys", refs({y("1")}));
    host.mo(y("1")).with("xs", refs({x("9")}));
    host.start();
    EXPECT_EQ(set(1, x("1"), "ys", {}), OrvOk);
    EXPECT_THAT(host.calls("VekRouter3.setMoAttribute"),
                ElementsAre("VekRouter3.setMoAttribute(1, 'R=1,Y=1', 'xs', MoRef['R=1,X=9'])"));
    EXPECT_THAT(judged(1), ElementsAre("'R=1,X=1'", "'R=1,Y=1'"));
}

TEST_F(BackPointers, FarSideCannotBeWritten_TheClientIsServedAndItIsNotJudged) {
    host.mo(x("1"));
    host.mo(y("1"));
    host.logLevel(8).start();
    host.when("VekRouter3.setMoAttribute").fails(-42);
    EXPECT_EQ(set(1, x("1"), "ys", {y("1")}), OrvOk);
    EXPECT_THAT(references(x("1"), "ys"), ElementsAre(y("1")));
    EXPECT_THAT(host.logs(), Contains(HasSubstr(
                                 "Error code -42 received when setting attribute xs in R=1,Y=1.")));
    EXPECT_THAT(judged(1), ElementsAre("'R=1,X=1'"));
}

TEST_F(BackPointers, OldValueCannotBeRead_NothingFollowsAndNothingIsJudged) {
    host.mo(x("1")).with("ys", refs({y("1")}));
    host.mo(y("1")).with("xs", refs({x("1")}));
    host.logLevel(8).start();
    host.when("VekRouter3.getMoAttribute").on("'ys'").fails(-42);
    EXPECT_EQ(set(1, x("1"), "ys", {}), OrvOk);
    EXPECT_THAT(references(x("1"), "ys"), IsEmpty());
    EXPECT_THAT(references(y("1"), "xs"), ElementsAre(x("1")));
    EXPECT_THAT(host.logs(),
                Contains(HasSubstr("Failed to retrieve ys value from R=1,X=1, return code = -42")));
    EXPECT_THAT(judged(1), IsEmpty());
}

TEST_F(BackPointers, ClassOfTheWrittenMoUnknown_IsLoggedAndNothingFollows) {
    host.mo(x("1"));
    host.mo(y("1"));
    host.logLevel(3).start();
    host.when("Model.getMocFromDn").on("X=1").fails(-42);
    EXPECT_EQ(set(1, x("1"), "ys", {y("1")}), OrvOk);
    EXPECT_THAT(references(y("1"), "xs"), IsEmpty());
    EXPECT_THAT(host.logs(),
                Contains(HasSubstr("Failed to look up MOC from DN. dn=R=1,X=1, ret=-42")));
    EXPECT_THAT(judged(1), IsEmpty());
}

TEST_F(BackPointers, ValuesOfNoAndOfAnotherClass_AreLeftOutAndTheRestFollows) {
    host.mo(x("1"));
    host.mo(x("2"));
    host.mo(y("1"));
    host.logLevel(3).start();
    EXPECT_EQ(set(1, x("1"), "ys", {"R=1,Q=1", x("2"), y("1")}), OrvOk);
    EXPECT_THAT(references(y("1"), "xs"), ElementsAre(x("1")));
    EXPECT_THAT(namedBy("VekRouter3.existsMo"), ElementsAre("'R=1,Y=1'"));
    EXPECT_THAT(host.logs(),
                Contains(HasSubstr("Failed to look up MOC from DN. dn=R=1,Q=1, ret=-2")));
    EXPECT_THAT(host.logs(), Not(Contains(HasSubstr("X=2"))));
}

TEST_F(BackPointers, Created_HasNoOldValueToAskFor) {
    host.mo(y("1"));
    host.start();
    EXPECT_EQ(createX(1, "1", {y("1")}), OrvOk);
    EXPECT_THAT(references(y("1"), "xs"), ElementsAre(x("1")));
    EXPECT_THAT(namedBy("VekRouter3.getMoAttribute"), ElementsAre("'R=1,Y=1'"));
}

TEST_F(BackPointers, TargetsCreatedAfterwards_NameTheirSourcesInTheOrderOfWriting) {
    host.mo(x("2"));
    host.start();
    EXPECT_EQ(set(1, x("2"), "ys", {y("1"), y("2")}), OrvOk);
    EXPECT_EQ(createX(1, "1", {y("1")}), OrvOk);
    EXPECT_THAT(host.calls("VekRouter3.setMoAttribute"), IsEmpty());
    EXPECT_THAT(judged(1), ElementsAre("'R=1,X=1'", "'R=1,X=2'")) << "what waits is not wrong";
    EXPECT_EQ(createY(1, "1"), OrvOk);
    EXPECT_THAT(references(y("1"), "xs"), ElementsAre(x("2"), x("1")));
    EXPECT_THAT(judged(1), ElementsAre("'R=1,X=1'", "'R=1,X=2'", "'R=1,Y=1'"));
}

TEST_F(BackPointers, TargetAwaitedByTwoTransactions_GetsWhatItsOwnHasQueued) {
    host.mo(x("1"));
    host.mo(x("2"));
    host.start();
    set(1, x("1"), "ys", {y("1")});
    set(2, x("2"), "ys", {y("1")});
    EXPECT_EQ(createY(2, "1"), OrvOk);
    EXPECT_THAT(references(y("1"), "xs"), ElementsAre(x("2")));
    EXPECT_EQ(host.client().remove(2, y("1")), OrvOk);
    EXPECT_EQ(createY(1, "1"), OrvOk);
    EXPECT_THAT(references(y("1"), "xs"), ElementsAre(x("1")));
}

TEST_F(BackPointers, TargetCreatedWhenTheTransactionIsFinished_GetsNothing) {
    host.mo(x("1"));
    host.start();
    set(1, x("1"), "ys", {y("1"), y("2")});
    EXPECT_EQ(host.resource().finish(1), OrvOk);
    host.forget();
    EXPECT_EQ(createY(2, "1"), OrvOk);
    EXPECT_EQ(createY(1, "2"), OrvOk) << "the handle is used again";
    EXPECT_THAT(references(y("1"), "xs"), IsEmpty());
    EXPECT_THAT(references(y("2"), "xs"), IsEmpty());
    EXPECT_THAT(host.calls("VekRouter3."), IsEmpty()) << "nothing at all is queued";
}

// The router refuses the writes, so that the attributes do not tell what is queued.
TEST_F(BackPointers, SourceDeleted_ItsOwnAndWhatBeginsWithItsTextWaitNoMore) {
    for (const std::string name : {"1", "1,X=5", "10", "2"}) {
        host.mo(x(name));
    }
    host.start();
    host.when("Router3.setMoAttribute").fails(-42);
    for (const std::string name : {"1", "1,X=5", "10", "2"}) {
        EXPECT_EQ(set(1, x(name), "ys", {y("1")}), -42);
    }
    EXPECT_EQ(host.client().remove(1, x("1")), OrvOk);
    EXPECT_EQ(createY(1, "1"), OrvOk);
    EXPECT_THAT(references(y("1"), "xs"), ElementsAre(x("2")));
}

TEST_F(BackPointers, OneOfTwoTargetsGivenUp_TheOtherIsForgottenWithIt) {
    host.mo(x("1"));
    host.start();
    set(1, x("1"), "ys", {y("1"), y("2")});
    set(1, x("1"), "ys", {y("2")});
    EXPECT_EQ(createY(1, "2"), OrvOk);
    EXPECT_THAT(references(y("2"), "xs"), IsEmpty());
}

TEST_F(BackPointers, ClassWithItself_EachAttributeFollowsTheOther) {
    for (const std::string name : {"1", "2", "3"}) {
        host.mo(n(name));
    }
    host.start();
    set(1, n("1"), "next", {n("2")});
    set(1, n("1"), "previous", {n("3")});
    EXPECT_THAT(references(n("2"), "previous"), ElementsAre(n("1")));
    EXPECT_THAT(references(n("2"), "next"), IsEmpty());
    EXPECT_THAT(references(n("3"), "next"), ElementsAre(n("1")));
    EXPECT_THAT(references(n("3"), "previous"), IsEmpty());
    host.forget();
    EXPECT_EQ(host.client().remove(1, n("1")), OrvOk);
    EXPECT_THAT(namedBy("VekRouter3.getMoAttribute"),
                ElementsAre("'R=1,N=1'", "'R=1,N=2'", "'R=1,N=1'", "'R=1,N=3'"));
    EXPECT_THAT(references(n("2"), "previous"), IsEmpty());
    EXPECT_THAT(references(n("3"), "next"), IsEmpty());
}

TEST_F(BackPointers, SubtreeDeleted_ChildrenFirstClassByClassAndTheRouterLast) {
    for (const std::string& dn : {y("1"), x("9"), x("2"), x("9,X=1")}) {
        host.mo(dn);
    }
    host.start();
    EXPECT_EQ(host.client().remove(1, kRoot), OrvOk);
    EXPECT_THAT(namedBy("VekRouter3.getMoAttribute"),
                ElementsAre("'R=1,X=9,X=1'", "'R=1,X=9'", "'R=1,X=2'", "'R=1,Y=1'"));
    EXPECT_EQ(host.calls().back(), "Router3.deleteMo(1, 'R=1')");
}

TEST_F(BackPointers, ContainmentsCannotBeWalkedToTheEnd_IsLoggedAndThoseBeforeAreCleaned) {
    host.mo(x("1")).with("ys", refs({"Y=7"}));
    host.mo("Y=7").with("xs", refs({x("1")}));
    host.logLevel(3).start();
    host.when("Model.getNextContainment").once().fails(-42);
    EXPECT_EQ(host.client().remove(1, kRoot), OrvOk);
    EXPECT_THAT(references("Y=7", "xs"), IsEmpty());
    EXPECT_THAT(host.logs(), Contains(HasSubstr("log 3 ")));
    EXPECT_THAT(host.logs(), Contains(HasSubstr("Model repository returned error code -42")));
}

// The flag is a byte that is 0 or is not.
class KeptEnd : public BackPointers, public testing::WithParamInterface<unsigned char> {};

TEST_P(KeptEnd, ReferrerDeleted_ItsNameStays) {
    host.mo(x("1")).with("ys", refs({y("1")}));
    host.mo(y("1")).with("xs", refs({x("1")}));
    host.start();
    host.when("Model.getEndBoolProperty").answers<unsigned char>([](unsigned char& flag) {
        flag = GetParam();
        return OrvOk;
    });
    EXPECT_EQ(host.client().remove(1, x("1")), OrvOk);
    EXPECT_THAT(references(y("1"), "xs"), ElementsAre(x("1")));
    EXPECT_THAT(host.calls("VekRouter3.getMoAttribute"), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Bytes, KeptEnd, testing::Values(1, 2, 0x80, 0xff));
