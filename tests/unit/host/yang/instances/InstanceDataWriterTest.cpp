// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "yang/instances/InstanceDataWriter.h"

#include "YangTestSupport.h"

#include <gmock/gmock.h>

#include <sstream>

namespace OrvHost {
namespace {

using testing::HasSubstr;
using testing::Not;

NamedValue text(const char* name, std::string value) {
    return {name, {ValueKind::String, {Value(std::move(value))}}};
}

DataObject object(std::string dn, std::vector<NamedValue> attributes = {}) {
    return {std::move(dn), 0, std::move(attributes), false};
}

/// An object with a value of every kind.
DataObject everything() {
    const auto one = [](const char* name, ValueKind kind, Value value) {
        return NamedValue{name, {kind, {std::move(value)}}};
    };
    const auto word = [](const char* value) { return Value(std::string(value)); };
    StructValue pole{{one("height", ValueKind::Uint, std::uint64_t{7}),
                      one("nextRef", ValueKind::MoRef, word("Site=a,Mast=m"))}};
    StructValue place{{one("lat", ValueKind::Double, 59.3), one("pole", ValueKind::Struct, pole)}};
    StructValue first{{one("number", ValueKind::Uint, std::uint64_t{2})}};
    StructValue second{{one("number", ValueKind::Uint, std::uint64_t{1})}};
    return object("Site=a",
                  {text("label", "<\"&\\>"),
                   one("tiny", ValueKind::Int, std::int64_t{-5}),
                   one("large", ValueKind::Int, std::int64_t{-7}),
                   one("huge", ValueKind::Uint, UINT64_MAX),
                   one("ratio", ValueKind::Double, -1.25),
                   one("on", ValueKind::Bool, false),
                   one("marked", ValueKind::Bool, true),
                   one("mood", ValueKind::Enumeration, word("BAD")),
                   one("source", ValueKind::Enumeration, word("site:solar")),
                   one("mixed", ValueKind::String, word("17")),
                   one("twoInts", ValueKind::Int, std::int64_t{150}),
                   {"bands", {ValueKind::Uint, {std::uint64_t{3}, std::uint64_t{1}}}},
                   {"names", {ValueKind::String, {word("line\nfeed"), word("tab\t\xC3\xA5")}}},
                   one("place", ValueKind::Struct, place),
                   one("extra", ValueKind::Struct, StructValue{}),
                   {"slot", {ValueKind::Struct, {first, second}}},
                   text("colour", "red")});
}

class BothFormats : public testing::TestWithParam<DataFormat> {};

INSTANTIATE_TEST_SUITE_P(Formats, BothFormats, testing::Values(DataFormat::Json, DataFormat::Xml),
                         [](const testing::TestParamInfo<DataFormat>& format) {
                             return format.param == DataFormat::Json ? "Json" : "Xml";
                         });

TEST_P(BothFormats, EveryKindOfValue_ComesBack) {
    const std::vector<DataObject> objects{
        everything(), object("Site=a,Antenna=7"),
        object("Truck=T1", {{"load", {ValueKind::Uint, {std::uint64_t{3}}}}}), object("Crate=c")};
    const std::string text = writeObjects(siteModel(), GetParam(), objects);
    EXPECT_EQ(differenceOf(readObjectsOf(siteModel(), text), objects), "") << text;
}

TEST_P(BothFormats, WrittenTwice_IsTheSameText) {
    const std::string once = writeObjects(siteModel(), GetParam(), {everything()});
    const std::string twice =
        writeObjects(siteModel(), GetParam(), readObjectsOf(siteModel(), once));
    EXPECT_EQ(once, twice);
}

TEST_P(BothFormats, MissingAncestors_AreNamedByTheirKeys) {
    const std::string written = writeObjects(siteModel(), GetParam(), {object("Site=a,Mast=m")});
    const std::vector<DataObject> objects = readObjectsOf(siteModel(), written);
    ASSERT_EQ(objects.size(), 2U);
    EXPECT_EQ(objects[0].dn, "Site=a");
    EXPECT_TRUE(objects[0].isBare);
}

TEST_P(BothFormats, AnyOrder_PutsListsTogether) {
    const std::string written =
        writeObjects(siteModel(), GetParam(),
                     {object("Site=a,Mast=m"), object("Site=a,Antenna=1"), object("Site=a,Mast=n"),
                      object("Site=a", {text("label", "late")}), object("Site=b")});
    const std::vector<DataObject> objects = readObjectsOf(siteModel(), written);
    EXPECT_EQ(objects.size(), 5U);
    EXPECT_EQ(valueOf(objectOf(objects, "Site=a"), "label"), "[late]");
}

TEST_P(BothFormats, AttributesWithoutValues_AreLeftOut) {
    const std::string written = writeObjects(
        siteModel(), GetParam(), {object("Site=a", {{"names", {ValueKind::String, {}}}})});
    EXPECT_THAT(written, Not(HasSubstr("names")));
}

TEST(InstanceDataWriter, Json_IsQualifiedWhereTheModuleChanges) {
    const std::string written = writeObjects(
        siteModel(), DataFormat::Json,
        {object("Site=a", {text("label", "x"), text("colour", "red")}), object("Site=a,Fence=f")});
    EXPECT_EQ(written, R"({
  "site:Site": [
    {
      "id": "a",
      "label": "x",
      "site-extension:colour": "red",
      "site-extension:Fence": [
        {
          "id": "f"
        }
      ]
    }
  ]
}
)");
}

TEST(InstanceDataWriter, Xml_DeclaresNamespacesWhereTheModuleChanges) {
    const std::string written =
        writeObjects(siteModel(), DataFormat::Xml, {object("Site=a", {text("colour", "red")})});
    EXPECT_EQ(written, "<Site xmlns=\"urn:orv:test:site\">\n"
                       "  <id>a</id>\n"
                       "  <colour xmlns=\"urn:orv:test:site-extension\">red</colour>\n"
                       "</Site>\n");
}

TEST(InstanceDataWriter, Json_KeysOfNumbers_AreNumbers) {
    EXPECT_THAT(writeObjects(siteModel(), DataFormat::Json, {object("Site=a,Antenna=7")}),
                HasSubstr("\"number\": 7"));
}

TEST(InstanceDataWriter, Json_UnionsTakeTheFormOfTheirMember) {
    EXPECT_THAT(
        writeObjects(siteModel(), DataFormat::Json, {object("Site=a", {text("mixed", "17")})}),
        HasSubstr("\"mixed\": 17"));
    EXPECT_THAT(
        writeObjects(siteModel(), DataFormat::Json, {object("Site=a", {text("mixed", "AUTO")})}),
        HasSubstr("\"mixed\": \"AUTO\""));
}

TEST(InstanceDataWriter, WithoutIndentation_HoldsTheSame) {
    InstanceDataWriter writer(siteModel().schema, DataFormat::Json);
    writer.indent(false).add(everything());
    std::ostringstream out;
    writer.write(out);
    EXPECT_THAT(out.str(), HasSubstr("\n\"label\""));
    EXPECT_EQ(differenceOf(readObjectsOf(siteModel(), out.str()), {everything()}), "");
}

TEST(InstanceDataWriter, Clear_StartsAfresh) {
    InstanceDataWriter writer(siteModel().schema, DataFormat::Json);
    writer.add(object("Site=a"));
    EXPECT_EQ(writer.size(), 1U);
    writer.clear();
    EXPECT_EQ(writer.size(), 0U);
    writer.add(object("Site=a"));
    std::ostringstream out;
    writer.write(out);
    EXPECT_EQ(readObjectsOf(siteModel(), out.str()).size(), 1U);
}

std::string refusalOf(DataFormat format, const std::vector<DataObject>& objects) {
    return dataErrorOf([&] { writeObjects(siteModel(), format, objects); });
}

TEST(InstanceDataWriter, WhatCannotBeWritten_IsRefusedWithTheDn) {
    const NamedValue wrongKind{"label", {ValueKind::Int, {Value(std::int64_t{1})}}};
    const NamedValue two{"label",
                         {ValueKind::String, {Value(std::string("a")), Value(std::string("b"))}}};
    const DataFormat json = DataFormat::Json;
    EXPECT_EQ(refusalOf(json, {object("Site=a", {text("lable", "x")})}),
              "Site=a: there is no attribute or member \"lable\"");
    EXPECT_EQ(refusalOf(json, {object("Site=a", {wrongKind})}), "Site=a: \"label\" is not a text");
    EXPECT_EQ(refusalOf(json, {object("Site=a", {two})}),
              "Site=a: \"label\" has 2 values; one was expected");
    EXPECT_EQ(refusalOf(json, {object("Site=a,Truck=1")}),
              "Site=a,Truck=1: no class \"Truck\" stands under class \"Site\"");
    EXPECT_EQ(refusalOf(json, {object("Mast=1")}), "Mast=1: no class \"Mast\" stands at the top");
    EXPECT_EQ(refusalOf(json, {object("Site=a"), object("Site=a")}),
              "Site=a: the object was added before");
    for (const char* dn : {"", "Site", "Site=", "=a", "Site=a,"}) {
        EXPECT_THAT(refusalOf(json, {object(dn)}), HasSubstr("is not a DN")) << dn;
    }
    EXPECT_EQ(refusalOf(DataFormat::Xml, {object("Site=a", {text("label", "\x01")})}),
              "Site=a: a text with a control character cannot be written as XML");
}

TEST(InstanceDataWriter, InstanceIdentifiers_ReadTheSameFromBothFormats) {
    const std::string head = " yang-version 1.1; namespace 'urn:";
    const YangModel model =
        YangModelReader()
            .offerText("m", "m.yang",
                       "module m {" + head +
                           R"(m'; prefix p; identity kind; identity one { base kind; }
              list A { key id; leaf id { type string; }
                leaf-list any { type instance-identifier { require-instance false; } }
                leaf either { type union { type uint8; type instance-identifier { require-instance false; } } }
                list B { key "k t"; leaf k { type identityref { base kind; } } leaf t { type string; }
                         leaf-list x { type string; } } } })")
            .offerText("n", "n.yang", "module n {" + head + R"(n'; prefix q; import m { prefix m; }
              augment /m:A/m:B { leaf far { type string; } container in { leaf deep { type string; } } } })")
            .load("m")
            .load("n")
            .read();
    const auto objects = readObjectsOf(model, R"yang({"m:A": [{"id": "a", "either": "/m:A[id='a']",
        "any": ["/m:A[id='x:y <z>']", "/m:A[id=\"it's\"]/B[k='m:one'][t='/q/r']/n:far",
                "/m:A[id='1']/B[k='m:one'][t='n:']/x[.='m:v']",
                "/m:A[id='1']/B[k='m:one'][t='t']/n:in/deep"]}]})yang");
    ASSERT_EQ(objects.size(), 1U);
    const std::string xml = writeObjects(model, DataFormat::Xml, objects);
    EXPECT_THAT(xml, HasSubstr("/m:A[m:id='1']/m:B[m:k='m:one'][m:t='t']/n:in/n:deep<"));
    EXPECT_EQ(differenceOf(objects, readObjectsOf(model, xml)), "") << xml;
    EXPECT_EQ(
        differenceOf(objects, readObjectsOf(model, writeObjects(model, DataFormat::Json, objects))),
        "");
}

