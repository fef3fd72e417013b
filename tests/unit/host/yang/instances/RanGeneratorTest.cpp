// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RanModel.h"
#include "RanNetwork.h"
#include "RanPlan.h"
#include "SliceWriter.h"
#include "YangTestSupport.h"
#include "base/DnView.h"
#include "model/ValueCheck.h"
#include "yang/instances/InstanceDataReader.h"

#include <gmock/gmock.h>

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <tuple>

namespace RanGenerator {
namespace {

using namespace OrvHost;
using testing::HasSubstr;

const YangModel& model() {
    static const YangModel model = readRanModel();
    return model;
}

std::vector<DataObject> networkOf(std::uint32_t objects, std::uint64_t seed = 1) {
    std::vector<DataObject> made;
    RanNetwork(RanPlan::forSize(objects), seed).generate([&made](const DataObject& object) {
        made.push_back(object);
    });
    return made;
}

std::string environment(const char* name) {
    const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): one thread
    return value != nullptr ? value : "";
}

/// Runs the program and returns its exit code. Its output goes to `output`.
int runGenerator(const std::string& arguments, const std::filesystem::path& output) {
    const std::string command =
        environment("ORV_RAN_GENERATE") + " " + arguments + " > " + output.string() + " 2>&1";
    const int status = std::system(command.c_str()); // NOLINT: a test's own command
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string contentsOf(const std::filesystem::path& file) {
    std::ifstream input(file);
    return {std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
}

TEST(RanPlan, ForSize_EverySmallNumber_IsMetExactly) {
    for (std::uint32_t objects = kFewestObjects; objects <= 400; ++objects) {
        EXPECT_EQ(RanPlan::forSize(objects).size(), objects);
        EXPECT_EQ(networkOf(objects).size(), objects);
    }
}

TEST(RanPlan, ForSize_LargeNumbers_AreMetExactlyAndMakeCells) {
    for (const std::uint32_t objects : {1000U, 31013U, 123456U, 999999U, 1000000U}) {
        const RanPlan plan = RanPlan::forSize(objects);
        EXPECT_EQ(plan.size(), objects);
        EXPECT_GT(plan.cells, objects / 14);
        EXPECT_LT(plan.extraExternalCells, 60U);
    }
}

TEST(RanNetwork, EverySize_IsConsistent) {
    for (const std::uint32_t objects :
         {10U, 11U, 13U, 15U, 17U, 19U, 24U, 25U, 26U, 40U, 60U, 85U, 100U, 250U, 500U, 2000U}) {
        EXPECT_EQ(problemsOf(model(), networkOf(objects)).substr(0, 500), "") << objects;
    }
}

TEST(RanNetwork, EveryValue_IsPermittedByTheModel) {
    for (const DataObject& object : networkOf(500)) {
        const std::string className(DnView(object.dn).last().type());
        for (const NamedValue& value : object.attributes) {
            EXPECT_EQ(whyRefused(attributeOf(model(), className, value.first), value.second), "")
                << object.dn << " " << value.first;
        }
    }
}

TEST(RanNetwork, AllClasses_AreThere) {
    std::set<std::string> names;
    for (const DataObject& object : networkOf(200)) {
        names.emplace(DnView(object.dn).last().type());
    }
    EXPECT_EQ(names.size(), model().model.classes.size());
}

TEST(RanNetwork, Seeds_DecideOnTheValues) {
    EXPECT_EQ(differenceOf(networkOf(200, 7), networkOf(200, 7)), "");
    EXPECT_NE(differenceOf(networkOf(200, 7), networkOf(200, 8)), "");
}

TEST(RanNetwork, Slices_AddUpToTheWhole) {
    const TemporaryDirectory directory;
    SliceWriter writer(model().schema, DataFormat::Json, directory.path(), 64);
    const std::vector<DataObject> whole = networkOf(500);
    for (const DataObject& object : whole) {
        writer.add(object);
    }
    writer.finish();
    EXPECT_EQ(writer.files(), 8U);
    std::map<std::string, DataObject> merged;
    for (DataObject& object : readObjects(model(), {directory.path()})) {
        const auto known = merged.find(object.dn);
        if (known == merged.end()) {
            merged.emplace(object.dn, std::move(object));
        } else {
            EXPECT_TRUE(object.isBare) << object.dn; // a parent, named again
        }
    }
    std::vector<DataObject> read;
    for (const auto& [dn, object] : merged) {
        read.push_back(object);
    }
    EXPECT_EQ(differenceOf(read, whole), "");
}

TEST(RanGenerator, LargeNetwork_IsWrittenReadAndConsistent) {
    const auto count = static_cast<std::uint32_t>(std::stoul(environment("ORV_LARGE_COUNT")));
    const TemporaryDirectory directory;
    const std::filesystem::path data = directory.path() / "data";
    ASSERT_EQ(runGenerator("-n " + std::to_string(count) + " --slice 20000 " + data.string(),
                           directory.path() / "log"),
              0)
        << contentsOf(directory.path() / "log");
    const std::vector<DataObject> objects = readObjects(model(), {data});
    std::set<std::string_view> dns;
    for (const DataObject& object : objects) {
        dns.insert(object.dn);
    }
    EXPECT_EQ(dns.size(), count);
    EXPECT_EQ(checkObjects(model(), objects).problems.size(), 0U);
}

TEST(RanGenerator, OneFile_IsWrittenInEachFormat) {
    const TemporaryDirectory directory;
    const auto json = directory.path() / "n.json";
    const auto xml = directory.path() / "n.xml";
    const auto log = directory.path() / "log";
    ASSERT_EQ(runGenerator("-n 300 -s 5 " + json.string(), log), 0) << contentsOf(log);
    ASSERT_EQ(runGenerator("-n 300 -s 5 -f xml " + xml.string(), log), 0) << contentsOf(log);
    EXPECT_EQ(differenceOf(readObjects(model(), {json}), networkOf(300, 5)), "");
    EXPECT_EQ(differenceOf(readObjects(model(), {xml}), networkOf(300, 5)), "");
}

TEST(RanGenerator, BadInput_IsRefusedWithTheReason) {
    const TemporaryDirectory directory;
    const auto log = directory.path() / "log";
    const std::string target = (directory.path() / "out").string();
    const std::tuple<std::string, int, const char*> expected[] = {
        {"-n 9 " + target, 2, "10 to 1000000"},
        {"-n 1000001 " + target, 2, "10 to 1000000"},
        {"-n many " + target, 2, "--count"},
        {"-f yaml " + target, 2, "--format: yaml not in {json,xml}"},
        {"--slice 0 " + target, 2, "--slice"},
        {"", 2, "output is required"},
        {"-n 10 " + (directory.path() / "no/such/file").string(), 1, "cannot be written"}};
    for (const auto& [arguments, status, text] : expected) {
        EXPECT_EQ(runGenerator(arguments, log), status) << arguments;
        EXPECT_THAT(contentsOf(log), HasSubstr(text)) << arguments;
    }
}

TEST(RanGenerator, DirectoryWithData_IsLeftAlone) {
    const TemporaryDirectory directory;
    directory.write("data/old.json", "{}");
    const auto log = directory.path() / "log";
    EXPECT_NE(runGenerator("-n 10 --slice 5 " + (directory.path() / "data").string(), log), 0);
    EXPECT_THAT(contentsOf(log), HasSubstr("already contains data: old.json"));
}

}
}
