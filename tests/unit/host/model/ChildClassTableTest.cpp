// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "model/ChildClassTable.h"

#include <gtest/gtest.h>

#include <string>

namespace OrvHost {
namespace {

constexpr ClassIndex kNone = UINT32_MAX;

ClassIndex found(const ChildClassTable::Child* child) {
    return child == nullptr ? kNone : child->moc;
}

TEST(ChildClassTable, Find_NeedsTheParentAndTheWholeName) {
    ChildClassTable table;
    table.add(ChildClassTable::topLevel, "Site", 0);
    table.add(0, "Mast", 1);
    table.add(0, "MastTop", 2);
    EXPECT_EQ(found(table.find(ChildClassTable::topLevel, "Site")), 0U);
    EXPECT_EQ(found(table.find(0, "Mast")), 1U);
    EXPECT_EQ(found(table.find(0, "MastTop")), 2U);
    EXPECT_EQ(found(table.find(ChildClassTable::topLevel, "Mast")), kNone);
    EXPECT_EQ(found(table.find(0, "Mas")), kNone);
    EXPECT_EQ(found(table.find(0, "")), kNone);
    EXPECT_EQ(found(table.find(1, "Mast")), kNone);
    EXPECT_EQ(found(ChildClassTable().find(ChildClassTable::topLevel, "Site")), kNone);
}

// Few children are compared one by one, many are looked up in another way.
TEST(ChildClassTable, FindAtStart_NeedsTheEqualsSign_AmongFewAndMany) {
    ChildClassTable table;
    for (ClassIndex child = 0; child < 40; ++child) {
        table.add(5, "Box" + std::to_string(child), child);
        for (ClassIndex known = 0; known <= child; ++known) {
            const std::string name = "Box" + std::to_string(known);
            ASSERT_EQ(found(table.findAtStart(5, name + "=1,Other=2")), known) << child;
            ASSERT_EQ(found(table.findAtStart(5, name + "=")), known) << child;
            ASSERT_EQ(found(table.find(5, name)), known) << child;
            ASSERT_EQ(found(table.findAtStart(5, name)), kNone) << child;
            ASSERT_EQ(found(table.findAtStart(5, name + ".id=1")), kNone) << child;
            ASSERT_EQ(found(table.findAtStart(5, name + ",A=1")), kNone) << child;
        }
        ASSERT_EQ(found(table.findAtStart(5, "Box40=1")), kNone) << child;
        ASSERT_EQ(found(table.findAtStart(5, "")), kNone) << child;
    }
}

}
}
