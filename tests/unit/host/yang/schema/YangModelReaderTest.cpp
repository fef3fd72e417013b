// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "yang/schema/YangModelReader.h"

#include "YangTestSupport.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const AttributeDef& site(std::string_view attribute) {
    return attributeOf(siteModel(), "Site", attribute);
}

const AttributeDef& member(const AttributeDef& attribute, std::string_view name) {
    for (const AttributeDef& candidate : attribute.type.members) {
        if (candidate.name == name) {
            return candidate;
        }
    }
    throw std::runtime_error("no member");
}

std::string bounds(const AttributeDef& attribute) {
    const std::string upper = attribute.multiplicity.upper == kUnbounded
                                  ? "unbounded"
                                  : std::to_string(attribute.multiplicity.upper);
    return std::to_string(attribute.multiplicity.lower) + ".." + upper;
}

std::vector<std::string> namesOf(const std::vector<ClassIndex>& classes) {
    std::vector<std::string> names;
    for (const ClassIndex index : classes) {
        names.push_back(siteModel().model.classes[index].name);
    }
    return names;
}

TEST(YangModelReader, Lists_AreClassesNamedByTheirKeys) {
    const ClassDef& moc = classOf(siteModel(), "Site");
    EXPECT_EQ(moc.namingAttribute, "siteId");
    EXPECT_TRUE(moc.isTopLevel);
    EXPECT_EQ(moc.description, "A place.");
    EXPECT_THAT(moc.source.file, HasSubstr("site.yang"));
    EXPECT_EQ(moc.source.line, 24);
    EXPECT_TRUE(site("id").isNaming);
    EXPECT_EQ(bounds(site("id")), "1..1");
}

TEST(YangModelReader, Nesting_IsContainment_AlsoFromOtherModules) {
    EXPECT_THAT(namesOf(classOf(siteModel(), "Site").children),
                ElementsAre("route", "Mast", "Antenna", "Fence"));
    EXPECT_THAT(namesOf(classOf(siteModel(), "Fence").parents), ElementsAre("Site"));
    EXPECT_EQ(classOf(siteModel(), "Mast").instances.upper, 9);
    EXPECT_EQ(classOf(siteModel(), "Fence").instances.upper, kUnbounded);
    EXPECT_FALSE(classOf(siteModel(), "Mast").isTopLevel);
}

TEST(YangModelReader, TopLevelContainers_HoldTopLevelClasses) {
    EXPECT_TRUE(classOf(siteModel(), "Truck").isTopLevel);
    EXPECT_TRUE(classOf(siteModel(), "Crate").isTopLevel);
}

TEST(YangModelReader, Augments_AddAttributes) {
    EXPECT_EQ(site("colour").type.kind, ValueKind::String);
    EXPECT_THAT(site("colour").source.file, HasSubstr("site-extension.yang"));
}

TEST(YangModelReader, Types_BecomeKinds) {
    EXPECT_EQ(site("tiny").type.kind, ValueKind::Int);
    EXPECT_EQ(site("huge").type.kind, ValueKind::Uint);
    EXPECT_EQ(site("ratio").type.kind, ValueKind::Double);
    EXPECT_EQ(site("on").type.kind, ValueKind::Bool);
    EXPECT_EQ(site("marked").type.kind, ValueKind::Bool);
    EXPECT_EQ(site("flags").type.kind, ValueKind::String);
    EXPECT_EQ(site("blob").type.kind, ValueKind::String);
    EXPECT_EQ(site("mixed").type.kind, ValueKind::String);
    EXPECT_EQ(site("twoInts").type.kind, ValueKind::Int);
    EXPECT_EQ(site("buddy").type.kind, ValueKind::Uint);
    EXPECT_EQ(site("where").type.kind, ValueKind::String);
}

TEST(YangModelReader, EnumerationsAndIdentities_TellTheirNames) {
    EXPECT_EQ(site("mood").type.kind, ValueKind::Enumeration);
    EXPECT_THAT(site("mood").type.enumerators, ElementsAre("GOOD", "BAD"));
    EXPECT_EQ(site("source").type.kind, ValueKind::Enumeration);
    EXPECT_THAT(site("source").type.enumerators, ElementsAre("site:grid", "site:solar"));
}

TEST(YangModelReader, Types_AreDescribedAsTheirAuthorWroteThem) {
    EXPECT_EQ(site("port").type.description, "port, uint16 (1..10 | 20)");
    EXPECT_EQ(site("ratio").type.description, "decimal64 (-1.5..2.25)");
    EXPECT_EQ(site("mixed").type.description, "uint16 or enumeration");
    EXPECT_EQ(site("label").type.description, "string (2..8)");
}

