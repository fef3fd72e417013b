// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LoadReport.h"

#include "yang/source/MissingModules.h"

namespace OrvHost {

void LoadReport::take(const YangMessage& message) {
    std::smatch match;
    if (std::regex_search(message.text, match, mParsing)) {
        claim(match[1]);
    } else if (std::regex_search(message.text, match, mLoading)) {
        takeFailedModule(match[1].matched ? match[1] : match[2], message.text);
    } else {
        const std::string place = message.path.empty() ? "" : " (at " + message.path + ")";
        mProblems.push_back({{"", message.line}, message.text + place});
    }
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
