// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "yang/instances/InstanceDataReader.h"

#include "YangTestSupport.h"

#include <gmock/gmock.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;

constexpr const char* kSite = R"({
  "site:Site": [
    {
      "id": "a",
      "label": "ab", "tiny": -5, "small": 5, "large": "-7", "huge": "18446744073709551615",
      "ratio": "-1.250", "on": false, "marked": [null], "port": 20, "code": "AB1", "mood": "BAD",
      "flags": "down up", "blob": "AQID", "source": "solar", "mixed": "AUTO", "twoInts": 150,
      "buddy": 3, "where": "/site:Site[id='b']", "heat": -20,
      "bands": [3, 1, 2], "names": ["z", "a"],
      "place": {"lat": "59.30", "pole": {"height": 7, "nextRef": "Site=a,Mast=m"}},
      "extra": {},
      "slot": [{"number": 2, "mastRef": "Site=a,Mast=m"}, {"number": 1}],
      "route": [{"from": "x", "to": "y", "cost": "5"}],
      "reading": [{"value": 1}, {"value": 1}],
      "single": "s",
      "site-extension:colour": "red",
      "Antenna": [{"number": 7}],
      "Mast": [{"name": "m"}, {"name": "b"}]
    },
    {"id": "b"}
  ],
  "site-extension:depot": {"Truck": [{"plate": "T1", "load": 3}]}
})";

std::vector<std::string> dnsOf(const std::vector<DataObject>& objects) {
    std::vector<std::string> dns;
    for (const DataObject& object : objects) {
        dns.push_back(object.dn);
    }
    return dns;
}

TEST(InstanceDataReader, Objects_ComeParentsFirstAndInTheOrderOfTheText) {
    const std::vector<DataObject> objects = readObjectsOf(siteModel(), kSite);
    EXPECT_THAT(dnsOf(objects),
                ElementsAre("Site=a", "Site=a,route=x|y", "Site=a,Mast=m", "Site=a,Mast=b",
                            "Site=a,Antenna=7", "Site=b", "Truck=T1"));
    EXPECT_EQ(siteModel().model.classes[objects[4].moc].name, "Antenna");
}

TEST(InstanceDataReader, Values_AreOfTheirKinds) {
    const std::vector<DataObject> objects = readObjectsOf(siteModel(), kSite);
    const DataObject& site = objects.at(0);
    const std::pair<const char*, const char*> expected[] = {{"label", "[ab]"},
                                                            {"tiny", "[-5]"},
                                                            {"huge", "[18446744073709551615]"},
                                                            {"ratio", "[-1.25]"},
                                                            {"on", "[false]"},
                                                            {"marked", "[true]"},
                                                            {"mood", "[BAD]"},
                                                            {"flags", "[up down]"},
                                                            {"blob", "[AQID]"},
                                                            {"source", "[site:solar]"},
                                                            {"mixed", "[AUTO]"},
                                                            {"twoInts", "[150]"},
                                                            {"buddy", "[3]"},
                                                            {"where", "[/site:Site[id='b']]"},
                                                            {"heat", "[-20]"},
                                                            {"bands", "[3, 1, 2]"},
                                                            {"names", "[z, a]"},
                                                            {"extra", "[{}]"},
                                                            {"single", "[s]"},
                                                            {"colour", "[red]"},
                                                            {"id", "absent"}};
    for (const auto& [name, value] : expected) {
        EXPECT_EQ(valueOf(site, name), value) << name;
    }
}

TEST(InstanceDataReader, EveryKind_IsThatOfTheModel) {
    for (const DataObject& object : readObjectsOf(siteModel(), kSite)) {
        const ClassDef& moc = siteModel().model.classes[object.moc];
        for (const NamedValue& value : object.attributes) {
            const AttributeDef* def = moc.findAttribute(value.first);
            ASSERT_NE(def, nullptr) << value.first;
            EXPECT_EQ(value.second.kind, def->type.kind) << value.first;
            for (const Value& one : value.second.values) {
                EXPECT_TRUE(isOfKind(one, value.second.kind)) << value.first;
            }
        }
    }
}

TEST(InstanceDataReader, Structs_KeepTheirMembersAndOrder) {
    const std::vector<DataObject> objects = readObjectsOf(siteModel(), kSite);
    const DataObject& site = objects.at(0);
    EXPECT_EQ(valueOf(site, "place"), "[{lat=59.3, pole={height=7, nextRef=Site=a,Mast=m}}]");
    EXPECT_EQ(valueOf(site, "slot"), "[{number=2, mastRef=Site=a,Mast=m}, {number=1}]");
    EXPECT_EQ(valueOf(site, "reading"), "[{value=1}, {value=1}]");
}

