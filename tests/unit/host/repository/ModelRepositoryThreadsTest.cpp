// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "repository/ModelDescription.h"
#include "repository/ModelRepository.h"

#include "SampleModel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace OrvHost {

namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 50;

}

TEST(ModelRepositoryThreads, ManyReadersAtOnce_AllSeeTheWholeModel) {
    const Model model = sampleModel();
    ModelRepository repository(model);
    std::atomic<int> complete = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&] {
            const RepositoryReader reader(*repository.getInterface());
            for (int round = 0; round < kRounds; ++round) {
                const auto classes = describeClasses(reader, {"Network"});
                const bool isWhole = classes.size() == 4 && classes[2].name == "Cell" &&
                                     classes[2].references.size() == 6 &&
                                     classes[2].attributes.size() == 14;
                complete += isWhole ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(complete, kThreads * kRounds);
}

TEST(ModelRepositoryThreads, ManyLookUpsAtOnce_GiveTheSameHandles) {
    const Model model = sampleModel();
    ModelRepository repository(model);
    const auto find = repository.getInterface()->dnLookup->getMocFromDn;
    unsigned long long expected = 0;
    ASSERT_EQ(find("Network=1,Node=1,Cell=1", 1, &expected), OrvOk);
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&] {
            for (int round = 0; round < 1000; ++round) {
                unsigned long long found = 0;
                const bool isRight = find("Network=1,Node=2,Node=3,Cell=4", 1, &found) == OrvOk &&
                                     found == expected && find("Cell=1", 1, &found) == OrvNotExist;
                wrong += isRight ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

}
