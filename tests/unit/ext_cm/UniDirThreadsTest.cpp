// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "UniDirValidator.h"

#include "Portal.h"
#include "Records.h"
#include "Stage.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

using OrvExtCmRouterService::UniDirValidator;

TEST(UniDirValidatorThreads, ManyTransactions_KeepTheirVerdictsApart) {
    Scripted::Stage stage;
    stage.script.keepCalls(false);
    stage.model.moc("Top").contains("Foo").contains("Bar");
    stage.model.uniDir("Foo", "peer", "Bar", 1, 1);
    Orv::Portal::instance()->attach(&Scripted::orvPortalLookup);
    UniDirValidator validator;
    validator.start();

    std::atomic<int> wrong{0};
    auto drive = [&](unsigned long thread) {
        Scripted::Records records;
        const auto* good = records.container(Scripted::refs({"Top=1,Bar=1"}));
        const auto* bad = records.container(Scripted::refs({"Top=1,Bar=1", "Top=1,Bar=2"}));
        for (unsigned long round = 0; round < 100; ++round) {
            const unsigned long tx = thread * 1000 + round;
            const bool valid = round % 2 == 0;
            for (int mo = 0; mo < 5; ++mo) {
                validator.setMoRef(tx, "Top=1,Foo=" + std::to_string(mo), "peer",
                                   valid ? good : bad);
            }
            validator.deleteMo(tx, "Top=1,Foo=4");
            bool result = !valid;
            validator.validate(tx, &result);
            wrong += result == valid ? 0 : 1;
            validator.finish(tx);
        }
    };
    std::vector<std::thread> threads;
    for (unsigned long thread = 1; thread <= 4; ++thread) {
        threads.emplace_back(drive, thread);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    Orv::Portal::instance()->detach();

    EXPECT_EQ(0, wrong);
    EXPECT_EQ(4U * 50U * 4U, stage.messages().size());
}

}