TEST(YangModelReader, Multiplicity_IsThatOfTheStatements) {
    EXPECT_EQ(bounds(site("tiny")), "0..1");
    EXPECT_EQ(bounds(site("bands")), "0..3");
    EXPECT_EQ(bounds(site("doors")), "1..2");
    EXPECT_EQ(bounds(site("names")), "0..unbounded");
    EXPECT_EQ(bounds(site("place")), "1..1"); // because of the mandatory leaf in it
    EXPECT_EQ(bounds(site("extra")), "0..1");
    EXPECT_EQ(bounds(site("slot")), "0..4");
}

TEST(YangModelReader, Defaults_AreValues) {
    ASSERT_TRUE(site("mood").defaultValue);
    EXPECT_EQ(toText(site("mood").defaultValue->values.at(0)), "GOOD");
    EXPECT_EQ(std::get<bool>(site("on").defaultValue->values.at(0)), true);
    ASSERT_EQ(site("bands").defaultValue->values.size(), 2U);
    EXPECT_EQ(std::get<std::uint64_t>(site("bands").defaultValue->values[1]), 9U);
    EXPECT_FALSE(site("tiny").defaultValue);
}

TEST(YangModelReader, StateData_IsNotWritable) {
    EXPECT_FALSE(site("heat").isWritable);
    EXPECT_FALSE(site("reading").isWritable);
    EXPECT_TRUE(site("tiny").isWritable);
}

TEST(YangModelReader, ContainersAndOtherLists_AreStructs) {
    EXPECT_EQ(site("place").type.kind, ValueKind::Struct);
    const AttributeDef& pole = member(site("place"), "pole");
    EXPECT_EQ(pole.type.kind, ValueKind::Struct);
    EXPECT_EQ(member(pole, "nextRef").type.kind, ValueKind::MoRef);
    EXPECT_THAT(namesOf(member(pole, "nextRef").type.targets), ElementsAre("Mast"));
    EXPECT_EQ(site("slot").type.kind, ValueKind::Struct);
    EXPECT_EQ(member(site("slot"), "number").name, "number");
    EXPECT_EQ(site("reading").type.kind, ValueKind::Struct);
}

TEST(YangModelReader, References_AreKnownThroughTypedefs) {
    EXPECT_EQ(member(site("slot"), "mastRef").type.kind, ValueKind::MoRef);
    EXPECT_EQ(attributeOf(siteModel(), "Mast", "antennas").type.kind, ValueKind::MoRef);
    const AttributeDef& any = attributeOf(siteModel(), "Mast", "anyRef");
    EXPECT_EQ(any.type.kind, ValueKind::MoRef);
    EXPECT_TRUE(any.type.targets.empty());
}

TEST(YangModelReader, Cases_AreAllAttributes) {
    EXPECT_EQ(site("single").type.kind, ValueKind::String);
    EXPECT_EQ(site("other").type.kind, ValueKind::String);
}

TEST(YangModelReader, Choices_AreKnownWithTheirCases) {
    const YangModel model = modelOfBody(R"(
        list A { key id; leaf id { type string; }
          choice way { mandatory true;
            case road { leaf lane { type string; mandatory true; } leaf speed { type uint8; } }
            case rail {
              leaf track { type string; }
              choice power { leaf diesel { type empty; } leaf wire { type empty; } } } }
          container box { choice content {
            leaf full { type string; mandatory true; } leaf none { type empty; } } }
          choice mixed { mandatory true; list B { key id; leaf id { type string; } }
            leaf c { type string; } } })");
    const ClassDef& moc = classOf(model, "A");
    ASSERT_EQ(moc.choices.size(), 3U);
    const ChoiceDef& way = moc.choices[0];
    EXPECT_EQ(way.name, "way");
    EXPECT_TRUE(way.isMandatory);
    ASSERT_EQ(way.cases.size(), 2U);
    EXPECT_THAT(way.cases[0].attributes, ElementsAre("lane", "speed"));
    EXPECT_THAT(way.cases[0].required, ElementsAre("lane"));
    EXPECT_THAT(way.cases[1].attributes, ElementsAre("track", "diesel", "wire"));
    EXPECT_THAT(way.cases[1].required, ElementsAre());
    EXPECT_EQ(moc.choices[1].name, "power");
    EXPECT_THAT(moc.choices[1].around, ElementsAre("track", "diesel", "wire"));
    EXPECT_FALSE(moc.choices[1].isMandatory);
    // Objects could be the case that is taken.
    EXPECT_EQ(moc.choices[2].name, "mixed");
    EXPECT_FALSE(moc.choices[2].isMandatory);
    EXPECT_FALSE(attributeOf(model, "A", "lane").isRequired());
    const AttributeDef& box = attributeOf(model, "A", "box");
    ASSERT_EQ(box.type.choices.size(), 1U);
    EXPECT_THAT(box.type.choices[0].cases[0].required, ElementsAre("full"));
    EXPECT_FALSE(member(box, "full").isRequired());
}

