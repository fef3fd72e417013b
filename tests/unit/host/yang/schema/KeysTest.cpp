// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// How the keys of lists become naming attributes, and what data makes of them.

#include "YangTestSupport.h"
#include "model/ValueCheck.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvHost {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const char* const kRoutes = R"(
  identity protocol;
  identity bgp { base protocol; }
  list Site {
    key id;
    leaf id { type string; }
    list Route {
      key "prefix protocol port";
      leaf cost { type uint8; }
      leaf protocol { type identityref { base protocol; } }
      leaf prefix { type string { length 1..20; } }
      leaf port { type uint16; }
      leaf-list via { type orv:reference; orv:unidirectional Route; }
      list Hop { key index; leaf index { type uint8; } }
    }
  })";

std::vector<std::string> notesOf(const YangModel& model) {
    std::vector<std::string> texts;
    for (const Problem& note : model.notes) {
        texts.push_back(note.text);
    }
    return texts;
}

std::vector<std::string> attributesOf(const YangModel& model, const std::string& className) {
    std::vector<std::string> names;
    for (const AttributeDef& attribute : classOf(model, className).attributes) {
        names.push_back(attribute.name);
    }
    return names;
}

TEST(Keys, OneKey_OfAnyName_IsAnotherNameOfTheNamingAttribute) {
    const YangModel model = modelOfBody(R"(
      list NRCellDU { key id; leaf id { type string; } leaf label { type string; } })");
    const ClassDef& cell = classOf(model, "NRCellDU");
    EXPECT_EQ(cell.namingAttribute, "nRCellDUId");
    EXPECT_THAT(cell.keys, ElementsAre("id"));
    EXPECT_EQ(cell.findAttribute("id"), cell.findAttribute("nRCellDUId"));
    EXPECT_THAT(attributesOf(model, "NRCellDU"), ElementsAre("nRCellDUId", "label"));
    EXPECT_THAT(notesOf(model), IsEmpty());
}

TEST(Keys, OneKey_GoesOutByItsOwnName) {
    const YangModel model = modelOfBody("list Site { key id; leaf id { type string; } }");
    const auto objects = readObjectsOf(model, R"({"m:Site": [{"id": "a"}]})");
    ASSERT_EQ(objects.size(), 1U);
    EXPECT_EQ(objects[0].dn, "Site=a");
    EXPECT_THAT(writeObjects(model, DataFormat::Json, objects), HasSubstr("\"id\": \"a\""));
    EXPECT_THAT(writeObjects(model, DataFormat::Xml, objects), HasSubstr("<id>a</id>"));
}

TEST(Keys, AttributesWithTheNamesOfTheKey_AreCalledWithTheirModule) {
    const YangModel model = modelOfBody(R"(
      list Site {
        key id;
        leaf id { type string; }
        leaf siteId { type uint8; }
        container attributes { leaf id { type uint16; } }
      })");
    EXPECT_THAT(attributesOf(model, "Site"), ElementsAre("siteId", "m:siteId", "m:id"));
    EXPECT_THAT(
        notesOf(model),
        ElementsAre("attribute \"siteId\" of class \"Site\" is called \"m:siteId\", since "
                    "\"siteId\" names the objects",
                    "attribute \"id\" of class \"Site\" is called \"m:id\", since \"id\" names the "
                    "objects"));
    const std::string text = R"({"m:Site": [{"id": "a", "siteId": 7, "attributes": {"id": 300}}]})";
    const auto objects = readObjectsOf(model, text);
    ASSERT_EQ(objects.size(), 1U);
    EXPECT_EQ(valueOf(objects[0], "m:siteId"), "[7]");
    EXPECT_EQ(valueOf(objects[0], "m:id"), "[300]");
    EXPECT_EQ(
        differenceOf(objects, readObjectsOf(model, writeObjects(model, DataFormat::Json, objects))),
        "");
}

TEST(Keys, AttributeWithTheNameOfTheKey_InAClassWithItsModule_GetsANumber) {
    const std::string head = "yang-version 1.1; prefix p; namespace ";
    const auto read = [&](const std::string& attribute) {
        return YangModelReader()
            .offerText("m", "m.yang",
                       "module m {" + head +
                           "\"m\"; list Cell { key CellId; "
                           "leaf CellId { type string; } container attributes { leaf " +
                           attribute + " { type string; } } } }")
            .offerText("n", "n.yang",
                       "module n {" + head +
                           "\"n\"; list Cell { key id; "
                           "leaf id { type string; } } }")
            .load("m")
            .load("n")
            .read();
    };
    const YangModel model = read("CellId");
    EXPECT_THAT(attributesOf(model, "m:Cell"), ElementsAre("m:CellId", "m:CellId_2"));
    EXPECT_THAT(notesOf(model), ElementsAre(HasSubstr("is called \"m:CellId_2\"")));
    const auto objects =
        readObjectsOf(model, R"({"m:Cell": [{"CellId": "a", "attributes": {"CellId": "b"}}]})");
    EXPECT_EQ(valueOf(objectOf(objects, "m:Cell=a"), "m:CellId_2"), "[b]");
}

