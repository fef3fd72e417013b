// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What clients change: edit-config and its operations, candidate and running, errors.

#include "DispatcherScene.h"

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

auto hasTag(const std::string& tag) {
    return HasSubstr("<error-tag>" + tag + "</error-tag>");
}

class NetconfEditTest : public DispatcherScene {
protected:
    std::string unitsOf(int unit, int number, const std::string& store) {
        const std::string found =
            getConfig(equipment("<AntennaUnit><antennaUnitId>" + std::to_string(unit) +
                                "</antennaUnitId><Antenna><antennaId>" + std::to_string(number) +
                                "</antennaId><radioUnitRef/></Antenna></AntennaUnit>"),
                      store);
        std::string units;
        for (const char* id : {"1", "2", "3"}) {
            const bool has = found.find("RadioUnit=" + std::string(id) + "<") != std::string::npos;
            units += has ? id : "";
        }
        return units;
    }

    std::string moveUnit1() {
        return edit(radioUnit("1", "<antennaRef " + kDelete + ">" + antenna(1, 1) +
                                       "</antennaRef>" + tagged("antennaRef", antenna(2, 1))));
    }

    std::string thirdUnit() { return radioUnit("3", tagged("antennaRef", antenna(1, 2))); }

    void expectNothingChanged() {
        EXPECT_THAT(getConfig(radioUnit("3")), Not(HasSubstr("RadioUnit")));
        EXPECT_EQ(unitsOf(1, 2, "running"), "12");
    }
};

TEST_F(NetconfEditTest, Candidate_IsSeenAloneUntilItIsCommitted) {
    ASSERT_EQ(moveUnit1(), "ok");
    EXPECT_EQ(unitsOf(1, 1, "candidate"), "");
    EXPECT_EQ(unitsOf(2, 1, "candidate"), "12") << "the far side follows";
    EXPECT_EQ(unitsOf(1, 1, "running"), "1");
    EXPECT_EQ(ask(kValidate), "ok");
    EXPECT_EQ(ask("<commit/>"), "ok");
    EXPECT_EQ(unitsOf(1, 1, "running"), "");
    EXPECT_EQ(unitsOf(2, 1, "running"), "12");
}

TEST_F(NetconfEditTest, Commit_WithoutChanges_IsFine) {
    EXPECT_EQ(ask("<commit/>"), "ok");
    EXPECT_EQ(ask(kValidate), "ok");
}

TEST_F(NetconfEditTest, BothSides_InAnyOrder_GiveTheSame) {
    const std::string unit = "<RadioUnit><radioUnitId>1</radioUnitId><antennaRef " + kDelete + ">" +
                             antenna(1, 1) + "</antennaRef>" + tagged("antennaRef", antenna(2, 1)) +
                             "</RadioUnit>";
    const std::string old =
        "<AntennaUnit><antennaUnitId>1</antennaUnitId><Antenna><antennaId>1</antennaId>"
        "<radioUnitRef>ManagedElement=Harbour,Equipment=1,RadioUnit=1</radioUnitRef>"
        "</Antenna></AntennaUnit>";
    for (const std::string& both : {unit + old, old + unit}) {
        ASSERT_EQ(edit(equipment(both)), "ok");
        EXPECT_EQ(unitsOf(1, 1, "candidate"), "");
        EXPECT_EQ(unitsOf(2, 1, "candidate"), "12");
        EXPECT_EQ(ask(kValidate), "ok");
        ASSERT_EQ(ask("<discard-changes/>"), "ok");
    }
}

TEST_F(NetconfEditTest, KilledSession_HasNoLockWhenTheAnswerComes) {
    for (const char* store : {"running", "candidate"}) {
        const std::string lock = tagged("lock", tagged("target", "<" + std::string(store) + "/>"));
        ASSERT_EQ(ask(bob, lock), "ok");
        ASSERT_THAT(ask(lock), hasTag("lock-denied"));
    }
    ASSERT_EQ(ask("<kill-session><session-id>2</session-id></kill-session>"), "ok");
    EXPECT_EQ(ask("<lock><target><running/></target></lock>"), "ok");
    EXPECT_EQ(ask("<lock><target><candidate/></target></lock>"), "ok");
}

