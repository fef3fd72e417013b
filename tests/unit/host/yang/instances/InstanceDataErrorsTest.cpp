// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "YangTestSupport.h"
#include "yang/instances/InstanceDataReader.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

struct Broken {
    const char* file;
    const char* place; ///< "file:line: "
    const char* text;
};

constexpr Broken kBroken[] = {
    {"comma.json", "comma.json:3: ", "expected a JSON object's member"},
    {"comma-separated.json", "comma-separated.json:1: ", "JSON that begins with \"{\""},
    {"cut-off.json", "cut-off.json:4: ", "the text ends too early"},
    {"cut-off-between.json", "cut-off-between.json:5: ", "the text ends too early"},
    {"empty.json", "empty.json:1: ", "was expected"},
    {"given-twice.json", "given-twice.json:3: ", "Site[id='a']/label: is given twice"},
    {"list-as-object.json", "list-as-object.json:2: ", "lists are written as [...]"},
    {"mismatch.xml", "mismatch.xml:3: ", "tag mismatch"},
    {"missing-comma.json", "missing-comma.json:7: ", "in {...}, \",\" or \"}\" was expected"},
    {"no-key.json", "no-key.json:3: ", "every entry of a list has its key"},
    {"no-module-name.json", "no-module-name.json:2: ", "as in \"module:Name\""},
    {"no-namespace.xml", "no-namespace.xml:2: ", "xmlns=\"...\""},
    {"no-naming-value.json", "no-naming-value.json:3: ", "\"a,b=1\" cannot be a value in a DN"},
    {"out-of-range.json", "out-of-range.json:5: ", "expected: uint16 (1..10 | 20)"},
    {"out-of-range.xml", "out-of-range.xml:3: ", "expected: int8"},
    {"pattern.json", "pattern.json:3: ", "[A-Z]{2}[0-9]*"},
    {"quoted-boolean.json", "quoted-boolean.json:3: ", "true and false are written without quotes"},
    {"quoted-small-number.json",
     "quoted-small-number.json:4: ", "a number of up to 32 bits is written without quotes"},
    {"unknown-attribute.json", "unknown-attribute.json:4: ", "\"lable\" not found"},
    {"unknown-element.xml", "unknown-element.xml:3: ", "\"lable\" not found"},
    {"unknown-enumerator.json", "unknown-enumerator.json:3: ", "expected: one of GOOD, BAD"},
    {"unknown-module.json", "unknown-module.json:2: ", "the module must be loaded"},
    {"unknown-namespace.xml", "unknown-namespace.xml:2: ", "the module must be loaded"},
    {"unquoted-64-bit-number.json",
     "unquoted-64-bit-number.json:4: ", "numbers of 64 bits are written in quotes"},
    {"unquoted-decimal.json", "unquoted-decimal.json:4: ", "decimal numbers are written in quotes"},
    {"unquoted-text.json", "unquoted-text.json:3: ", "texts, numbers of 64 bits"}};

class BrokenData : public testing::TestWithParam<Broken> {};

TEST_P(BrokenData, IsReportedWithFileLineAndWhatWasExpected) {
    const std::filesystem::path file = testData(std::string("broken/") + GetParam().file);
    const std::string error = dataErrorOf([&file] { readObjects(siteModel(), {file}); });
    EXPECT_THAT(error, AllOf(HasSubstr(GetParam().place), HasSubstr(GetParam().text)));
}

INSTANTIATE_TEST_SUITE_P(EachKind, BrokenData, testing::ValuesIn(kBroken),
                         [](const testing::TestParamInfo<Broken>& broken) {
                             std::string name = broken.param.file;
                             std::replace_if(
                                 name.begin(), name.end(),
                                 [](char c) { return c == '-' || c == '.'; }, '_');
                             return name;
                         });

TEST(InstanceDataErrors, EveryBrokenFile_HasATest) {
    std::set<std::string> tested;
    for (const Broken& broken : kBroken) {
        tested.insert(broken.file);
    }
    for (const auto& entry : std::filesystem::directory_iterator(testData("broken"))) {
        EXPECT_EQ(tested.count(entry.path().filename().string()), 1U) << entry.path();
    }
}

