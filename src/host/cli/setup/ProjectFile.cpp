// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ProjectFile.h"

#include "CommandSplit.h"
#include "StoreTarget.h"
#include "base/AtomicFile.h"
#include "base/Environment.h"
#include "base/Suggestion.h"
#include "base/TextFile.h"

#include <CLI/CLI.hpp>
#include <toml++/toml.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <utility>
#include <vector>

#include <unistd.h>

namespace OrvHost {

namespace fs = std::filesystem;

const char* const kProjectFile = "orvhost.toml";

namespace {

constexpr const char* kVariablePrefix = "ORVHOST_";

constexpr const char* kTemplate =
    R"(# A project of orvhost, read in the folder where orvhost starts, or with --project.
# Names are those of the options; the command line and ORVHOST_... variables win.
# Paths are relative to this file. Take away the # of what you need.

#path = ["models"]          # where modules are searched
#model = ["my-module"]      # modules by name, or files
#data = ["network.json"]    # instance data
#store = "network.store"    # where the network is kept, also when orvhost ends
#me-id = "north"            # the name of the ManagedElement at the root for clients
#component = []             # interceptors; loaded only if this file is trusted: see --trust
#yang-rules = true          # check must, unique and the targets of leafrefs
)";

enum class Kind { Text, List, Flag };

/// An option that a project can set.
struct Setting {
    const char* name;
    Kind kind;
    bool isPath = false;
    bool loadsCode = false;

    /// True if a file that may have come with somebody else's data must not say it: it would load
    /// code, or log in to a database in the user's name.
    bool needsTrust(const std::vector<std::string>& values) const {
        return !values.empty() && (loadsCode || isPostgresql(values.front()));
    }
};

constexpr Setting kSettings[]{
    {"model", Kind::List},
    {"path", Kind::List, true},
    {"feature", Kind::List},
    {"no-features", Kind::Flag},
    {"strict", Kind::Flag},
    {"yang-rules", Kind::Flag},
    {"data", Kind::List, true},
    {"store", Kind::Text, true},
    {"skip-unknown", Kind::Flag},
    {"repair", Kind::Flag},
    {"as-is", Kind::Flag},
    {"ext-cm", Kind::Text, true, true},
    {"component", Kind::List, true, true},
    {"me-id", Kind::Text},
    {"me-id-fallback", Kind::Text},
    {"interface", Kind::Text},
    {"log-level", Kind::Text},
};

std::string optionOf(const Setting& setting) {
    return std::string("--") + setting.name;
}

bool isOffered(const CLI::App& app, const Setting& setting) {
    return app.get_option_no_throw(optionOf(setting)) != nullptr;
}

std::string variableOf(const Setting& setting) {
    std::string name = std::string(kVariablePrefix) + setting.name;
    std::transform(name.begin(), name.end(), name.begin(), [](char one) {
        return one == '-' ? '_' : static_cast<char>(std::toupper(static_cast<unsigned char>(one)));
    });
    return name;
}

/// Of each variable that looks like one of ours and is none.
std::vector<std::string> notesOnOtherVariables() {
    std::vector<std::string> known;
    for (const Setting& setting : kSettings) {
        known.push_back(variableOf(setting));
    }
    std::vector<std::string> notes;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string text = *entry;
        const std::string name = text.substr(0, text.find('='));
        if (name.rfind(kVariablePrefix, 0) == 0 &&
            std::find(known.begin(), known.end(), name) == known.end()) {
            notes.push_back("the variable " + name + " is none of orvhost." +
                            didYouMean(name, known));
        }
    }
    return notes;
}

void add(std::vector<std::string>& arguments, const Setting& setting,
         const std::vector<std::string>& values) {
    for (const std::string& value : values) {
        arguments.push_back(optionOf(setting));
        if (setting.kind != Kind::Flag) {
            arguments.push_back(value);
        }
    }
}

// Values of a list are separated as in PATH; those of --feature have a colon, and are separated by
// blanks.
std::vector<std::string> valuesOf(const Setting& setting, const std::string& variable,
                                  const std::string& text) {
    if (setting.kind == Kind::Flag) {
        if (text != "0" && text != "1") {
            throw ProjectError("the variable " + variable + ": 0 or 1 was expected, not '" + text +
                               "'");
        }
        return std::vector<std::string>(text == "1" ? 1 : 0);
    }
    if (setting.kind == Kind::Text) {
        return {text};
    }
    std::vector<std::string> values;
    std::istringstream stream(text);
    const char separator = setting.name == std::string("feature") ? ' ' : ':';
    for (std::string value; std::getline(stream, value, separator);) {
        if (!value.empty()) {
            values.push_back(value);
        }
    }
    return values;
}

