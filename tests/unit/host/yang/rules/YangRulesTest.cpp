// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "yang/rules/YangRules.h"
#include "YangTestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using Kind = TouchedObject::Kind;

YangModel modelWithRules(const std::string& body) {
    return YangModelReader()
        .offerText("m", "m.yang",
                   "module m { yang-version 1.1; namespace \"urn:m\"; prefix m;"
                   " import orv-associations { prefix orv; }\n" +
                       body + "\n}")
        .load("m")
        .withAllRules()
        .read();
}

std::vector<std::string> textsOf(const RuleReport& report) {
    std::vector<std::string> texts;
    for (const RuleViolation& violation : report.violations) {
        texts.push_back(toText(violation));
    }
    return texts;
}

/// All violations of the data.
std::vector<std::string> violationsIn(const YangModel& model, const std::string& data) {
    return textsOf(rulesOf(model.schema)->checkAll(DataView(model, data)));
}

/// The violations that a transaction with these changes has found.
std::vector<std::string> violationsOf(const YangModel& model, const std::string& data,
                                      const std::vector<TouchedObject>& touched) {
    return textsOf(rulesOf(model.schema)->check(DataView(model, data), touched));
}

std::string notesOf(const YangModel& model) {
    std::string notes;
    for (const Problem& note : model.notes) {
        notes += toText(note) + "\n";
    }
    return notes;
}

TEST(YangRules, WithoutConditions_ThereAreNone) {
    EXPECT_EQ(rulesOf(modelOfBody("list A { key id; leaf id { type string; must '1'; } }").schema),
              nullptr);
}

constexpr const char* kGuarded = R"(
    list A { key id; leaf id { type string; }
      leaf kind { type string; default "plain"; }
      leaf extra { when "../m:kind = 'x'"; type string; mandatory true; }
      container attributes { when "../kind = 'x'"; leaf inner { type string; mandatory true; } }
      container box { leaf deep { when "../../kind = 'x'"; type string; mandatory true; }
                      leaf free { type string; } }
      leaf plain { when "../kind = 'plain'"; type int8; }
    })";

TEST(YangRulesWhen, FalseCondition_ForbidsAValueAndDemandsNone) {
    const YangModel model = modelOfBody(kGuarded);
    EXPECT_EQ(notesOf(model), "");
    EXPECT_THAT(violationsIn(model, R"({"m:A": [{"id": "1", "plain": 3}]})"), IsEmpty());
    EXPECT_THAT(
        violationsIn(model, R"({"m:A": [{"id": "1", "extra": "a", "attributes": {"inner": "b"},
                                         "box": {"deep": "c"}}]})"),
        UnorderedElementsAre(
            "A=1: attribute 'extra': it has a value although the condition \"../m:kind = 'x'\" is "
            "false",
            "A=1: attribute 'inner': it has a value although the condition \"../kind = 'x'\" is "
            "false",
            "A=1: attribute 'box/deep': it has a value although the condition \"../../kind = 'x'\" "
            "is false"));
}

TEST(YangRulesWhen, TrueCondition_DemandsWhatIsMandatory) {
    const YangModel model = modelOfBody(kGuarded);
    EXPECT_THAT(
        violationsIn(model, R"({"m:A": [{"id": "1", "kind": "x"}]})"),
        UnorderedElementsAre("A=1: attribute 'extra': it is mandatory and has no value; the "
                             "condition \"../m:kind = 'x'\" is true",
                             "A=1: attribute 'inner': it is mandatory and has no value; the "
                             "condition \"../kind = 'x'\" is true",
                             "A=1: attribute 'box/deep': it is mandatory and has no value; the "
                             "condition \"../../kind = 'x'\" is true"));
    EXPECT_THAT(violationsIn(model, R"({"m:A": [{"id": "1", "kind": "x", "extra": "a",
                                        "attributes": {"inner": "b"}, "box": {"deep": "c"}}]})"),
                IsEmpty());
}