const char* const kIdTwice = R"(
  list Site { key id; leaf id { type string; } leaf cell { type orv:reference; } }
  list Cell {
    key id;
    leaf id { type string; }
    container attributes { leaf id { type orv:reference;
      STATEMENT } }
  })";

std::string withStatement(const std::string& inLeaf, const std::string& inModule = "") {
    std::string body = kIdTwice;
    const std::string word = "STATEMENT";
    return body.replace(body.find(word), word.size(), inLeaf) + inModule;
}

TEST(Keys, StatementInAnAttributeThatIsCalledWithItsModule_IsAboutThatAttribute) {
    const YangModel uni = modelOfBody(withStatement("orv:unidirectional Site;"));
    ASSERT_EQ(uni.model.uniDirAssociations.size(), 1U);
    EXPECT_EQ(uni.model.uniDirAssociations[0].end.name, "m:id");
    const YangModel far =
        modelOfBody(withStatement("", "orv:unidirectional \"Cell.m:id -> Site\";"));
    EXPECT_EQ(far.model.uniDirAssociations.size(), 1U);
    const YangModel both =
        modelOfBody(withStatement("", "orv:bidirectional \"Cell.m:id 0..1 <-> Site.cell 0..1\";"));
    EXPECT_EQ(both.model.biDirAssociations.size(), 1U);
}

TEST(Keys, StatementsAboutAKey_AreRefusedWhereTheyStand) {
    const auto errorOf = [](const std::string& body) {
        return modelErrorOf([&] { modelOfBody(body); });
    };
    EXPECT_THAT(
        errorOf(withStatement("", "\n\norv:bidirectional \"Cell.id <-> Site.cell\";")),
        testing::MatchesRegex("m.yang:[0-9]+: bidirectional \"Cell.id <-> Site.cell\": \"id\" "
                              "is a key of class \"Cell\" and names its objects; another "
                              "attribute was expected"));
    EXPECT_THAT(
        errorOf("list Site { key id;\nleaf id { type string;\norv:unidirectional Site; } }"),
        HasSubstr("unidirectional \"Site\": \"id\" is a key of class \"Site\""));
}

TEST(Keys, SeveralKeys_MakeAClass) {
    const YangModel model = modelOfBody(kRoutes);
    const ClassDef& route = classOf(model, "Route");
    EXPECT_EQ(route.namingAttribute, "routeId");
    EXPECT_THAT(route.keys, ElementsAre("prefix", "protocol", "port"));
    EXPECT_EQ(route.findAttribute("protocol")->keyPosition, 1U);
    EXPECT_THAT(notesOf(model), IsEmpty());
    const TypeDef& naming = route.findAttribute("routeId")->type;
    EXPECT_EQ(whyRefused(naming, Value(std::string("10.0.0.0/8|m:bgp|80"))), "");
    EXPECT_THAT(whyRefused(naming, Value(std::string("10.0.0.0/8|m:bgp"))),
                HasSubstr("expected the 3 key values prefix|protocol|port, got 2"));
    EXPECT_THAT(whyRefused(naming, Value(std::string("10.0.0.0/8|bgp|80"))),
                HasSubstr("key \"protocol\" of prefix|protocol|port"));
    EXPECT_THAT(whyRefused(naming, Value(std::string("10.0.0.0/8|m:bgp|080"))),
                HasSubstr("names an object as \"80\" only"));
    EXPECT_THAT(whyRefused(naming, Value(std::string("|m:bgp|80"))),
                HasSubstr("key \"prefix\" of prefix|protocol|port"));
}