TEST(InstanceDataErrors, SeveralFiles_TellTheErrorOfEach) {
    const std::string error = dataErrorOf([] {
        readObjects(siteModel(), {testData("broken/comma.json"), testData("broken/no-key.json"),
                                  testData("broken/unknown-module.json")});
    });
    EXPECT_THAT(error, AllOf(HasSubstr("comma.json:3: "), HasSubstr("no-key.json:3: "),
                             HasSubstr("unknown-module.json:2: ")));
    EXPECT_EQ(std::count(error.begin(), error.end(), '\n'), 2);
}

TEST(InstanceDataErrors, FileToBeReadTwice_IsRefusedOnce) {
    const TemporaryDirectory directory;
    const auto file = directory.write("good.json", R"({"site:Site": [{"id": "a"}]})");
    for (const auto& paths : {std::vector{file, directory.path() / "." / "good.json"},
                              std::vector{directory.path(), file}}) {
        EXPECT_EQ(dataErrorOf([&] { readObjects(siteModel(), paths); }),
                  paths[1].string() +
                      ": is to be read twice: it is named twice, or its directory is named, too");
    }
}

TEST(InstanceDataErrors, FilesAfterAFaultyOne_HandOutNothing) {
    const TemporaryDirectory directory;
    const auto good = directory.write("good.json", R"({"site:Site": [{"id": "a"}]})");
    const auto next = directory.write("next.json", R"({"site:Site": [{"id": "b"}]})");
    int objects = 0;
    InstanceDataReader reader(siteModel().schema);
    EXPECT_THROW(reader.read({good, testData("broken/comma.json"), next},
                             [&objects](DataObject&&, const std::string&) { ++objects; }),
                 InstanceDataError);
    EXPECT_EQ(objects, 1);
}

/// The notes on reading a text, one on each line, and the number of objects in front.
std::string notesOf(const std::string& text, bool skipsUnknown) {
    InstanceDataReader reader(siteModel().schema);
    if (skipsUnknown) {
        reader.skipUnknown();
    }
    std::string notes =
        std::to_string(reader.readText(text, "d", [](DataObject&&, const std::string&) {}));
    for (const Problem& note : reader.notes()) {
        notes += "\n" + toText(note);
    }
    return notes;
}

/// The names of the attributes that a text gives its objects, what is unknown left out.
std::vector<std::string> attributesBesideUnknown(const std::string& text) {
    std::vector<std::string> names;
    InstanceDataReader(siteModel().schema)
        .skipUnknown()
        .readText(text, "d", [&names](DataObject&& object, const std::string&) {
            for (const NamedValue& attribute : object.attributes) {
                names.push_back(attribute.first);
            }
        });
    return names;
}

TEST(InstanceDataErrors, WhatTheModelLacks_IsSkippedWithANote) {
    EXPECT_EQ(notesOf(R"({"site:Site": [{"id": "a", "anything": {"x": 1}},
                                        {"id": "b", "anything": {}}],
                          "site-extension:motto": "x"})",
                      false),
              "2\nd: /site:Site/anything has no place in the model and is skipped: at "
              "/site:Site[id='a']/anything and at 1 more place"
              "\nd: /site-extension:motto has no place in the model and is skipped: at "
              "/site-extension:motto");
}

/// A class with values of many types, and operations beside it.
const YangModel& operationsModel() {
    static const YangModel model = modelOfBody(R"(
      list Box { key id; leaf id { type string; } leaf text { type string; }
        leaf big { type uint64; } leaf small { type int8; } leaf part { type decimal64 {
          fraction-digits 2; } } leaf on { type boolean; } leaf bare { type empty; }
        leaf-list many { type uint16; } container inner { leaf a { type string; } }
        list pair { orv:struct; key x; leaf x { type uint8; } leaf y { type string; } }
        action reset { input { leaf a { type string; } } }
        notification full { leaf level { type uint8; } } }
      rpc reboot { input { leaf delay { type uint8; } } }
      notification alarm { leaf what { type string; } })");
    return model;
}

struct WithOperations {
    DataFormat format;
    const char* box;     ///< the data of an object
    const char* inside;  ///< operations to be put in front of it
    const char* outside; ///< the same, beside the object
};

class OperationsInData : public testing::TestWithParam<WithOperations> {
protected:
    static std::string textOf(const std::string& inside, const std::string& outside) {
        const bool isJson = GetParam().format == DataFormat::Json;
        return isJson ? "{" + outside + "\"m:Box\": [{" + inside + GetParam().box + "}]}"
                      : outside + "<Box xmlns=\"urn:m\">" + inside + GetParam().box + "</Box>";
    }
};