TEST(InstanceDataReader, BareObjects_AreThoseWithNothingButAKey) {
    const std::vector<DataObject> objects =
        readObjectsOf(siteModel(), R"({"site:Site": [{"id": "a", "Mast": [{"name": "m"}]},
                                                     {"id": "b", "label": "bb"}]})");
    EXPECT_TRUE(objectOf(objects, "Site=a").isBare);
    EXPECT_TRUE(objectOf(objects, "Site=a,Mast=m").isBare);
    EXPECT_FALSE(objectOf(objects, "Site=b").isBare);
}

TEST(InstanceDataReader, NoObjects_AreFine) {
    EXPECT_TRUE(readObjectsOf(siteModel(), "{}").empty());
    EXPECT_TRUE(readObjectsOf(siteModel(), "<!-- nothing -->").empty());
}

TEST(InstanceDataReader, Xml_GivesTheSameObjects) {
    const std::vector<DataObject> objects = readObjectsOf(siteModel(), R"(
        <Site xmlns="urn:orv:test:site"><id>a</id><huge>5</huge><marked/>
          <source xmlns:p="urn:orv:test:site">p:grid</source>
          <bands>3</bands><names>x &amp; y</names><bands>1</bands>
          <place><lat>1.5</lat></place>
          <colour xmlns="urn:orv:test:site-extension">red</colour></Site>
        <Site xmlns="urn:orv:test:site"><id>b</id></Site>)");
    ASSERT_EQ(objects.size(), 2U);
    EXPECT_EQ(valueOf(objects[0], "huge"), "[5]");
    EXPECT_EQ(valueOf(objects[0], "marked"), "[true]");
    EXPECT_EQ(valueOf(objects[0], "source"), "[site:grid]");
    EXPECT_EQ(valueOf(objects[0], "bands"), "[3, 1]");
    EXPECT_EQ(valueOf(objects[0], "names"), "[x & y]");
    EXPECT_EQ(valueOf(objects[0], "colour"), "[red]");
}

TEST(InstanceDataReader, Directory_IsReadInTheOrderOfNames) {
    const TemporaryDirectory directory;
    directory.write("2.json", R"({"site:Site": [{"id": "a", "Mast": [{"name": "n"}]}]})");
    directory.write("1.xml", R"(<Site xmlns="urn:orv:test:site"><id>a</id><tiny>1</tiny></Site>)");
    directory.write("readme.txt", "not data");
    EXPECT_THAT(dnsOf(readObjects(siteModel(), {directory.path()})),
                ElementsAre("Site=a", "Site=a", "Site=a,Mast=n"));
}

TEST(InstanceDataReader, Progress_TellsFilesBytesAndObjects) {
    const TemporaryDirectory directory;
    const std::string text = R"({"site:Site": [{"id": "a"}, {"id": "b"}]})";
    directory.write("1.json", text);
    directory.write("2.json", text);
    std::vector<DataProgress> reported;
    const std::size_t objects =
        InstanceDataReader(siteModel().schema)
            .onProgress([&reported](const DataProgress& progress) { reported.push_back(progress); })
            .read({directory.path()}, [](DataObject&&, const std::string&) {});
    EXPECT_EQ(objects, 4U);
    ASSERT_EQ(reported.size(), 2U);
    EXPECT_EQ(reported[0].filesDone, 1U);
    EXPECT_EQ(reported[0].filesInAll, 2U);
    EXPECT_EQ(reported[0].objects, 2U);
    EXPECT_EQ(reported[1].bytesDone, reported[1].bytesInAll);
    EXPECT_EQ(reported[1].bytesInAll, 2 * text.size());
}

TEST(InstanceDataReader, SinkThatThrows_EndsTheReading) {
    InstanceDataReader reader(siteModel().schema);
    int seen = 0;
    const auto sink = [&seen](DataObject&&, const std::string&) {
        ++seen;
        throw std::runtime_error("enough");
    };
    EXPECT_THROW(reader.readText(kSite, "data", sink), std::runtime_error);
    EXPECT_EQ(seen, 1);
}

TEST(InstanceDataReader, Sink_GetsTheFile) {
    std::string given;
    InstanceDataReader(siteModel().schema)
        .readText(kSite, "here.json",
                  [&given](DataObject&&, const std::string& file) { given = file; });
    EXPECT_EQ(given, "here.json");
}

}
}