// The default goes, or another case is taken, by a change of an attribute that the rule does not
// name.
TEST(YangRulesWhen, DefaultThatDependsOnAnotherAttribute_IsJudgedAgain) {
    const YangModel model = modelOfBody(R"(
        list A { key id; leaf id { type string; } leaf mode { type string; default a; }
          leaf x { when "../mode = 'a'"; type uint8; default 5; }
          leaf y { when "../x = 5"; type string; }
          choice c { default one; leaf one { type string; default d; } leaf two { type string; } }
          leaf z { when "../one"; type string; } })");
    EXPECT_THAT(violationsOf(model, R"({"m:A": [{"id": "1", "mode": "b", "y": "v"}]})",
                             {{"A=1", Kind::Changed, {"mode"}}}),
                ElementsAre(HasSubstr("attribute 'y': it has a value although")));
    EXPECT_THAT(violationsOf(model, R"({"m:A": [{"id": "1", "two": "t", "z": "v"}]})",
                             {{"A=1", Kind::Changed, {"two"}}}),
                ElementsAre(HasSubstr("attribute 'z': it has a value although")));
    EXPECT_THAT(violationsOf(model, R"({"m:A": [{"id": "1", "mode": "a", "y": "v", "z": "v"}]})",
                             {{"A=1", Kind::Changed, {"mode", "two"}}}),
                IsEmpty());
}

TEST(YangRulesWhen, ContainerWithoutContents_HasTheDefaultsInIt) {
    const YangModel model = modelOfBody(R"(
        list A { key id; leaf id { type string; }
          container s { leaf o { type string; }
            container in { leaf d { type uint8; default 3; }
                           leaf m { when "../d = 3"; type string; mandatory true; } } } })");
    for (const char* s : {R"({"o": "1"})", R"({"in": {}})", R"({"o": "1", "in": {}})"}) {
        EXPECT_THAT(violationsIn(model, R"({"m:A": [{"id": "1", "s": )" + std::string(s) + "}]}"),
                    ElementsAre(HasSubstr("attribute 's/in/m': it is mandatory")))
            << s;
    }
}

TEST(YangRulesWhen, OnChoiceCaseUsesAndAugment) {
    const YangModel model = modelOfBody(R"(
        grouping g { leaf used { type string; mandatory true; } }
        list A { key id; leaf id { type string; } leaf kind { type string; }
          uses g { when "kind = 'u'"; }
          choice way { when "kind = 'w'"; mandatory true;
            case road { when "kind = 'w'"; leaf lane { type string; mandatory true; }
                        leaf speed { type int8; } }
            leaf rail { type string; } } }
        augment "/m:A" { when "m:kind = 'a'"; leaf added { type string; mandatory true; } })");
    EXPECT_EQ(notesOf(model), "");
    EXPECT_THAT(violationsIn(model, R"({"m:A": [{"id": "1"}]})"), IsEmpty());
    EXPECT_THAT(violationsIn(model, R"({"m:A": [{"id": "1", "kind": "w"}]})"),
                ElementsAre("A=1: the choice 'way' is mandatory and no case of it has a value; the "
                            "condition \"kind = 'w'\" is true"));
    EXPECT_THAT(violationsIn(model, R"({"m:A": [{"id": "1", "kind": "w", "speed": 3}]})"),
                ElementsAre(HasSubstr("attribute 'lane': it is mandatory")));
    EXPECT_THAT(violationsIn(model, R"({"m:A": [{"id": "1", "kind": "w", "rail": "r"}]})"),
                IsEmpty());
    EXPECT_THAT(violationsIn(model, R"({"m:A": [{"id": "1", "rail": "r"}, {"id": "2",
                                         "lane": "l", "kind": "u", "used": "x"}]})"),
                ElementsAre(HasSubstr("A=1: attribute 'rail': it has a value although"),
                            HasSubstr("A=2: attribute 'lane': it has a value although")));
    EXPECT_THAT(violationsIn(model, R"({"m:A": [{"id": "1", "kind": "u"},
                                                {"id": "2", "kind": "a"}]})"),
                ElementsAre(HasSubstr("A=1: attribute 'used': it is mandatory"),
                            HasSubstr("A=2: attribute 'added': it is mandatory")));
}

constexpr const char* kBelow = R"(
    list A { key id; leaf id { type string; } leaf mode { type string; } leaf other { type int8; }
      list B { when "../mode = 'on'"; key id; min-elements 1; leaf id { type string; }
        leaf speed { when "../../mode = 'on'"; type int8; } }
      list C { key id; leaf id { type string; }
        leaf speed { when "ancestor::m:A/mode = 'on'"; type int8; } } })";