TEST_P(OperationsInData, AreSkippedWithANoteAndLeaveTheRestAsItIs) {
    const YangModel& model = operationsModel();
    std::vector<DataObject> objects;
    InstanceDataReader reader(model.schema);
    const auto keep = [&objects](DataObject&& object, const std::string&) {
        objects.push_back(std::move(object));
    };
    reader.readText(textOf(GetParam().inside, GetParam().outside), "d", keep);
    std::vector<std::string> notes;
    for (const Problem& note : reader.notes()) {
        notes.push_back(toText(note));
    }
    const std::string expected =
        writeObjects(model, GetParam().format, readObjectsOf(model, textOf("", "")));
    EXPECT_EQ(writeObjects(model, GetParam().format, objects), expected);
    EXPECT_THAT(expected, testing::AllOf(HasSubstr("18446744073709551615"), HasSubstr("1.5"),
                                         HasSubstr("bare"), HasSubstr("many"), HasSubstr("y2")));
    EXPECT_THAT(notes, testing::UnorderedElementsAre(
                           "d: /m:Box/reset is no data and is skipped: at /m:Box/reset",
                           "d: /m:Box/full is no data and is skipped: at /m:Box/full",
                           "d: /m:reboot is no data and is skipped: at /m:reboot",
                           "d: /m:alarm is no data and is skipped: at /m:alarm"));
}

TEST_P(OperationsInData, DoNotHideWhatIsWrongInTheRest) {
    const std::string wrong =
        GetParam().format == DataFormat::Json ? R"("nothing": 1, )" : "<nothing>1</nothing>";
    EXPECT_THAT(dataErrorOf([&] {
                    readObjectsOf(operationsModel(),
                                  textOf(GetParam().inside + wrong, GetParam().outside));
                }),
                testing::ContainsRegex("^data: Node \"nothing\" not found as a child of \"Box\""));
}

INSTANTIATE_TEST_SUITE_P(
    Formats, OperationsInData,
    testing::Values(
        WithOperations{
            DataFormat::Json,
            R"("id": "1", "text": "q\"<\u00e9\n&", "big": "18446744073709551615", "small": -3,
               "part": "1.5", "on": false, "bare": [null], "many": [1, 2],
               "inner": {"a": "x"}, "pair": [{"x": 1, "y": "y1"}, {"x": 2, "y": "y2"}])",
            R"("reset": {"a": "x"}, "full": {"level": 3}, )",
            R"("m:reboot": {"delay": 3}, "m:alarm": {"what": "x"}, )"},
        WithOperations{
            DataFormat::Xml,
            "<id>1</id><text>q\"&lt;\u00e9\n&amp;</text><big>18446744073709551615</big>"
            "<small>-3</small><part>1.5</part><on>false</on><bare/><many>1</many><many>2</many>"
            "<inner><a>x</a></inner><pair><x>1</x><y>y1</y></pair><pair><x>2</x><y>y2</y></pair>",
            "<reset><a>x</a></reset><full><level>3</level></full>",
            "<reboot xmlns=\"urn:m\"><delay>3</delay></reboot>"
            "<alarm xmlns=\"urn:m\"><what>x</what></alarm>"}),
    [](const auto& one) { return one.param.format == DataFormat::Json ? "Json" : "Xml"; });

TEST(InstanceDataErrors, UnknownData_IsSkippedOnRequest) {
    const std::string json = R"({"site:Site": [{"id": "a", "lable": "x"}], "other:thing": 1})";
    EXPECT_EQ(notesOf(json, true),
              "1\nd: no loaded module knows /site:Site/lable: it is skipped: at /site:Site[id='a']"
              "\nd: no loaded module knows other:thing: it is skipped: at the top");
    EXPECT_THAT(dataErrorOf([&json] { notesOf(json, false); }),
                AllOf(HasSubstr(R"(Node "lable" not found)"), HasSubstr("(Did you mean label?)"),
                      Not(HasSubstr("--skip-unknown"))));
    EXPECT_THAT(
        dataErrorOf([] { notesOf(R"({"site:Site": [{"id": "a", "extension": "x"}]})", false); }),
        AllOf(Not(HasSubstr("Did you mean")), HasSubstr("--skip-unknown")));
    EXPECT_THAT(dataErrorOf([] { notesOf(R"({"site:Siet": [{"id": "a"}]})", false); }),
                HasSubstr("(Did you mean Site?)"));
}