TEST(YangModelReader, CasesOfOneName_FromTwoModules_AreTwo) {
    const TemporaryDirectory directory;
    directory.write("m.yang", "module m { namespace 'urn:m'; prefix m; list A { key id;"
                              " leaf id { type string; } choice way { default none; leaf none {"
                              " type string; } case more { leaf a { type string; } } } } }");
    directory.write("o.yang", "module o { namespace 'urn:o'; prefix o; import m { prefix m; }"
                              " augment /m:A/m:way { case more { leaf b { type string; } } } }");
    const YangModel model = YangModelReader().searchIn(directory.path()).load("m").load("o").read();
    const ClassDef& moc = classOf(model, "A");
    ASSERT_EQ(moc.choices.size(), 1U);
    std::vector<std::string> cases;
    for (const ChoiceCase& one : moc.choices[0].cases) {
        cases.push_back(one.name + ":" + one.attributes[0] + (one.isDefault ? " default" : ""));
    }
    EXPECT_THAT(cases, ElementsAre("none:none default", "more:a", "o:more:b"));
    EXPECT_THAT(problemsOf(model, readObjectsOf(model, R"({"m:A": [{"id": "1", "a": "x",
                                                                    "o:b": "y"}]})")),
                HasSubstr("'a' and 'b' are of two cases"));
}

TEST(YangModelReader, MandatoryChoice_UnderAConditionOrOfState_IsNotDemanded) {
    const YangModel model = modelOfBody(R"(
        list A { key id; leaf id { type string; }
          container attributes { when "../id = 'x'";
            choice way { mandatory true; leaf road { type string; } leaf rail { type string; } } }
          choice seen { mandatory true; leaf up { config false; type string; }
            leaf down { config false; type string; } } })");
    const ClassDef& moc = classOf(model, "A");
    ASSERT_EQ(moc.choices.size(), 2U);
    EXPECT_FALSE(moc.choices[0].isMandatory);
    EXPECT_FALSE(moc.choices[1].isMandatory);
}

TEST(YangModelReader, ChoicesAmongParameters_AreNoted) {
    const YangModel model = modelOfBody(R"(
        list A { key id; leaf id { type string; } action go { input {
          choice way { leaf road { type string; } leaf rail { type string; } } } } })");
    ASSERT_EQ(model.notes.size(), 1U);
    EXPECT_EQ(toText(model.notes[0]),
              "m.yang:4: choices among the parameters of an action are not checked: at "
              "/m:A/go/input/road and at 1 more place");
}

TEST(YangModelReader, Empty_IsAbsentIfFalse) {
    const YangModel model = modelOfBody(R"(list A { key id; leaf id { type string; }
        leaf e { type empty; } leaf b { type boolean; } })");
    EXPECT_TRUE(attributeOf(model, "A", "e").type.isFalseAbsent);
    EXPECT_FALSE(attributeOf(model, "A", "b").type.isFalseAbsent);
}

TEST(YangModelReader, MandatoryLeaf_UnderAWhen_IsNotDemanded) {
    const YangModel model = modelOfBody(R"(
        list A { key id; leaf id { type string; } leaf kind { type string; }
          leaf extra { when "../kind = 'x'"; type string; mandatory true; }
          container attributes { when "kind = 'y'"; leaf inner { type string; mandatory true; } }
          container box { leaf deep { when "../../kind = 'x'"; type string; mandatory true; } } })");
    EXPECT_FALSE(attributeOf(model, "A", "extra").isRequired());
    EXPECT_FALSE(attributeOf(model, "A", "inner").isRequired());
    EXPECT_EQ(bounds(attributeOf(model, "A", "box")), "0..1");
}

TEST(YangModelReader, MembersOfOneName_FromTwoModules_AreToldApart) {
    const TemporaryDirectory directory;
    directory.write("m.yang", "module m { namespace 'urn:m'; prefix m; list A { key id;"
                              " leaf id { type string; } container box { leaf n { type string; } "
                              "} } }");
    directory.write("o.yang", "module o { namespace 'urn:o'; prefix o; import m { prefix m; }"
                              " augment /m:A/m:box { leaf n { type uint8; } } }");
    const YangModel model = YangModelReader().searchIn(directory.path()).load("m").load("o").read();
    const AttributeDef& box = attributeOf(model, "A", "box");
    EXPECT_EQ(member(box, "n").type.kind, ValueKind::String);
    EXPECT_EQ(member(box, "o:n").type.kind, ValueKind::Uint);
    const std::string data = R"({"m:A": [{"id": "1", "box": {"n": "x", "o:n": 7}}]})";
    const std::vector<DataObject> objects = readObjectsOf(model, data);
    const std::string written = writeObjects(model, DataFormat::Json, objects);
    EXPECT_EQ(differenceOf(readObjectsOf(model, written), objects), "");
}