TEST(Keys, SeveralKeys_InData_AreTakenApartAgain) {
    const YangModel model = modelOfBody(kRoutes);
    const std::string text = R"({"m:Site": [{"id": "a", "Route": [
        {"prefix": "10.0.0.0/8", "protocol": "m:bgp", "port": 80, "cost": 3,
         "via": ["Site=a,Route=a%2C %7C%25|m:bgp|1"], "Hop": [{"index": 1}]},
        {"port": 1, "protocol": "m:bgp", "prefix": "a, |%"}]}]})";
    const auto objects = readObjectsOf(model, text);
    ASSERT_EQ(objects.size(), 4U);
    EXPECT_EQ(objects[1].dn, "Site=a,Route=10.0.0.0/8|m:bgp|80");
    EXPECT_EQ(valueOf(objects[1], "cost"), "[3]");
    EXPECT_EQ(valueOf(objects[1], "prefix"), "absent");
    EXPECT_EQ(objects[2].dn, "Site=a,Route=10.0.0.0/8|m:bgp|80,Hop=1");
    EXPECT_EQ(objects[3].dn, "Site=a,Route=a%2C %7C%25|m:bgp|1");
    EXPECT_TRUE(objects[3].isBare);
    EXPECT_EQ(problemsOf(model, objects), "");
    const std::string json = writeObjects(model, DataFormat::Json, objects);
    EXPECT_THAT(json, HasSubstr("\"prefix\": \"a, |%\""));
    EXPECT_THAT(json, HasSubstr("\"port\": 80"));
    for (const DataFormat format : {DataFormat::Json, DataFormat::Xml}) {
        const std::string written = writeObjects(model, format, objects);
        EXPECT_EQ(differenceOf(objects, readObjectsOf(model, written)), "") << written;
    }
}

TEST(Keys, SeveralKeys_NameWithoutThem_CannotBeWritten) {
    const YangModel model = modelOfBody(kRoutes);
    EXPECT_THAT(dataErrorOf([&] {
                    writeObjects(model, DataFormat::Json, {{"Site=a,Route=b|c", 0, {}, false}});
                }),
                HasSubstr("Site=a,Route=b|c: the name \"b|c\" does not consist of the 3 key values "
                          "of its class"));
}

TEST(Keys, ReferencesAndPathsAsKeys_MakeStructs) {
    const YangModel model = modelOfBody(R"(
      list Top { key "a b"; leaf a { type orv:reference; } leaf b { type string; } }
      list Site {
        key id;
        leaf id { type string; }
        list One { key a; leaf a { type orv:reference; } }
        list Path { key a; leaf a { type instance-identifier { require-instance false; } } }
        list Two {
          key "a b";
          leaf a { type string; }
          leaf b { type union { type uint8; type instance-identifier; } }
        }
        list Three {
          key "a b";
          orv:struct;
          leaf a { type string; }
          leaf b { type string; }
        }
      })");
    EXPECT_EQ(model.model.classes.size(), 1U);
    EXPECT_THAT(attributesOf(model, "Site"), ElementsAre("siteId", "One", "Path", "Two", "Three"));
    EXPECT_EQ(attributeOf(model, "Site", "Two").type.kind, ValueKind::Struct);
    EXPECT_THAT(
        notesOf(model),
        testing::UnorderedElementsAre(
            "the entries of this list are not part of the model, since its key \"a\" is a "
            "reference: at /m:Top",
            "the entries of this list are values and not objects, since its key \"a\" is a "
            "reference: at /m:Site/One",
            "the entries of this list are values and not objects, since its key \"a\" is an "
            "instance-identifier: at /m:Site/Path",
            "the entries of this list are values and not objects, since its key \"b\" can "
            "be an instance-identifier: at /m:Site/Two",
            "leafrefs and instance-identifiers in a union are values like others: that "
            "what they name exists is not checked: at /m:Site/Two/b"));
}

TEST(Keys, ListsWithTheSameKeysInAnotherOrder_AreTwoClasses) {
    const auto withKeys = [](const std::string& second) {
        return modelOfBody(R"(
          list A { key id; leaf id { type string; }
            list R { key "a b"; leaf a { type string; } leaf b { type string; } } }
          list B { key id; leaf id { type string; }
            list R { key ")" +
                           second + R"("; leaf a { type string; } leaf b { type string; } } })");
    };
    EXPECT_EQ(withKeys("a b").model.classes.size(), 3U);
    EXPECT_EQ(withKeys("b a").model.classes.size(), 4U);
}

TEST(Keys, KeyWithTheNameOfTheNamingAttribute_AmongSeveral_IsCalledWithItsModule) {
    const YangModel model = modelOfBody(R"(
      list Rule { key "ruleId kind"; leaf ruleId { type string; } leaf kind { type string; } })");
    EXPECT_THAT(classOf(model, "Rule").keys, ElementsAre("m:ruleId", "kind"));
    EXPECT_THAT(attributesOf(model, "Rule"), ElementsAre("ruleId", "m:ruleId", "kind"));
    const auto objects = readObjectsOf(model, R"({"m:Rule": [{"ruleId": "1", "kind": "x"}]})");
    EXPECT_EQ(objects.at(0).dn, "Rule=1|x");
    EXPECT_THAT(writeObjects(model, DataFormat::Json, objects), HasSubstr("\"ruleId\": \"1\""));
}

}

}
