// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// What becomes of the server's state when memory runs out in a session: one allocation after the
// other fails, and each time nothing may be left behind.

#include "DispatcherScene.h"
#include "FailingAllocations.h"

#include <new>
#include <utility>

#ifdef ORV_SANITIZED
#include <sanitizer/lsan_interface.h>

/// Without memory, the component cannot wrap what the router has answered, and its caller gets a
/// code and no result. So the router's block is lost, as the contract of the tables has it. Any
/// other leak is a finding.
const char* __lsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier)
    return "leak:OrvHost::makeResult\n";
}
#endif

namespace OrvHost {
namespace {

using testing::HasSubstr;
using testing::Not;

class NetconfMemoryTest : public DispatcherScene {
protected:
    NetconfMemoryTest() { dispatcher.pauseUndoing(std::chrono::seconds(1)); }

    std::string running() { return ask("<get-config><source><running/></source></get-config>"); }

    /// As \p operation does it without memory at some place.
    template <class Operation>
    static void contain(const Operation& operation) {
        try {
            operation();
        } catch (const std::bad_alloc&) { // NOLINT(bugprone-empty-catch): what the test is about
        }
    }

    /// True if the server says that it cannot take a confirmed commit back. It stays then.
    bool keepUnknown() {
        if (ask("<cancel-commit/>").find("is not known whole") == std::string::npos) {
            return false;
        }
        EXPECT_EQ(ask("<commit><confirmed/></commit>"), "ok");
        EXPECT_EQ(ask("<commit/>"), "ok");
        return true;
    }

    /// The next session gets each lock, that of the candidate only if it has no edits.
    void expectUnlocked(long number) {
        for (const char* store : {"running", "candidate"}) {
            const std::string target = tagged("target", "<" + std::string(store) + "/>");
            EXPECT_TRUE(comesTrue([&] { return ask(bob, tagged("lock", target)) == "ok"; }))
                << store << " after " << number << ": " << ask(bob, tagged("lock", target));
            ask(bob, tagged("unlock", target));
        }
    }

    /// The answer to a plain commit, of which \p howMany allocations fail, and whether one did.
    std::pair<std::string, bool> commitWithout(long number, long howMany = 1) {
        // What is thrown is answered by an error.
        RpcReply reply{{protocolError("resource-denied", "there is no memory")}, nullptr, {}};
        FailingAllocations::failAfter(number, howMany);
        contain([&] { reply = replyTo(alice, "<commit/>"); });
        const bool hasFailed = FailingAllocations::stop();
        return {textOf(reply), hasFailed};
    }

