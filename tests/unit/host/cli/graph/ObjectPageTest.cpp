// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "cli/graph/ObjectPage.h"

#include "GraphModel.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <limits>

namespace OrvHost {
namespace {

using testing::HasSubstr;

class ObjectPageTest : public GraphTest {
protected:
    std::string page() const {
        return objectPage(mPicture, ReferenceLines(mClasses, mPicture, {}), {});
    }
};

TEST_F(ObjectPageTest, Integers_ThatABrowserWouldRound_AreTexts) {
    constexpr std::int64_t most = 9007199254740991;
    const ReadValue numbers{true,
                            0,
                            {most, most + 1, -most, -most - 1,
                             std::numeric_limits<std::int64_t>::min(), std::uint64_t(most),
                             std::numeric_limits<std::uint64_t>::max(), 0.5}};
    const ReadStruct outer({{"inner", {false, 0, {std::uint64_t(most) + 1}}}});
    add("Site=1");
    mPicture.objects.back().values = {{"numbers", numbers}, {"outer", {false, 0, {outer}}}};
    EXPECT_THAT(page(), HasSubstr(R"("numbers":[9007199254740991,"9007199254740992",)"
                                  R"(-9007199254740991,"-9007199254740992",)"
                                  R"("-9223372036854775808",9007199254740991,)"
                                  R"("18446744073709551615",0.5],)"
                                  R"("outer":{"inner":"9007199254740992"})"));
}

}
}
