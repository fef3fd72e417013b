// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "cli/input/ScriptReader.h"

#include <gmock/gmock.h>

#include <sstream>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream script(text);
    ScriptReader reader(script);
    std::vector<std::string> lines;
    while (reader.next()) {
        lines.push_back(std::to_string(reader.number()) + ":" + reader.line());
    }
    return lines;
}

TEST(ScriptReaderTest, Lines_PlainOrOfAnotherSystem_AreNumbered) {
    EXPECT_THAT(linesOf("a\n\nb\r\nc"), ElementsAre("1:a", "2:", "3:b", "4:c"));
    EXPECT_THAT(linesOf(""), IsEmpty());
}

TEST(ScriptReaderTest, Backslash_AsTheLastWord_JoinsTheNextLine) {
    EXPECT_THAT(linesOf("set A=1 \\\n  b=2 \\\r\n  c=3\nget"),
                ElementsAre("1:set A=1   b=2   c=3", "4:get"));
    EXPECT_THAT(linesOf("\\\nb"), ElementsAre("1:b"));
}

TEST(ScriptReaderTest, Backslash_AfterAWordOrAtTheEnd_JoinsNothingMore) {
    EXPECT_THAT(linesOf("get A\\\nb"), ElementsAre("1:get A\\", "2:b"));
    EXPECT_THAT(linesOf("get A \\"), ElementsAre("1:get A "));
}

}
}