TEST(YangModelReader, State_IsNotDemanded) {
    const YangModel model = modelOfBody(R"(
        list A { key id; leaf id { type string; }
          leaf up { config false; type string; mandatory true; }
          leaf-list seen { config false; min-elements 1; type string; }
          container state { config false; leaf up { type string; mandatory true; } }
          container mixed { leaf up { config false; type string; mandatory true; } }
          list B { config false; key id; min-elements 2; leaf id { type string; } } })");
    for (const char* name : {"up", "seen", "state", "mixed"}) {
        EXPECT_FALSE(attributeOf(model, "A", name).isRequired()) << name;
    }
    EXPECT_FALSE(member(attributeOf(model, "A", "mixed"), "up").isRequired());
    EXPECT_EQ(classOf(model, "B").instances.lower, 0);
    EXPECT_EQ(problemsOf(model, readObjectsOf(model, R"({"m:A": [{"id": "1"}]})")), "");
}

TEST(YangModelReader, State_InAStructOfConfiguration_IsNoted) {
    const YangModel model = modelOfBody(R"(
        list A { key id; leaf id { type string; }
          container state { config false; leaf up { type string; } }
          container mixed { leaf set { type string; } leaf up { config false; type string; } } })");
    ASSERT_EQ(model.notes.size(), 1U);
    EXPECT_EQ(model.notes[0].text, "state in a struct is not protected: clients set a struct as a "
                                   "whole, and what is in it with it: at /m:A/mixed/up");
}

TEST(YangModelReader, Identityref_WithoutIdentities_IsATextAndToldWhereTheyMayBe) {
    const TemporaryDirectory directory;
    directory.write("kinds.yang", "module kinds { namespace 'urn:k'; prefix k; identity kind; }");
    directory.write("more.yang", "module more { namespace 'urn:o'; prefix o; import kinds { prefix "
                                 "x; } identity round { description \"x\"; base x:kind; } }");
    directory.write("uses.yang", "module uses { namespace 'urn:e'; prefix e; import kinds { prefix "
                                 "x; } typedef t { type identityref { base x:kind; } } }");
    directory.write("m.yang", "module m { namespace 'urn:m'; prefix m;\n"
                              " import kinds { prefix k; }\n"
                              " list A { key id; leaf id { type identityref { base k:kind; } }\n"
                              "  leaf kind { type identityref { base k:kind; } } } }");
    const YangModel model = YangModelReader().searchIn(directory.path()).load("m").read();
    const TypeDef& type = attributeOf(model, "A", "kind").type;
    EXPECT_EQ(type.kind, ValueKind::String);
    EXPECT_EQ(type.check("more:round"), "");
    EXPECT_EQ(type.check("round"), "");
    EXPECT_EQ(type.check("a round one"),
              "\"a round one\" is not the name of an identity, \"module:name\"");
    EXPECT_EQ(attributeOf(model, "A", "id").type.check("more:round"), "");
    ASSERT_EQ(model.notes.size(), 2U);
    EXPECT_THAT(toText(model.notes[1]),
                HasSubstr("m.yang:4: no loaded module derives an identity from \"kinds:kind\", so "
                          "values are texts; on the search path, these may: more: at /m:A/kind"));
    const YangModel closed =
        YangModelReader().searchIn(directory.path()).load("m").load("more").read();
    EXPECT_EQ(attributeOf(closed, "A", "kind").type.kind, ValueKind::Enumeration);
    EXPECT_TRUE(closed.notes.empty());
}

/// Module m with the features a and b, which needs a feature of the module `base`.
YangModelReader featuredModel(const TemporaryDirectory& directory) {
    directory.write("base.yang", "module base { namespace 'urn:b'; prefix b; feature deep;"
                                 " list B { key id; leaf id { type string; }"
                                 " leaf deep { if-feature deep; type string; } } }");
    directory.write("m.yang", "module m { yang-version 1.1; namespace 'urn:m'; prefix m;"
                              " import base { prefix b; } feature a; feature b;"
                              " augment '/b:B' { leaf a { if-feature a; type string; }"
                              " leaf b { if-feature b; type string; } } }");
    YangModelReader reader;
    reader.searchIn(directory.path()).load("m");
    return reader;
}

std::string attributesOf(const YangModel& model) {
    std::string names;
    for (const AttributeDef& attribute : classOf(model, "B").attributes) {
        names += attribute.name + " ";
    }
    return names;
}

TEST(YangModelReader, Features_AreAllOnUnlessSelected) {
    const TemporaryDirectory directory;
    EXPECT_EQ(attributesOf(featuredModel(directory).read()), "bId a b ");
    EXPECT_EQ(attributesOf(featuredModel(directory).selectFeatures("m", {"b"}).read()), "bId b ");
    EXPECT_EQ(attributesOf(featuredModel(directory).selectFeatures("m", {}).read()), "bId ");
    EXPECT_EQ(attributesOf(featuredModel(directory).withoutFeatures().read()), "bId ");
    EXPECT_EQ(
        attributesOf(featuredModel(directory).withoutFeatures().selectFeatures("m", {"a"}).read()),
        "bId a ");
    EXPECT_EQ(attributesOf(featuredModel(directory).selectFeatures("base", {"deep"}).read()),
              "bId deep a b ");
}

