// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Subscriptions and the events of commits.

#include "DispatcherScene.h"

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class NetconfEventTest : public DispatcherScene {
protected:
    std::string subscribe(const std::string& parameters = {}) {
        return ask(
            R"(<create-subscription xmlns="urn:ietf:params:xml:ns:netconf:notification:1.0">)" +
            parameters + "</create-subscription>");
    }
    static auto hasEdit(const std::string& path, const std::string& operation) {
        return HasSubstr(path + "</target><operation>" + operation + "</operation>");
    }
};

TEST_F(NetconfEventTest, Commit_SaysWhoAndWhatWithBackPointersThatFollowed) {
    ASSERT_EQ(subscribe(), "ok");
    ASSERT_EQ(edit(radioUnit("1", "<antennaRef " + kDelete + ">" + antenna(1, 1) + "</antennaRef>" +
                                      tagged("antennaRef", antenna(2, 1)))),
              "ok");
    EXPECT_THAT(events, IsEmpty()) << "only running counts";
    ASSERT_EQ(ask(bob, "<commit/>"), "ok");
    const std::string unit = "/ran-equipment:RadioUnit[ran-equipment:radioUnitId='1']";
    const std::string antenna1 = "/ran-equipment:AntennaUnit[ran-equipment:antennaUnitId='1']"
                                 "/ran-equipment:Antenna[ran-equipment:antennaId='1']";
    const std::string antenna2 = "/ran-equipment:AntennaUnit[ran-equipment:antennaUnitId='2']"
                                 "/ran-equipment:Antenna[ran-equipment:antennaId='1']";
    const std::string ref = "/ran-equipment:radioUnitRef[.='ManagedElement=Harbour,Equipment=1,"
                            "RadioUnit=1']";
    EXPECT_THAT(
        events,
        ElementsAre(AllOf(
            HasSubstr("<changed-by><username>bob</username><session-id>2</session-id></changed-by>"
                      "<datastore>running</datastore>"),
            HasSubstr(R"(<target xmlns:ran-element="urn:orv:example:ran-element")"),
            HasSubstr("/ran-element:ManagedElement[ran-element:managedElementId='Harbour']"),
            hasEdit(unit + "/ran-equipment:antennaRef[.='" + antenna(1, 1) + "']", "delete"),
            hasEdit(unit + "/ran-equipment:antennaRef[.='" + antenna(2, 1) + "']", "create"),
            hasEdit(antenna1 + ref, "delete"), hasEdit(antenna2 + ref, "create"))));
}

TEST_F(NetconfEventTest, ObjectsAndLeaves_HaveTheirOperations) {
    ASSERT_EQ(edit(element("<userLabel>a</userLabel>"), "running"), "ok");
    ASSERT_EQ(subscribe(), "ok");
    ASSERT_EQ(edit(equipment("<AntennaUnit><antennaUnitId>9</antennaUnitId><Antenna>"
                             "<antennaId>1</antennaId></Antenna></AntennaUnit>"),
                   "running"),
              "ok");
    ASSERT_EQ(edit(element("<userLabel>b</userLabel>"), "running"), "ok");
    ASSERT_EQ(edit(element("<userLabel " + kDelete + "/>"), "running"), "ok");
    ASSERT_EQ(edit(equipment("<AntennaUnit " + kDelete +
                             "><antennaUnitId>9</antennaUnitId></AntennaUnit>"),
                   "running"),
              "ok");
    const std::string unit = "/ran-equipment:AntennaUnit[ran-equipment:antennaUnitId='9']";
    EXPECT_THAT(events, ElementsAre(AllOf(hasEdit(unit, "create"), Not(HasSubstr("Antenna["))),
                                    hasEdit("/ran-element:userLabel", "replace"),
                                    hasEdit("/ran-element:userLabel", "delete"),
                                    AllOf(hasEdit(unit, "delete"), Not(HasSubstr("Antenna[")))));
}

TEST_F(NetconfEventTest, AnotherOrder_NamesTheObject) {
    ASSERT_EQ(subscribe(), "ok");
    ASSERT_EQ(edit(element(R"(<GNBDUFunction xmlns="urn:orv:example:ran-function">)"
                           "<gNBDUFunctionId>1</gNBDUFunctionId><NRCellDU><nRCellDUId>3"
                           R"(</nRCellDUId><cellReservedFor yang:insert="first" xmlns:yang=)"
                           R"("urn:ietf:params:xml:ns:yang:1">MAINTENANCE</cellReservedFor>)"
                           "</NRCellDU></GNBDUFunction>"),
                   "running"),
              "ok");
    EXPECT_THAT(events, ElementsAre(hasEdit("[ran-function:nRCellDUId='3']", "merge")));
}

TEST_F(NetconfEventTest, WhatIsTakenBackByItself_IsByTheServer) {
    ASSERT_EQ(edit(element("<userLabel>Old harbour</userLabel>")), "ok");
    ASSERT_EQ(ask(bob, "<commit><confirmed/></commit>"), "ok");
    ASSERT_EQ(subscribe(), "ok");
    dispatcher.end(bob);
    EXPECT_THAT(events, ElementsAre(HasSubstr("<changed-by><server/></changed-by>")));
}

TEST_F(NetconfEventTest, RefusedAndEmptyCommits_AreNoEvents) {
    ASSERT_EQ(subscribe(), "ok");
    ASSERT_EQ(ask("<commit/>"), "ok");
    ASSERT_EQ(edit(radioUnit("3", tagged("antennaRef", antenna(1, 2)))), "ok");
    ASSERT_NE(ask("<commit/>"), "ok");
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(NetconfEventTest, AfterItHasLeft_ASessionGetsNothing) {
    ASSERT_EQ(subscribe(), "ok");
    dispatcher.events().leave(1);
    ASSERT_EQ(edit(element("<userLabel>b</userLabel>"), "running"), "ok");
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(NetconfEventTest, Sessions_AreEvents) {
    ASSERT_EQ(subscribe(), "ok");
    dispatcher.events().sessionBegins(bob);
    dispatcher.events().sessionEnds(bob, {true, std::nullopt});
    dispatcher.events().sessionEnds(bob, {false, std::nullopt});
    dispatcher.events().sessionEnds(bob, {false, 1});
    const auto reason = [](const std::string& text) {
        return HasSubstr("<termination-reason>" + text + "</termination-reason>");
    };
    EXPECT_THAT(events,
                ElementsAre(AllOf(HasSubstr("netconf-session-start"),
                                  HasSubstr("<username>bob</username><session-id>2</session-id>")),
                            reason("closed"), reason("dropped"),
                            AllOf(reason("killed"), HasSubstr("<killed-by>1</killed-by>"))));
}

TEST_F(NetconfEventTest, SubscriptionsThatCannotBe_AreRefused) {
    EXPECT_THAT(subscribe("<stream>snmp</stream>"), HasSubstr("invalid-value"));
    EXPECT_THAT(subscribe("<startTime>2026-11-22T10:00:00Z</startTime>"),
                HasSubstr("operation-failed"));
    EXPECT_THAT(subscribe("<stopTime>2026-11-22T10:00:00Z</stopTime>"),
                HasSubstr("missing-element"));
    EXPECT_THAT(subscribe(R"(<filter type="xpath" select="/x"/>)"),
                HasSubstr("operation-not-supported"));
    ASSERT_EQ(subscribe("<stream>NETCONF</stream>"), "ok");
    EXPECT_THAT(subscribe(), HasSubstr("has a subscription already"));
}

}
}
