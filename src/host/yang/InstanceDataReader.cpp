// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "InstanceDataReader.h"

#include "yang/DataFailure.h"
#include "yang/TreeReader.h"
#include "yang/YangContext.h"

#include <libyang/libyang.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>
#include <utility>

namespace OrvHost {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kObjectsPerReport = 4096;

struct TreeDeleter {
    void operator()(lyd_node* tree) const { lyd_free_all(tree); }
};
using Tree = std::unique_ptr<lyd_node, TreeDeleter>;

[[noreturn]] void refuse(const std::string& file, int line, std::string text) {
    throw InstanceDataError({{{file, line}, std::move(text)}});
}

bool isDataFile(const fs::path& file) {
    return file.extension() == ".json" || file.extension() == ".xml";
}

std::vector<fs::path> filesIn(const fs::path& directory) {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
        if (entry.is_regular_file() && isDataFile(entry.path())) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    if (files.empty()) {
        refuse(directory.string(), 0, "the directory holds no .json or .xml file");
    }
    return files;
}

std::vector<fs::path> expand(const std::vector<fs::path>& paths) {
    std::vector<fs::path> files;
    for (const fs::path& path : paths) {
        std::error_code error;
        if (fs::is_directory(path, error)) {
            const std::vector<fs::path> inside = filesIn(path);
            files.insert(files.end(), inside.begin(), inside.end());
        } else {
            files.push_back(path);
        }
    }
    return files;
}

std::uint64_t sizeOf(const fs::path& file) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file, error);
    return error ? 0 : size; // what is wrong with the file is told when it is read
}

std::string contentsOf(const fs::path& file) {
    std::ifstream input(file, std::ios::binary);
    std::error_code error;
    if (!input || fs::is_directory(file, error)) {
        refuse(file.string(), 0, "cannot be read; a file with instance data was expected");
    }
    std::string text{std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
    if (input.bad()) {
        refuse(file.string(), 0, "cannot be read to its end");
    }
    return text;
}

LYD_FORMAT formatOf(const std::string& text, const std::string& label) {
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first != std::string::npos && text[first] == '{') {
        return LYD_JSON;
    }
    if (first != std::string::npos && text[first] == '<') {
        return LYD_XML;
    }
    refuse(label, 1, "JSON that begins with \"{\" or XML that begins with \"<\" was expected");
}

}

InstanceDataReader::InstanceDataReader(std::shared_ptr<const YangSchema> schema)
    : mSchema(std::move(schema)) {}

InstanceDataReader& InstanceDataReader::onProgress(Progress progress) {
    mProgress = std::move(progress);
    return *this;
}

std::size_t InstanceDataReader::read(const std::vector<fs::path>& paths, const Sink& sink) {
    const std::vector<fs::path> files = expand(paths);
    mState = {};
    mState.filesInAll = files.size();
    for (const fs::path& file : files) {
        mState.bytesInAll += sizeOf(file);
    }
    std::vector<ModelProblem> problems;
    for (const fs::path& file : files) {
        try {
            readFile(file, problems.empty() ? &sink : nullptr);
        } catch (const InstanceDataError& error) {
            problems.insert(problems.end(), error.problems().begin(), error.problems().end());
        }
    }
    if (!problems.empty()) {
        throw InstanceDataError(std::move(problems));
    }
    return mState.objects;
}

std::size_t InstanceDataReader::readText(const std::string& text, const std::string& label,
                                         const Sink& sink) {
    mState = {};
    mState.filesInAll = 1;
    mState.bytesInAll = text.size();
    parseAndDeliver(text, label, &sink);
    return mState.objects;
}

void InstanceDataReader::readFile(const fs::path& file, const Sink* sink) {
    parseAndDeliver(contentsOf(file), file.string(), sink);
    ++mState.filesDone;
    mState.bytesDone += sizeOf(file);
    report(true);
}

/// Without a sink the data is only looked at.
void InstanceDataReader::parseAndDeliver(const std::string& text, const std::string& label,
                                         const Sink* sink) {
    const YangContext& context = mSchema->context();
    lyd_node* parsed = nullptr;
    // Parsing only: checks of whole trees cost quadratic time for references, and would refuse
    // the bare parents of a slice. An unknown node is an error.
    const LY_ERR code = lyd_parse_data_mem(context.get(), text.c_str(), formatOf(text, label),
                                           LYD_PARSE_STRICT | LYD_PARSE_ONLY, 0, &parsed);
    const Tree tree(parsed);
    if (code != LY_SUCCESS) {
        throw InstanceDataError({describeFailure(context, label)});
    }
    TreeReader(*mSchema, label).read(tree.get(), [this, sink, &label](DataObject&& object) {
        if (sink != nullptr) {
            (*sink)(std::move(object), label);
            ++mState.objects;
            report(false);
        }
    });
}

void InstanceDataReader::report(bool always) {
    if (mProgress && (always || mState.objects % kObjectsPerReport == 0)) {
        mProgress(mState);
    }
}

}
