// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "yang/source/Utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvHost {
namespace {

// In each place of a text, so that each place of a portion of bytes is met.
TEST(Utf8, PlainPrefix_EndsAtTheFirstByteThatIsNotPlain) {
    for (std::size_t size = 0; size < 20; ++size) {
        for (std::size_t place = 0; place < size; ++place) {
            for (int byte = 0; byte < 256; ++byte) {
                std::string text(size, 'x');
                text[place] = static_cast<char>(byte);
                const bool isPlain = byte >= 0x20 && byte < 0x80;
                ASSERT_EQ(plainPrefix(text), isPlain ? size : place) << byte << " at " << place;
            }
        }
        ASSERT_EQ(plainPrefix(std::string(size, ' ')), size);
    }
}

TEST(Utf8, PlainBytes_AreCharactersOfOneByte) {
    for (int byte = 0x20; byte < 0x80; ++byte) {
        EXPECT_EQ(lengthOfCharacter(std::string(1, static_cast<char>(byte))), 1U) << byte;
    }
}

}
}