TEST(YangModelReader, FeatureThatDependsOnOneThatIsOff_StaysOff) {
    const TemporaryDirectory directory;
    directory.write("m.yang", "module m { yang-version 1.1; namespace 'urn:m'; prefix m;"
                              " import other { prefix o; }"
                              " feature d { if-feature 'c'; } feature e { if-feature 'not\n b'; }"
                              " feature c { if-feature 'b or a'; } feature a; feature b;"
                              " feature f { if-feature 'o:far'; } feature g { if-feature 'not f'; }"
                              " list B { key id; leaf id { type string; }"
                              " leaf a { if-feature a; type string; }"
                              " leaf d { if-feature d; type string; }"
                              " leaf e { if-feature e; type string; }"
                              " leaf f { if-feature f; type string; }"
                              " leaf g { if-feature g; type string; } } }");
    directory.write("other.yang", "module other { namespace 'urn:o'; prefix o; feature far; }");
    YangModelReader reader;
    reader.searchIn(directory.path()).load("m");
    EXPECT_EQ(attributesOf(reader.read()), "bId a d g ");
    reader.load("other");
    EXPECT_EQ(attributesOf(reader.read()), "bId a d f ");
    reader.selectFeatures("other", {});
    EXPECT_EQ(attributesOf(reader.read()), "bId a d g ");
}

TEST(YangModelReader, ChosenFeatureWhoseConditionIsFalse_IsRefused) {
    const TemporaryDirectory directory;
    const auto file =
        directory.write("m.yang", "module m { yang-version 1.1; namespace 'urn:m'; prefix m;"
                                  " feature a; feature b { if-feature a; } }");
    EXPECT_EQ(modelErrorOf(
                  [&] { YangModelReader().load(file.string()).selectFeatures("m", {"b"}).read(); }),
              "the feature \"b\" of the module \"m\" is chosen, but its condition is false: "
              "if-feature \"a\"");
}

TEST(YangModelReader, FeaturesOfAnImportedModule_DoNotBringItsData) {
    const TemporaryDirectory directory;
    directory.write("base.yang", "module base { namespace 'urn:b'; prefix b; feature deep;"
                                 " grouping G { leaf deep { if-feature deep; type string; } }"
                                 " list Own { key id; leaf id { type string; } } }");
    directory.write("m.yang", "module m { namespace 'urn:m'; prefix m; import base { prefix b; }"
                              " list B { key id; leaf id { type string; } uses b:G; } }");
    YangModelReader reader;
    reader.searchIn(directory.path()).load("m").selectFeatures("base", {"deep"});
    const YangModel model = reader.read();
    EXPECT_EQ(attributesOf(model), "bId deep ");
    EXPECT_EQ(model.model.classes.size(), 1U);
}

TEST(YangModelReader, ConditionOnACaseWithoutItsStatement_IsNotedWithItsLine) {
    const YangModel model = modelOf("module m { yang-version 1.1; namespace 'urn:m'; prefix m;\n"
                                    " list A { key id; leaf id { type string; }\n"
                                    "  choice x { leaf p { type string; } } }\n"
                                    " augment '/m:A/m:x' { when '/m:A';\n"
                                    "  leaf r { type string; } } }");
    ASSERT_EQ(model.notes.size(), 1U);
    EXPECT_EQ(model.notes[0].source.line, 5);
    EXPECT_THAT(model.notes[0].text, HasSubstr("at /m:A/r"));
}

TEST(YangModelReader, PipeOnTheSearchPath_IsNotOpened) {
    const TemporaryDirectory directory;
    ASSERT_EQ(mkfifo((directory.path() / "m.yang").c_str(), 0600), 0);
    EXPECT_THAT(
        modelErrorOf([&] { YangModelReader().searchIn(directory.path()).load("m").read(); }),
        HasSubstr("looked for m.yang in " + directory.path().string()));
}

TEST(YangModelReader, IdentityInAUnion_IsATextIfNoneIsLoaded) {
    const YangModel model = modelOfBody("identity base; list B { key id; leaf id { type string; }"
                                        " leaf a { type union { type identityref { base base; }"
                                        " type uint8; } } }");
    const TypeDef& type = attributeOf(model, "B", "a").type;
    EXPECT_EQ(type.kind, ValueKind::String);
    EXPECT_EQ(type.check("far:away"), "");
    EXPECT_EQ(type.check("7"), "");
    EXPECT_NE(type.check("no name"), "");
    EXPECT_THAT(toText(model.notes.at(0)), HasSubstr("no loaded module derives an identity"));
}

