// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// Confirmed commits: confirmed, taken back, and who may do that.

#include "DispatcherScene.h"

#include "LoggingWrapper.h"
#include "base/AtomicFile.h"
#include "runtime/LogSink.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;
using testing::ThrowsMessage;

auto hasTag(const std::string& tag) {
    return HasSubstr("<error-tag>" + tag + "</error-tag>");
}

class NetconfConfirmedCommitTest : public DispatcherScene {
protected:
    std::string commit(NetconfSession& session, const std::string& parameters) {
        return ask(session, tagged("commit", parameters));
    }
    std::string running() { return ask("<get-config><source><running/></source></get-config>"); }
    std::string label(const std::string& text, const std::string& target = "candidate") {
        return edit(element(tagged("userLabel", text)), target);
    }
    std::string label(NetconfSession& session, const std::string& text, const std::string& target) {
        return ask(session, "<edit-config><target><" + target + "/></target>" +
                                tagged("config", element(tagged("userLabel", text))) +
                                "</edit-config>");
    }
    /// One edit that deletes, creates and changes objects on both sides of associations.
    void editMuch() {
        ASSERT_EQ(edit(radioUnit("1", {}, kDelete)), "ok");
        ASSERT_EQ(edit(radioUnit("2", "<antennaRef " + kDelete + ">" + antenna(1, 2) +
                                          "</antennaRef>" + tagged("userLabel", "Moved"))),
                  "ok");
        ASSERT_EQ(edit(radioUnit("9", tagged("antennaRef", antenna(1, 2)))), "ok");
        ASSERT_EQ(label("Old harbour"), "ok");
    }

    /// What that changes. Not all of running is compared, since objects that are made again stand
    /// after others.
    const std::vector<std::string> parts{radioUnit("1"), radioUnit("2"), radioUnit("9"),
                                         element("<userLabel/>"),
                                         equipment("<AntennaUnit/><Sector/><BasebandUnit/>")};
};

TEST_F(NetconfConfirmedCommitTest, Cancelled_IsAsBefore) {
    std::vector<std::string> before;
    for (const std::string& part : parts) {
        before.push_back(getConfig(part));
    }
    editMuch();
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    for (std::size_t at = 0; at < parts.size(); ++at) {
        EXPECT_NE(getConfig(parts[at]), before[at]) << parts[at];
    }
    ASSERT_EQ(ask("<cancel-commit/>"), "ok");
    for (std::size_t at = 0; at < parts.size(); ++at) {
        EXPECT_EQ(getConfig(parts[at]), before[at]) << parts[at];
    }
    EXPECT_THAT(ask("<cancel-commit/>"), hasTag("operation-failed")) << "none waits any more";
}