    /// All that a session does from its begin to its end, of which one allocation fails.
    bool play(long number) {
        NetconfSession session(host, ++mLastSession, {"dora"});
        const auto edit = [](const std::string& store, const std::string& content) {
            return "<edit-config><target><" + store + "/></target>" + tagged("config", content) +
                   "</edit-config>";
        };
        const std::string name = tagged("userLabel", "changed " + std::to_string(number));
        const std::string label = element(name);
        const std::string move = radioUnit("1", tagged("antennaRef", antenna(2, 1)) + name);
        const std::vector<std::string> operations{
            std::string("<lock><target><candidate/></target></lock>"),
            edit("candidate", move),
            kValidate,
            std::string("<get-config><source><candidate/></source></get-config>"),
            std::string("<commit><confirmed/></commit>"),
            edit("running", label),
            edit("candidate", label),
            std::string("<cancel-commit/>"),
            std::string("<commit><confirmed/></commit>"),
            std::string("<lock><target><running/></target></lock>")};
        const std::string ofRunning = edit("running", label);
        std::string answer;
        FailingAllocations::failAfter(number);
        for (const std::string& operation : operations) {
            if (operation == ofRunning && answer != "ok") {
                continue; // nothing would take it back
            }
            answer.clear();
            contain([&] { answer = ask(session, operation); });
        }
        contain([&] { dispatcher.end(session); });
        return FailingAllocations::stop();
    }

private:
    std::uint32_t mLastSession = 100;
};

TEST_F(NetconfMemoryTest, AnAllocationThatFails_LeavesNothingBehind) {
    std::string before = running();
    bool hasFailed = true;
    long number = 0;
    for (; hasFailed; number += number < 200 ? 1 : 1 + number / 20) {
        hasFailed = play(number);
        ASSERT_TRUE(comesTrue([&] {
            if (running() != before && keepUnknown()) {
                before = running();
            }
            return running() == before;
        })) << number;
        expectUnlocked(number);
        ASSERT_EQ(ask("<discard-changes/>"), "ok") << number;
        ASSERT_EQ(host.transactions().openCount(), 0) << number;
        ASSERT_EQ(running(), before) << number;
    }
    EXPECT_GT(number, 1000) << "failures must have been met in all steps";
}

TEST_F(NetconfMemoryTest, AnAllocationThatFailsInAConfirmedCommit_ItIsTakenBackOrThatIsRefused) {
    std::string before = running();
    bool hasFailed = true;
    bool isRefused = false;
    for (long number = 0; hasFailed; ++number) {
        const std::string label = tagged("userLabel", "changed " + std::to_string(number));
        ASSERT_EQ(edit(element(label)), "ok");
        FailingAllocations::failAfter(number);
        contain([&] { ask("<commit><confirmed/></commit>"); });
        hasFailed = FailingAllocations::stop();
        ASSERT_EQ(ask("<discard-changes/>"), "ok") << number;
        if (keepUnknown()) {
            isRefused = true;
            before = running();
            ASSERT_THAT(before, HasSubstr(label));
        }
        ASSERT_EQ(running(), before) << number;
    }
    EXPECT_TRUE(isRefused) << "a failure must have been met where it remembers";
}

TEST_F(NetconfMemoryTest, AnAllocationThatFailsInAPlainCommit_TheAnswerIsTrue) {
    bool hasFailed = true;
    long refusals = 0;
    for (long number = 0; hasFailed; ++number) {
        const std::string label = tagged("userLabel", "changed " + std::to_string(number));
        const std::string before = running();
        ASSERT_EQ(edit(element(label)), "ok");
        const auto [answer, failed] = commitWithout(number);
        hasFailed = failed;
        const std::string after = running();
        if (answer == "ok") {
            ASSERT_TRUE(after.find(label) != std::string::npos) << number;
        } else {
            ++refusals;
            ASSERT_TRUE(after == before) << number << " was answered by " << answer;
        }
        ASSERT_EQ(ask("<discard-changes/>"), "ok") << number;
        ASSERT_EQ(host.transactions().openCount(), 0) << number;
        expectUnlocked(number);
        ASSERT_TRUE(running() == after) << number;
    }
    EXPECT_GT(refusals, 0);
}

// The edits of a refused commit are made again. Without them the next commit would commit nothing,
// or a part of them, and call that a success. Where memory has run out, the next allocations fail,
// too: those for the texts that say so.
class NetconfRefusedMemoryTest : public NetconfMemoryTest,
                                 public testing::WithParamInterface<long> {};

INSTANTIATE_TEST_SUITE_P(HowManyFail, NetconfRefusedMemoryTest,
                         testing::Values(1, 2, 3, 5, 10, 20, 1000000));

TEST_P(NetconfRefusedMemoryTest, AllocationsThatFailInARefusedCommit_LoseNoEditsInSilence) {
    const std::string ofAntenna = tagged("antennaRef", antenna(2, 1));
    bool hasFailed = true;
    long losses = 0;
    for (long number = 0; hasFailed; number += GetParam() == 1 ? 1 : 3) {
        for (const char* unit : {"7", "8"}) { // one more than the antenna may have
            ASSERT_EQ(edit(radioUnit(unit, ofAntenna)), "ok");
        }
        const auto [answer, failed] = commitWithout(number, GetParam());
        hasFailed = failed;
        ASSERT_NE(answer, "ok") << number;
        const std::string said = answer + getConfig(radioUnit("7"), "candidate");
        const std::string both = said + getConfig(radioUnit("8"), "candidate");
        if (said.find(" discarded") != std::string::npos) {
            ++losses;
            EXPECT_EQ(both.find(ofAntenna), std::string::npos) << number;
        } else {
            EXPECT_THAT(both, HasSubstr("<radioUnitId>7</radioUnitId>" + ofAntenna)) << number;
            EXPECT_THAT(both, HasSubstr("<radioUnitId>8</radioUnitId>" + ofAntenna)) << number;
            EXPECT_NE(ask("<commit/>"), "ok") << "after " << number << ": one antenna too many";
        }
        ASSERT_EQ(ask("<discard-changes/>"), "ok") << number;
        ASSERT_EQ(host.transactions().openCount(), 0) << number;
        expectUnlocked(number);
    }
    EXPECT_GT(losses, 0) << "a failure must have been met where the edits are made again";
}

TEST_F(NetconfMemoryTest, NoMemoryWhenATimeIsOver_ItIsDoneLater) {
    const std::string before = running();
    ASSERT_EQ(edit(element(tagged("userLabel", "changed"))), "ok");
    ASSERT_EQ(ask("<commit><confirmed/><confirm-timeout>1</confirm-timeout></commit>"), "ok");
    {
        const FailingAllocations::Spared here;
        FailingAllocations::failAfter(0, 1000000);
        EXPECT_TRUE(comesTrue([] { return FailingAllocations::count() > 0; }));
        FailingAllocations::stop();
    }
    EXPECT_TRUE(comesTrue([&] { return running() == before; }));
    EXPECT_EQ(host.transactions().openCount(), 0);
}

TEST_F(NetconfMemoryTest, NoMemoryForATransaction_TheCurrentOneStays) {
    Clients clients(host);
    ClientSession session(host, clients);
    session.begin("first");
    bool hasFailed = true;
    for (long number = 0; hasFailed; ++number) {
        const std::string name = "one_with_a_long_name";
        FailingAllocations::failAfter(number);
        try {
            session.begin(name);
        } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): what the test is about
        }
        hasFailed = FailingAllocations::stop();
        if (hasFailed && session.transactions().all().size() == 1) {
            ASSERT_NE(session.transactions().current(), nullptr) << number;
            EXPECT_EQ(session.transactions().current()->name, "first") << number;
        } else {
            session.abort(session.transactions().require(name));
            session.transactions().use("first");
        }
    }
    session.abort(session.transactions().require("first"));
    EXPECT_EQ(host.transactions().openCount(), 0);
}

}
}