TEST(YangRulesWhen, Objects_ExistAndAreDemandedUnderConditions) {
    const YangModel model = modelOfBody(kBelow);
    EXPECT_EQ(notesOf(model), "");
    EXPECT_THAT(violationsIn(model, R"({"m:A": [{"id": "1", "mode": "on"}]})"),
                ElementsAre("A=1: there are 0 objects of class 'B' under it, expected 1..*; the "
                            "condition \"../mode = 'on'\" is true"));
    EXPECT_THAT(violationsIn(model, R"({"m:A": [{"id": "1", "mode": "on", "B": [{"id": "1"}]}]})"),
                IsEmpty());
    EXPECT_THAT(violationsIn(model, R"({"m:A": [{"id": "1", "B": [{"id": "1"}]}]})"),
                ElementsAre("A=1,B=1: it exists although the condition \"../mode = 'on'\" is "
                            "false"));
    EXPECT_THAT(violationsOf(model, R"({"m:A": [{"id": "1", "mode": "on"}]})",
                             {{"A=1,B=7", Kind::Deleted, {}}}),
                ElementsAre(HasSubstr("A=1: there are 0 objects of class 'B'")));
}

TEST(YangRulesWhen, ChangeOfAnAncestor_IsJudgedBelowIt) {
    const YangModel model = modelOfBody(kBelow);
    const std::string data = R"({"m:A": [{"id": "1", "C": [{"id": "1", "speed": 3}]},
                                         {"id": "2", "C": [{"id": "1", "speed": 3}]}]})";
    EXPECT_THAT(violationsOf(model, data, {{"A=1", Kind::Changed, {"mode"}}}),
                ElementsAre(HasSubstr("A=1,C=1: attribute 'speed'")));
    EXPECT_THAT(violationsOf(model, data, {{"A=1", Kind::Changed, {"other"}}}), IsEmpty());
    EXPECT_THAT(violationsOf(model, data, {{"A=2,C=1", Kind::Created, {"speed"}}}),
                ElementsAre(HasSubstr("A=2,C=1: attribute 'speed'")));
    EXPECT_THAT(violationsOf(model, data, {}), IsEmpty());
    const RuleReport report =
        rulesOf(model.schema)
            ->check(DataView(model, data), {{"A=2,C=1", Kind::Created, {"speed"}}});
    EXPECT_EQ(report.cost.objects, 2U);
}

TEST(YangRulesWhen, ChangeThatCannotMatter_CostsNothing) {
    const YangModel model = modelOfBody(R"(
        list A { key id; leaf id { type string; } leaf kind { type string; }
          leaf free { type string; } leaf extra { when "../kind = 'x'"; type string; }
          choice way { case road { leaf lane { type string; mandatory true; when "../kind = 'x'"; }
                                   leaf speed { type int8; } } } })");
    const std::string data = R"({"m:A": [{"id": "1", "kind": "x", "extra": "q", "speed": 3}]})";
    const auto objectsFor = [&](const std::string& attribute) {
        return rulesOf(model.schema)
            ->check(DataView(model, data), {{"A=1", Kind::Changed, {attribute}}});
    };
    EXPECT_EQ(objectsFor("kind").cost.objects, 1U);
    EXPECT_EQ(objectsFor("extra").cost.objects, 1U);
    EXPECT_EQ(objectsFor("speed").violations.size(), 1U);
    const YangModel plain = modelOfBody(R"(
        list A { key id; leaf id { type string; } leaf kind { type string; }
          leaf free { type string; } leaf extra { when "../kind = 'x'"; type string; } })");
    const DataView view(plain, R"({"m:A": [{"id": "1", "free": "x"}]})");
    EXPECT_EQ(rulesOf(plain.schema)->check(view, {{"A=1", Kind::Changed, {"free"}}}).cost.objects,
              0U);
}

