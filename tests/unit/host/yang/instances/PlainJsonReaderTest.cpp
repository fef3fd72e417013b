// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The two readers of JSON must be one to everybody else: what the plain one reads, the library
// reads as the same objects.

#include "yang/instances/PlainJsonReader.h"

#include "RanModel.h"
#include "RanNetwork.h"
#include "RanPlan.h"
#include "YangTestSupport.h"
#include "yang/instances/InstanceDataError.h"
#include "yang/instances/ParsedData.h"
#include "yang/instances/TreeReader.h"
#include "yang/source/Utf8.h"
#include "yang/source/YangContext.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <random>

namespace OrvHost {
namespace {

using Objects = std::vector<DataObject>;

bool isWellFormed(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = lengthOfCharacter(text);
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

/// What the library makes of a text that it takes to its end without a note.
std::optional<Objects> byLibrary(const YangModel& model, const std::string& text) {
    const ParserInput input = parserInputOf(text);
    lyd_node* first = nullptr;
    const LY_ERR code = lyd_parse_data(model.schema->context().get(), nullptr, input.get(),
                                       LYD_JSON, LYD_PARSE_STRICT | LYD_PARSE_ONLY, 0, &first);
    const ParsedData tree(first);
    model.schema->context().takeMessages();
    if (code != LY_SUCCESS ||
        text.find_first_not_of(" \t\r\n", ly_in_parsed(input.get())) != std::string::npos) {
        return std::nullopt;
    }
    Objects objects;
    ModelNotes notes;
    try {
        TreeReader(*model.schema, "text", notes).read(tree.get(), [&](DataObject&& object) {
            objects.push_back(std::move(object));
        });
    } catch (const InstanceDataError&) {
        return std::nullopt;
    }
    return std::move(notes).take().empty() ? std::optional(std::move(objects)) : std::nullopt;
}

bool isSame(const DataObject& one, const DataObject& other) {
    return one.dn == other.dn && one.moc == other.moc && one.isBare == other.isBare &&
           one.attributes == other.attributes;
}

/// True if the plain reader takes the text. Fails the test if the library reads it differently.
bool isPlain(const YangModel& model, const std::string& text) {
    if (!isWellFormed(text)) {
        return false;
    }
    const auto plain = PlainJsonReader(*model.schema).read(text);
    if (!plain) {
        return false;
    }
    const auto expected = byLibrary(model, text);
    EXPECT_TRUE(expected) << text.substr(0, 2000);
    if (expected) {
        EXPECT_TRUE(
            std::equal(plain->begin(), plain->end(), expected->begin(), expected->end(), isSame))
            << differenceOf(*plain, *expected) << "\n"
            << text.substr(0, 2000);
    }
    return true;
}

std::string contentsOf(const std::filesystem::path& file) {
    std::ifstream input(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
}

/// Every form of a value that the writers have, in their order.
const std::string& siteText() {
    static const std::string text = R"({"site:Site": [
    {"id": "a", "label": "a\"b\\c\/d", "tiny": -5, "small": 5, "large": "-7",
     "huge": "18446744073709551615", "ratio": "-1.250", "on": false, "marked": [null], "port": 20,
     "code": "AB1", "mood": "BAD", "flags": "down up", "blob": "AQID", "source": "solar",
     "mixed": "AUTO", "bands": [3, 1, 2], "names": ["z", "\u00e4"],
     "place": {"lat": "59.30", "pole": {"height": 7, "nextRef": "Site=a,Mast=m"}}},
    {"id": "b"}]})";
    return text;
}

std::string writtenSite() {
    std::string text = siteText();
    text.replace(text.find("\\u00e4"), 6, "\xc3\xa4");
    return writeObjects(siteModel(), DataFormat::Json, readObjectsOf(siteModel(), text));
}

std::string writtenNetwork(std::uint32_t size) {
    static const YangModel model = RanGenerator::readRanModel();
    Objects objects;
    RanGenerator::RanNetwork(RanGenerator::RanPlan::forSize(size), 1)
        .generate([&](const DataObject& object) { objects.push_back(object); });
    return writeObjects(model, DataFormat::Json, objects);
}

TEST(PlainJsonReader, WhatTheWritersWrite_IsPlain) {
    EXPECT_TRUE(isPlain(siteModel(), writtenSite()));
    EXPECT_TRUE(isPlain(ranModel(), writtenNetwork(2000)));
    EXPECT_TRUE(isPlain(ranModel(), contentsOf(exampleFile("data/harbour.json"))));
}

TEST(PlainJsonReader, OddTexts_AreLeftToTheLibrary) {
    const std::vector<std::string> texts = {
        "",
        "{}",
        "[]",
        R"({"site:Site": []})",
        R"({"Site": [{"id": "a"}]})",
        R"({"site:Site": [{"id": "a"}]} x)",
        R"({"site:Site": [{"id": "a"},]})",
        R"({"site:Site": [{"id": "a", "id": "a"}]})",
        R"({"site:Site": [{"label": "a"}]})",
        R"({"site:Site": [{"small": 5, "id": "a"}]})",
        R"({"site:Site": [{"id": "a,b"}]})",
        R"({"site:Site": [{"id": "a", "small": 5.0}]})",
        R"({"site:Site": [{"id": "a", "small": 05}]})",
        R"({"site:Site": [{"id": "a", "small": "5"}]})",
        R"({"site:Site": [{"id": "a", "small": 70000}]})",
        R"({"site:Site": [{"id": "a", "huge": 5}]})",
        R"({"site:Site": [{"id": "a", "on": "true"}]})",
        R"({"site:Site": [{"id": "a", "on": truely}]})",
        R"({"site:Site": [{"id": "a", "code": "lower case"}]})",
        R"({"site:Site": [{"id": "a", "names": []}]})",
        R"({"site:Site": [{"id": "a", "names": "z"}]})",
        R"({"site:Site": [{"id": "a", "label": "\ud83d\ude00"}]})",
        R"({"site:Site": [{"id": "a", "label": null}]})",
        R"({"site:Site": [{"id": "a", "@label": {}}]})",
        "{\"site:Site\": [{\"id\": \"a\", \"label\": \"\xef\xbf\xbf\"}]}",
        R"({"site:Site": [{"id": "a"}], "site-extension:depot": {"Truck": [{"plate": "T"}]}})"};
    for (const std::string& text : texts) {
        EXPECT_FALSE(PlainJsonReader(*siteModel().schema).read(text)) << text;
    }
}

YangModel oddModel() {
    return YangModelReader()
        .offerText("m", "m.yang", R"(module m { yang-version 1.1; namespace 'urn:m'; prefix m;
            list A { key id; leaf id { type string; }
              leaf path { type instance-identifier { require-instance false; } }
              list B { key "none number"; leaf none { type empty; } leaf number { type int32; } } } })")
        .load("m")
        .read();
}

