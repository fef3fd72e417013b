// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ModuleFinder.h"

#include "base/TextFile.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace OrvHost {
namespace {

namespace fs = std::filesystem;

/// Reading a pipe or a device would wait for ever. A link to nothing counts, so that it is
/// reported.
bool mayBeModule(const fs::directory_entry& entry) {
    std::error_code error;
    const fs::file_type type = entry.status(error).type();
    return entry.path().extension() == ".yang" &&
           (type == fs::file_type::regular || type == fs::file_type::not_found);
}

[[noreturn]] void refuse(const fs::path& file, int line, std::string text) {
    throw ModelError({{{file.string(), line}, std::move(text)}});
}

ModuleSource readModule(const fs::path& file) {
    TextFile read = readTextFile(file);
    if (!read.isRead()) {
        refuse(file, 0, read.problem + "; the file of a YANG module was expected");
    }
    ModuleStatements statements(read.text);
    const ModuleStatements::Statement top = statements.top();
    if (top.keyword == "submodule") {
        refuse(file, top.line,
               "\"" + top.argument +
                   "\" is a submodule; load the module that it belongs to instead");
    }
    if (top.keyword != "module") {
        refuse(file, top.line, "is not a YANG module; \"module NAME {\" was expected");
    }
    return {top.argument, file.string(), std::move(read.text), std::move(statements)};
}

}

ModuleFinder::ModuleFinder(std::vector<fs::path> searchPath) : mHasSearchPath(!searchPath.empty()) {
    for (fs::path& path : searchPath) {
        std::error_code error;
        if (!fs::is_directory(path, error)) {
            mProblems.push_back({{path.string(), 0}, "is not a directory to search for modules"});
            continue;
        }
        mDirectories.push_back({std::move(path), {}, true, false});
    }
}

void ModuleFinder::addText(const std::string& name, std::string label, std::string text) {
    ModuleStatements statements(text);
    mFound.insert_or_assign(
        name, ModuleSource{name, std::move(label), std::move(text), std::move(statements)});
}

std::string ModuleFinder::addFile(const fs::path& file) {
    ModuleSource module = readModule(file);
    const fs::path directory = file.has_parent_path() ? file.parent_path() : fs::path(".");
    mDirectories.push_back({directory, {}, false, false});
    std::string name = module.name;
    mFound.insert_or_assign(name, std::move(module));
    return name;
}

const ModuleSource* ModuleFinder::find(const std::string& name, const std::string& revision) {
    if (const auto known = mFound.find(name); known != mFound.end()) {
        return &known->second;
    }
    const std::optional<fs::path> file = locate(name, revision);
    if (!file) {
        mMissed.push_back(name);
        return nullptr;
    }
    TextFile read = readTextFile(*file);
    if (!read.isRead()) {
        mProblems.push_back({{file->string(), 0}, read.problem});
        mMissed.push_back(name);
        return nullptr;
    }
    addText(name, file->string(), std::move(read.text));
    return &mFound.at(name);
}

bool ModuleFinder::wasMissed(const std::string& name) const {
    return std::find(mMissed.begin(), mMissed.end(), name) != mMissed.end();
}

std::string ModuleFinder::describeSearch(const std::string& name) const {
    if (mDirectories.empty() && mHasSearchPath) {
        return "no directory of the search path is there";
    }
    if (mDirectories.empty()) {
        std::error_code error;
        const std::string here = "./" + name + ".yang";
        return "there is no search path" +
               (fs::exists(here, error) ? "; a file is named with its path: " + here : "");
    }
    std::string text = "looked for " + name + ".yang in ";
    for (const Directory& directory : mDirectories) {
        text += (&directory == &mDirectories.front() ? "" : ", ") + directory.path.string();
    }
    return text;
}

void ModuleFinder::scan(Directory& directory) {
    if (directory.isScanned) {
        return;
    }
    directory.isScanned = true;
    std::error_code error;
    const auto options = fs::directory_options::skip_permission_denied;
    fs::recursive_directory_iterator entry(directory.path, options, error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        if (!directory.withSubdirectories) {
            entry.disable_recursion_pending();
        }
        if (!mayBeModule(*entry)) {
            continue;
        }
        const std::string stem = entry->path().stem().string();
        const std::size_t at = stem.find('@');
        const std::string revision = at == std::string::npos ? "" : stem.substr(at + 1);
        // Directories have no defined order of entries; the choice between two equal files must not
        // depend on it.
        fs::path& file = directory.files[stem.substr(0, at)][revision];
        file = file.empty() ? entry->path() : std::min(file, entry->path());
    }
}

std::vector<fs::path> ModuleFinder::allFiles() {
    std::vector<fs::path> all;
    for (Directory& directory : mDirectories) {
        scan(directory);
        for (const auto& [name, byRevision] : directory.files) {
            for (const auto& [revision, file] : byRevision) {
                all.push_back(file);
            }
        }
    }
    return all;
}

std::optional<fs::path> ModuleFinder::locate(const std::string& name, const std::string& revision) {
    for (Directory& directory : mDirectories) {
        scan(directory);
        const auto files = directory.files.find(name);
        if (files == directory.files.end()) {
            continue;
        }
        // A file without a revision in its name can have any revision.
        const auto& byRevision = files->second;
        if (const auto exact = byRevision.find(revision); exact != byRevision.end()) {
            return exact->second;
        }
        if (const auto plain = byRevision.find(""); plain != byRevision.end()) {
            return plain->second;
        }
        if (revision.empty()) {
            return byRevision.rbegin()->second;
        }
    }
    return std::nullopt;
}

}