TEST(YangRulesWhen, WhatAsksAboutOtherThings_IsNoted) {
    const YangModel model = modelOfBody(R"(
        leaf flag { type string; }
        container top { when "/m:flag = 'x'"; list T { key id; leaf id { type string; } } }
        list A { key id; leaf id { type string; } leaf st { config false; type string; }
          leaf other { when "../../A/m:id = 'x'"; type string; mandatory true; }
          leaf flagged { when "/m:flag = 'x'"; type string; mandatory true; }
          leaf state { when "../st = 'x'"; type string; mandatory true; }
          leaf shown { config false; when "../id = 'x'"; type string; }
          choice way { when "../A/id = 'x'"; mandatory true; leaf lane { type string; } }
          action go { input { leaf fast { when "../id = 'x'"; type string; } } } })");
    const std::string notes = notesOf(model);
    const std::string end = "; what it guards can always be there and is never demanded: at ";
    EXPECT_THAT(notes, HasSubstr("m.yang:6: `when \"../../A/m:id = 'x'\"` is not evaluated: it "
                                 "asks about other objects" +
                                 end + "/m:A/other"));
    EXPECT_THAT(notes, HasSubstr("m.yang:7: `when \"/m:flag = 'x'\"` is not evaluated: it asks "
                                 "about /m:flag, which is not part of the model" +
                                 end));
    EXPECT_THAT(notes, HasSubstr("m.yang:8: `when \"../st = 'x'\"` is not evaluated: it asks about "
                                 "state, /m:A/st" +
                                 end));
    EXPECT_THAT(notes, HasSubstr("m.yang:9: `when \"../id = 'x'\"` is not evaluated: it is about "
                                 "state, which only the system gives" +
                                 end));
    EXPECT_THAT(notes, HasSubstr("m.yang:10: `when \"../A/id = 'x'\"` is not evaluated: it asks "
                                 "about other objects" +
                                 end + "/m:A/lane\n"));
    EXPECT_THAT(notes, HasSubstr("m.yang:11: `when \"../id = 'x'\"` is not evaluated: it does not "
                                 "belong to an object"));
    EXPECT_THAT(notes, HasSubstr("m.yang:4: `when \"/m:flag = 'x'\"` is not evaluated: it does not "
                                 "belong to an object"));
    EXPECT_EQ(rulesOf(model.schema), nullptr);
}

constexpr const char* kRules = R"yang(
    list A { key id; leaf id { type string; }
      leaf limit { type int8; default 9; }
      list B { key id; unique "place/x y"; leaf id { type string; }
        must "name or not(y)" { error-message "y needs a name"; }
        container place { leaf x { type int8; } }
        leaf y { type int8; default 1; }
        leaf name { type string; must "count(../../B[name = current()]) = 1"; }
        leaf height { type int8;
          must ". <= ../../limit" { error-message "too high"; error-app-tag "high"; }
          must ". > 1"; }
        leaf next { type leafref { path "../../B/id"; } }
        leaf far { type leafref { path "/m:A/m:limit"; } }
        leaf loose { type leafref { path "../../B/id"; require-instance false; } }
        leaf any { type instance-identifier; }
        leaf-list tag { type string; }
        list part { key "k"; orv:struct; unique c; leaf k { type int8; } leaf c { type int8; } }
      } })yang";

TEST(YangRulesAll, Must_GivesTheMessageAndTagOfTheStatement) {
    const YangModel model = modelWithRules(kRules);
    EXPECT_EQ(notesOf(model), "");
    EXPECT_THAT(
        violationsIn(model, R"({"m:A": [{"id": "1", "B": [{"id": "1", "height": 10, "name": "n"},
                                 {"id": "2", "height": 1, "name": "n"}, {"id": "3"}]}]})"),
        UnorderedElementsAre(
            "A=1,B=1: attribute 'height': too high (error-app-tag high)",
            "A=1,B=2: attribute 'height': the condition \". > 1\" is false (error-app-tag "
            "must-violation)",
            "A=1,B=3: y needs a name (error-app-tag must-violation)",
            "A=1,B=1: attribute 'name': the condition \"count(../../B[name = current()]) = 1\" is "
            "false (error-app-tag must-violation)",
            "A=1,B=2: attribute 'name': the condition \"count(../../B[name = current()]) = 1\" is "
            "false (error-app-tag must-violation)"));
}

TEST(YangRulesAll, Entries_MustDiffer) {
    const YangModel model = modelWithRules(kRules);
    EXPECT_THAT(
        violationsIn(model, R"({"m:A": [{"id": "1", "B": [
            {"id": "1", "name": "a", "place": {"x": 3}}, {"id": "2", "name": "b", "place": {"x": 3}},
            {"id": "3", "name": "c", "tag": ["t", "u", "t"],
             "part": [{"k": 1, "c": 1}, {"k": 2, "c": 1}]}]}]})"),
        UnorderedElementsAre(
            "A=1,B=2: its 'x', 'y' must differ from that of A=1,B=1 (error-app-tag "
            "data-not-unique)",
            "A=1,B=3: attribute 'tag': the value \"t\" is there twice",
            "A=1,B=3: attribute 'part[2]': its 'c' must differ from that of part[1] (error-app-tag "
            "data-not-unique)"));
}

