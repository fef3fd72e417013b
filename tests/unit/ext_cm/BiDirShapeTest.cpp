// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"

#include <cstring>
#include <map>
#include <set>
#include <type_traits>

// Where the members stand and of which types they are is known outside, as the order of the virtual
// operations is.

namespace BiDirTests {
namespace {

std::ptrdiff_t distance(const void* from, const void* to) {
    return static_cast<const char*>(to) - static_cast<const char*>(from);
}

template <class Type>
constexpr std::ptrdiff_t sizeOf() {
    return sizeof(Type);
}

static_assert(std::is_same_v<decltype(Utils::moRouter), OrvOamSpiManagedObject_3*>);
static_assert(std::is_same_v<decltype(Utils::modelRepository), VekOamSpiModelRepository_4*>);
static_assert(std::is_same_v<decltype(Utils::pendingBackPointers),
                             std::multimap<std::string, Utils::BackPointerData>>);
static_assert(
    std::is_same_v<decltype(Utils::modifiedBackPointers),
                   std::map<unsigned long, std::set<std::pair<std::string, std::string>>>>);
static_assert(std::is_same_v<decltype(Utils::mMutex), Poco::Mutex>);

TEST(BiDirShape, Members_StandInTheirOrderAfterNothingButTheTableOfOperations) {
    const Utils utils;
    constexpr std::ptrdiff_t word = sizeof(void*);
    EXPECT_EQ(distance(&utils, &utils.moRouter), word);
    EXPECT_EQ(distance(&utils, &utils.modelRepository), 2 * word);
    EXPECT_EQ(distance(&utils, &utils.pendingBackPointers), 3 * word);
    EXPECT_EQ(distance(&utils.pendingBackPointers, &utils.modifiedBackPointers),
              sizeOf<decltype(utils.pendingBackPointers)>());
    EXPECT_EQ(distance(&utils.modifiedBackPointers, &utils.mMutex),
              sizeOf<decltype(utils.modifiedBackPointers)>());
}

TEST(BiDirShape, WaitingAddition_HasItsFieldsInTheirOrder) {
    const Utils::BackPointerData waiting{1, "xs", 2, "X=1", true, "ys"};
    const auto& [txHandle, backPointerAttribute, end, sourceDn, active, sourceAttribute] = waiting;
    EXPECT_EQ(&txHandle, &waiting.txHandle);
    EXPECT_EQ(&backPointerAttribute, &waiting.backPointerAttribute);
    EXPECT_EQ(&end, &waiting.end);
    EXPECT_EQ(&sourceDn, &waiting.sourceDn);
    EXPECT_EQ(&active, &waiting.active);
    EXPECT_EQ(&sourceAttribute, &waiting.sourceAttribute);
    static_assert(std::is_same_v<decltype(waiting.txHandle), unsigned long>);
    static_assert(std::is_same_v<decltype(waiting.end), VekOamSpiMrAssociationEndHandle_4T>);
    static_assert(std::is_same_v<decltype(waiting.active), bool>);
}

TEST(BiDirShape, MembersOfTheValidator_StandInTheirOrder) {
    Utils utils;
    const Validator validator(utils);
    constexpr std::ptrdiff_t word = sizeof(void*);
    EXPECT_EQ(distance(&validator, &validator.moRouter), word);
    EXPECT_EQ(distance(&validator, &validator.modelRepository), 2 * word);
    EXPECT_EQ(distance(&validator, &validator.threadContext), 3 * word);
    EXPECT_EQ(sizeOf<OrvExtCmRouterService::BiDirValidator>(), 5 * word);
}

// A pointer to a virtual operation is odd.
TEST(BiDirShape, PlainOperations_HaveNoPlaceAmongTheVirtualOnes) {
    const auto isVirtual = [](auto member) {
        std::ptrdiff_t place = 0;
        std::memcpy(&place, &member, sizeof(place));
        return place % 2 != 0;
    };
    EXPECT_FALSE(isVirtual(&Utils::addUpdatedBp));
    EXPECT_FALSE(isVirtual(&Utils::startsWith));
    EXPECT_TRUE(isVirtual(&Utils::updateBackpointers));
}

}
}
