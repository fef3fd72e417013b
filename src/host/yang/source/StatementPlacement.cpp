// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StatementPlacement.h"

#include <string>
#include <string_view>

namespace OrvHost {
namespace {

using Statement = ModuleStatements::Statement;

bool isOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
    for (const std::string_view candidate : words) {
        if (word == candidate) {
            return true;
        }
    }
    return false;
}

std::string describePlace(const Statement& statement, const Statement& parent) {
    const std::string name(withoutPrefix(statement.keyword));
    const std::string place =
        "\"" + statement.keyword + "\" has no effect in \"" + parent.keyword + "\"; ";
    return place + (name == "struct" ? "put it into a list"
                                     : "put it into a leaf or leaf-list, or into the module");
}

}

std::vector<Problem> misplacedStatements(const ModuleSource& module) {
    const std::string prefix = module.statements.prefixOf(kAssociationsModule);
    std::vector<Problem> problems;
    for (const Statement& statement : module.statements.statements()) {
        const bool isOurs = !prefix.empty() && statement.parent != ModuleStatements::kNone &&
                            statement.keyword.compare(0, prefix.size() + 1, prefix + ":") == 0;
        if (!isOurs) {
            continue;
        }
        const Statement& parent = module.statements.statements()[statement.parent];
        const bool isWellPlaced =
            withoutPrefix(statement.keyword) == "struct"
                ? isOneOf(parent.keyword, {"list", "deviation"})
                : isOneOf(parent.keyword, {"leaf", "leaf-list", "module", "deviation"});
        if (!isWellPlaced) {
            problems.push_back({{module.file, statement.line}, describePlace(statement, parent)});
        }
    }
    return problems;
}

}