std::string contentsOf(const fs::path& file) {
    TextFile read = readTextFile(file);
    if (!read.isRead()) {
        throw ProjectError(file.string() + ": " + read.problem + "; a project file was expected");
    }
    return std::move(read.text);
}

/// The files that were trusted, with a mark of what was in them.
class TrustedFiles {
public:
    TrustedFiles() {
        const std::string home = environmentVariable("HOME").value_or("");
        mList = home.empty() ? fs::path() : fs::path(home) / ".orvhost_trusted";
    }

    bool has(const fs::path& file, const std::string& text) const {
        std::ifstream list(mList);
        const std::string wanted = lineOf(file, text);
        for (std::string line; std::getline(list, line);) {
            if (line == wanted) {
                return true;
            }
        }
        return false;
    }

    void add(const fs::path& file, const std::string& text) const {
        if (mList.empty()) {
            throw ProjectError("--trust: the variable HOME is not set");
        }
        std::error_code error;
        std::string all = fs::exists(mList, error) ? contentsOf(mList) : std::string();
        writeWholeFile(mList, all + lineOf(file, text) + "\n");
    }

private:
    static std::string lineOf(const fs::path& file, const std::string& text) {
        constexpr std::uint64_t kStart = 14695981039346656037U;
        constexpr std::uint64_t kFactor = 1099511628211U;
        std::uint64_t mark = kStart;
        for (const char byte : text) {
            mark = (mark ^ static_cast<unsigned char>(byte)) * kFactor;
        }
        std::error_code error;
        return std::to_string(mark) + " " + fs::canonical(file, error).string();
    }

    fs::path mList;
};

/// Reads a project file.
class ProjectReader {
public:
    ProjectReader(const CLI::App& app, fs::path file, bool isTrusted)
        : mApp(app), mFile(std::move(file)), mText(contentsOf(mFile)), mIsTrusted(isTrusted) {}

    const std::string& text() const { return mText; }
    void trust() { mIsTrusted = true; }

    /// \p isSet tells which settings come from elsewhere.
    template <class IsSet>
    void read(const IsSet& isSet, ProjectSettings& settings) {
        const toml::table table = parse();
        std::string names;
        std::string leftOut;
        for (const auto& [setting, values] : settingsIn(table)) {
            if (isSet(setting)) {
                continue;
            }
            if (!mIsTrusted && setting.needsTrust(values)) {
                leftOut += (leftOut.empty() ? "" : ", ") + std::string(setting.name);
                continue;
            }
            names += (names.empty() ? "" : ", ") + std::string(setting.name);
            add(settings.arguments, setting, values);
        }
        settings.notes.push_back("read " + mFile.string() + ": " +
                                 (names.empty() ? "nothing" : names));
        if (!leftOut.empty()) {
            settings.notes.push_back(mFile.string() +
                                     ": left out, because the file was found and "
                                     "not named: " +
                                     leftOut + ". If you trust it: --trust, or --project " +
                                     mFile.string());
        }
    }

private:
    toml::table parse() const {
        try {
            return toml::parse(mText, mFile.string());
        } catch (const toml::parse_error& error) {
            throw ProjectError(placeOf(error.source()) +
                               "is no TOML: " + std::string(error.description()));
        }
    }

    /// All problems are told at once, in the order of the file.
    std::vector<std::pair<Setting, std::vector<std::string>>>
    settingsIn(const toml::table& table) const {
        std::vector<std::pair<Setting, std::vector<std::string>>> settings;
        std::multimap<toml::source_index, std::string> problems;
        for (const auto& [key, value] : table) {
            try {
                const Setting& setting = require(std::string(key.str()), value);
                settings.emplace_back(setting, valuesOf(setting, value));
            } catch (const ProjectError& problem) {
                problems.emplace(value.source().begin.line, problem.what());
            }
        }
        std::string text;
        for (const auto& [line, problem] : problems) {
            text += (text.empty() ? "" : "\n") + problem;
        }
        if (!text.empty()) {
            throw ProjectError(text);
        }
        return settings;
    }

