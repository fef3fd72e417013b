// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Objects have the lines of their names in texts that the library reads. PlainJsonReaderTest has
// the others.

#include "RanModel.h"
#include "RanNetwork.h"
#include "RanPlan.h"
#include "YangTestSupport.h"
#include "base/DnView.h"
#include "yang/instances/InstanceDataReader.h"

#include <gmock/gmock.h>

#include <sstream>

namespace OrvHost {
namespace {

using testing::ElementsAre;

/// "DN:line" of each object.
std::vector<std::string> linesIn(const YangModel& model, const std::string& text,
                                 bool skipsUnknown = false) {
    std::vector<std::string> lines;
    InstanceDataReader reader(model.schema);
    if (skipsUnknown) {
        reader.skipUnknown();
    }
    reader.readText(text, "d", [&lines](DataObject&& object, const std::string&) {
        lines.push_back(object.dn + ":" + std::to_string(object.line));
    });
    return lines;
}

TEST(EntryLines, Json_LineOfTheName) {
    // A number with an exponent is not plain.
    EXPECT_THAT(linesIn(siteModel(), "{\"site:Site\": [\n"
                                     "{\"id\": \"a\", \"small\": 5e0},\r\n\n"
                                     "{\"label\": \"}]{\\\"\",\n\"id\":\n\"b\"}]}"),
                ElementsAre("Site=a:2", "Site=b:6"));
}

TEST(EntryLines, Xml_LineOfTheName) {
    EXPECT_THAT(linesIn(siteModel(),
                        "<?xml version='1.0'?>\n"
                        "<!-- <Site> -->\n"
                        "<Site xmlns='urn:orv:test:site'><id>a</id>\n"
                        "<label><![CDATA[<id>\n]]></label></Site>\n"
                        "<s:Site xmlns:s=\"urn:orv:test:site\"\n a='>'>\n"
                        "<s:id\n>b</s:id></s:Site>",
                        true),
                ElementsAre("Site=a:3", "Site=b:8"));
}

const YangModel& treeModel() {
    static const YangModel model = modelOfBody(R"(
      list A { key id; leaf id { type string; } leaf note { type string; }
        list B { key "x y"; leaf x { type string; } leaf y { type string; } }
        list C { key id; leaf id { type string; } } })");
    return model;
}

TEST(EntryLines, ListsThatAreMixedInTheText_HaveEachItsOwnLine) {
    EXPECT_THAT(linesIn(treeModel(), "<A xmlns='urn:m'>\n"
                                     "<C><id>1</id></C>\n"
                                     "<B><x>1</x>\n<y>1</y></B>\n"
                                     "<B><x>2</x>\n<y>1</y></B>\n"
                                     "<C><id>2</id></C>\n"
                                     "<id>1</id></A>\n"
                                     "<A xmlns='urn:m'><id>2</id><C>\n<id>1</id></C></A>"),
                ElementsAre("A=1:8", "A=1,B=1|1:4", "A=1,B=2|1:6", "A=1,C=1:2", "A=1,C=2:7",
                            "A=2:9", "A=2,C=1:10"));
}

TEST(EntryLines, UnknownDataOfTheSameNames_DoesNotCount) {
    EXPECT_THAT(linesIn(treeModel(),
                        "<other xmlns='urn:m'><A><id>0</id></A></other>\n"
                        "<A xmlns='urn:other'>\n<id>0</id></A>\n"
                        "<A xmlns='urn:m'><id>1</id>\n"
                        "<zzz><C><id>1</id></C></zzz><C xmlns='urn:other'><id>2</id></C>\n"
                        "<C><id>3</id></C></A>",
                        true),
                ElementsAre("A=1:4", "A=1,C=3:6"));
    EXPECT_THAT(linesIn(treeModel(),
                        "{\"m:zzz\": {\"m:A\": [{\"id\": \"0\"}]},\n"
                        "\"m:A\": [{\"id\": \"1\", \"zzz\": [{\"C\": [{\"id\": \"\\u0031\"}]}],\n"
                        "\"C\": [\n{\"id\": \"3\"}]}]}",
                        true),
                ElementsAre("A=1:2", "A=1,C=3:4"));
}

TEST(EntryLines, Problems_HaveTheLineOfTheirObject) {
    EXPECT_THAT(dataErrorOf([] {
                    linesIn(treeModel(), "<A xmlns='urn:m'><id>a</id></A>\n"
                                         "<A xmlns='urn:m'><id>b,c</id></A>");
                }),
                testing::StartsWith("d:2: "));
}

TEST(EntryLines, LargeData_EachObjectHasTheLineWithItsName) {
    static const YangModel model = RanGenerator::readRanModel();
    std::vector<DataObject> objects;
    RanGenerator::RanNetwork(RanGenerator::RanPlan::forSize(500), 1)
        .generate([&](const DataObject& object) { objects.push_back(object); });
    std::istringstream input(writeObjects(model, DataFormat::Xml, objects));
    std::vector<std::string> lines;
    for (std::string line; std::getline(input, line);) {
        lines.push_back(line);
    }
    std::size_t seen = 0;
    InstanceDataReader(model.schema)
        .readText(input.str(), "d", [&](DataObject&& object, const std::string&) {
            ASSERT_GT(object.line, 0) << object.dn;
            const std::string name(DnView(object.dn).last().value());
            EXPECT_THAT(lines[static_cast<std::size_t>(object.line) - 1],
                        testing::HasSubstr(">" + name + "<"))
                << object.dn;
            ++seen;
        });
    EXPECT_EQ(seen, objects.size());
}

}
}