TEST_F(NetconfEditTest, CancelledSession_GetsNoLockAndEditsNothing) {
    bob.client().cancellation().cancel();
    EXPECT_THAT(ask(bob, "<lock><target><running/></target></lock>"), hasTag("operation-failed"));
    for (const char* store : {"running", "candidate"}) {
        const std::string config = radioUnit("9", tagged("antennaRef", antenna(2, 1)));
        EXPECT_THAT(ask(bob, "<edit-config>" + tagged("target", "<" + std::string(store) + "/>") +
                                 tagged("config", config) + "</edit-config>"),
                    hasTag("operation-failed"));
    }
    EXPECT_EQ(ask("<lock><target><candidate/></target></lock>"), "ok") << "it has no changes";
}

TEST_F(NetconfEditTest, Candidate_IsDiscardedAfterAWhileAndItsEditorTold) {
    dispatcher.limitCandidate(std::chrono::seconds(1));
    ASSERT_EQ(moveUnit1(), "ok");
    EXPECT_TRUE(
        comesTrue([&] { return ask(bob, "<lock><target><candidate/></target></lock>") == "ok"; }));
    ASSERT_EQ(ask(bob, "<unlock><target><candidate/></target></unlock>"), "ok");
    EXPECT_THAT(ask("<commit/>"),
                AllOf(hasTag("operation-failed"), HasSubstr("nobody has edited it for 1 s")));
    EXPECT_EQ(ask("<commit/>"), "ok");
    EXPECT_EQ(unitsOf(1, 1, "running"), "1");
}

TEST_F(NetconfEditTest, Candidate_ThatWasCommitted_HasNoTimeLeftOver) {
    dispatcher.limitCandidate(std::chrono::seconds(1));
    ASSERT_EQ(moveUnit1(), "ok");
    ASSERT_EQ(ask("<commit/>"), "ok");
    dispatcher.limitCandidate(std::chrono::seconds(600));
    ASSERT_EQ(edit(element("<userLabel>Old harbour</userLabel>")), "ok");
    std::this_thread::sleep_for(std::chrono::milliseconds(1300));
    EXPECT_EQ(ask("<commit/>"), "ok");
    EXPECT_THAT(getConfig(element("<userLabel/>")), HasSubstr("Old harbour"));
}

TEST_F(NetconfEditTest, EditThatChangesNothing_LeavesTheCandidateUnchanged) {
    ASSERT_EQ(edit(element("")), "ok");
    EXPECT_EQ(ask("<lock><target><candidate/></target></lock>"), "ok");
}

TEST_F(NetconfEditTest, WhatOnlyTests_NeedsNoLock) {
    ASSERT_EQ(ask(bob, "<lock><target><running/></target></lock>"), "ok");
    const std::string unit = element("<userLabel>Old harbour</userLabel>");
    EXPECT_EQ(edit(unit, "running", "<test-option>test-only</test-option>"), "ok");
    EXPECT_THAT(edit(unit, "running"), hasTag("in-use"));
}

TEST_F(NetconfEditTest, ValueThatIsSaidToBeTheDefault_IsUnset) {
    const auto climate = [&](const std::string& attributes, const std::string& value) {
        return edit(equipment("<Cabinet><cabinetId>1</cabinetId><climate " + attributes + ">" +
                              value + "</climate></Cabinet>"));
    };
    const std::string isDefault =
        R"(xmlns:wd="urn:ietf:params:xml:ns:netconf:default:1.0" wd:default="true")";
    ASSERT_EQ(climate("", "OUTDOOR"), "ok");
    EXPECT_THAT(climate(isDefault, "OUTDOOR"), hasTag("invalid-value"));
    EXPECT_EQ(climate(isDefault, "INDOOR"), "ok");
    EXPECT_THAT(getConfig(equipment("<Cabinet/>"), "candidate"), Not(HasSubstr("climate")));
    const auto tag = [](const std::string& value) {
        return R"(xmlns:wd="urn:ietf:params:xml:ns:netconf:default:1.0" wd:default=")" + value +
               "\"";
    };
    EXPECT_THAT(climate(tag("1"), "OUTDOOR"), hasTag("invalid-value"));
    EXPECT_EQ(climate(tag("0"), "OUTDOOR"), "ok");
    EXPECT_THAT(getConfig(equipment("<Cabinet/>"), "candidate"),
                HasSubstr("<climate>OUTDOOR</climate>"));
    EXPECT_EQ(climate(tag("1"), "INDOOR"), "ok");
    EXPECT_THAT(getConfig(equipment("<Cabinet/>"), "candidate"), Not(HasSubstr("climate")));
}