TEST(YangRulesAll, Must_OfALeafList_IsReportedOnceForOneText) {
    const YangModel model = modelWithRules(R"(
      list A { key id; leaf id { type string; }
        leaf-list tag { type string; must "../tag = 'x'" { error-message "one tag is x"; } }
        list part { key k; orv:struct; leaf k { type int8; }
          leaf-list n { type int8; must ". > 3"; } } })");
    EXPECT_THAT(violationsIn(model, R"({"m:A": [{"id": "1", "tag": ["a", "b", "c"],
                    "part": [{"k": 1, "n": [1, 2]}, {"k": 2, "n": [1, 7]}]},
                    {"id": "2", "tag": ["a", "b"]}]})"),
                UnorderedElementsAre(
                    "A=1: attribute 'tag': one tag is x (error-app-tag must-violation)",
                    "A=1: attribute 'part[1]/n': the condition \". > 3\" is false (error-app-tag "
                    "must-violation)",
                    "A=1: attribute 'part[2]/n': the condition \". > 3\" is false (error-app-tag "
                    "must-violation)",
                    "A=2: attribute 'tag': one tag is x (error-app-tag must-violation)"));
}

TEST(YangRulesAll, Expressions_SeeSiblingsInTheirOrder) {
    const YangModel model = modelWithRules(R"(
      list A { key id; leaf id { type string; }
        list B { key id; leaf id { type string; } unique n;
          leaf n { type uint8; must "not(../preceding-sibling::B[1]) or . >= ../preceding-sibling::B[1]/n"; }
          leaf first { type string; must ". = ../../B[1]/id"; }
          list C { key id; leaf id { type string; must "../../../B[2]/id = 'b'"; } } } })");
    const std::string data = R"({"m:A": [{"id": "1", "B": [
        {"id": "z", "n": 1}, {"id": "b", "n": 2, "first": "z"},
        {"id": "a", "n": 3, "C": [{"id": "c"}]}]}]})";
    EXPECT_THAT(violationsIn(model, data), IsEmpty());
    EXPECT_THAT(violationsOf(model, data, {{"A=1,B=a", Kind::Changed, {"n"}}}), IsEmpty());
    EXPECT_THAT(violationsIn(model, R"({"m:A": [{"id": "1", "B": [
                    {"id": "z", "n": 1}, {"id": "a", "n": 1}]}]})"),
                ElementsAre(HasSubstr("A=1,B=a: its 'n' must differ from that of A=1,B=z")));
}

TEST(YangRulesAll, Targets_MustExist) {
    const YangModel model = modelWithRules(kRules);
    const std::string data = R"({"m:A": [{"id": "1", "B": [
        {"id": "1", "name": "a", "next": "1", "far": 9, "loose": "7", "any": "/m:A[id='1']/limit"},
        {"id": "2", "name": "b", "next": "7", "far": 8, "any": "/m:A[id='2']"}]}]})";
    EXPECT_THAT(violationsIn(model, data),
                UnorderedElementsAre("A=1,B=2: attribute 'next': \"7\" does not exist at "
                                     "../../B/id (error-app-tag instance-required)",
                                     "A=1,B=2: attribute 'far': \"8\" does not exist at "
                                     "/m:A/m:limit (error-app-tag instance-required)",
                                     "A=1,B=2: attribute 'any': \"/m:A[id='2']\" does not exist "
                                     "(error-app-tag instance-required)"));
    // The target of both has gone.
    EXPECT_THAT(violationsOf(model, data, {{"A=1,B=7", Kind::Deleted, {}}}),
                testing::Contains(HasSubstr("attribute 'next'")));
    EXPECT_THAT(violationsOf(model, data, {{"A=2", Kind::Deleted, {}}}),
                testing::Contains(HasSubstr("attribute 'any'")));
}

TEST(YangRulesAll, OnlyWhatCanBeBroken_IsLookedAt) {
    const YangModel model = modelWithRules(R"(
        list A { key id; leaf id { type string; } leaf n { type int8; must ". > 1"; }
          list B { key id; leaf id { type string; } leaf free { type int8; }
            leaf x { type int8; must "count(../../B[x = current()]) = 1"; } } })");
    const std::string data = R"({"m:A": [
        {"id": "1", "n": 1, "B": [{"id": "1", "x": 1}, {"id": "2", "x": 1}]},
        {"id": "2", "n": 1, "B": [{"id": "1", "x": 1}, {"id": "2", "x": 1}]}]})";
    const auto check = [&](const TouchedObject& touched) {
        return rulesOf(model.schema)->check(DataView(model, data), {touched});
    };
    const RuleReport x = check({"A=1,B=1", Kind::Changed, {"x"}});
    EXPECT_EQ(x.violations.size(), 2U);
    EXPECT_EQ(x.cost.objects, 3U);
    EXPECT_EQ(check({"A=1,B=1", Kind::Changed, {"free"}}).cost.objects, 0U);
    const RuleReport n = check({"A=1", Kind::Changed, {"n"}});
    EXPECT_THAT(textsOf(n), ElementsAre(HasSubstr("A=1: attribute 'n'")));
    EXPECT_EQ(n.cost.objects, 1U);
}