TEST(YangModelReader, Features_ThatDoNotExist_AreRefused) {
    const TemporaryDirectory directory;
    EXPECT_EQ(modelErrorOf([&] { featuredModel(directory).selectFeatures("m", {"c"}).read(); }),
              "the module \"m\" has no feature \"c\"; it has a, b");
    EXPECT_EQ(modelErrorOf([&] { featuredModel(directory).selectFeatures("n", {"c"}).read(); }),
              "features of the module \"n\" are chosen, but no such module is loaded; "
              "load it with -m, or import it");
}

TEST(YangModelReader, Deviations_AreHonoured) {
    const TemporaryDirectory directory;
    directory.write("m.yang",
                    "module m { namespace 'urn:m'; prefix m;"
                    " list A { key id; leaf id { type string; } leaf gone { type string; }"
                    " leaf wide { type uint8; } } }");
    directory.write("d.yang", "module d { namespace 'urn:d'; prefix d; import m { prefix m; }"
                              " deviation /m:A/m:gone { deviate not-supported; }"
                              " deviation /m:A/m:wide { deviate replace { type uint16; } } }");
    for (const auto& [first, second] : {std::pair("m", "d"), std::pair("d", "m")}) {
        const YangModel model =
            YangModelReader().searchIn(directory.path()).load(first).load(second).read();
        EXPECT_EQ(classOf(model, "A").findAttribute("gone"), nullptr);
        EXPECT_EQ(attributeOf(model, "A", "wide").type.description, "uint16");
    }
}

TEST(YangModelReader, Actions_HaveParametersAndOneResult) {
    const ActionDef* reset = classOf(siteModel(), "Site").findAction("reset");
    ASSERT_NE(reset, nullptr);
    EXPECT_EQ(reset->description, "Starts again.");
    ASSERT_EQ(reset->parameters.size(), 2U);
    EXPECT_EQ(reset->parameters[0].name, "hard");
    EXPECT_EQ(bounds(reset->parameters[0]), "1..1");
    EXPECT_EQ(reset->parameters[1].type.kind, ValueKind::MoRef);
    EXPECT_THAT(namesOf(reset->parameters[1].type.targets), ElementsAre("Mast"));
    ASSERT_TRUE(reset->result);
    EXPECT_EQ(reset->result->name, "done");
}

TEST(YangModelReader, Actions_WithSeveralResults_GiveAStruct) {
    const ActionDef* measure = classOf(siteModel(), "Site").findAction("measure");
    ASSERT_NE(measure, nullptr);
    EXPECT_TRUE(measure->parameters.empty());
    ASSERT_TRUE(measure->result);
    EXPECT_EQ(measure->result->type.kind, ValueKind::Struct);
    EXPECT_EQ(measure->result->type.members.size(), 2U);
}

const BiDirAssociation& biDir(std::string_view name) {
    for (const BiDirAssociation& association : siteModel().model.biDirAssociations) {
        if (association.ends[0].name == name || association.ends[1].name == name) {
            return association;
        }
    }
    throw std::runtime_error("no association");
}

TEST(YangModelReader, BiDirAssociation_EndsAreNamedAfterTheAttributesThatPointAtThem) {
    const BiDirAssociation& association = biDir("antennas");
    const AssociationEnd& mast = association.ends[0];
    const AssociationEnd& antenna = association.ends[1];
    EXPECT_EQ(siteModel().model.classes[mast.moc].name, "Mast");
    EXPECT_EQ(mast.name, "mast");
    EXPECT_EQ(mast.cardinality.lower, 0); // the same as for the leaf
    EXPECT_EQ(mast.cardinality.upper, 1);
    EXPECT_EQ(mast.role, "Mast");
    EXPECT_FALSE(mast.keepAtDelete);
    EXPECT_EQ(siteModel().model.classes[antenna.moc].name, "Antenna");
    EXPECT_EQ(antenna.name, "antennas");
    EXPECT_EQ(antenna.cardinality.lower, 1);
    EXPECT_EQ(antenna.cardinality.upper, 5);
    EXPECT_EQ(antenna.role, "antennas");
    EXPECT_TRUE(antenna.keepAtDelete);
    EXPECT_THAT(association.source.file, HasSubstr("site.yang"));
    EXPECT_EQ(association.source.line, 109);
}

TEST(YangModelReader, BiDirAssociation_OfAClassWithItself_HasBothEndsThere) {
    const BiDirAssociation& association = biDir("peer");
    EXPECT_EQ(association.ends[0].moc, association.ends[1].moc);
    EXPECT_EQ(association.ends[0].name, "peerOf");
    EXPECT_EQ(association.ends[1].name, "peer");
    EXPECT_EQ(association.ends[1].cardinality.upper, 2);
    EXPECT_EQ(association.ends[0].cardinality.upper, kUnbounded);
}

