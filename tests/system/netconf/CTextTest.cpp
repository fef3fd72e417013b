// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "netconf/wire/CText.h"

#include <gtest/gtest.h>

#include <cstring>
#include <ostream>
#include <string>

namespace OrvHost {
namespace {

TEST(CTextTest, Text_EndsWithAZero) {
    EXPECT_STREQ(toCText("a text").get(), "a text");
    EXPECT_STREQ(toCText("").get(), "");
}

TEST(CTextTest, Buffer_HasAllThatWasWrittenWhateverItsPieces) {
    CTextBuffer buffer;
    std::ostream stream(&buffer);
    std::string expected;
    for (int number = 0; number < 30000; ++number) {
        stream << number << ' ';
        stream.put('x');
        stream << std::string(static_cast<std::size_t>(number % 700), 'y');
        expected += std::to_string(number) + " x" +
                    std::string(static_cast<std::size_t>(number % 700), 'y');
    }
    ASSERT_TRUE(stream.good());
    const CText text = buffer.take();
    ASSERT_EQ(std::strlen(text.get()), expected.size());
    EXPECT_TRUE(text.get() == expected);
}

TEST(CTextTest, Buffer_IsEmptyAfterItsTextWasTaken) {
    CTextBuffer buffer;
    std::ostream stream(&buffer);
    stream << "one";
    EXPECT_STREQ(buffer.take().get(), "one");
    stream << "two";
    EXPECT_STREQ(buffer.take().get(), "two");
    EXPECT_STREQ(buffer.take().get(), "");
}

}
}
