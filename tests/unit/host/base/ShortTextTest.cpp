// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "base/ShortText.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvHost {

TEST(SameText, TextsOfAllSmallSizes_DifferInEachByte) {
    for (std::size_t size = 0; size < 40; ++size) {
        const std::string text(size, 'a');
        EXPECT_TRUE(isSameText(text, std::string(size, 'a'))) << size;
        EXPECT_FALSE(isSameText(text, text + "a")) << size;
        for (std::size_t at = 0; at < size; ++at) {
            std::string other = text;
            other[at] = 'b';
            EXPECT_FALSE(isSameText(text, other)) << size << " " << at;
        }
    }
}

TEST(ShortText, TextThatFits_IsKept) {
    ShortText<8> kept;
    EXPECT_TRUE(kept == "");
    std::string text = "12345678";
    kept.keep(text);
    text[0] = '9';
    EXPECT_TRUE(kept == "12345678");
    EXPECT_FALSE(kept == text);
    kept.keep("123");
    EXPECT_TRUE(kept == "123");
    EXPECT_FALSE(kept == "12345678");
    kept.clear();
    EXPECT_FALSE(kept == "123");
}

TEST(ShortText, TextThatDoesNotFit_LeavesNothing) {
    ShortText<8> kept;
    kept.keep("123");
    kept.keep("123456789");
    EXPECT_FALSE(kept == "123");
    EXPECT_FALSE(kept == "123456789");
    EXPECT_TRUE(kept == "");
}

}