TEST_F(NetconfEditTest, SameLeafTwice_IsRefused) {
    EXPECT_THAT(edit(element("<userLabel>a</userLabel><userLabel>b</userLabel>")),
                AllOf(hasTag("bad-element"), HasSubstr("userLabel")));
}

TEST_F(NetconfEditTest, LongNameThatLooksLikeANumberOfValues_IsNoneAndEndsNothing) {
    const std::string name = "range (1.." + std::string(200000, 'x');
    ASSERT_EQ(edit(equipment(tagged("Sector", tagged("sectorId", name)))), "ok");
    EXPECT_THAT(ask(kValidate), AllOf(hasTag("operation-failed"), HasSubstr("the mandatory"),
                                      HasSubstr("<attribute>azimuth</attribute>"),
                                      Not(HasSubstr("error-app-tag"))));
    ASSERT_EQ(ask("<discard-changes/>"), "ok");
    const std::string number = "range (99999999999999999999..2)";
    ASSERT_EQ(edit(equipment(tagged("Sector", tagged("sectorId", number)))), "ok");
    EXPECT_THAT(ask(kValidate), AllOf(hasTag("operation-failed"), HasSubstr("the mandatory"),
                                      Not(HasSubstr("error-app-tag"))));
}

TEST_F(NetconfEditTest, Validate_OfTooManyReferences_NamesThemToTheLetter) {
    ASSERT_EQ(edit(thirdUnit()), "ok");
    const std::string answer = ask(kValidate);
    EXPECT_THAT(
        answer,
        AllOf(
            hasTag("operation-failed"), HasSubstr("<error-app-tag>too-many-elements<"),
            HasSubstr("Multiplicity of attribute radioUnitRef in "
                      "ManagedElement=1,Equipment=1,AntennaUnit=1,Antenna=2 is not in range "
                      "(0..2).<"),
            HasSubstr(R"(xmlns:ran-equipment="urn:orv:example:ran-equipment")"),
            HasSubstr("/ran-equipment:AntennaUnit[ran-equipment:antennaUnitId='1']"
                      "/ran-equipment:Antenna[ran-equipment:antennaId='2']"
                      "/ran-equipment:radioUnitRef</error-path>"),
            HasSubstr("<object>" + antenna(1, 2) + "</object><attribute>radioUnitRef</attribute>"),
            HasSubstr("<found>ManagedElement=Harbour,Equipment=1,RadioUnit=3</found>"),
            HasSubstr("<allowed>0..2 values, 0..2 of class RadioUnit</allowed>")));
}

TEST_F(NetconfEditTest, Commit_ThatIsRefused_KeepsTheEditsOfTheCandidate) {
    ASSERT_EQ(edit(thirdUnit()), "ok");
    EXPECT_THAT(ask("<commit/>"), HasSubstr("is not in range (0..2)."));
    EXPECT_EQ(unitsOf(1, 2, "candidate"), "123");
    expectNothingChanged();
    ASSERT_EQ(edit(radioUnit("3", "", kDelete)), "ok");
    EXPECT_EQ(ask("<commit/>"), "ok");
    expectNothingChanged();
}

