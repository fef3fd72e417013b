// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "yang/instances/InstanceDataStream.h"

#include "YangTestSupport.h"
#include "base/DnView.h"
#include "yang/instances/InstanceDataReader.h"
#include "yang/source/YangContext.h"

#include <gmock/gmock.h>
#include <libyang/libyang.h>

#include <sstream>

namespace OrvHost {
namespace {

using testing::HasSubstr;

/// The objects as a stream writes them: each below its parent, which came before.
std::string streamed(const YangModel& model, DataFormat format,
                     const std::vector<DataObject>& objects) {
    std::ostringstream out;
    InstanceDataStream stream(model.schema, format, out);
    std::size_t open = 0;
    for (const DataObject& object : objects) {
        const DnView dn(object.dn);
        for (; open >= dn.depth(); --open) {
            stream.close();
        }
        stream.open(dn.last().className(), std::string(dn.last().value()), object.attributes);
        ++open;
    }
    for (; open > 0; --open) {
        stream.close();
    }
    stream.finish();
    return out.str();
}

std::vector<DataObject> harbour() {
    return readObjects(ranModel(), {exampleFile("data/harbour.json")});
}

class StreamInBothFormats : public testing::TestWithParam<DataFormat> {};

INSTANTIATE_TEST_SUITE_P(Formats, StreamInBothFormats,
                         testing::Values(DataFormat::Json, DataFormat::Xml),
                         [](const testing::TestParamInfo<DataFormat>& format) {
                             return format.param == DataFormat::Json ? "Json" : "Xml";
                         });

TEST_P(StreamInBothFormats, ExampleNetwork_IsTheSameTextAsOfTheWriter) {
    EXPECT_EQ(streamed(ranModel(), GetParam(), harbour()),
              writeObjects(ranModel(), GetParam(), harbour()));
}

TEST_P(StreamInBothFormats, NoObjects_AreReadAsNone) {
    EXPECT_EQ(readObjectsOf(siteModel(), streamed(siteModel(), GetParam(), {})).size(), 0U);
}

TEST_P(StreamInBothFormats, ListsInAContainer_ShareIt) {
    const std::vector<DataObject> objects{{"Site=a", 0, {}, false},
                                          {"Truck=T1", 0, {}, false},
                                          {"Truck=T2", 0, {}, false},
                                          {"Crate=c", 0, {}, false}};
    const std::string text = streamed(siteModel(), GetParam(), objects);
    EXPECT_EQ(text, writeObjects(siteModel(), GetParam(), objects));
    EXPECT_EQ(readObjectsOf(siteModel(), text).size(), 4U);
}

TEST_P(StreamInBothFormats, ClassThatComesAgain_IsRefused) {
    EXPECT_THAT(dataErrorOf([] {
                    streamed(siteModel(), GetParam(),
                             {{"Site=a", 0, {}, false},
                              {"Site=a,Mast=1", 0, {}, false},
                              {"Site=a,Antenna=1", 0, {}, false},
                              {"Site=a,Mast=2", 0, {}, false}});
                }),
                HasSubstr("Site=a,Mast=2: objects of class \"Mast\" must follow each other"));
}

TEST_P(StreamInBothFormats, ClassThatStandsElsewhere_IsRefused) {
    EXPECT_THAT(dataErrorOf([] {
                    streamed(siteModel(), GetParam(),
                             {{"Site=a", 0, {}, false}, {"Site=a,Truck=1", 0, {}, false}});
                }),
                HasSubstr("Site=a,Truck=1: no class \"Truck\" stands under class \"Site\""));
}

// What the YANG library says of the text as a configuration: with all rules, and without state.
std::string verdictOf(const std::string& text, DataFormat format) {
    const ly_ctx* context = ranModel().schema->context().get();
    lyd_node* tree = nullptr;
    const LY_ERR code = lyd_parse_data_mem(
        context, text.c_str(), format == DataFormat::Json ? LYD_JSON : LYD_XML,
        LYD_PARSE_STRICT | LYD_PARSE_NO_STATE, LYD_VALIDATE_PRESENT | LYD_VALIDATE_NO_STATE, &tree);
    const std::string error = code == LY_SUCCESS ? "" : ly_errmsg(context);
    lyd_free_all(tree);
    return error;
}

TEST_P(StreamInBothFormats, WithoutState_IsAConfigurationThatHoldsTheRules) {
    std::vector<DataObject> objects = harbour();
    EXPECT_NE(verdictOf(streamed(ranModel(), GetParam(), objects), GetParam()), "");
    for (DataObject& object : objects) {
        const ClassDef& moc = ranModel().model.classes[object.moc];
        std::erase_if(object.attributes, [&](const NamedValue& value) {
            return !moc.findAttribute(value.first)->isWritable;
        });
    }
    EXPECT_EQ(verdictOf(streamed(ranModel(), GetParam(), objects), GetParam()), "");
}

/// With the element at the root called "1".
std::vector<DataObject> readRenamed(const std::vector<std::filesystem::path>& files) {
    std::vector<DataObject> objects;
    InstanceDataReader(ranModel().schema)
        .nameRoot("1")
        .read(files, [&](DataObject&& object, const std::string&) {
            objects.push_back(std::move(object));
        });
    return objects;
}

std::string cabinetFile(const std::string& root, const std::string& attributes) {
    return R"({"ran-element:ManagedElement": [{"managedElementId": ")" + root +
           R"(", "ran-equipment:Equipment": [{"equipmentId": "1", )" + attributes + "}]}]}";
}

