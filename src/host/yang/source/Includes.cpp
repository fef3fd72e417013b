// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Includes.h"

#include <cstddef>
#include <set>
#include <vector>

namespace OrvHost {
namespace {

using Statement = ModuleStatements::Statement;

std::set<std::string> ownIncludes(const ModuleSource& module) {
    std::set<std::string> names;
    for (const Statement& include : module.statements.inModule("include")) {
        names.insert(include.argument);
    }
    return names;
}

bool mayIncludeInSubmodulesOnly(const ModuleSource& module) {
    const std::vector<Statement> version = module.statements.inModule("yang-version");
    return version.empty() || version.front().argument == "1";
}

/// The revision that the statement asks for; empty if it does not matter.
std::string revisionOf(const Statement& include, const ModuleSource& source) {
    for (const Statement& statement : source.statements.statements()) {
        const bool isInside = include.begin < statement.begin && statement.begin < include.end;
        if (isInside && statement.keyword == "revision-date") {
            return statement.argument;
        }
    }
    return "";
}

/// A submodule that is not found stays out: its `include` remains where it is, so that the message
/// about it names the right file.
void collectIncludes(const ModuleSource& source, ModuleFinder& finder,
                     std::set<std::string>& names) {
    for (const Statement& include : source.statements.inModule("include")) {
        if (names.count(include.argument) > 0) {
            continue;
        }
        const ModuleSource* submodule = finder.find(include.argument, revisionOf(include, source));
        if (submodule != nullptr) {
            names.insert(include.argument);
            collectIncludes(*submodule, finder, names);
        }
    }
}

std::set<std::string> allIncludes(const ModuleSource& module, ModuleFinder& finder) {
    if (!mayIncludeInSubmodulesOnly(module)) {
        return ownIncludes(module);
    }
    std::set<std::string> names;
    collectIncludes(module, finder, names);
    return names;
}

void blank(std::string& text, const Statement& statement) {
    for (std::size_t at = statement.begin; at < statement.end; ++at) {
        text[at] = text[at] == '\n' ? '\n' : ' ';
    }
}

}

std::string withAllIncludes(const ModuleSource& module, ModuleFinder& finder) {
    std::string text = module.text;
    const std::vector<Statement> includes = module.statements.inModule("include");
    if (includes.empty()) {
        return text;
    }
    const std::set<std::string> own = ownIncludes(module);
    std::string added;
    for (const std::string& name : allIncludes(module, finder)) {
        added += own.count(name) > 0 ? "" : "include " + name + "; ";
    }
    return text.insert(includes.front().begin, added);
}

std::string withoutIncludes(const ModuleSource& submodule, const ModuleSource& module,
                            ModuleFinder& finder) {
    std::string text = submodule.text;
    const std::set<std::string> names = allIncludes(module, finder);
    for (const Statement& include : submodule.statements.inModule("include")) {
        if (names.count(include.argument) > 0) {
            blank(text, include);
        }
    }
    return text;
}

}