TEST(InstanceDataWriter, RefusedObject_IsNotWritten) {
    InstanceDataWriter writer(siteModel().schema, DataFormat::Json);
    EXPECT_THROW(writer.add(object("Site=a", {text("lable", "x")})), InstanceDataError);
    std::ostringstream out;
    writer.write(out);
    EXPECT_TRUE(readObjectsOf(siteModel(), out.str()).empty()) << out.str();
}

TEST(InstanceDataWriter, File_ThatCannotBeWritten_IsReported) {
    const InstanceDataWriter writer(siteModel().schema, DataFormat::Json);
    EXPECT_THAT(dataErrorOf([&writer] { writer.writeFile("no/such/directory/x.json"); }),
                HasSubstr("x.json: cannot be written"));
}

TEST(InstanceDataWriter, DecimalNumbers_ReadBackAsTheSame) {
    const YangModel model = modelOfBody("list A { key id; leaf id { type string; }"
                                        " leaf-list d { type decimal64 { fraction-digits 18; } }"
                                        " leaf-list e { type decimal64 { fraction-digits 2; } } }");
    const std::string data =
        R"({"m:A": [{"id": "1", "d": ["0.1", "-9.223372036854775808", "9.223372036854775807",
            "0.000000000000000001", "1.0"], "e": ["0.07", "-3.5", "100.0", "12345678901234.56"]}]})";
    const std::string written = writeObjects(model, DataFormat::Json, readObjectsOf(model, data));
    for (const char* text : {"\"0.1\"", "\"-9.223372036854775808\"", "\"9.223372036854775807\"",
                             "\"0.000000000000000001\"", "\"1.0\"", "\"0.07\"", "\"-3.5\"",
                             "\"100.0\"", "\"12345678901234.56\""}) {
        EXPECT_THAT(written, HasSubstr(text));
    }
    EXPECT_EQ(writeObjects(model, DataFormat::Json, readObjectsOf(model, written)), written);
}

}
}
