// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "model/TypeCode.h"

#include <gtest/gtest.h>

namespace OrvHost {

TEST(TypeCode, EveryKind_IsFoundByItsCode) {
    for (const ValueKind kind :
         {ValueKind::Bool, ValueKind::Int, ValueKind::Uint, ValueKind::Double,
          ValueKind::Enumeration, ValueKind::String, ValueKind::MoRef, ValueKind::Struct}) {
        EXPECT_EQ(kindOfTypeCode(typeCodeOf(kind)), kind);
    }
    EXPECT_EQ(typeCodeOf(ValueKind::MoRef), 11);
    EXPECT_EQ(typeCodeOf(ValueKind::String), 9);
    EXPECT_EQ(typeCodeOf(ValueKind::Struct), 14);
}

TEST(TypeCode, CodeThatTheHostDoesNotUse_IsNoKind) {
    EXPECT_FALSE(kindOfTypeCode(6).has_value());
}

}
