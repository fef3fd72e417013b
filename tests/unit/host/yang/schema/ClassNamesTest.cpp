// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "YangTestSupport.h"

#include <gmock/gmock.h>

#include <utility>

// What classes are called if one name is not enough.

namespace OrvHost {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr const char* kRadio = R"(
list Site {
  key id;
  leaf id { type string; }
  list Cell { key id; leaf id { type string; } leaf power { type uint8; } }
})";

/// A list of the same name in the same parent.
constexpr const char* kCore = R"(
import radio { prefix r; }
augment /r:Site {
  list Cell { key name; leaf name { type string; } leaf size { type uint8; } }
})";

using Bodies = std::vector<std::pair<std::string, std::string>>;

YangModel modelOfAll(const Bodies& modules) {
    YangModelReader reader;
    for (const auto& [name, body] : modules) {
        const std::string head = "module " + name + " { yang-version 1.1; namespace \"urn:" + name +
                                 "\"; prefix " + name + "; import orv-associations { prefix orv; }";
        reader.offerText(name, name + ".yang", head + body + "}").load(name);
    }
    return reader.read();
}

std::vector<std::string> classesOf(const YangModel& model) {
    std::vector<std::string> names;
    for (const ClassDef& moc : model.model.classes) {
        names.push_back(moc.name);
    }
    return names;
}

std::vector<std::string> notesOf(const YangModel& model) {
    std::vector<std::string> notes;
    for (const Problem& note : model.notes) {
        notes.push_back(toText(note));
    }
    return notes;
}

std::string listOf(const std::string& name, const std::string& contents = "") {
    return "list " + name + " { key id; leaf id { type string; } " + contents + " }\n";
}

TEST(ClassNames, OneNameInTwoModules_IsPrecededByTheModule) {
    const YangModel model = modelOfAll({{"radio", kRadio}, {"core", kCore}});
    EXPECT_THAT(classesOf(model), ElementsAre("Site", "radio:Cell", "core:Cell"));
    EXPECT_EQ(classOf(model, "Site").namingAttribute, "siteId");
    EXPECT_EQ(classOf(model, "radio:Cell").namingAttribute, "radio:CellId");
    EXPECT_EQ(classOf(model, "core:Cell").namingAttribute, "core:CellId");
    EXPECT_TRUE(attributeOf(model, "core:Cell", "core:CellId").isNaming);
    EXPECT_THAT(classesOf(modelOfAll({{"radio", kRadio}})), ElementsAre("Site", "Cell"));
}

TEST(ClassNames, NamingAttribute_BeginsWithASmallLetter) {
    const YangModel model = modelOfAll({{"Radio", listOf("Cell")}, {"core", listOf("Cell")}});
    EXPECT_EQ(classOf(model, "Radio:Cell").namingAttribute, "radio:CellId");
}

TEST(ClassNames, Data_OfTwoModules_IsReadAndWrittenByTheModulesNames) {
    const YangModel model = modelOfAll({{"radio", kRadio}, {"core", kCore}});
    const std::vector<DataObject> objects =
        readObjectsOf(model, R"({"radio:Site": [{"id": "s", "Cell": [{"id": "1", "power": 3}],
                   "core:Cell": [{"name": "1", "size": 4}]}]})");
    EXPECT_EQ(valueOf(objectOf(objects, "Site=s,radio:Cell=1"), "power"), "[3]");
    EXPECT_EQ(valueOf(objectOf(objects, "Site=s,core:Cell=1"), "size"), "[4]");
    for (const DataFormat format : {DataFormat::Json, DataFormat::Xml}) {
        const std::string text = writeObjects(model, format, objects);
        EXPECT_EQ(differenceOf(objects, readObjectsOf(model, text)), "") << text;
    }
    EXPECT_THAT(writeObjects(model, DataFormat::Json, objects),
                HasSubstr("\"core:Cell\": [\n        {\n          \"name\": \"1\""));
    EXPECT_EQ(problemsOf(model, objects), "");
}

