// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RouterScene.h"
#include "model/RuleCheck.h"

#include <gmock/gmock.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Finds what it is asked to find, and keeps what it was shown.
class RecordingRules : public RuleCheck {
public:
    RuleReport check(const ObjectView& view,
                     const std::vector<TouchedObject>& touched) const override {
        seen.clear();
        for (const TouchedObject& object : touched) {
            std::string text = object.dn + (view.exists(object.dn) ? "" : " gone");
            for (const std::string& attribute : object.attributes) {
                text += " " + attribute;
            }
            seen.push_back(text);
        }
        names = view.namesOf("Network=1", "Node");
        values = view.valuesOf("Network=1,Node=a").size();
        return {toFind, {touched.size(), std::chrono::microseconds(5)}};
    }
    RuleReport checkAll(const ObjectView&) const override { return {}; }

    std::vector<RuleViolation> toFind;
    mutable std::vector<std::string> seen;
    mutable std::vector<std::string> names;
    mutable std::size_t values = 0;
};

class RouterRulesTest : public RouterScene {
protected:
    RouterRulesTest() { router.setRules(&rules); }
    ~RouterRulesTest() override { router.setRules(nullptr); }

    RecordingRules rules;
};

TEST_F(RouterRulesTest, Validate_GivesAllViolationsAtOnce) {
    rules.toFind = {{"Network=1", "label", "too long", "length"}, {"Network=1", "", "odd", ""}};
    const TransactionOutcome outcome = service.validate(tx);
    EXPECT_FALSE(outcome.accepted);
    ASSERT_EQ(outcome.messages.size(), 2U);
    EXPECT_EQ(outcome.messages[0].kind, ThreadContext::Verdict);
    EXPECT_EQ(outcome.messages[0].text,
              "Network=1: attribute 'label': too long (error-app-tag length)");
    EXPECT_EQ(outcome.messages[1].text, "Network=1: odd");
    rules.toFind.clear();
    EXPECT_TRUE(service.validate(tx).accepted);
}

TEST_F(RouterRulesTest, Check_SeesTheStateAndTheChangesOfTheTransaction) {
    EXPECT_EQ(router.ruleCostOf(tx), std::nullopt);
    OrvMoAttributeValue_3 slot{};
    slot.string = "x";
    OrvMoAttributeValueContainer_3 value{OrvMoAttributeTypeString_3, 1, &slot};
    ASSERT_EQ(v3.setMoAttribute(tx, "Network=1,Node=a", "label", &value), OrvOk);
    ASSERT_EQ(v3.deleteMo(tx, "Network=1,Node=b"), OrvOk) << lastMessage();
    service.validate(tx);
    EXPECT_THAT(rules.seen, ElementsAre("Network=1,Node=b gone", "Network=1,Node=a label"));
    EXPECT_THAT(rules.names, ElementsAre("a"));
    EXPECT_EQ(rules.values, 2U);
    ASSERT_TRUE(router.ruleCostOf(tx));
    EXPECT_EQ(router.ruleCostOf(tx)->objects, 2U);
}

}
}