TEST(PlainJsonReader, Objects_HaveTheLinesOfTheirNames) {
    const auto objects = PlainJsonReader(*siteModel().schema)
                             .read("{\"site:Site\": [\n{\"id\": \"a\"},\r\n\n{\n\"id\":\n\"b\"}]}");
    ASSERT_TRUE(objects && objects->size() == 2);
    EXPECT_EQ(objects->at(0).line, 2);
    EXPECT_EQ(objects->at(1).line, 6);
}

TEST(PlainJsonReader, KeyWithoutAValue_IsLeftToTheLibrary) {
    const YangModel model = oddModel();
    const std::string text = R"({"m:A": [{"id": "a", "B": [{"none": [null], "number": 3}]}]})";
    EXPECT_FALSE(PlainJsonReader(*model.schema).read(text));
    EXPECT_EQ(readObjectsOf(model, text).size(), 2U);
}

TEST(PlainJsonReader, WrongValue_IsReportedByTheLibraryAlone) {
    const YangModel model = oddModel();
    EXPECT_THAT(
        dataErrorOf(
            [&] { readObjectsOf(model, "{\"m:A\": [{\"id\": \"a\",\n\"path\": \"bad\"}]}"); }),
        testing::AllOf(testing::HasSubstr(":2: "), testing::HasSubstr("/m:A[id='a']/path")));
}

TEST(PlainJsonReader, EveryDataFile_IsReadAsByTheLibraryOrLeftToIt) {
    for (const auto& entry : std::filesystem::directory_iterator(testData("broken"))) {
        if (entry.path().extension() == ".json") {
            EXPECT_FALSE(isPlain(siteModel(), contentsOf(entry.path()))) << entry.path();
        }
    }
    for (const char* name : {"vendor/network.json", "vendor/ietf-interfaces.json",
                             "vendor/openconfig-interfaces.json"}) {
        isPlain(siteModel(), contentsOf(exampleFile(name)));
        isPlain(foreignModel(), contentsOf(exampleFile(name)));
    }
}

