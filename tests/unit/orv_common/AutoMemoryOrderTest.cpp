// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// In which order an owner list lets go. The linker puts the function below in the place of `free`
// for this program, so these tests have one of their own.

#include "AutoMemory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

// What goes while a test looks on.
struct Watch {
    std::map<const void*, std::string> blocks;
    std::vector<std::string> gone;
    int freed = 0; // every call, watched block or not
};

Watch* watch = nullptr;

}

extern "C" {
void __real_free(void* block);

void __wrap_free(void* block) {
    if (watch != nullptr) {
        ++watch->freed;
        const auto found = watch->blocks.find(block);
        if (found != watch->blocks.end()) {
            watch->gone.push_back(found->second);
        }
    }
    __real_free(block);
}
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Named {
    explicit Named(std::string text) : name(std::move(text)) {}
    Named(const Named&) = delete;
    Named& operator=(const Named&) = delete;
    ~Named() { watch->gone.push_back(name); }

    std::string name;
};

class AutoMemoryOrder : public testing::Test {
protected:
    AutoMemoryOrder() { watch = &mWatch; }
    ~AutoMemoryOrder() override { watch = nullptr; }

    void call(const void* block, const std::string& name) { mWatch.blocks[block] = name; }

    std::vector<std::string> goneWith(std::unique_ptr<Orv::AutoMemory> memory) {
        mWatch.freed = 0;
        memory.reset();
        return mWatch.gone;
    }

    Watch mWatch;
};

}

TEST_F(AutoMemoryOrder, Destruction_Mixed_BlocksGoFirstThenObjectsEachInTheOrderOfEntry) {
    auto memory = std::make_unique<Orv::AutoMemory>();
    memory->own(new Named("object 1"));
    call(memory->malloc<char>(8), "block 1");
    memory->own(new Named("object 2"));
    call(memory->strdup("text"), "block 2");
    call(memory->malloc<long>(3), "block 3");
    memory->own(new Named("object 3"));
    EXPECT_THAT(goneWith(std::move(memory)),
                ElementsAre("block 1", "block 2", "block 3", "object 1", "object 2", "object 3"));
    EXPECT_EQ(mWatch.freed, 3);
}

TEST_F(AutoMemoryOrder, Destruction_Empty_FreesAndDeletesNothing) {
    EXPECT_THAT(goneWith(std::make_unique<Orv::AutoMemory>()), IsEmpty());
    EXPECT_EQ(mWatch.freed, 0);
}

// What an allocation of no elements returns is an entry like all others.
TEST_F(AutoMemoryOrder, Destruction_BlockOfNoElements_IsFreedOnce) {
    const volatile unsigned int none = 0; // volatile: nobody need warn of it
    auto memory = std::make_unique<Orv::AutoMemory>();
    memory->malloc<long>(none);
    goneWith(std::move(memory));
    EXPECT_EQ(mWatch.freed, 1);
}

TEST_F(AutoMemoryOrder, UntilDestruction_NothingGoes) {
    auto memory = std::make_unique<Orv::AutoMemory>();
    for (int i = 0; i < 100; ++i) {
        memory->strdup("text");
        memory->own(new Named("object"));
    }
    EXPECT_EQ(mWatch.freed, 0);
    EXPECT_THAT(mWatch.gone, IsEmpty());
    EXPECT_EQ(goneWith(std::move(memory)).size(), 100U);
    EXPECT_EQ(mWatch.freed, 100);
}
