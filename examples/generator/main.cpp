// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RanModel.h"
#include "RanNetwork.h"
#include "RanPlan.h"
#include "SliceWriter.h"
#include "yang/instances/InstanceDataWriter.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

using namespace RanGenerator;
namespace fs = std::filesystem;

constexpr int kUsage = 2;

struct Options {
    std::uint32_t count = 1000;
    std::uint64_t seed = 1;
    OrvHost::DataFormat format = OrvHost::DataFormat::Json;
    std::uint32_t slice = 0;
    fs::path output;
};

void describe(CLI::App& app, Options& options) {
    app.add_option("-n,--count", options.count, "Number of objects")
        ->check(CLI::Range(kFewestObjects, kMostObjects))
        ->capture_default_str();
    app.add_option("-s,--seed", options.seed, "The same seed and count give the same data")
        ->capture_default_str();
    app.add_option_function<std::string>(
           "-f,--format",
           [&options](const std::string& format) {
               options.format =
                   format == "xml" ? OrvHost::DataFormat::Xml : OrvHost::DataFormat::Json;
           },
           "json or xml")
        ->check(CLI::IsMember({"json", "xml"}))
        ->default_str("json");
    app.add_option("--slice", options.slice,
                   "Write files of this many objects each into the directory OUTPUT, which is "
                   "created if necessary and must contain no data files")
        ->check(CLI::Range(1U, kMostObjects));
    app.add_option("output", options.output, "File, or with --slice directory, to write")
        ->required();
}

/// A file that is left from an earlier run would be read together with the new ones.
void prepareDirectory(const fs::path& directory) {
    fs::create_directories(directory);
    for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
        const fs::path extension = entry.path().extension();
        if (extension == ".json" || extension == ".xml") {
            throw std::runtime_error(directory.string() +
                                     " already contains data: " + entry.path().filename().string());
        }
    }
}

std::size_t writeSlices(const Options& options, const RanNetwork& network) {
    prepareDirectory(options.output);
    SliceWriter writer(readRanModel().schema, options.format, options.output, options.slice);
    network.generate([&writer](const OrvHost::DataObject& object) { writer.add(object); });
    writer.finish();
    return writer.files();
}

std::size_t writeOne(const Options& options, const RanNetwork& network) {
    OrvHost::InstanceDataWriter writer(readRanModel().schema, options.format);
    network.generate([&writer](const OrvHost::DataObject& object) { writer.add(object); });
    writer.writeFile(options.output);
    return 1;
}

void run(const Options& options) {
    const RanPlan plan = RanPlan::forSize(options.count);
    const RanNetwork network(plan, options.seed);
    const std::size_t files =
        options.slice > 0 ? writeSlices(options, network) : writeOne(options, network);
    std::cout << plan.size() << " objects with " << plan.cells
              << (plan.cells == 1 ? " cell" : " cells") << " written to " << options.output.string()
              << (files > 1 ? " in " : "") << (files > 1 ? std::to_string(files) + " files" : "")
              << "\n";
}

}

int main(int argc, char** argv) {
    try {
        CLI::App app("Writes data for the example radio access network: any number of objects, "
                     "consistent, the same for the same seed.",
                     "orv-ran-generate");
        Options options;
        describe(app, options);
        try {
            app.parse(argc, argv);
        } catch (const CLI::ParseError& end) {
            return app.exit(end) == 0 ? 0 : kUsage;
        }
        run(options);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "orv-ran-generate: %s\n", error.what());
        return 1;
    }
}