TEST(ClassNames, OtherShapeUnderAnotherParent_IsPrecededByTheParent) {
    const YangModel model = modelOfAll(
        {{"m", listOf("Cell") + listOf("Mast", listOf("Cell", "leaf height { type uint8; }")) +
                   listOf("Tower", listOf("Cell", "leaf depth { type uint8; }"))}});
    EXPECT_THAT(classesOf(model),
                ElementsAre("m:Cell", "Mast", "Mast:Cell", "Tower", "Tower:Cell"));
    EXPECT_EQ(classOf(model, "Mast:Cell").namingAttribute, "mast:CellId");
    EXPECT_NE(classOf(model, "Mast:Cell").findAttribute("height"), nullptr);
    EXPECT_EQ(classOf(model, "Mast:Cell").findAttribute("depth"), nullptr);
    EXPECT_THAT(notesOf(model), IsEmpty());
    const std::vector<DataObject> objects =
        readObjectsOf(model, R"({"m:Mast": [{"id": "a", "Cell": [{"id": "b", "height": 2}]}]})");
    EXPECT_EQ(valueOf(objectOf(objects, "Mast=a,Mast:Cell=b"), "height"), "[2]");
}

TEST(ClassNames, EqualParents_AreToldApartByMoreAncestors) {
    const std::string small = listOf("Mast", listOf("Cell", "leaf a { type int8; }"));
    const std::string large = listOf("Mast", listOf("Cell", "leaf b { type int8; }"));
    const YangModel model = modelOfAll({{"m", listOf("Site", small) + listOf("Ship", large)}});
    EXPECT_THAT(classesOf(model), UnorderedElementsAre("Site", "Site:Mast", "Site:Mast:Cell",
                                                       "Ship", "Ship:Mast", "Ship:Mast:Cell"));
}

TEST(ClassNames, EqualParentsInTwoModules_AreToldApartByTheModuleToo) {
    const std::string body = listOf("Mast", listOf("Cell", "leaf a { type int8; }")) +
                             listOf("Pole", listOf("Cell", "leaf b { type int8; }"));
    EXPECT_THAT(classesOf(modelOfAll({{"m", body}, {"n", body}})),
                UnorderedElementsAre("m:Mast", "m:Mast:Cell", "m:Pole", "m:Pole:Cell", "n:Mast",
                                     "n:Mast:Cell", "n:Pole", "n:Pole:Cell"));
}

TEST(ClassNames, TopLevelContainers_AreParents) {
    const YangModel model =
        modelOfAll({{"m", "container old {" + listOf("Cell", "leaf a { type int8; }") +
                              "} container young {" + listOf("Cell") + "}"}});
    EXPECT_THAT(classesOf(model), ElementsAre("old:Cell", "young:Cell"));
}

TEST(ClassNames, EqualShapes_AreOneClassWithANote) {
    const YangModel model = modelOfAll(
        {{"m",
          listOf("Mast", "\n" + listOf("Cell", "leaf a { type int8; } leaf b { type int8; }")) +
              listOf("Tower", "\n" + listOf("Cell", "leaf b { type int8; } "
                                                    "leaf a { type int8; }"))}});
    EXPECT_THAT(classesOf(model), ElementsAre("Mast", "Cell", "Tower"));
    EXPECT_THAT(notesOf(model),
                ElementsAre("m.yang:5: this list and /m:Mast/Cell are one class, since they have "
                            "one name and look the same: at /m:Tower/Cell"));
}

TEST(ClassNames, AnyDifferenceInShape_MakesTwoClasses) {
    const std::string first = "leaf a { type int8; }";
    for (const std::string second :
         {"leaf a { type int16; }", "leaf a { type int8 { range 1..2; } }",
          "leaf-list a { type int8; }", "leaf a { type int8; mandatory true; }",
          "leaf a { type int8; config false; }", "container a { leaf a { type int8; } }",
          "leaf a { type int8; } leaf b { type int8; }", "leaf b { type int8; }",
          "choice c { leaf a { type int8; } }", "leaf a { type int8; } action run;"}) {
        const YangModel model = modelOfAll({{"m", listOf("Mast", listOf("Cell", first)) +
                                                      listOf("Tower", listOf("Cell", second))}});
        EXPECT_THAT(classesOf(model), ElementsAre("Mast", "Mast:Cell", "Tower", "Tower:Cell"))
            << second;
    }
}