TEST_F(NetconfEditTest, Validate_OfSeveralViolations_HasAnErrorForEach) {
    ASSERT_EQ(edit(thirdUnit() +
                   R"(<ManagedElement xmlns="urn:orv:example:ran-element">)"
                   "<managedElementId>Harbour</managedElementId>"
                   R"(<GNBCUCPFunction xmlns="urn:orv:example:ran-function">)"
                   "<gNBCUCPFunctionId>1</gNBCUCPFunctionId><NRCellCU>"
                   "<nRCellCUId>1</nRCellCUId><NRFreqRelation><nRFreqRelationId>1"
                   "</nRFreqRelationId><nRFrequencyRef " +
                   kDelete + "/></NRFreqRelation></NRCellCU></GNBCUCPFunction></ManagedElement>"),
              "ok");
    EXPECT_THAT(ask(kValidate),
                AllOf(HasSubstr("is not in range (0..2).<"),
                      HasSubstr("NRFreqRelation=1 contains 0 NRFrequency which is not within "
                                "cardinality range (1..1).<"),
                      HasSubstr("<error-app-tag>too-few-elements<")));
}

TEST_F(NetconfEditTest, Running_IsChangedAtOnceOrNotAtAll) {
    EXPECT_EQ(edit(radioUnit("1", tagged("userLabel", "Crane")), "running"), "ok");
    EXPECT_THAT(getConfig(radioUnit("1")), HasSubstr("<userLabel>Crane</userLabel>"));
    EXPECT_THAT(edit(thirdUnit(), "running"), HasSubstr("is not in range (0..2)."));
    expectNothingChanged();
}

TEST_F(NetconfEditTest, TestOnly_WritesNothing) {
    const std::string option = "<test-option>test-only</test-option>";
    EXPECT_EQ(edit(radioUnit("4"), "running", option), "ok");
    EXPECT_EQ(edit(radioUnit("4"), "candidate", option), "ok");
    EXPECT_THAT(edit(thirdUnit(), "running", option), HasSubstr("is not in range (0..2)."));
    EXPECT_THAT(getConfig(equipment("<RadioUnit/>"), "candidate"),
                Not(HasSubstr("<radioUnitId>4</radioUnitId>")));
    expectNothingChanged();
}

TEST_F(NetconfEditTest, Create_OfWhatExists_IsDataExists) {
    EXPECT_THAT(edit(radioUnit("1", "", kNc + R"(nc:operation="create")")),
                AllOf(hasTag("data-exists"),
                      HasSubstr("/ran-equipment:RadioUnit[ran-equipment:radioUnitId='1']<")));
    EXPECT_EQ(edit(radioUnit("4", "", kNc + R"(nc:operation="create")")), "ok");
    EXPECT_THAT(
        edit(radioUnit("1", "<userLabel " + kNc + R"(nc:operation="create">x</userLabel>)")),
        AllOf(hasTag("data-exists"), HasSubstr("/ran-equipment:userLabel<")));
}

TEST_F(NetconfEditTest, Delete_OfWhatIsNotThere_IsDataMissing) {
    EXPECT_THAT(edit(radioUnit("9", "", kDelete)), hasTag("data-missing"));
    EXPECT_EQ(edit(radioUnit("9", "", kNc + R"(nc:operation="remove")")), "ok");
    const std::string leaf = "<userLabel " + kDelete + "/>";
    EXPECT_EQ(edit(radioUnit("1", leaf)), "ok");
    EXPECT_THAT(edit(radioUnit("1", leaf)), hasTag("data-missing"));
    EXPECT_EQ(edit(radioUnit("1", "<userLabel " + kNc + R"(nc:operation="remove"/>)")), "ok");
    EXPECT_THAT(
        edit(radioUnit("1", "<antennaRef " + kDelete + ">" + antenna(2, 1) + "</antennaRef>")),
        hasTag("data-missing"));
}

TEST_F(NetconfEditTest, Delete_OfANumber_NeedsNoNumber) {
    const std::string gone = element("<location><altitude " + kDelete + "/></location>");
    EXPECT_EQ(edit(gone), "ok");
    EXPECT_EQ(getConfig(element("<location/>"), "candidate"),
              element("<location><latitude>59.325117</latitude><longitude>18.071093</longitude>"
                      "</location>") +
                  "\n");
    EXPECT_THAT(edit(gone), hasTag("data-missing"));
}