TEST(RootName, OtherNameInTheFile_IsChangedInDnsAndReferencesAlsoOfStructs) {
    const TemporaryDirectory directory;
    std::string text = writeObjects(ranModel(), DataFormat::Json, harbour());
    for (const auto& [from, to] :
         {std::pair<std::string, std::string>("\"ManagedElement=1,", "\"ManagedElement=pier,"),
          {"\"managedElementId\": \"1\"", "\"managedElementId\": \"pier\""}}) {
        for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
            text.replace(at, from.size(), to);
        }
    }
    ASSERT_THAT(text, HasSubstr("ManagedElement=pier,"));
    EXPECT_EQ(differenceOf(readRenamed({directory.write("a.json", text)}), harbour()), "");
}

TEST(RootName, OneNameAndTheInternalOne_AreTheSameElement) {
    const TemporaryDirectory directory;
    const auto objects = readRenamed(
        {directory.write("a.json", cabinetFile("1", R"("Cabinet": [{"cabinetId": "a"}])")),
         directory.write("b.json", cabinetFile("pier", R"("Cabinet": [{"cabinetId": "b"}])"))});
    EXPECT_EQ(objects.back().dn, "ManagedElement=1,Equipment=1,Cabinet=b");
}

TEST(RootName, TwoNamesInTwoFiles_AreRefused) {
    const TemporaryDirectory directory;
    EXPECT_THAT(dataErrorOf([&] {
                    readRenamed(
                        {directory.write("a.json", cabinetFile("quay", R"("Cabinet": [])")),
                         directory.write("b.json", cabinetFile("pier", R"("Cabinet": [])"))});
                }),
                HasSubstr("b.json: the element at the root is called pier here, but quay in "));
}

TEST(RootName, TwoElementsInOneFile_AreRefused) {
    const TemporaryDirectory directory;
    const auto file = directory.write(
        "a.json",
        R"({"ran-element:ManagedElement": [{"managedElementId": "1"}, {"managedElementId": "b"}]})");
    EXPECT_THAT(dataErrorOf([&] { readRenamed({file}); }),
                HasSubstr("several elements at the root: ManagedElement=1, ManagedElement=b; one"));
}

TEST(RootName, ReferenceToAnotherElementOfThatName_IsRefused) {
    const TemporaryDirectory directory;
    const auto file =
        directory.write("a.json", cabinetFile("pier", R"("BasebandUnit": [{"basebandUnitId": "b",
                 "cabinetRef": "ManagedElement=1,Equipment=1,Cabinet=a"}])"));
    EXPECT_THAT(dataErrorOf([&] { readRenamed({file}); }),
                HasSubstr("ManagedElement=pier,Equipment=1,BasebandUnit=b: attribute cabinetRef "
                          "names ManagedElement=1,Equipment=1,Cabinet=a, but the element at the "
                          "root is ManagedElement=pier in this data"));
}

}
}