TEST(ClassNames, PatternsAndNames_AreDifferencesToo) {
    for (const auto& [first, second] :
         {std::pair("type string { pattern a; }", "type string { pattern b; }"),
          std::pair("type enumeration { enum a; }", "type enumeration { enum b; }"),
          std::pair("type bits { bit a; }", "type bits { bit b; }"),
          std::pair("type string;", "type orv:reference;"),
          std::pair("type orv:reference; orv:unidirectional Mast;",
                    "type orv:reference; orv:unidirectional Tower;")}) {
        const auto body = [](const char* type) {
            return listOf("Cell", std::string("leaf a { ") + type + " }");
        };
        const YangModel model =
            modelOfAll({{"m", listOf("Mast", body(first)) + listOf("Tower", body(second))}});
        EXPECT_THAT(classesOf(model), ElementsAre("Mast", "Mast:Cell", "Tower", "Tower:Cell"))
            << second;
    }
}

TEST(ClassNames, ChildClassesThatDiffer_MakeTwoClassesOfTheirParentsToo) {
    const std::string first = listOf("Cell", listOf("Port", "leaf a { type int8; }"));
    const std::string second = listOf("Cell", listOf("Gate", "leaf a { type int8; }"));
    const YangModel model = modelOfAll({{"m", listOf("Mast", first) + listOf("Tower", second)}});
    EXPECT_THAT(classesOf(model),
                ElementsAre("Mast", "Mast:Cell", "Port", "Tower", "Tower:Cell", "Gate"));
}

TEST(ClassNames, OneGrouping_MakesOneClassInAllModules) {
    const YangModel model =
        modelOfAll({{"m", "grouping g {" + listOf("Cell") + "} " + listOf("Mast", "uses g;")},
                    {"n", "import m { prefix m; } " + listOf("Tower", "uses m:g;")}});
    EXPECT_THAT(classesOf(model), ElementsAre("Mast", "Cell", "Tower"));
    EXPECT_THAT(notesOf(model), IsEmpty());
}

TEST(ClassNames, OneGroupingWithOtherContents_IsOneClassWithANote) {
    const YangModel model =
        modelOfAll({{"m", "grouping g {\n" + listOf("Cell") + "}" + listOf("Mast", "uses g;") +
                              listOf("Tower", "uses g;") +
                              "augment /m:Tower/m:Cell { leaf depth { type uint8; } }"}});
    EXPECT_THAT(classesOf(model), ElementsAre("Mast", "Cell", "Tower"));
    EXPECT_THAT(notesOf(model),
                ElementsAre("m.yang:2: this list and /m:Mast/Cell come from one statement and are "
                            "one class, although they differ: objects can have what either has: at "
                            "/m:Tower/Cell"));
}

TEST(ClassNames, Dots_BecomeUnderscoresWithANote) {
    const YangModel model = modelOfAll({{"m.n", "\n" + listOf("a.b") + listOf("c")}});
    EXPECT_THAT(classesOf(model), ElementsAre("a_b", "c"));
    EXPECT_EQ(classOf(model, "a_b").namingAttribute, "a_bId");
    EXPECT_THAT(notesOf(model), ElementsAre(HasSubstr("m.n.yang:2: a class cannot have a \".\"")));
    EXPECT_EQ(objectOf(readObjectsOf(model, R"({"m.n:a.b": [{"id": "1"}]})"), "a_b=1").moc, 0U);
    EXPECT_THAT(classesOf(modelOfAll({{"m.n", listOf("a.b")}, {"o", listOf("a_b")}})),
                ElementsAre("m_n:a_b", "o:a_b"));
}