TEST(YangModelReader, UniDirAssociations_AreOneForEachPermittedClass) {
    std::vector<std::string> found;
    const Model& model = siteModel().model;
    for (const UniDirAssociation& association : model.uniDirAssociations) {
        found.push_back(model.classes[association.owner].name + "." + association.end.name +
                        " -> " + model.classes[association.end.moc].name + " " +
                        association.end.role);
    }
    EXPECT_THAT(found, ElementsAre("Mast.siteRef -> Site places", "Antenna.serves -> Site Site",
                                   "Antenna.serves -> Mast Mast"));
    EXPECT_THAT(namesOf(attributeOf(siteModel(), "Antenna", "serves").type.targets),
                ElementsAre("Site", "Mast"));
}

TEST(YangModelReader, WhatIsLeftOut_IsNoted) {
    std::string notes;
    for (const Problem& note : siteModel().notes) {
        notes += toText(note) + "\n";
    }
    EXPECT_THAT(notes, HasSubstr("site.yang:45: leafrefs and instance-identifiers"));
    EXPECT_THAT(notes, HasSubstr("`anydata` nodes are not part of the model"));
    EXPECT_THAT(notes, HasSubstr("`notification` nodes are not part of the model"));
    EXPECT_THAT(notes, HasSubstr("`must` statements are not evaluated"));
    EXPECT_THAT(notes, HasSubstr("outside of any class is not part of the model: at "
                                 "/site-extension:motto"));
}

TEST(YangModelReader, Notes_OfOneKind_AreCounted) {
    const YangModel model =
        modelOfBody("list A { key id; leaf id { type string; } leaf b { type string; must '1'; }"
                    " leaf c { type string; must '1'; } leaf d { type string; must '1'; } }");
    ASSERT_EQ(model.notes.size(), 1U);
    EXPECT_EQ(model.notes[0].text,
              "`must` statements are not evaluated: at /m:A/b and at 2 more places");
}

TEST(YangModelReader, Load_ByFile_FindsImportsBesideIt) {
    const YangModel model =
        YangModelReader().load(testData("models/site-extension.yang").string()).read();
    EXPECT_TRUE(model.model.findClass("Site")); // augmented, and therefore present
    EXPECT_TRUE(model.model.findClass("Fence"));
}

TEST(YangModelReader, Search_GoesIntoSubdirectoriesAndTakesTheNewestRevision) {
    const TemporaryDirectory directory;
    const auto module = [](const std::string& revision, const std::string& leaf) {
        return "module dated { namespace 'urn:d'; prefix d; revision " + revision +
               "; list A { key id; leaf id { type string; } leaf " + leaf + " { type string; } } }";
    };
    directory.write("deep/down/dated@2020-01-01.yang", module("2020-01-01", "old"));
    directory.write("deep/down/dated@2023-06-01.yang", module("2023-06-01", "new"));
    const YangModel model = YangModelReader().searchIn(directory.path()).load("dated").read();
    EXPECT_NE(classOf(model, "A").findAttribute("new"), nullptr);
    EXPECT_EQ(classOf(model, "A").findAttribute("old"), nullptr);
}

TEST(YangModelReader, Search_TakesTheRevisionThatAnImportNames) {
    const TemporaryDirectory directory;
    for (const char* revision : {"2020-01-01", "2023-06-01"}) {
        directory.write(std::string("types@") + revision + ".yang",
                        std::string("module types { namespace 'urn:t'; prefix t; revision ") +
                            revision + "; typedef width { type string { length '" +
                            (revision[3] == '0' ? "1" : "2") + "'; } } }");
    }
    directory.write("user.yang", "module user { namespace 'urn:u'; prefix u; import types { prefix "
                                 "t; revision-date 2020-01-01; } list A { key id; leaf id { type "
                                 "string; } leaf w { type t:width; } } }");
    const YangModel model = YangModelReader().searchIn(directory.path()).load("user").read();
    EXPECT_EQ(attributeOf(model, "A", "w").type.description, "width, string (1)");
}

TEST(YangModelReader, Submodules_AreFoundAndTellTheirLines) {
    const TemporaryDirectory directory;
    directory.write("whole.yang", "module whole { yang-version 1.1; namespace 'urn:w'; prefix w;\n"
                                  "  include piece; }");
    directory.write("piece.yang", "submodule piece { yang-version 1.1;\n"
                                  "  belongs-to whole { prefix w; }\n"
                                  "  typedef ref { type DistinguishedName; }\n"
                                  "  typedef DistinguishedName { type string; }\n"
                                  "  list A { key id; leaf id { type string; }\n"
                                  "    leaf r { type ref; } } }");
    const YangModel model = YangModelReader().searchIn(directory.path()).load("whole").read();
    EXPECT_THAT(classOf(model, "A").source.file, HasSubstr("piece.yang"));
    EXPECT_EQ(classOf(model, "A").source.line, 5);
    EXPECT_EQ(attributeOf(model, "A", "r").type.kind, ValueKind::MoRef);
}

