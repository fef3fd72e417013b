// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Actions of the model: parameters to the component, and its answer or its refusal back.

#include "DispatcherScene.h"

#include "base/HostError.h"

#include <optional>
#include <utility>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

auto hasTag(const std::string& tag) {
    return HasSubstr("<error-tag>" + tag + "</error-tag>");
}

class NetconfActionTest : public DispatcherScene {
protected:
    NetconfActionTest() {
        host.router().setActionHandler([this](const ActionCall& call) {
            calls.push_back(call.dn + " " + call.action.name);
            for (const auto& [name, value] : call.parameters) {
                calls.back() += " " + name + "=" + textOf(value);
            }
            if (!refusal.empty()) {
                throw HostError(OrvInvalidArgument, refusal);
            }
            return result;
        });
    }

    static std::string textOf(const AttributeValue& value) {
        std::string text;
        for (const Value& one : value.values) {
            text += text.empty() ? "" : ",";
            if (const auto* whole = std::get_if<StructValue>(&one)) {
                text += "{";
                for (const auto& [name, member] : whole->members) {
                    text += name + ":" + textOf(member) + ";";
                }
                text += "}";
            } else {
                text += toText(one);
            }
        }
        return text;
    }

    static std::string act(const std::string& content) {
        return R"(<action xmlns="urn:ietf:params:xml:ns:yang:1">)" + content + "</action>";
    }
    std::string onFeed(const std::string& action) {
        return act(
            element(R"(<Feed xmlns="urn:orv:test:plant"><feedId>1</feedId>)" + action + "</Feed>"));
    }
    std::string onUnit(const std::string& action, const std::string& unit = "1") {
        return act(radioUnit(unit, action));
    }
    void createFeed() {
        ASSERT_EQ(edit(element(R"(<Feed xmlns="urn:orv:test:plant"><feedId>1</feedId></Feed>)"),
                       "running"),
                  "ok");
    }

    std::vector<std::string> calls;
    std::optional<AttributeValue> result;
    std::string refusal;
};

TEST_F(NetconfActionTest, Parameters_ReachTheComponentInTheirTypes) {
    createFeed();
    EXPECT_EQ(ask(onFeed("<trip><phase>2</phase><phase>3</phase><limits><low>-4</low>"
                         "<name>a &amp; b</name></limits><meterRef>ManagedElement=Harbour,Meter=7"
                         "</meterRef></trip>")),
              "ok");
    EXPECT_THAT(calls, ElementsAre("ManagedElement=1,Feed=1 trip phase=2,3 "
                                   "limits={low:-4;name:a & b;} meterRef=ManagedElement=1,Meter=7 "
                                   "seconds=5"));
}

TEST_F(NetconfActionTest, WithoutParameters_TakesTheDefaults) {
    EXPECT_EQ(ask(onUnit("<blink/>")), "ok");
    EXPECT_THAT(calls, ElementsAre("ManagedElement=1,Equipment=1,RadioUnit=1 blink seconds=30"));
}

TEST_F(NetconfActionTest, Output_OfOneNode_IsInItsNamespace) {
    createFeed();
    result = AttributeValue{ValueKind::MoRef, {std::string("ManagedElement=1,Meter=7")}};
    EXPECT_EQ(ask(onFeed("<meter/>")),
              R"(<meterRef xmlns="urn:orv:test:plant">ManagedElement=Harbour,Meter=7</meterRef>)");
}

TEST_F(NetconfActionTest, Output_OfSeveralNodes_IsThoseThatAreSet) {
    createFeed();
    const AttributeValue state{ValueKind::String, {std::string("a < b")}};
    const AttributeValue phases{ValueKind::Uint, {std::uint64_t{1}, std::uint64_t{2}}};
    result =
        AttributeValue{ValueKind::Struct, {StructValue{{{"state", state}, {"phase", phases}}}}};
    EXPECT_EQ(ask(onFeed("<trip><phase>2</phase></trip>")),
              R"(<state xmlns="urn:orv:test:plant">a &lt; b</state>)"
              R"(<phase xmlns="urn:orv:test:plant">1</phase>)"
              R"(<phase xmlns="urn:orv:test:plant">2</phase>)");
}