TEST_F(NetconfEditTest, Merge_OfAStruct_KeepsItsOtherMembers) {
    EXPECT_EQ(edit(element("<location><altitude>30</altitude></location>")), "ok");
    EXPECT_THAT(getConfig(element("<location/>"), "candidate"),
                AllOf(HasSubstr("59.325117"), HasSubstr("<altitude>30</altitude>")));
    EXPECT_EQ(edit(element("<location " + kNc +
                           R"(nc:operation="replace">)"
                           "<altitude>31</altitude></location>")),
              "ok");
    EXPECT_EQ(getConfig(element("<location/>"), "candidate"),
              element("<location><altitude>31</altitude></location>") + "\n");
}

TEST_F(NetconfEditTest, Replace_OfAnObject_KeepsItsStateAndItsBackPointers) {
    EXPECT_EQ(edit(radioUnit("1", tagged("administrativeState", "SHUTTINGDOWN"),
                             kNc + R"(nc:operation="replace")"),
                   "running"),
              "ok");
    EXPECT_THAT(get(radioUnit("1")), AllOf(HasSubstr("<administrativeState>SHUTTINGDOWN<"),
                                           HasSubstr("R70011"), HasSubstr("Sector=1</sectorRef>"),
                                           HasSubstr(antenna(1, 1)), Not(HasSubstr("userLabel"))));
}

TEST_F(NetconfEditTest, DefaultOperationNone_ChangesOnlyWhatHasAnOperation) {
    const std::string none = "<default-operation>none</default-operation>";
    EXPECT_EQ(edit(radioUnit("1", "<userLabel>x</userLabel><administrativeState " + kNc +
                                      R"(nc:operation="merge">SHUTTINGDOWN</administrativeState>)"),
                   "candidate", none),
              "ok");
    EXPECT_THAT(getConfig(radioUnit("1"), "candidate"),
                AllOf(HasSubstr("Crane mast"), HasSubstr(">SHUTTINGDOWN<")));
    EXPECT_THAT(edit(radioUnit("9", "<userLabel>x</userLabel>"), "candidate", none),
                hasTag("data-missing"));
}

TEST_F(NetconfEditTest, CopyConfig_OfAWholeConfiguration_ReplacesIt) {
    const std::string all = ask("<get-config><source><running/></source></get-config>");
    ASSERT_EQ(edit(radioUnit("4") + element("<userLabel>Port</userLabel>"), "running"), "ok");
    ASSERT_EQ(ask("<copy-config><target><running/></target><source>" + tagged("config", all) +
                  "</source></copy-config>"),
              "ok");
    EXPECT_EQ(ask("<get-config><source><running/></source></get-config>"), all);
}

TEST_F(NetconfEditTest, CopyConfig_BetweenTheDatastores_CommitsOrDiscards) {
    ASSERT_EQ(moveUnit1(), "ok");
    const std::string toCandidate = "<copy-config><target><candidate/></target><source><running/>"
                                    "</source></copy-config>";
    EXPECT_EQ(ask(toCandidate), "ok");
    EXPECT_EQ(unitsOf(2, 1, "candidate"), "2");
    ASSERT_EQ(moveUnit1(), "ok");
    EXPECT_EQ(ask("<copy-config><target><running/></target><source><candidate/></source>"
                  "</copy-config>"),
              "ok");
    EXPECT_EQ(unitsOf(2, 1, "running"), "12");
    EXPECT_THAT(ask("<copy-config><target><running/></target><source><running/></source>"
                    "</copy-config>"),
                hasTag("invalid-value"));
}

TEST_F(NetconfEditTest, TopLevelElement_InNoOrAnotherNamespace_SaysWhichWouldFit) {
    const std::string content = "<managedElementId>Harbour</managedElementId>";
    const std::string expected =
        "xmlns=&quot;urn:orv:example:ran-element&quot; was expected</error-message>";
    EXPECT_THAT(edit("<ManagedElement>" + content + "</ManagedElement>"),
                AllOf(hasTag("unknown-namespace"), HasSubstr("lacks its namespace; " + expected),
                      HasSubstr("<bad-element>ManagedElement</bad-element>")));
    EXPECT_THAT(edit(R"(<ManagedElement xmlns="">)" + content + "</ManagedElement>"),
                AllOf(hasTag("unknown-namespace"), HasSubstr("lacks its namespace; " + expected)));
    EXPECT_THAT(edit(R"(<ManagedElement xmlns="urn:other">)" + content + "</ManagedElement>"),
                AllOf(hasTag("unknown-namespace"),
                      HasSubstr("is in the namespace &quot;urn:other&quot;; "
                                "&quot;urn:orv:example:ran-element&quot; was expected")));
    EXPECT_THAT(edit("<NoSuchElement/>"), hasTag("unknown-element"));
}

