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

TEST(CommandTable, NamesIn_SaysWhatRuns_AndNoValues) {
    const CommandTable table;
    const auto names = [&](std::vector<std::string> words) {
        return table.namesIn(std::move(words));
    };
    EXPECT_EQ(names({"set", "A=1", "password=secret"}), "set");
    EXPECT_EQ(names({"secret", "word"}), "no command");
    EXPECT_EQ(names({"expect", ":", "commit"}), "expect : commit");
    EXPECT_EQ(names({"expect", "error", "message", "text", ":", "delete", "A=1"}),
              "expect : delete");
    EXPECT_EQ(names({"expect", "message", ":", ":", "commit"}), "expect") << "nothing runs";
    EXPECT_EQ(names({"expect", ":", "expect", "ok", ":", "commit"}), "expect : commit");
    EXPECT_EQ(names({"expect", ":", "secret"}), "expect : no command");
    EXPECT_EQ(names({"expect", "commit"}), "expect") << "nothing runs";
    EXPECT_EQ(names({"expect", ":"}), "expect");
    std::vector<std::string> deep;
    for (int level = 0; level < 50000; ++level) {
        deep.insert(deep.end(), {"expect", ":"});
    }
    deep.emplace_back("commit");
    EXPECT_EQ(names(deep), "expect") << "more levels than run";
}