TEST_F(NetconfActionTest, Refusal_HasTheActionsPathAndTheMessage) {
    refusal = "the lamp is broken";
    EXPECT_THAT(ask(onUnit("<blink/>")),
                AllOf(hasTag("invalid-value"), HasSubstr("the lamp is broken"),
                      HasSubstr("ran-equipment:RadioUnit[ran-equipment:radioUnitId='1']"
                                "/ran-equipment:blink</error-path>"),
                      HasSubstr(R"(xmlns:ran-equipment="urn:orv:example:ran-equipment")")));
}

TEST_F(NetconfActionTest, MandatoryParameter_Missing_IsNamed) {
    EXPECT_THAT(ask(act(element("<restart/>"))),
                AllOf(hasTag("missing-element"), HasSubstr("<bad-element>reason</bad-element>"),
                      HasSubstr("/ran-element:restart</error-path>")));
    EXPECT_TRUE(calls.empty());
}

TEST_F(NetconfActionTest, Parameter_GivenTwice_IsRefused) {
    EXPECT_THAT(ask(onUnit("<blink><seconds>1</seconds><seconds>2</seconds></blink>")),
                AllOf(hasTag("bad-element"), HasSubstr("<bad-element>seconds</bad-element>")));
    EXPECT_TRUE(calls.empty());
}

TEST_F(NetconfActionTest, OnNoObject_IsDataMissing) {
    EXPECT_THAT(ask(onUnit("<blink/>", "77")),
                AllOf(hasTag("data-missing"),
                      HasSubstr("ran-equipment:RadioUnit[ran-equipment:radioUnitId='77']")));
    EXPECT_THAT(ask(onUnit("<blink/>", "a,b")), hasTag("invalid-value"));
    EXPECT_TRUE(calls.empty());
}

TEST_F(NetconfActionTest, WhatIsNoActionOfAnObject_IsNotSupported) {
    createFeed();
    EXPECT_THAT(ask(onFeed("<fuse><blow/></fuse>")),
                AllOf(hasTag("operation-not-supported"), HasSubstr("/plant:fuse/plant:blow<")));
    EXPECT_THAT(ask(R"(<ping xmlns="urn:orv:test:plant"/>)"), hasTag("operation-not-supported"));
    EXPECT_TRUE(calls.empty());
}

TEST_F(NetconfActionTest, WhoMayNotEditRunning_MayCallNone) {
    EXPECT_THAT(ask(reader, onUnit("<blink/>")), hasTag("access-denied"));
    ASSERT_EQ(ask(bob, "<lock><target><running/></target></lock>"), "ok");
    EXPECT_THAT(ask(onUnit("<blink/>")), hasTag("in-use"));
    EXPECT_EQ(ask(bob, onUnit("<blink/>")), "ok");
    ASSERT_EQ(ask(bob, "<unlock><target><running/></target></unlock>"), "ok");
    EXPECT_EQ(calls.size(), 1U);
}

TEST_F(NetconfActionTest, WhatStandsBesideThePath_IsRefused) {
    EXPECT_THAT(ask(onUnit("<userLabel>new</userLabel><blink/>")),
                AllOf(hasTag("bad-element"), HasSubstr("<bad-element>userLabel</bad-element>"),
                      HasSubstr("[ran-equipment:radioUnitId='1']/ran-equipment:userLabel<")));
    EXPECT_THAT(ask(act(element("<userLabel>new</userLabel>"
                                R"(<Equipment xmlns="urn:orv:example:ran-equipment">)"
                                "<equipmentId>1</equipmentId><RadioUnit>"
                                "<radioUnitId>1</radioUnitId><blink/></RadioUnit></Equipment>"))),
                hasTag("bad-element"));
    EXPECT_THAT(calls, testing::IsEmpty());
    EXPECT_EQ(ask(onUnit("<blink/>")), "ok");
}

TEST_F(NetconfActionTest, WhatItWrites_IsCommitted) {
    host.router().setActionHandler([&](const ActionCall& call) -> std::optional<AttributeValue> {
        alice.client().client().set(
            call.txHandle, "ManagedElement=Harbour",
            {{"userLabel", AttributeValue{ValueKind::String, {std::string("Restarted")}}}});
        return std::nullopt;
    });
    EXPECT_EQ(ask(act(element("<restart><reason>PLANNED</reason></restart>"))), "ok");
    EXPECT_THAT(getConfig(element("<userLabel/>")), HasSubstr("Restarted"));
}

}
}
