// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "YangTestSupport.h"
#include "yang/instances/InstanceDataReader.h"
#include "yang/rules/YangRules.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace OrvHost {
namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 300;

/// Runs `work` on several threads at once, with the number of the thread.
void together(const std::function<void(int)>& work) {
    std::vector<std::thread> threads;
    for (int number = 0; number < kThreads; ++number) {
        threads.emplace_back(work, number);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(YangThreads, Checks_FromSeveralThreads_GiveEachItsOwnAnswer) {
    const TypeDef& code = attributeOf(siteModel(), "Site", "code").type;
    const TypeDef& mixed = attributeOf(siteModel(), "Site", "mixed").type;
    const TypeDef& label = attributeOf(siteModel(), "Site", "label").type;
    const TypeDef& number = attributeOf(siteModel(), "Antenna", "number").type;
    std::atomic<int> wrong{0};
    together([&](int thread) {
        const std::string own = "bad" + std::to_string(thread);
        for (int round = 0; round < kRounds; ++round) {
            wrong += code.check("AB" + std::to_string(round)).empty() ? 0 : 1;
            wrong += code.check(own).find(own) == std::string::npos ? 1 : 0;
            wrong += mixed.check(std::to_string(round)).empty() ? 0 : 1;
            wrong += label.check("a").empty() ? 1 : 0;
            wrong += number.check("0" + std::to_string(round)).empty() ? 1 : 0;
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST(YangThreads, Readers_OfOneSchema_DoNotDisturbEachOther) {
    std::atomic<int> wrong{0};
    together([&wrong](int thread) {
        const std::string id = "t" + std::to_string(thread);
        const std::string good = R"({"site:Site": [{"id": ")" + id + R"(", "code": "AB"}]})";
        const std::string bad = R"({"site:Site": [{"id": ")" + id + R"(", "code": "x"}]})";
        for (int round = 0; round < kRounds / 10; ++round) {
            const std::vector<DataObject> objects = readObjectsOf(siteModel(), good);
            wrong += objects.size() == 1 && objects[0].dn == "Site=" + id ? 0 : 1;
            const std::string error = dataErrorOf([&bad] { readObjectsOf(siteModel(), bad); });
            wrong += error.find("Site[id='" + id + "']") == std::string::npos ? 1 : 0;
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST(YangThreads, ChecksBesideReaders_DoNotDisturbEachOther) {
    const TypeDef& code = attributeOf(siteModel(), "Site", "code").type;
    std::atomic<int> wrong{0};
    together([&](int thread) {
        for (int round = 0; round < kRounds / 10; ++round) {
            if (thread % 2 == 0) {
                wrong += code.check("lower").empty() ? 1 : 0;
            } else {
                wrong += readObjectsOf(siteModel(), R"({"site:Site": [{"id": "a"}]})").size() == 1
                             ? 0
                             : 1;
            }
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST(YangThreads, Rules_OfOneModel_AreCheckedAtOnce) {
    const YangModel model = YangModelReader()
                                .offerText("m", "m.yang", R"(
        module m { yang-version 1.1; namespace "urn:m"; prefix m;
          list A { key id; leaf id { type string; } leaf kind { type string; default "x"; }
            leaf n { when "../kind = 'x'"; type int32; must ". > 5"; }
            leaf next { type leafref { path "../../A/id"; } } } })")
                                .load("m")
                                .withAllRules()
                                .read();
    const auto rules = rulesOf(model.schema);
    std::atomic<int> wrong{0};
    together([&](int thread) {
        const std::string id = std::to_string(thread);
        const DataView good(model, R"({"m:A": [{"id": ")" + id + R"(", "n": 7, "next": ")" + id +
                                       R"("}]})");
        const DataView bad(model, R"({"m:A": [{"id": ")" + id + R"(", "n": )" + id +
                                      R"(, "kind": "y", "next": "z"}]})");
        for (int round = 0; round < kRounds / 10; ++round) {
            wrong += rules->checkAll(good).violations.empty() ? 0 : 1;
            wrong += rules->checkAll(bad).violations.size() == 3U ? 0 : 1;
        }
    });
    EXPECT_EQ(wrong, 0);
}

}
}