TEST(YangRulesAll, TargetsThatNothingNames_AreNotLookedFor) {
    const YangModel model = modelWithRules(R"(
        list A { key id; leaf id { type string; } leaf free { type string; }
          leaf any { type instance-identifier; } leaf next { type leafref { path "../../A/id"; } }
          container box { leaf any { type instance-identifier; } } })");
    const std::string none = R"({"m:A": [{"id": "1"}, {"id": "2", "free": "x"}]})";
    const std::string some =
        R"({"m:A": [{"id": "1", "box": {"any": "/m:A[id='7']"}}, {"id": "2"}]})";
    const TouchedObject touched{"A=2", Kind::Changed, {"free"}};
    EXPECT_EQ(rulesOf(model.schema)->check(DataView(model, none), {touched}).cost.objects, 0U);
    EXPECT_THAT(
        violationsOf(model, some, {touched}),
        ElementsAre(HasSubstr("A=1: attribute 'box/any': \"/m:A[id='7']\" does not exist")));
}

TEST(YangRulesAll, LeafrefAsKey_MustExist) {
    const YangModel model = modelWithRules(R"(
        list A { key name; leaf name { type leafref { path "../config/name"; } }
          container config { leaf name { type string; } } })");
    EXPECT_THAT(violationsIn(model, R"({"m:A": [{"name": "a", "config": {"name": "a"}},
                                                {"name": "b", "config": {"name": "a"}}]})"),
                ElementsAre(HasSubstr("A=b: attribute 'name': \"b\" does not exist at "
                                      "../config/name")));
}

TEST(YangRulesAll, WhatCannotBeEvaluated_IsNoted) {
    const YangModel model = modelWithRules(R"(
        leaf flag { type string; }
        list A { key id; leaf id { type string; must "/m:flag = 'x'"; }
          leaf st { config false; type string; must "1 = 0"; }
          leaf a { type string; must "../st = 'q'"; }
          leaf b { type union { type leafref { path "../../A/id"; } type int8; } }
          leaf c { type string; must "unknown-thing = 3"; } })");
    const std::string notes = notesOf(model);
    EXPECT_THAT(notes, HasSubstr("m.yang:4: `must \"/m:flag = 'x'\"` is not evaluated: it asks "
                                 "about /m:flag, which is not part of the model: at /m:A/id"));
    EXPECT_THAT(notes, HasSubstr("m.yang:5: `must \"1 = 0\"` is not evaluated: it is about state"));
    EXPECT_THAT(notes, HasSubstr("m.yang:6: `must \"../st = 'q'\"` is not evaluated: it asks about "
                                 "state, /m:A/st"));
    EXPECT_THAT(notes, HasSubstr("m.yang:7: leafrefs and instance-identifiers in a union are "
                                 "values like others"));
    // What no module knows is never there.
    EXPECT_THAT(violationsIn(model, R"({"m:A": [{"id": "1", "c": "x"}]})"),
                ElementsAre(HasSubstr("attribute 'c': the condition \"unknown-thing = 3\"")));
}

TEST(YangRulesAll, MalformedExpression_IsAnErrorOfTheModule) {
    const auto read = [] {
        modelWithRules("list A { key id; leaf id { type string; }\n leaf a { type string;"
                       " must \"count(\"; } }");
    };
    EXPECT_THAT(modelErrorOf(read), HasSubstr("m.yang:3"));
}

TEST(YangRulesAll, WithoutTheRequest_StatementsAreNotedAndNotChecked) {
    const YangModel model = modelOfBody(kRules);
    EXPECT_EQ(rulesOf(model.schema), nullptr);
    const std::string notes = notesOf(model);
    EXPECT_THAT(notes, HasSubstr("`must` statements are not evaluated: at /m:A/B"));
    EXPECT_THAT(notes, HasSubstr("`unique` statements are not evaluated"));
    EXPECT_THAT(notes, HasSubstr("leafrefs and instance-identifiers are values like others"));
}
}
}