TEST(PlainJsonReader, NumbersAtTheirBounds_AreReadAsByTheLibraryOrLeftToIt) {
    unsigned plain = 0;
    unsigned all = 0;
    for (const char* leaf : {"tiny", "small", "large", "huge", "ratio", "port", "mixed", "label"}) {
        for (const char* number : {"-129",
                                   "-128",
                                   "-1",
                                   "-0",
                                   "0",
                                   "00",
                                   "+1",
                                   "01",
                                   "1",
                                   "10",
                                   "11",
                                   "20",
                                   "1.0",
                                   "1e1",
                                   "127",
                                   "128",
                                   "255",
                                   "256",
                                   "65535",
                                   "65536",
                                   "2147483648",
                                   "4294967296",
                                   "9223372036854775807",
                                   "9223372036854775808",
                                   "-9223372036854775808",
                                   "-9223372036854775809",
                                   "18446744073709551615",
                                   "18446744073709551616",
                                   "0x1",
                                   ""}) {
            for (const char* quote : {"", "\""}) {
                const std::string text = std::string(R"({"site:Site": [{"id": "a", ")") + leaf +
                                         "\": " + quote + number + quote + "}]}";
                plain += isPlain(siteModel(), text) ? 1 : 0;
                ++all;
            }
        }
    }
    EXPECT_GT(plain, all / 8);
    EXPECT_LT(plain, all / 2);
}

/// Changes a text in a few places, in ways that mostly leave it nearly right.
class Changer {
public:
    explicit Changer(unsigned seed) : mRandom(seed) {}

    std::string change(std::string text) {
        for (int left = 1 + below(2); left > 0; --left) {
            changeOnce(text);
        }
        return text;
    }

private:
    int below(std::size_t end) { return static_cast<int>(mRandom() % end); }

    void changeOnce(std::string& text) {
        static const std::vector<std::string> kParts = {"0",        "-",
                                                        "9",        "\"",
                                                        "\\",       "\\n",
                                                        ",",        ":",
                                                        "{",        "}",
                                                        "[",        "]",
                                                        " ",        "1e2",
                                                        ".5",       "null",
                                                        "true",     "false",
                                                        "[]",       "{}",
                                                        "\xc3\xa4", "\xef\xbc\x81",
                                                        "site:",    "\"id\"",
                                                        "[null]",   "65536",
                                                        "\t",       "\\/",
                                                        "\\u0041",  "0x1",
                                                        "AUTO",     "solar",
                                                        "=",        "+",
                                                        "/",        "18446744073709551616"};
        const std::size_t at = mRandom() % (text.size() + 1);
        switch (below(4)) {
        case 0:
            text.insert(at, kParts[mRandom() % kParts.size()]);
            return;
        case 1:
            text.erase(at, 1 + mRandom() % 3);
            return;
        case 2: // what stands between two quotes, brackets or commas, once more somewhere else
            copyToken(text, at);
            return;
        default:
            if (at < text.size()) {
                text.replace(at, 1, kParts[mRandom() % kParts.size()]);
            }
        }
    }
    void copyToken(std::string& text, std::size_t at) {
        constexpr const char* kEnds = "\",:{}[] \n";
        const std::size_t begin = text.find_first_not_of(kEnds, at);
        if (begin == std::string::npos) {
            return;
        }
        const std::size_t end = std::min(text.find_first_of(kEnds, begin), text.size());
        const std::string token = text.substr(begin, end - begin);
        const std::size_t otherBegin = text.find_first_not_of(kEnds, mRandom() % text.size());
        if (otherBegin != std::string::npos) {
            const std::size_t otherEnd =
                std::min(text.find_first_of(kEnds, otherBegin), text.size());
            text.replace(otherBegin, otherEnd - otherBegin, token);
        }
    }

    std::mt19937 mRandom;
};

TEST(PlainJsonReader, ChangedTexts_AreReadAsByTheLibraryOrLeftToIt) {
#ifdef ORV_SANITIZED
    constexpr unsigned kTexts = 1500;
#else
    constexpr unsigned kTexts = 20000;
#endif
    const std::pair<const YangModel*, std::string> originals[] = {
        {&siteModel(), writtenSite()}, {&ranModel(), writtenNetwork(13)}};
    for (const auto& [model, original] : originals) {
        unsigned plain = 0;
        for (unsigned seed = 0; seed < kTexts && !HasFailure(); ++seed) {
            plain += isPlain(*model, Changer(seed).change(original)) ? 1 : 0;
        }
        // Enough of them stay plain that the two readers are really compared.
        EXPECT_GT(plain, kTexts / 50);
        EXPECT_LT(plain, kTexts / 2);
    }
}

}
}