    std::string placeOf(const toml::source_region& region) const {
        return mFile.string() + ":" + std::to_string(region.begin.line) + ": ";
    }

    const Setting& require(const std::string& name, const toml::node& value) const {
        std::vector<std::string> names;
        for (const Setting& setting : kSettings) {
            if (isOffered(mApp, setting)) {
                names.emplace_back(setting.name);
                if (name == setting.name) {
                    return setting;
                }
            }
        }
        throw ProjectError(placeOf(value.source()) + "a project has no '" + name + "'." +
                           didYouMean(name, names) + " It can have: " + enumerate(names));
    }

    std::vector<std::string> valuesOf(const Setting& setting, const toml::node& value) const {
        if (setting.kind == Kind::Flag) {
            if (const auto flag = value.value_exact<bool>()) {
                return std::vector<std::string>(*flag ? 1 : 0);
            }
            refuse(setting, value, "true or false");
        }
        if (setting.kind == Kind::Text) {
            return {textOf(setting, value)};
        }
        const toml::array* list = value.as_array();
        if (list == nullptr) {
            return {textOf(setting, value)};
        }
        std::vector<std::string> values;
        for (const toml::node& one : *list) {
            values.push_back(textOf(setting, one));
        }
        return values;
    }

    std::string textOf(const Setting& setting, const toml::node& value) const {
        const auto text = value.value_exact<std::string>();
        if (!text) {
            refuse(setting, value,
                   setting.kind == Kind::List ? "a text, or a list of texts" : "a text");
        }
        const bool isFile =
            setting.isPath ||
            (setting.name == std::string("model") &&
             (text->find('/') != std::string::npos || fs::path(*text).extension() == ".yang"));
        return isFile && !text->empty() && !isPostgresql(*text)
                   ? (mFile.parent_path() / *text).string()
                   : *text;
    }

    [[noreturn]] void refuse(const Setting& setting, const toml::node& value,
                             const std::string& expected) const {
        throw ProjectError(placeOf(value.source()) + setting.name + ": " + expected +
                           " was expected");
    }

    const CLI::App& mApp;
    fs::path mFile;
    std::string mText;
    bool mIsTrusted;
};

}

ProjectSettings projectSettings(const CLI::App& app, const std::vector<std::string>& arguments) {
    const GivenOptions given = givenOptions(app, arguments);
    ProjectSettings settings;
    settings.notes = notesOnOtherVariables();
    std::vector<std::string> fromVariables;
    const auto isGiven = [&](const std::string& name) { return given.count(name) > 0; };
    for (const Setting& setting : kSettings) {
        const std::string variable = variableOf(setting);
        const std::string text = environmentVariable(variable).value_or("");
        if (isOffered(app, setting) && !isGiven(optionOf(setting)) && !text.empty()) {
            add(settings.arguments, setting, valuesOf(setting, variable, text));
            settings.notes.push_back("read the variable " + variable);
            fromVariables.emplace_back(setting.name);
        }
    }
    const bool isNamed = isGiven("--project");
    const fs::path file = isNamed ? fs::path(given.at("--project")) : fs::path(kProjectFile);
    std::error_code error;
    if (file.empty() || (!isNamed && !fs::exists(file, error))) {
        return settings;
    }
    ProjectReader reader(app, file, isNamed);
    const TrustedFiles trusted;
    if (isGiven("--trust") && !trusted.has(file, reader.text())) {
        trusted.add(file, reader.text());
        settings.notes.push_back(file.string() + " is trusted from now on, until it is changed; " +
                                 "~/.orvhost_trusted has a line for it");
    }
    if (trusted.has(file, reader.text())) {
        reader.trust();
    }
    const auto isSet = [&](const Setting& setting) {
        return isGiven(optionOf(setting)) || std::find(fromVariables.begin(), fromVariables.end(),
                                                       setting.name) != fromVariables.end();
    };
    reader.read(isSet, settings);
    return settings;
}

void writeProjectTemplate() {
    std::error_code error;
    if (fs::exists(kProjectFile, error)) {
        throw ProjectError(std::string(kProjectFile) + " is there already");
    }
    writeWholeFile(kProjectFile, kTemplate);
}

}