// A set as the field has it: the module includes `outer` first, and that includes `inner`, with a
// statement of an extension in it, before the module does.
void writeNestedIncludes(const TemporaryDirectory& directory, const std::string& version,
                         const std::string& includes) {
    directory.write("marks.yang", "module marks { namespace 'urn:marks'; prefix k;"
                                  " extension mark { argument text; } }");
    directory.write("whole.yang", "module whole { " + version + " namespace 'urn:w'; prefix w;\n" +
                                      includes +
                                      "\n  list A { key id; leaf id { type string; } uses o; } }");
    directory.write("outer.yang", "submodule outer { " + version +
                                      " belongs-to whole { prefix o; }\n"
                                      "  include inner { revision-date 2024-01-01; }\n"
                                      "  grouping o { uses i; leaf outer { type o:width; } } }");
    directory.write("inner.yang", "submodule inner { " + version +
                                      " belongs-to whole { prefix i; }\n"
                                      "  import marks { prefix k; } include outer;\n"
                                      "  revision 2024-01-01;\n"
                                      "  typedef width { type uint8; }\n"
                                      "  grouping i {\n"
                                      "    leaf inner { k:mark 'x'; type width; } } }");
}

TEST(YangModelReader, Submodules_ThatIncludeEachOther_AreRead) {
    const TemporaryDirectory directory;
    writeNestedIncludes(directory, "yang-version 1.1;", "include outer; include inner;");
    const YangModel model = YangModelReader().searchIn(directory.path()).load("whole").read();
    EXPECT_EQ(attributeOf(model, "A", "inner").source.line, 6);
    EXPECT_EQ(attributeOf(model, "A", "inner").type.description, "width, uint8");
    EXPECT_EQ(attributeOf(model, "A", "outer").type.description, "width, uint8");
}

TEST(YangModelReader, Submodules_ThatOnlyASubmoduleIncludes_AreReadInYang1) {
    const TemporaryDirectory directory;
    writeNestedIncludes(directory, "", "include outer;");
    const YangModel model = YangModelReader().searchIn(directory.path()).load("whole").read();
    EXPECT_EQ(attributeOf(model, "A", "inner").source.line, 6);
    EXPECT_EQ(classOf(model, "A").source.line, 3);
}

TEST(YangModelReader, OneClass_AtSeveralPlaces_HasAllParentsAndAttributes) {
    const YangModel model = modelOfBody(R"(
        grouping g { list Log { key id; leaf id { type string; } leaf size { type uint8; } } }
        list A { key id; leaf id { type string; } uses g; }
        list B { key id; leaf id { type string; } uses g {
            augment Log { leaf extra { type string; } } } })");
    EXPECT_EQ(classOf(model, "Log").parents.size(), 2U);
    EXPECT_NE(classOf(model, "Log").findAttribute("extra"), nullptr);
    EXPECT_EQ(classOf(model, "Log").source.line, 3);
}

TEST(YangModelReader, Deviation_CanCarryAnAssociation) {
    const YangModel model = modelOfBody(R"(
        list A { key id; leaf id { type string; } leaf b { type string; } }
        deviation "/m:A/m:b" { orv:unidirectional "A 0..1"; deviate add { default "x"; } })");
    EXPECT_EQ(attributeOf(model, "A", "b").type.kind, ValueKind::MoRef);
    EXPECT_EQ(model.model.uniDirAssociations.size(), 1U);
}

TEST(YangModelReader, Leaf_OfTextType_BecomesAReferenceByItsStatement) {
    const YangModel model = modelOfBody("list A { key id; leaf id { type string; }"
                                        " leaf b { type string; orv:unidirectional A; } }");
    EXPECT_EQ(attributeOf(model, "A", "b").type.kind, ValueKind::MoRef);
}

TEST(YangModelReader, Association_ThroughOneAttribute_IsItsOwnOpposite) {
    const YangModel model =
        modelOfBody("list A { key id; leaf id { type string; }"
                    " leaf-list friend { type orv:reference; orv:bidirectional A.friend; }"
                    " leaf-list twin { type string; } }"
                    " orv:bidirectional 'A.twin <-> A.twin';");
    ASSERT_EQ(model.model.biDirAssociations.size(), 2U);
    // Statements in modules come before those in leaves.
    EXPECT_EQ(model.model.biDirAssociations[0].ends[0].name, "twin");
    EXPECT_EQ(model.model.biDirAssociations[1].ends[0].name, "friend");
    EXPECT_EQ(model.model.biDirAssociations[1].ends[1].name, "friend");
}

}
}
