// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What becomes of a server when memory runs out in one of its shells: nothing. The process's
// operator new is replaced for that, so this test has a program of its own.

#include "FailingAllocations.h"
#include "ShellScene.h"

namespace OrvHost {
namespace {

/// The parameter: whether the shells answer in JSON.
class ServedShellMemoryTest : public ShellScene, public testing::WithParamInterface<bool> {};

TEST_P(ServedShellMemoryTest, AnAllocationThatFails_EndsAtMostItsShell) {
    const FailingAllocations::Spared spared;
    const std::string unit = "ManagedElement=Harbour,Equipment=1,RadioUnit=9";
    ShellLook look;
    look.json = GetParam();
    startShells();
    bool hasFailed = true;
    int ended = 0;
    for (long number = 0; hasFailed; number += number < 200 ? 1 : 1 + number / 20) {
        FailingAllocations::failAfter(number);
        {
            ShellClient client(path, look);
            client.ask("watch /");
            client.ask("set ManagedElement=Harbour,Equipment=1,RadioUnit=1 userLabel=again");
            // Without a transaction, the object would last.
            if (client.ask("begin work").find("work") != std::string::npos) {
                for (const std::string& line :
                     {"create " + unit + " '{\"userLabel\": \"north\", \"antennaRef\": []}'",
                      std::string("validate"), "expect ok : get " + unit, std::string("tree"),
                      std::string("abort"), "exists " + unit}) {
                    client.ask(line);
                }
            }
            ended += client.hasEnded() ? 1 : 0;
        }
        hasFailed = FailingAllocations::stop();
        ASSERT_EQ(ShellClient(path).ask("exists " + unit), "no\n") << "after " << number;
        ASSERT_TRUE(comesTrue([&] { return host.transactions().openCount() == 0; })) << number;
    }
    EXPECT_GT(ended, 10) << "some failures must have been met";
}

INSTANTIATE_TEST_SUITE_P(Answers, ServedShellMemoryTest, testing::Bool());

}
}