TEST(InstanceDataErrors, UnknownData_DoesNotHideWrongValues) {
    EXPECT_THAT(dataErrorOf([] {
                    notesOf(R"({"site:Site": [{"id": "a", "lable": "x", "port": 99}]})", true);
                }),
                HasSubstr("the value \"99\" does not fit its type, at /site:Site[id='a']/port"));
}

TEST(InstanceDataErrors, UnknownDataOfAnyForm_LosesNothingOfWhatStandsBesideIt) {
    for (const std::string unknown : {R"("x")", R"(["x", "y"])", R"({"a": {"b": [1, 2]}})",
                                      "[null]", "{}", R"([{"k": 1}, {"k": 2}])"}) {
        const std::string inside =
            R"({"site:Site": [{"id": "a", "zzz": )" + unknown + R"(, "port": 8}]})";
        const std::string outside =
            R"({"no:top": )" + unknown + R"(, "site:Site": [{"id": "a", "port": 8}]})";
        EXPECT_THAT(attributesBesideUnknown(inside), testing::ElementsAre("port")) << inside;
        EXPECT_THAT(attributesBesideUnknown(outside), testing::ElementsAre("port")) << outside;
    }
}

TEST(InstanceDataErrors, MissingFileAndEmptyDirectory_AreReported) {
    EXPECT_EQ(dataErrorOf([] { readObjects(siteModel(), {"no/such/file.json"}); }),
              "no/such/file.json: cannot be read: there is no such file; a file with instance data "
              "was expected");
    const TemporaryDirectory directory;
    EXPECT_THAT(dataErrorOf([&directory] { readObjects(siteModel(), {directory.path()}); }),
                HasSubstr("the directory holds no .json or .xml file"));
}

TEST(InstanceDataErrors, AfterTheData_AnythingButBlanks_IsRefusedWithItsLine) {
    const std::string json = "{\"site:Site\": [{\"id\": \"a\"}]}\n";
    const std::string xml = "<Site xmlns=\"urn:orv:test:site\"><id>a</id></Site>\n";
    EXPECT_EQ(dataErrorOf([&] { readObjectsOf(siteModel(), json + " \t\r\n"); }), "");
    for (const std::string& text : {json + "{\"site:Site\": [{\"id\": \"b\"}]}", json + "x"}) {
        EXPECT_THAT(
            dataErrorOf([&] { readObjectsOf(siteModel(), text); }),
            HasSubstr(":2: the data is complete before this line ends, but the file goes on"))
            << text;
    }
    EXPECT_EQ(readObjectsOf(siteModel(), xml + xml.substr(0, xml.find('a')) + "b" +
                                             xml.substr(xml.find('a') + 1))
                  .size(),
              2U);
}

// The parser accepts these, or takes a zero byte for the end.
TEST(InstanceDataErrors, NoUtf8OrControlCharacters_AreRefusedWithTheirLine) {
    const std::string json = "{\"site:Site\": [{\"id\": \"a\"}]}\n";
    const std::string head = "<Site xmlns=\"urn:orv:test:site\">\n<id><![CDATA[a";
    const std::string tail = "]]></id></Site>\n";
    const char* const expected = ":2: text in UTF-8 was expected, without control characters";
    EXPECT_EQ(dataErrorOf([&] { readObjectsOf(siteModel(), head + "\u00ed" + tail); }), "");
    for (const char* const bad : {"\xed", "\xc3", "\xff", "\xed\xa0\x80", "\x01"}) {
        EXPECT_THAT(dataErrorOf([&] { readObjectsOf(siteModel(), head + bad + tail); }),
                    HasSubstr(expected))
            << bad;
    }
    for (const std::string& cut : {json + '\0' + json, head + '\0' + tail}) {
        EXPECT_THAT(dataErrorOf([&] { readObjectsOf(siteModel(), cut); }), HasSubstr(expected));
    }
}

TEST(InstanceDataErrors, DeepNonsense_IsRefused) {
    const std::string deep = std::string(100000, '[') + std::string(100000, ']');
    EXPECT_NE(dataErrorOf([&deep] { readObjectsOf(siteModel(), "{\"site:Site\": " + deep + "}"); }),
              "");
}

}
}
