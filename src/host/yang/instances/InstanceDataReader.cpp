// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "InstanceDataReader.h"

#include "yang/instances/DataProblem.h"
#include "yang/instances/TreeReader.h"
#include "yang/schema/ModelNotes.h"
#include "yang/source/SourceLocator.h"
#include "yang/source/Utf8.h"
#include "yang/source/YangContext.h"

#include <libyang/libyang.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <new>
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
    return error ? 0 : size; // a problem with the file is reported when it is read
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

struct InputDeleter {
    void operator()(ly_in* input) const { ly_in_free(input, 0); }
};
using Input = std::unique_ptr<ly_in, InputDeleter>;

Input inputOf(const std::string& text) {
    ly_in* input = nullptr;
    if (ly_in_new_memory(text.c_str(), &input) != LY_SUCCESS) {
        throw std::bad_alloc();
    }
    return Input(input);
}

// The parser stops without an error at the end of a JSON document or, at a zero byte, at the end of
// the text. Text after that would be lost silently.
void refuseRest(const std::string& text, std::size_t parsed, const std::string& label) {
    const std::size_t rest = text.find_first_not_of(" \t\r\n", parsed);
    if (rest != std::string::npos) {
        const auto line = std::count(text.begin(), text.begin() + static_cast<long>(rest), '\n');
        refuse(label, static_cast<int>(line) + 1,
               "the data is complete before this line ends, but the file goes on");
    }
}

// The parser accepts some malformed characters, for example in a CDATA section, and the value could
// then neither be written nor shown.
void refuseMalformed(std::string_view text, const std::string& label) {
    int line = 1;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = lengthOfCharacter(text.substr(at));
        if (length == 0) {
            refuse(label, line, "text in UTF-8 was expected, without control characters");
        }
        line += text[at] == '\n' ? 1 : 0;
        at += length;
    }
}

Tree parse(const std::string& text, LYD_FORMAT format, std::uint32_t options,
           const YangContext& context, const std::string& label) {
    const Input input = inputOf(text);
    lyd_node* parsed = nullptr;
    // Parsing only: checks of whole trees take quadratic time for references, and would refuse the
    // bare parents of a slice.
    const LY_ERR code = lyd_parse_data(context.get(), nullptr, input.get(), format,
                                       options | LYD_PARSE_ONLY, 0, &parsed);
    Tree tree(parsed);
    if (code != LY_SUCCESS) {
        throw InstanceDataError({takeDataProblem(context, label)});
    }
    refuseRest(text, ly_in_parsed(input.get()), label);
    return tree;
}

/// Notes the nodes that no module knows, which a tree with opaque nodes keeps. A node that is
/// opaque only because of its value is known, and was refused before.
void noteUnknown(const lyd_node* first, const std::string& label, ModelNotes& notes) {
    for (const lyd_node* node = first; node != nullptr; node = node->next) {
        if (node->schema != nullptr) {
            noteUnknown(lyd_child_no_keys(node), label, notes);
            continue;
        }
        const lyd_node* parent = lyd_parent(node);
        const ly_opaq_name& written = reinterpret_cast<const lyd_node_opaq*>(node)->name;
        const std::string prefix = written.prefix == nullptr ? "" : written.prefix;
        const std::string name = (prefix.empty() ? "" : prefix + ":") + written.name;
        const std::string place = parent == nullptr ? "" : pathOf(parent->schema) + "/";
        notes.count("no loaded module knows " + place + name + ": it is skipped", {label, 0},
                    parent == nullptr ? "the top" : dataPathOf(parent));
    }
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

InstanceDataReader& InstanceDataReader::skipUnknown() {
    mSkipsUnknown = true;
    return *this;
}

std::size_t InstanceDataReader::read(const std::vector<fs::path>& paths, const Sink& sink) {
    const std::vector<fs::path> files = expand(paths);
    mState = {};
    mNotes.clear();
    mState.filesInAll = files.size();
    for (const fs::path& file : files) {
        mState.bytesInAll += sizeOf(file);
    }
    std::vector<Problem> problems;
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
    mNotes.clear();
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

/// Without a sink the data is only checked.
void InstanceDataReader::parseAndDeliver(const std::string& text, const std::string& label,
                                         const Sink* sink) {
    const LYD_FORMAT format = formatOf(text, label);
    refuseMalformed(text, label);
    const YangContext& context = mSchema->context();
    ModelNotes notes;
    // Without the option the library skips unknown nodes silently, and refuses what is known and
    // wrong. A tree with opaque nodes has the unknown ones too.
    const Tree tree = parse(text, format, mSkipsUnknown ? 0 : LYD_PARSE_STRICT, context, label);
    if (mSkipsUnknown) {
        noteUnknown(parse(text, format, LYD_PARSE_OPAQ, context, label).get(), label, notes);
    }
    TreeReader(*mSchema, label, notes).read(tree.get(), [this, sink, &label](DataObject&& object) {
        if (sink != nullptr) {
            (*sink)(std::move(object), label);
            ++mState.objects;
            report(false);
        }
    });
    std::vector<Problem> more = std::move(notes).take();
    mNotes.insert(mNotes.end(), more.begin(), more.end());
}

void InstanceDataReader::report(bool always) {
    if (mProgress && (always || mState.objects % kObjectsPerReport == 0)) {
        mProgress(mState);
    }
}

}