TEST(ClassNames, DotsInTheNameOfAModule_BecomeUnderscoresWithANote) {
    const YangModel model = modelOfAll({{"m.n", "\n" + listOf("c")}, {"o", listOf("c")}});
    EXPECT_THAT(classesOf(model), ElementsAre("m_n:c", "o:c"));
    EXPECT_THAT(
        notesOf(model),
        ElementsAre("m.n.yang:2: a class cannot have a \".\" in its name, which ends there "
                    "in a DN, so this one is called \"m_n:c\" and not \"m.n:c\": at /m.n:c"));
}

TEST(ClassNames, NamesThatDifferInADotOnly_AreNumberedWithANote) {
    const YangModel model = modelOfAll(
        {{"m", listOf("Top", "\n" + listOf("a.b") + listOf("a_b", "leaf y { type uint8; }"))}});
    EXPECT_THAT(classesOf(model), ElementsAre("Top", "m:Top:m:a_b", "m:Top:m:a_b_2"));
    EXPECT_THAT(notesOf(model), Contains(HasSubstr("m.yang:3: only a \".\" makes the name")));
    const auto objects = readObjectsOf(
        model, R"({"m:Top": [{"id": "1", "a.b": [{"id": "1"}], "a_b": [{"id": "1", "y": 2}]}]})");
    EXPECT_EQ(objectOf(objects, "Top=1,m:Top:m:a_b_2=1").attributes.size(), 1U);
    EXPECT_EQ(objectOf(objects, "Top=1,m:Top:m:a_b=1").attributes.size(), 0U);
}

TEST(ClassNames, NameForAnyClass_IsPrecededByTheModule) {
    EXPECT_THAT(classesOf(modelOfAll({{"m", listOf("ManagedObject")}})),
                ElementsAre("m:ManagedObject"));
}

TEST(ClassNames, Statements_MeanTheClassOfTheirOwnModule) {
    const std::string body = listOf("Cell", "leaf mastRef { type orv:reference; orv:bidirectional "
                                            "\"Mast.cellRef\"; }") +
                             listOf("Mast", "leaf cellRef { type orv:reference; orv:bidirectional "
                                            "\"Cell.mastRef\"; }");
    const YangModel model = modelOfAll({{"m", body}, {"n", body}});
    ASSERT_EQ(model.model.biDirAssociations.size(), 2U);
    for (const BiDirAssociation& association : model.model.biDirAssociations) {
        const std::string& first = model.model.classes[association.ends[0].moc].name;
        const std::string& second = model.model.classes[association.ends[1].moc].name;
        EXPECT_EQ(first.substr(0, 2), second.substr(0, 2));
    }
}

TEST(ClassNames, Statements_NameClassesOfOtherModules) {
    const std::string body = listOf("Cell", "leaf ref { type string; }") +
                             listOf("Mast", listOf("Port", "leaf a { type string; }")) +
                             listOf("Tower", listOf("Port", "leaf b { type string; }"));
    const auto modelWith = [&](const std::string& statement) {
        return modelOfAll({{"m", body}, {"n", listOf("Cell")}, {"o", "\n" + statement}});
    };
    const YangModel model = modelWith("orv:unidirectional \"m:Cell.ref -> Tower:Port\"; "
                                      "orv:bidirectional \"Mast:Port.a <-> Tower:Port.b\";");
    ASSERT_EQ(model.model.uniDirAssociations.size(), 1U);
    EXPECT_EQ(model.model.classes[model.model.uniDirAssociations[0].owner].name, "m:Cell");
    EXPECT_EQ(model.model.classes[model.model.uniDirAssociations[0].end.moc].name, "Tower:Port");
    EXPECT_EQ(attributeOf(model, "Mast:Port", "a").type.kind, ValueKind::MoRef);
    EXPECT_EQ(modelErrorOf([&] { modelWith("orv:unidirectional \"Cell.ref -> Mast\";"); }),
              "o.yang:2: \"Cell\" is the name of several classes: m:Cell, n:Cell");
    EXPECT_EQ(modelErrorOf([&] { modelWith("orv:unidirectional \"m:Cell.ref -> m:Port\";"); }),
              "o.yang:2: \"m:Port\" is the name of several classes: Mast:Port, Tower:Port");
}

}
}
