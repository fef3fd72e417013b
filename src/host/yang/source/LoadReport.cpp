// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LoadReport.h"

#include "yang/source/Hints.h"
#include "yang/source/MissingModules.h"

#include <algorithm>
#include <utility>

namespace OrvHost {
namespace {

constexpr Hint kHints[] = {
    {"Referenced type",
     "a built-in type, a typedef of this module or, with its prefix, one of an imported module was "
     "expected"},
    {"Grouping \"",
     "a grouping of this module or, with its prefix, one of an imported module was expected"},
    {"target node",
     "every name in the path has the prefix under which this module imports its module, and the "
     "node must exist there"},
    {"does not fit the type limitations",
     "a range or length can only be narrower than that of its type"},
    {"The list's key", "a key is a leaf directly in the list"},
    {"XPath", "look at the expressions of this node: must, when, or the path of a leafref"}};

/// The line of the definition that a schema path such as "/module:list/leaf" ends with. A
/// definition that came from a grouping is not found.
int lineOfNode(const ModuleStatements& text, const std::string& path) {
    static const std::regex statement(R"(\{([a-z-]+)='([^']*)'\})");
    std::smatch match;
    if (std::regex_search(path, match, statement)) {
        return text.lineOfFirst(match[1].str(), match[2].str());
    }
    const std::string name(withoutPrefix(path.substr(path.rfind('/') + 1)));
    for (const char* keyword : {"leaf", "leaf-list", "list", "container", "choice", "action"}) {
        if (const int line = text.lineOfFirst(keyword, name); line > 0) {
            return line;
        }
    }
    return 0;
}

}

std::string describe(const YangMessage& message) {
    const std::string place = message.path.empty() ? "" : " (at " + message.path + ")";
    return message.text + hintFor(kHints, message.text) + place;
}

SourcePosition positionOf(const std::string& path, const ModuleFinder& finder) {
    const std::string module =
        path.substr(std::min<std::size_t>(1, path.size()), path.find(':') - 1);
    const auto text = finder.found().find(module);
    if (text == finder.found().end()) {
        return {};
    }
    return {text->second.file, lineOfNode(text->second.statements, path)};
}

void LoadReport::take(const YangMessage& message) {
    std::smatch match;
    if (std::regex_search(message.text, match, mParsing)) {
        claim(match[1]);
    } else if (std::regex_search(message.text, match, mLoading)) {
        takeFailedModule(match[1].matched ? match[1] : match[2], message.text);
    } else {
        mProblems.push_back({{"", message.line}, describe(message)});
        mPaths[mProblems.back().text] = message.path;
    }
}

std::vector<Problem> LoadReport::problems() && {
    for (Problem& problem : mProblems) {
        const auto path = mPaths.find(problem.text);
        if (problem.source.file.empty() && path != mPaths.end()) {
            problem.source = positionOf(path->second, mFinder);
        }
    }
    return std::move(mProblems);
}

void LoadReport::takeFailedModule(const std::string& module, const std::string& text) {
    if (mFinder.wasMissed(module)) {
        mMissing = module;
        mProblems.push_back({{}, describeMissing(module, mFinder)});
    } else if (mProblems.empty()) {
        mProblems.push_back({{}, text});
    }
    claim(module);
}

/// Messages that have no file yet belong to that module.
void LoadReport::claim(const std::string& module) {
    const auto found = mFinder.found().find(module);
    if (found == mFinder.found().end()) {
        return;
    }
    for (Problem& problem : mProblems) {
        if (problem.source.file.empty()) {
            const int line = problem.source.line;
            problem.source = {found->second.file,
                              line > 0 ? line : lineOfCause(found->second, problem.text)};
        }
    }
}

/// The library does not always report a line.
int LoadReport::lineOfCause(const ModuleSource& module, const std::string& text) const {
    for (const char* keyword : {"import", "include"}) {
        if (const int line = module.statements.lineOfFirst(keyword, mMissing); line > 0) {
            return line;
        }
    }
    return module.statements.lineOfMentioned(text);
}

}
