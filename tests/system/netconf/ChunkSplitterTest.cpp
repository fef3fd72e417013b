// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Large chunks become small ones; the content of a message stays.

#include "netconf/wire/ChunkSplitter.h"

#include <gmock/gmock.h>

namespace OrvHost {
namespace {

/// \p in, given in pieces of \p size.
std::string passed(const std::string& in, std::size_t size, std::size_t limit = 4) {
    ChunkSplitter splitter(limit);
    std::string out;
    for (std::size_t at = 0; at < in.size(); at += size) {
        splitter.pass(std::string_view(in).substr(at, size), out);
    }
    return out;
}

TEST(ChunkSplitterTest, WhatEndsWithAMark_IsUnchanged) {
    const std::string messages = "<hello/>]]>]]>\n<a>\n#9\n]]]>]]>]]>]]><b/>]]>]]>";
    for (const std::size_t size : {1U, 2U, 3U, 7U, 100U}) {
        EXPECT_EQ(passed(messages, size), messages);
    }
}

TEST(ChunkSplitterTest, LargeChunks_AreSplitAndSmallOnesStay) {
    const std::string in = "<hello/>]]>]]>\n#9\nabcdefghi\n#4\n\n##\n\n##\n\n#2\nxy\n##\n";
    const std::string out =
        "<hello/>]]>]]>\n#4\nabcd\n#4\nefgh\n#1\ni\n#4\n\n##\n\n##\n\n#2\nxy\n##\n";
    EXPECT_EQ(passed(in, in.size()), out);
}

TEST(ChunkSplitterTest, PiecesOfTheInput_DoNotChangeTheContent) {
    const std::string in = "<hello/>]]>]]>\n#9\nabcdefghi\n#4\n\n##\n\n##\n\n#2\nxy\n##\n";
    for (const std::size_t size : {1U, 2U, 3U, 5U, 11U}) {
        const std::string out = passed(in, size);
        std::string content;
        for (std::size_t at = out.find("]]>]]>") + 6; at < out.size();) {
            ASSERT_EQ(out.substr(at, 2), "\n#") << out;
            const std::size_t end = out.find('\n', at + 1);
            const std::string length = out.substr(at + 2, end - at - 2);
            if (length == "#") {
                content += "|";
                at = end + 1;
                continue;
            }
            EXPECT_LE(std::stoul(length), 4U);
            content += out.substr(end + 1, std::stoul(length));
            at = end + 1 + std::stoul(length);
        }
        EXPECT_EQ(content, "abcdefghi\n##\n|xy|") << size;
    }
}

TEST(ChunkSplitterTest, WhatIsNoHeader_Passes) {
    const std::string in = "<hello/>]]>]]>\n#12345678901234567890\nabc";
    EXPECT_EQ(passed(in, 3), in);
}

}
}