TEST_F(NetconfEditTest, ElementBelow_InNoOrAnotherNamespace_SaysWhichWouldFit) {
    const std::string expected = "&quot;urn:orv:example:ran-equipment&quot; was expected";
    EXPECT_THAT(edit(element("<Equipment><equipmentId>1</equipmentId></Equipment>")),
                AllOf(hasTag("unknown-namespace"), HasSubstr("<bad-element>Equipment<"),
                      HasSubstr("is in the namespace &quot;urn:orv:example:ran-element&quot;, that "
                                "of &lt;ManagedElement&gt;; xmlns=" +
                                expected),
                      HasSubstr("/ran-element:ManagedElement[")));
    EXPECT_THAT(
        edit(element(R"(<Equipment xmlns=""><equipmentId>1</equipmentId></Equipment>)")),
        AllOf(hasTag("unknown-namespace"), HasSubstr("lacks its namespace; xmlns=" + expected)));
    EXPECT_THAT(edit(radioUnit("1", R"(<userLabel xmlns="urn:other">x</userLabel>)")),
                AllOf(hasTag("unknown-namespace"),
                      HasSubstr("is in the namespace &quot;urn:other&quot;; " + expected)));
    // Also inside an element that does not fit for another reason.
    EXPECT_THAT(edit(equipment(R"(<Cabinet><userLabel xmlns="urn:other">x</userLabel></Cabinet>)")),
                AllOf(HasSubstr("lacks its key"), hasTag("unknown-namespace"),
                      HasSubstr("&lt;userLabel&gt; is in the namespace"), HasSubstr(expected)));
    EXPECT_THAT(edit(element("<NoSuchElement/>")), hasTag("unknown-element"));
}

TEST_F(NetconfEditTest, Data_ThatDoesNotFitTheModel_IsNamed) {
    const std::string answer =
        edit(radioUnit("1", "<colour/><administrativeState>ON</administrativeState>") +
             equipment("<Cabinet/>") + R"(<x xmlns="urn:other"/>)" +
             radioUnit("1", "<serialNumber>7</serialNumber>"));
    EXPECT_THAT(
        answer,
        AllOf(hasTag("unknown-element"), HasSubstr("<bad-element>colour</bad-element>"),
              hasTag("invalid-value"), HasSubstr("Invalid enumeration value &quot;ON&quot;."),
              hasTag("missing-element"), HasSubstr("<bad-element>cabinetId</bad-element>"),
              hasTag("unknown-namespace"), HasSubstr("<bad-namespace>urn:other</bad-namespace>")));
    EXPECT_THAT(edit(radioUnit("1", "<serialNumber>7</serialNumber>")),
                AllOf(hasTag("invalid-value"), HasSubstr("only the system sets it")));
    EXPECT_THAT(edit(radioUnit("a,b=c")), hasTag("invalid-value"));
}

TEST_F(NetconfEditTest, Insert_PutsEntriesOfAListInTheirPlace) {
    const std::string yang = R"(xmlns:yang="urn:ietf:params:xml:ns:yang:1" )";
    ASSERT_EQ(edit(radioUnit("1", "<antennaRef " + yang + R"(yang:insert="first">)" +
                                      antenna(2, 1) + "</antennaRef>")),
              "ok");
    EXPECT_THAT(
        getConfig(radioUnit("1"), "candidate"),
        HasSubstr("<antennaRef>" + antenna(2, 1) + "</antennaRef><antennaRef>" + antenna(1, 1)));
    EXPECT_THAT(
        edit(radioUnit("1", "<antennaRef " + yang + R"(yang:insert="after" yang:value="x">)" +
                                antenna(2, 2) + "</antennaRef>")),
        AllOf(hasTag("bad-attribute"), HasSubstr("missing-instance")));
}