TEST_F(NetconfConfirmedCommitTest, Confirmed_Stays) {
    ASSERT_EQ(label("Old harbour"), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/><confirm-timeout>1</confirm-timeout>"), "ok");
    ASSERT_EQ(commit(alice, ""), "ok");
    dispatcher.end(alice);
    std::this_thread::sleep_for(std::chrono::milliseconds(1300));
    EXPECT_THAT(running(), HasSubstr("Old harbour"));
}

TEST_F(NetconfConfirmedCommitTest, TimeOver_TakesItBack) {
    ASSERT_EQ(label("Old harbour"), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/><confirm-timeout>1</confirm-timeout>"), "ok");
    EXPECT_TRUE(comesTrue([&] { return running().find("Old harbour") == std::string::npos; }));
    EXPECT_EQ(label(bob, "Quay", "running"), "ok") << "nothing is in use any more";
}

TEST_F(NetconfConfirmedCommitTest, EndOfItsSession_TakesItBack) {
    ASSERT_EQ(label("Old harbour"), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    dispatcher.end(bob);
    EXPECT_THAT(running(), HasSubstr("Old harbour"));
    dispatcher.end(alice);
    EXPECT_THAT(running(), Not(HasSubstr("Old harbour")));
}

TEST_F(NetconfConfirmedCommitTest, OtherSessions_MustWait) {
    ASSERT_EQ(label("Old harbour"), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    EXPECT_THAT(commit(bob, ""), AllOf(hasTag("in-use"), HasSubstr("alice, session 1")));
    EXPECT_THAT(commit(bob, "<confirmed/>"), hasTag("in-use"));
    EXPECT_THAT(label(bob, "Quay", "running"), hasTag("in-use"));
    EXPECT_THAT(ask(bob, "<cancel-commit/>"), hasTag("in-use"));
    EXPECT_THAT(ask(bob, "<lock><target><running/></target></lock>"),
                AllOf(hasTag("lock-denied"), HasSubstr("<session-id>1</session-id>")));
    EXPECT_THAT(commit(reader, "<confirmed/>"), hasTag("access-denied"));
    EXPECT_THAT(ask(reader, "<cancel-commit/>"), hasTag("access-denied"));
    ASSERT_EQ(commit(alice, ""), "ok");
    EXPECT_EQ(label(bob, "Quay", "running"), "ok");
}

TEST_F(NetconfConfirmedCommitTest, FurtherConfirmedCommit_IsTakenBackWithTheFirst) {
    const std::string before = running();
    ASSERT_EQ(label("Old harbour"), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    ASSERT_EQ(label("Older harbour"), "ok");
    ASSERT_EQ(edit(radioUnit("9", tagged("antennaRef", antenna(1, 1)))), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/><confirm-timeout>60</confirm-timeout>"), "ok");
    ASSERT_EQ(label("Oldest harbour", "running"), "ok") << "its own session may edit running";
    ASSERT_EQ(ask("<cancel-commit/>"), "ok");
    EXPECT_EQ(running(), before);
}

TEST_F(NetconfConfirmedCommitTest, Parameters_ThatCannotBe_AreRefused) {
    ASSERT_EQ(label("Old harbour"), "ok");
    EXPECT_THAT(commit(alice, "<confirmed/><confirm-timeout>86401</confirm-timeout>"),
                hasTag("invalid-value"));
    EXPECT_THAT(commit(alice, "<persist>x7</persist>"), hasTag("missing-element"));
    EXPECT_THAT(commit(alice, "<confirmed/><persist/>"), hasTag("invalid-value"));
    EXPECT_THAT(running(), Not(HasSubstr("Old harbour"))) << "nothing is committed";
}

TEST_F(NetconfConfirmedCommitTest, CopyToRunning_WhileOneWaits_ConfirmsNothing) {
    ASSERT_EQ(label("Old harbour"), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    EXPECT_THAT(ask("<copy-config><target><running/></target><source><candidate/></source>"
                    "</copy-config>"),
                hasTag("in-use"));
    ASSERT_EQ(ask("<cancel-commit/>"), "ok");
    EXPECT_THAT(running(), Not(HasSubstr("Old harbour")));
}

TEST_F(NetconfConfirmedCommitTest, Persistent_IsConfirmedByWhoKnowsItsToken) {
    ASSERT_EQ(label("Old harbour"), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/><persist>x7</persist>"), "ok");
    dispatcher.end(alice);
    EXPECT_THAT(running(), HasSubstr("Old harbour"));
    EXPECT_THAT(commit(bob, ""), hasTag("in-use"));
    EXPECT_THAT(commit(bob, "<persist-id>x8</persist-id>"), hasTag("invalid-value"));
    EXPECT_THAT(ask(bob, "<cancel-commit><persist-id>x8</persist-id></cancel-commit>"),
                hasTag("invalid-value"));
    EXPECT_EQ(commit(bob, "<confirmed/><persist-id>x7</persist-id>"), "ok") << "goes on";
    EXPECT_EQ(commit(bob, "<persist-id>x7</persist-id>"), "ok");
    EXPECT_THAT(running(), HasSubstr("Old harbour"));
    EXPECT_THAT(commit(bob, "<persist-id>x7</persist-id>"), hasTag("invalid-value"));
}

TEST_F(NetconfConfirmedCommitTest, Persistent_IsCancelledByWhoKnowsItsToken) {
    ASSERT_EQ(label("Old harbour"), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/><persist>x7</persist>"), "ok");
    EXPECT_THAT(ask("<cancel-commit/>"), hasTag("in-use"));
    EXPECT_EQ(ask(bob, "<cancel-commit><persist-id>x7</persist-id></cancel-commit>"), "ok");
    EXPECT_THAT(running(), Not(HasSubstr("Old harbour")));
}

TEST_F(NetconfConfirmedCommitTest, TakenBack_TheCandidateKeepsItsEdits) {
    ASSERT_EQ(label("Old harbour"), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    ASSERT_EQ(label("Quay"), "ok") << "the same object";
    ASSERT_EQ(ask("<cancel-commit/>"), "ok");
    EXPECT_THAT(running(), Not(HasSubstr("Old harbour")));
    EXPECT_THAT(getConfig(element("<userLabel/>"), "candidate"), HasSubstr("Quay"));
    EXPECT_EQ(commit(alice, ""), "ok");
    EXPECT_THAT(running(), HasSubstr("Quay"));
}

TEST_F(NetconfConfirmedCommitTest, TakenBack_CandidateOnWhatIsGone_IsDiscardedAndItsEditorTold) {
    ASSERT_EQ(edit(radioUnit("9", tagged("antennaRef", antenna(1, 1)))), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    ASSERT_EQ(ask("<edit-config><target><candidate/></target>"
                  "<default-operation>none</default-operation>" +
                  tagged("config", radioUnit("9", {}, kDelete)) + "</edit-config>"),
              "ok");
    ASSERT_EQ(ask("<cancel-commit/>"), "ok");
    EXPECT_THAT(commit(alice, ""), AllOf(hasTag("operation-failed"), HasSubstr("discarded")));
    EXPECT_EQ(commit(alice, ""), "ok") << "it is said once";
    EXPECT_EQ(commit(bob, ""), "ok");
}

TEST_F(NetconfConfirmedCommitTest, ManyCommits_AreTakenBackToWhatWasBeforeTheFirst) {
    std::vector<std::string> before;
    for (const std::string& part : parts) {
        before.push_back(getConfig(part));
    }
    editMuch();
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    // Made and deleted, deleted and made again, changed again.
    ASSERT_EQ(edit(radioUnit("9", {}, kDelete), "running"), "ok");
    ASSERT_EQ(edit(radioUnit("9", tagged("antennaRef", antenna(2, 1))), "running"), "ok");
    ASSERT_EQ(edit(radioUnit("8"), "running"), "ok");
    ASSERT_EQ(edit(radioUnit("8", {}, kDelete), "running"), "ok");
    ASSERT_EQ(edit(radioUnit("1", tagged("userLabel", "Made again")), "running"), "ok");
    ASSERT_EQ(edit(radioUnit("2", "<userLabel " + kDelete + "/>"), "running"), "ok");
    for (int time = 0; time < 20; ++time) {
        ASSERT_EQ(label("label " + std::to_string(time), "running"), "ok");
    }
    ASSERT_EQ(ask("<cancel-commit/>"), "ok");
    for (std::size_t at = 0; at < parts.size(); ++at) {
        EXPECT_EQ(getConfig(parts[at]), before[at]) << parts[at];
    }
    EXPECT_THAT(getConfig(radioUnit("8")), Not(HasSubstr("<radioUnitId>8")));
}

/// A client of the host has written to what must be taken back, and has not committed yet.
class NetconfOverdueCommitTest : public NetconfConfirmedCommitTest {
protected:
    void SetUp() override {
        dispatcher.pauseUndoing(std::chrono::seconds(1));
        ASSERT_EQ(label("Old harbour"), "ok");
    }
    void write() {
        handle = host.transactions().begin("carol");
        bob.client().client().set(
            *handle, "ManagedElement=Harbour",
            {{"userLabel", AttributeValue{ValueKind::String, {std::string("Carol's")}}}});
    }
    void TearDown() override {
        if (handle) {
            abort();
        }
    }
    void abort() {
        host.transactions().abort(*handle);
        handle.reset();
    }
    std::optional<unsigned long> handle;
    std::ostringstream mLines;
};

TEST_F(NetconfOverdueCommitTest, RefusedCancel_KeepsWaiting) {
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    write();
    EXPECT_THAT(ask("<cancel-commit/>"), AllOf(hasTag("in-use"), HasSubstr("carol")));
    EXPECT_THAT(commit(bob, ""), hasTag("in-use"));
    EXPECT_THAT(ask(bob, "<cancel-commit/>"), hasTag("in-use"));
    abort();
    EXPECT_EQ(ask("<cancel-commit/>"), "ok");
    EXPECT_THAT(running(), Not(HasSubstr("Old harbour")));
}

TEST_F(NetconfOverdueCommitTest, TriedAgain_IsTakenBackWhenThatIsPossible) {
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    write();
    dispatcher.end(alice);
    EXPECT_THAT(running(), HasSubstr("Old harbour"));
    EXPECT_THAT(label(bob, "Quay", "running"),
                AllOf(hasTag("in-use"), HasSubstr("its session has ended"), HasSubstr("carol"),
                      HasSubstr("any session may cancel it, or take it over")));
    abort();
    EXPECT_TRUE(comesTrue([&] { return running().find("Old harbour") == std::string::npos; }));
    EXPECT_EQ(label(bob, "Quay", "running"), "ok");
}

TEST_F(NetconfOverdueCommitTest, AnySession_MayTakeItOverAndConfirm) {
    ASSERT_EQ(commit(alice, "<confirmed/><persist>x7</persist>"
                            "<confirm-timeout>1</confirm-timeout>"),
              "ok");
    write();
    EXPECT_TRUE(comesTrue([&] {
        return label(bob, "Quay", "running").find("it was not confirmed in time") !=
               std::string::npos;
    }));
    EXPECT_THAT(commit(bob, "<persist-id>x8</persist-id>"), hasTag("invalid-value"));
    EXPECT_THAT(commit(bob, ""), AllOf(hasTag("in-use"), HasSubstr("take it over")))
        << "it is not bob's, who may know nothing of it";
    EXPECT_EQ(commit(bob, "<confirmed/>"), "ok");
    EXPECT_THAT(commit(alice, "<persist-id>x7</persist-id>"), hasTag("invalid-value"));
    EXPECT_EQ(commit(bob, ""), "ok") << "without alice's token";
    abort();
    EXPECT_EQ(label(bob, "Quay", "running"), "ok");
    EXPECT_THAT(ask(bob, "<cancel-commit/>"), hasTag("operation-failed"));
}

TEST_F(NetconfOverdueCommitTest, AnySession_MayCancelOrWaitAnew) {
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    write();
    dispatcher.end(alice);
    EXPECT_THAT(ask(bob, "<cancel-commit/>"), hasTag("in-use"));
    EXPECT_EQ(commit(bob, "<confirmed/>"), "ok");
    EXPECT_THAT(running(), HasSubstr("Old harbour"));
    abort();
    EXPECT_EQ(ask(bob, "<cancel-commit/>"), "ok") << "it belongs to bob now";
    EXPECT_THAT(running(), Not(HasSubstr("Old harbour")));
}

TEST_F(NetconfOverdueCommitTest, TriedAgain_AfterLongerAndLongerPauses_SaysEachOnce) {
    LogSink log(mLines, LogFormat::Text);
    Orv::LoggingWrapper::instance()->setLevel(6);
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    write();
    dispatcher.end(alice);
    const auto times = [&](const std::string& text) {
        const std::vector<std::string> lines = log.recent(LogSink::kKept);
        return std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
            return line.find(text) != std::string::npos;
        });
    };
    EXPECT_TRUE(comesTrue([&] { return times("the next try is in 4 s") > 0; }));
    EXPECT_EQ(times("the next try is in 1 s"), 1);
    EXPECT_EQ(times("the next try is in 2 s"), 1);
    EXPECT_EQ(times("the next try is in 4 s"), 1);
}

/// With a file that remembers what waits.
class NetconfLeftCommitTest : public NetconfConfirmedCommitTest {
protected:
    NetconfLeftCommitTest() {
        std::string name = (std::filesystem::temp_directory_path() / "left.XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("there is no folder for a file");
        }
        mFolder = name;
        dispatcher.noteUnconfirmedIn(file());
    }
    ~NetconfLeftCommitTest() override { std::filesystem::remove_all(mFolder); }

    std::filesystem::path file() const { return mFolder / "store.unconfirmed"; }

    /// What a server says at its start that finds the file, once the one before has ended.
    std::string saidAtStart() {
        dispatcher.noteUnconfirmedIn({});
        std::ostringstream lines;
        LogSink log(lines, LogFormat::Text);
        Orv::LoggingWrapper::instance()->setLevel(4);
        Dispatcher next(
            host, dispatcher.model(), [](std::uint32_t, const NetconfSession&) { return false; },
            [](NetconfSession&, std::optional<std::vector<FilterNode>>) { return false; });
        next.noteUnconfirmedIn(file());
        EXPECT_EQ(lines.str(), "") << "the start can still fail";
        next.tellLeftUnconfirmed();
        return lines.str();
    }

private:
    std::filesystem::path mFolder;
};

TEST_F(NetconfLeftCommitTest, LeftWaiting_TheNextServer_SaysWhoseAndWhatStays) {
    editMuch();
    ASSERT_EQ(commit(alice, "<confirmed/><persist>token</persist>"), "ok");
    const std::string said = saidAtStart();
    EXPECT_THAT(said, AllOf(HasSubstr("a confirmed commit of " + alice.author() + ", which began"),
                            HasSubstr("was neither confirmed nor taken back"),
                            HasSubstr("what it had changed is not taken back: "),
                            HasSubstr("ManagedElement=Harbour,Equipment=1,RadioUnit=1"),
                            HasSubstr("ManagedElement=Harbour,Equipment=1,RadioUnit=9")));
    EXPECT_EQ(saidAtStart(), "") << "once is enough";
}

TEST_F(NetconfLeftCommitTest, LeftWaiting_EditsOfRunningSince_StayToo) {
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    ASSERT_EQ(edit(radioUnit("7"), "running"), "ok");
    EXPECT_THAT(
        saidAtStart(),
        HasSubstr("not taken back: 1 object: ManagedElement=Harbour,Equipment=1,RadioUnit=7"));
}

TEST_F(NetconfLeftCommitTest, ManyObjects_OnlyTheFirst_AreNamed) {
    for (int unit = 10; unit < 30; ++unit) {
        ASSERT_EQ(edit(radioUnit(std::to_string(unit))), "ok");
    }
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    EXPECT_THAT(saidAtStart(), AllOf(HasSubstr("20 objects: "), HasSubstr("RadioUnit=19 and oth"),
                                     Not(HasSubstr("RadioUnit=20"))));
}

TEST_F(NetconfLeftCommitTest, ConfirmedCancelledOrRefused_NothingIsLeft) {
    ASSERT_EQ(label("Old harbour"), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    EXPECT_TRUE(std::filesystem::exists(file()));
    ASSERT_EQ(commit(alice, ""), "ok");
    EXPECT_FALSE(std::filesystem::exists(file())) << "confirmed";

    ASSERT_EQ(label("Older harbour"), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    ASSERT_EQ(ask("<cancel-commit/>"), "ok");
    EXPECT_FALSE(std::filesystem::exists(file())) << "cancelled";

    ASSERT_EQ(label("Older harbour"), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    dispatcher.end(alice);
    EXPECT_FALSE(std::filesystem::exists(file())) << "its session has ended";

    for (const char* const unit : {"7", "8"}) { // one more than the antenna may have
        ASSERT_EQ(edit(radioUnit(unit, tagged("antennaRef", antenna(2, 1)))), "ok");
    }
    EXPECT_THAT(commit(bob, "<confirmed/>"), hasTag("operation-failed"));
    EXPECT_FALSE(std::filesystem::exists(file())) << "refused";
    EXPECT_EQ(saidAtStart(), "");
}

TEST_F(NetconfLeftCommitTest, File_OfSomethingElse_IsRefusedAndStays) {
    for (const std::string& text : {std::string("mine\n"), std::string()}) {
        std::ofstream(file()) << text;
        EXPECT_THAT([this] { saidAtStart(); },
                    ThrowsMessage<FileError>(AllOf(HasSubstr(file().string()),
                                                   HasSubstr("a note of a confirmed commit"))));
        EXPECT_TRUE(std::filesystem::exists(file())) << text;
    }
}

TEST_F(NetconfLeftCommitTest, File_OfAServerThatLives_IsRefusedAndStays) {
    ASSERT_EQ(label("Old harbour"), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    EXPECT_THAT([this] { UnconfirmedNote note(file()); },
                ThrowsMessage<FileError>(AllOf(
                    HasSubstr(file().string() + " is in use by process " +
                              std::to_string(getpid()) + " on "),
                    HasSubstr("a file was expected that can be written, and that no other"))));
    EXPECT_TRUE(std::filesystem::exists(file()));
}

TEST_F(NetconfLeftCommitTest, File_CannotBeMade_IsRefused) {
    for (const char* const folder : {"/proc", "/dev/null", "/there/is/no/such/folder"}) {
        EXPECT_THAT([&] { UnconfirmedNote note(std::filesystem::path(folder) / "note"); },
                    ThrowsMessage<FileError>(AllOf(HasSubstr(std::string(folder) + "/note"),
                                                   HasSubstr("can be written"))));
    }
}

TEST_F(NetconfLeftCommitTest, NotToldYet_StaysUntilItIsOrANewOneIsWritten) {
    const std::string before = std::string(UnconfirmedNote::kBegin) + "carol";
    dispatcher.noteUnconfirmedIn({});
    std::ofstream(file()) << before << '\n';
    std::ostringstream lines;
    LogSink log(lines, LogFormat::Text);
    dispatcher.noteUnconfirmedIn(file());
    ASSERT_EQ(commit(alice, ""), "ok");
    EXPECT_TRUE(std::filesystem::exists(file())) << "nobody has been told of it";
    EXPECT_THAT(lines.str(), Not(HasSubstr(before)));
    ASSERT_EQ(label("Old harbour"), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    EXPECT_THAT(lines.str(), HasSubstr(before));
    ASSERT_EQ(commit(alice, ""), "ok");
    EXPECT_FALSE(std::filesystem::exists(file()));
}

// The commit is made nevertheless.
TEST_F(NetconfLeftCommitTest, File_CannotBeWritten_IsLogged) {
    std::ostringstream lines;
    LogSink log(lines, LogFormat::Text);
    std::filesystem::remove_all(file().parent_path());
    ASSERT_EQ(label("Old harbour"), "ok");
    EXPECT_EQ(commit(alice, "<confirmed/>"), "ok");
    EXPECT_THAT(lines.str(),
                HasSubstr("the next start will not say that a confirmed commit waits"));
    EXPECT_EQ(commit(alice, ""), "ok");
}

/// Commits something at the moment when somebody else begins a transaction, or refuses that.
class NetconfCommitBetweenTest : public NetconfConfirmedCommitTest {
protected:
    NetconfCommitBetweenTest() {
        theTest = this;
        resource.join = [](unsigned long) {
            return theTest->isRefusing ? OrvHostWrongState : theTest->commitOnce();
        };
        const auto nothing = [](unsigned long) { return OrvOk; };
        resource.prepare = resource.commit = resource.abort = resource.finish = nothing;
        resource.validate = [](unsigned long, bool* result) {
            *result = true;
            return theTest->isAtValidate ? theTest->commitOnce() : OrvOk;
        };
        host.transactions().enrolInEach(&resource);
    }
    ~NetconfCommitBetweenTest() override { host.transactions().abortAll(); }

    OrvReturnT commitOnce() {
        if (std::exchange(isArmed, false)) {
            const unsigned long handle = host.transactions().begin("carol");
            bob.client().client().set(
                handle, "ManagedElement=Harbour,Equipment=1,RadioUnit=2",
                {{"userLabel", AttributeValue{ValueKind::String, {std::string("Carol's")}}}});
            EXPECT_TRUE(host.transactions().commit(handle).accepted);
        }
        return OrvOk;
    }

    static NetconfCommitBetweenTest* theTest;
    OrvOamSpiTransactionalResource_2 resource{};
    bool isArmed = false;
    bool isAtValidate = false;
    bool isRefusing = false; ///< no transaction can begin
};

NetconfCommitBetweenTest* NetconfCommitBetweenTest::theTest = nullptr;

TEST_F(NetconfCommitBetweenTest, WhileItIsTakenBack_IsUndoneToo) {
    const std::string before = running();
    ASSERT_EQ(label("Old harbour"), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    isArmed = true;
    ASSERT_EQ(ask("<cancel-commit/>"), "ok");
    EXPECT_FALSE(isArmed);
    EXPECT_EQ(running(), before);
}

TEST_F(NetconfCommitBetweenTest, BeforeTheTakeBackIsCommitted_IsUndoneToo) {
    const std::string before = running();
    ASSERT_EQ(label("Old harbour"), "ok");
    ASSERT_EQ(commit(alice, "<confirmed/>"), "ok");
    isArmed = isAtValidate = true;
    resource.join = [](unsigned long) { return OrvOk; };
    ASSERT_EQ(ask("<cancel-commit/>"), "ok");
    EXPECT_FALSE(isArmed);
    EXPECT_EQ(running(), before);
}

// A commit of the rest of it must not be called a success.
TEST_F(NetconfCommitBetweenTest, CandidateThatCannotBeginAgain_IsDiscardedAndItsEditorsTold) {
    ASSERT_EQ(edit(radioUnit("7", tagged("antennaRef", antenna(2, 1)))), "ok");
    ASSERT_EQ(ask(bob, "<edit-config><target><candidate/></target>" +
                           tagged("config", radioUnit("8", tagged("antennaRef", antenna(2, 1)))) +
                           "</edit-config>"),
              "ok");
    isRefusing = true;
    EXPECT_THAT(commit(alice, ""), HasSubstr("the candidate is discarded"));
    isRefusing = false;
    EXPECT_THAT(commit(bob, ""), HasSubstr("the candidate was discarded before it"));
    EXPECT_THAT(running(), Not(AnyOf(HasSubstr("<radioUnitId>7"), HasSubstr("<radioUnitId>8"))));
}

TEST_F(NetconfConfirmedCommitTest, RefusedCommit_WaitsForNothing) {
    ASSERT_EQ(edit(radioUnit("3", tagged("antennaRef", antenna(1, 2)))), "ok");
    ASSERT_THAT(commit(alice, "<confirmed/>"), hasTag("operation-failed"));
    EXPECT_THAT(ask("<cancel-commit/>"), hasTag("operation-failed"));
    EXPECT_EQ(label(bob, "Quay", "running"), "ok");
}

}
}
