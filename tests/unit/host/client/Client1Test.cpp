// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "client/Client1.h"

#include <gmock/gmock.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

NamedValue number(const std::string& name, std::int64_t value) {
    return {name, {ValueKind::Int, {Value(value)}}};
}

AttributeDef parameter(const std::string& name) {
    AttributeDef def;
    def.name = name;
    def.type.kind = ValueKind::Int;
    return def;
}

/// An action with the parameters first, second (default 7) and third.
ActionDef action() {
    ActionDef def;
    def.parameters = {parameter("first"), parameter("second"), parameter("third")};
    def.parameters[1].defaultValue = AttributeValue{ValueKind::Int, {Value(std::int64_t{7})}};
    return def;
}

TEST(Client1Test, Parameters_InAnyOrder_ComeInThatOfTheDefinition) {
    EXPECT_THAT(inOrderOf(action(), {number("third", 3), number("second", 2), number("first", 1)}),
                ElementsAre(number("first", 1), number("second", 2), number("third", 3)));
}

TEST(Client1Test, Parameters_LeftOutAtTheEnd_AreNotPassed) {
    EXPECT_THAT(inOrderOf(action(), {number("first", 1)}), ElementsAre(number("first", 1)));
    EXPECT_THAT(inOrderOf(action(), {}), IsEmpty());
}

TEST(Client1Test, Parameters_LeftOutBeforeAnother_NeedADefault) {
    EXPECT_THAT(inOrderOf(action(), {number("third", 3), number("first", 1)}),
                ElementsAre(number("first", 1), number("second", 7), number("third", 3)));
    EXPECT_THROW(inOrderOf(action(), {number("third", 3)}), RequestError);
}

TEST(Client1Test, Parameters_Unknown_ComeLast) {
    EXPECT_THAT(inOrderOf(action(), {number("other", 9), number("first", 1)}),
                ElementsAre(number("first", 1), number("other", 9)));
}

}
}
