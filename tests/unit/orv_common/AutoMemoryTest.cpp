// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AutoMemory.h"

#include "OrvMoAttributeValue.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <vector>

using Orv::AutoMemory;

namespace {

std::vector<std::string> gone;

struct Named {
    explicit Named(std::string text) : name(std::move(text)) {}
    Named(const Named&) = delete;
    Named& operator=(const Named&) = delete;
    virtual ~Named() { gone.push_back(name); }

    std::string name;
};

// Owns an AutoMemory in its turn, as the view of a nested value does.
struct Nested : Named {
    using Named::Named;
    ~Nested() override { gone.push_back(name + " first"); }
    AutoMemory memory;
};

class AutoMemoryTest : public ::testing::Test {
protected:
    void SetUp() override { gone.clear(); }
};

}

TEST_F(AutoMemoryTest, Destruction_Empty_DoesNothing) {
    { const AutoMemory memory; }
    EXPECT_TRUE(gone.empty());
}

TEST_F(AutoMemoryTest, Type_IsPolymorphicAndNeverCopied) {
    static_assert(std::has_virtual_destructor_v<AutoMemory>);
    static_assert(std::has_virtual_destructor_v<AutoMemory::OwnedObjBase>);
    static_assert(std::is_base_of_v<AutoMemory::OwnedObjBase, AutoMemory::ObjHolder<int>>);
    static_assert(!std::is_copy_constructible_v<AutoMemory>);
    static_assert(!std::is_copy_assignable_v<AutoMemory>);
    static_assert(!std::is_move_constructible_v<AutoMemory>);
}

TEST_F(AutoMemoryTest, Malloc_Array_IsZeroedAndWritable) {
    AutoMemory memory;
    auto* values = memory.malloc<OrvMoAttributeValue_3>(1000);
    ASSERT_NE(values, nullptr);
    for (int index = 0; index < 1000; ++index) {
        EXPECT_EQ(values[index].uint64, 0U);
        values[index].uint64 = ~std::uint64_t{0};
    }
}

TEST_F(AutoMemoryTest, Malloc_OneRecord_IsZeroed) {
    AutoMemory memory;
    auto* member = memory.malloc<OrvMoStructMember_3>(1);
    ASSERT_NE(member, nullptr);
    EXPECT_EQ(member->name, nullptr);
    EXPECT_EQ(member->value, nullptr);
    EXPECT_EQ(member->next, nullptr);
}

TEST_F(AutoMemoryTest, Malloc_NoElements_IsHarmless) {
    AutoMemory memory;
    memory.malloc<OrvMoAttributeValue_3>(0);
    EXPECT_NE(memory.malloc<char>(1), nullptr);
}

TEST_F(AutoMemoryTest, Malloc_MoreThanThereIs_GivesNullAndStaysUsable) {
    struct Huge {
        char bytes[std::size_t{1} << 40U];
    };
    AutoMemory memory;
    const volatile unsigned int count = 4294967295U; // volatile: the compiler need not warn of it
    EXPECT_EQ(memory.malloc<Huge>(count), nullptr);
    EXPECT_STREQ(memory.strdup("still here"), "still here");
}

TEST_F(AutoMemoryTest, Strdup_Text_IsAnIndependentCopy) {
    AutoMemory memory;
    char original[] = "A=1,B=2";
    char* copy = memory.strdup(original);
    original[0] = 'X';
    EXPECT_NE(static_cast<const char*>(copy), original);
    EXPECT_STREQ(copy, "A=1,B=2");
    EXPECT_STREQ(memory.strdup(""), "");
}

TEST_F(AutoMemoryTest, Destruction_OwnedObjects_GoInTheOrderOfEntry) {
    {
        AutoMemory memory;
        memory.own(new Named("first"));
        memory.strdup("between");
        memory.own(new Named("second"));
        memory.own(new Named("third"));
        EXPECT_TRUE(gone.empty());
    }
    EXPECT_EQ(gone, (std::vector<std::string>{"first", "second", "third"}));
}

TEST_F(AutoMemoryTest, Own_Null_OnlyGoes) {
    {
        AutoMemory memory;
        memory.own(static_cast<Named*>(nullptr));
        memory.own(static_cast<OrvMoNamedAttributeValueContainer_3*>(nullptr));
        memory.own(new Named("after"));
    }
    EXPECT_EQ(gone, (std::vector<std::string>{"after"}));
}

TEST_F(AutoMemoryTest, Own_BaseClass_DeletesThroughTheVirtualDestructor) {
    {
        AutoMemory memory;
        memory.own<Named>(new Nested("nested"));
    }
    EXPECT_EQ(gone, (std::vector<std::string>{"nested first", "nested"}));
}

TEST_F(AutoMemoryTest, Own_PlainRecord_IsDeleted) {
    AutoMemory memory;
    auto* record = new OrvMoNamedAttributeValueContainer_3{"name", {}};
    memory.own(record); // a leak check sees it if this does nothing
    EXPECT_STREQ(record->name, "name");
}

TEST_F(AutoMemoryTest, Destruction_NestedOwners_GoWithTheirParent) {
    {
        AutoMemory memory;
        auto* child = new Nested("child");
        child->memory.own(new Named("grandchild"));
        child->memory.strdup("text of the child");
        memory.own(child);
    }
    EXPECT_EQ(gone, (std::vector<std::string>{"child first", "grandchild", "child"}));
}

TEST_F(AutoMemoryTest, ObjHolder_Alone_DeletesItsObjectAndNothingForNull) {
    {
        const AutoMemory::ObjHolder<Named> holder(new Named("held"));
        const AutoMemory::ObjHolder<Named> empty(nullptr);
        EXPECT_EQ(holder.mObj->name, "held");
        EXPECT_EQ(empty.mObj, nullptr);
    }
    EXPECT_EQ(gone, (std::vector<std::string>{"held"}));
}

// A request for more memory than there is must come back as null here, also under the sanitizers.
extern "C" const char* __asan_default_options() { // NOLINT(bugprone-reserved-identifier)
    return "allocator_may_return_null=1";
}
extern "C" const char* __tsan_default_options() { // NOLINT(bugprone-reserved-identifier)
    return "allocator_may_return_null=1";
}
