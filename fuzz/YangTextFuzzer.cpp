// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The reader that finds the lines of definitions in the text of YANG modules. It accepts any text,
// and the lines that it reports exist.

#include "support/ByteSource.h"
#include "support/Require.h"
#include "yang/source/ModuleStatements.h"

#include <algorithm>

using namespace Fuzz;
using namespace OrvHost;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = ByteSource(data, size).rest();
    const auto lines = 1 + std::count(text.begin(), text.end(), '\n');
    const ModuleStatements module(text);
    const std::vector<ModuleStatements::Statement>& statements = module.statements();
    for (std::size_t at = 0; at < statements.size(); ++at) {
        const ModuleStatements::Statement& one = statements[at];
        require(one.line >= 1 && one.line <= lines, "a line that is not there");
        require(one.parent == ModuleStatements::kNone || one.parent < at, "a parent that follows");
        require(module.lineOfFirst(withoutPrefix(one.keyword), one.argument) >= 1, "not found");
        const bool hasPrefix = one.keyword.find(':') != std::string::npos;
        require(!hasPrefix || module.lineOfMentioned('"' + one.keyword + '"') >= 1,
                "not found in quotes");
    }
    const std::string spaced = withSingleSpaces(text);
    require(withSingleSpaces(spaced) == spaced, "spaces are not single");
    module.prefixOf(text);
    module.lineOf(text);
    return 0;
}
