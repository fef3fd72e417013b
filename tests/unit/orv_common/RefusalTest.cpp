// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Refusal.h"

#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

std::vector<std::pair<int, std::string>> taken;
OrvReturnT answer = OrvOk;
bool throws = false;

OrvReturnT addMessage(int kind, const char* text) {
    if (throws) {
        throw std::runtime_error("the host cannot");
    }
    taken.emplace_back(kind, text);
    return answer;
}

VekMgmtSpiThreadContext_2 context = {VekMgmtSpiThreadContext_2_Id, &addMessage};

OrvReturnT lookUp(VekMgmtSpiInterface_1 id, void** result) {
    if (std::strcmp(id.interfaceName, "VekMgmtSpiThreadContext") != 0 ||
        std::strcmp(id.interfaceVersion, "2") != 0) {
        return OrvNotExist;
    }
    *result = &context;
    return OrvOk;
}

class RefusalTest : public ::testing::Test {
protected:
    void SetUp() override {
        taken.clear();
        answer = OrvOk;
        throws = false;
        Orv::Portal::instance()->attach(&lookUp);
    }
    void TearDown() override { Orv::Portal::instance()->detach(); }
};

}

TEST_F(RefusalTest, Refuse_WithThreadContext_GivesTheReasonAndTheCode) {
    EXPECT_EQ(Orv::refuse(OrvValidationFailed, "too large"), OrvValidationFailed);
    const std::vector<std::pair<int, std::string>> wanted{{1, "too large"}};
    EXPECT_EQ(taken, wanted);
}

TEST_F(RefusalTest, Refuse_MessageNotTaken_GivesTheCode) {
    answer = OrvFailure;
    EXPECT_EQ(Orv::refuse(OrvNotExist, "gone"), OrvNotExist);
    EXPECT_EQ(taken.size(), 1u);
}

TEST_F(RefusalTest, Refuse_HostThrows_GivesTheCode) {
    throws = true;
    EXPECT_EQ(Orv::refuse(OrvNotExist, "gone"), OrvNotExist);
    EXPECT_TRUE(taken.empty());
}

TEST_F(RefusalTest, Refuse_WithoutThreadContext_GivesTheCode) {
    Orv::Portal::instance()->detach();
    EXPECT_EQ(Orv::refuse(OrvNotExist, "gone"), OrvNotExist);
    EXPECT_TRUE(taken.empty());
}
