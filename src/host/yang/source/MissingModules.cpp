// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MissingModules.h"

#include <set>
#include <utility>

namespace OrvHost {
namespace {

/// One walk over imports and includes.
class Walk {
public:
    Walk(ModuleFinder& finder, const std::function<bool(const std::string&)>& isBuiltIn)
        : mFinder(finder), mIsBuiltIn(isBuiltIn) {}

    void visit(const ModuleSource& source) {
        for (const char* keyword : {"import", "include"}) {
            for (const auto& statement : source.statements.inModule(keyword)) {
                follow(source, statement);
            }
        }
    }

    std::vector<Problem> takeProblems() { return std::move(mProblems); }

private:
    void follow(const ModuleSource& source, const ModuleStatements::Statement& statement) {
        if (!mSeen.insert(statement.argument).second || mIsBuiltIn(statement.argument)) {
            return;
        }
        if (const ModuleSource* found = mFinder.find(statement.argument, "")) {
            visit(*found);
        } else {
            mProblems.push_back(
                {{source.file, statement.line}, describeMissing(statement.argument, mFinder)});
        }
    }

    ModuleFinder& mFinder;
    const std::function<bool(const std::string&)>& mIsBuiltIn;
    std::set<std::string> mSeen;
    std::vector<Problem> mProblems;
};

}

std::vector<Problem> missingModules(const std::vector<std::string>& modules, ModuleFinder& finder,
                                    const std::function<bool(const std::string&)>& isBuiltIn) {
    Walk walk(finder, isBuiltIn);
    for (const std::string& module : modules) {
        if (const ModuleSource* found = finder.find(module, "")) {
            walk.visit(*found);
        }
    }
    return walk.takeProblems();
}

std::string describeMissing(const std::string& module, const ModuleFinder& finder) {
    return "module \"" + module + "\" was not found; " + finder.describeSearch(module);
}

}
