// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "netconf/wire/LargeReplies.h"

#include "yang/schema/YangModelReader.h"
#include "yang/source/YangContext.h"

#include <gtest/gtest.h>

#include <libyang/libyang.h>

#include <string>

namespace OrvHost {
namespace {

class LargeRepliesTest : public testing::Test {
protected:
    static std::shared_ptr<YangContext> modules() {
        YangModelReader reader;
        reader.offerText("one", "one",
                         "module one { namespace \"urn:one\"; prefix o; container box { leaf a "
                         "{ type string; } } list row { key k; leaf k { type string; } } }");
        reader.offerText("two", "two",
                         "module two { namespace \"urn:two\"; prefix t; container box; }");
        reader.load("one");
        reader.load("two");
        return reader.readForProtocol();
    }

    /// What is printed, below an element; "" if the text is not taken.
    std::string printed(const std::string& text) {
        CText given = toCText(text);
        OwnedTree tree = mReplies.take(given);
        if (tree == nullptr) {
            EXPECT_STREQ(given.get(), text.c_str()) << "it was changed";
            return "";
        }
        EXPECT_EQ(given, nullptr);
        char* result = nullptr;
        EXPECT_EQ(
            lyd_print_mem(&result, tree.get(), LYD_XML, LYD_PRINT_WITHSIBLINGS | LYD_PRINT_SHRINK),
            LY_SUCCESS);
        const CText owner(result);
        return result != nullptr ? result : "";
    }

    std::shared_ptr<YangContext> mModules = modules();
    LargeReplies mReplies{mModules->get()};
};

TEST_F(LargeRepliesTest, Elements_ArePrintedAsTheyAre) {
    const std::string box = "<box xmlns=\"urn:one\"><a>1 &lt; 2</a></box>";
    const std::string row = "<row xmlns=\"urn:one\"><k>1</k></row>";
    const std::string library =
        "<yang-library xmlns=\"urn:ietf:params:xml:ns:yang:ietf-yang-library\">\n  <x/>\n"
        "</yang-library>";
    const std::string other = "<box xmlns=\"urn:two\"><row/></box>";
    for (const std::string& text : {box, row, row + row, library + box + row + other}) {
        EXPECT_EQ(printed(text), text);
    }
    EXPECT_EQ(
        printed("\n<box xmlns=\"urn:one\">\n  <a/>\n</box>\n\n<row xmlns=\"urn:one\"> </row>\n"),
        "<box xmlns=\"urn:one\">\n  <a/>\n</box><row xmlns=\"urn:one\"> </row>");
}

TEST_F(LargeRepliesTest, SomethingElse_IsNotTaken) {
    for (const char* text :
         {"", "\n", "text", "<box/>", "<box xmlns=\"urn:one\"/>", "<box xmlns=\"urn:three\"></box>",
          "<row xmlns=\"urn:two\"></row>", "<box xmlns=\"urn:one\">",
          "<box xmlns=\"urn:one\"></row>", "<o:box xmlns:o=\"urn:one\"></o:box>",
          "<box xmlns=\"urn:one\" a=\"b\"></box>", "<box xmlns=\"urn:one\"></box> text",
          // The last end tag of the first element is inside the second one.
          "<box xmlns=\"urn:one\"></box><row xmlns=\"urn:one\"><box></box></row>"}) {
        EXPECT_EQ(printed(text), "") << text;
    }
}

TEST_F(LargeRepliesTest, LargeText_IsTakenWhole) {
    std::string text = "<box xmlns=\"urn:one\">";
    for (int number = 0; number < 200000; ++number) {
        text += "<a>" + std::to_string(number) + "</a>";
    }
    text += "</box>";
    EXPECT_TRUE(printed(text) == text);
}

}
}
