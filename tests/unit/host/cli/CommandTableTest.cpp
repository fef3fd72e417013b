// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The table of commands, and the lists beside it that must name every command.

#include "cli/commands/CommandTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <string>

using namespace OrvHost;
using testing::HasSubstr;

namespace {

std::string textOf(const std::string& path) {
    std::ifstream file(std::string(ORV_PROJECT) + "/" + path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// From the heading to the next one.
std::string section(const std::string& document, const std::string& heading) {
    const std::size_t start = document.find("\n## " + heading + "\n");
    if (start == std::string::npos) {
        return {};
    }
    return document.substr(start, document.find("\n## ", start + 1) - start);
}

}

TEST(CommandTable, Names_AreThereOnce) {
    std::set<std::string> names;
    for (const std::string& name : CommandTable().names()) {
        EXPECT_TRUE(names.insert(name).second) << name;
    }
    EXPECT_FALSE(names.empty());
}

TEST(CommandTable, Documentation_HasARowForEachCommand) {
    const std::string table = section(textOf("docs/orvhost.md"), "Commands");
    for (const std::string& name : CommandTable().names()) {
        const bool has = table.find("`" + name + "`") != std::string::npos ||
                         table.find("`" + name + " ") != std::string::npos;
        EXPECT_TRUE(has) << name;
    }
}

TEST(CommandTable, WordsOfTheScriptFuzzer_HaveEachCommand) {
    const std::string words = textOf("fuzz/script.dict");
    for (const std::string& name : CommandTable().names()) {
        EXPECT_THAT(words, HasSubstr("\n\"" + name + "\"\n"));
    }
}