TEST_F(NetconfEditTest, Lock_KeepsOtherSessionsOut) {
    const std::string lock = "<lock><target><candidate/></target></lock>";
    const std::string unlock = "<unlock><target><candidate/></target></unlock>";
    ASSERT_EQ(ask(bob, lock), "ok");
    EXPECT_THAT(ask(lock), AllOf(hasTag("lock-denied"), HasSubstr("<session-id>2</session-id>")));
    EXPECT_THAT(edit(thirdUnit()), hasTag("in-use"));
    EXPECT_THAT(ask("<commit/>"), hasTag("in-use"));
    EXPECT_THAT(ask("<discard-changes/>"), hasTag("in-use"));
    EXPECT_THAT(ask(unlock), hasTag("operation-failed"));
    EXPECT_EQ(edit(element("<userLabel>x</userLabel>"), "running"), "ok");
    ASSERT_EQ(ask(bob, "<lock><target><running/></target></lock>"), "ok");
    EXPECT_THAT(edit(element("<userLabel>y</userLabel>"), "running"), hasTag("in-use"));
    dispatcher.end(bob);
    EXPECT_EQ(ask(lock), "ok");
    EXPECT_EQ(edit(element("<userLabel>y</userLabel>"), "running"), "ok");
}

TEST_F(NetconfEditTest, End_OfTheSessionThatLockedTheCandidate_DiscardsIt) {
    ASSERT_EQ(ask("<lock><target><candidate/></target></lock>"), "ok");
    ASSERT_EQ(moveUnit1(), "ok");
    dispatcher.end(alice);
    EXPECT_EQ(unitsOf(2, 1, "candidate"), "2");
}

TEST_F(NetconfEditTest, Lock_OfAChangedCandidate_IsDenied) {
    ASSERT_EQ(moveUnit1(), "ok");
    EXPECT_THAT(ask(bob, "<lock><target><candidate/></target></lock>"),
                AllOf(hasTag("lock-denied"), HasSubstr("<session-id>0</session-id>")));
}

TEST_F(NetconfEditTest, Conflict_WithAnotherClient_IsInUseWithItsName) {
    const unsigned long other = host.transactions().begin("shell of carol");
    bob.client().clients().version3().set(
        other, "ManagedElement=Harbour,Equipment=1,RadioUnit=1",
        {{"userLabel", {ValueKind::String, {std::string("hers")}}}});
    EXPECT_THAT(edit(radioUnit("1", tagged("userLabel", "his"))),
                AllOf(hasTag("in-use"), HasSubstr("carol")));
    host.transactions().commit(other);
    EXPECT_EQ(edit(radioUnit("1", tagged("userLabel", "his"))), "ok");
}

TEST_F(NetconfEditTest, ReadOnlyUser_MayOnlyRead) {
    EXPECT_THAT(ask(reader, "<get-config><source><running/></source></get-config>"),
                HasSubstr("Crane mast"));
    for (const std::string operation :
         {"<commit/>", "<discard-changes/>", "<lock><target><running/></target></lock>",
          "<edit-config><target><running/></target><config/></edit-config>",
          "<kill-session><session-id>2</session-id></kill-session>"}) {
        EXPECT_THAT(ask(reader, operation), hasTag("access-denied")) << operation;
    }
    EXPECT_EQ(killed, 0U);
}

TEST_F(NetconfEditTest, KillSession_EndsAnotherSession) {
    EXPECT_EQ(ask("<kill-session><session-id>2</session-id></kill-session>"), "ok");
    EXPECT_EQ(killed, 2U);
    EXPECT_THAT(ask("<kill-session><session-id>7</session-id></kill-session>"),
                hasTag("invalid-value"));
    killed = 0;
    EXPECT_THAT(ask("<kill-session><session-id>1</session-id></kill-session>"),
                hasTag("invalid-value"));
    EXPECT_EQ(killed, 0U) << "a session does not kill itself";
}

TEST_F(NetconfEditTest, Requests_WithoutTheirParts_AreRefused) {
    EXPECT_THAT(ask("<edit-config><config/></edit-config>"), hasTag("missing-element"));
    EXPECT_THAT(ask("<get-config/>"), hasTag("missing-element"));
    EXPECT_THAT(ask("<lock/>"), hasTag("missing-element"));
}

}
}
