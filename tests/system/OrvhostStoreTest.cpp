// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// orvhost with a store: what is committed is there after a new start.

#include "Program.h"

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace SystemTest {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string moduleText(const std::string& leaf) {
    return "module m { namespace 'urn:m'; prefix m; list ManagedElement { key id; leaf id { type "
           "string; } leaf " +
           leaf +
           " { type string; } list Unit { key id; leaf id { type string; } leaf label { type "
           "string; } } } }";
}

/// A small model, and a store for it.
class OrvhostStore : public testing::Test {
protected:
    ProgramResult run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"-m", mModule});
        return runOrvhost(arguments);
    }
    /// With the store.
    ProgramResult runKept(const std::vector<std::string>& commands) const {
        std::vector<std::string> arguments{"--store", mStore};
        for (const std::string& command : commands) {
            arguments.insert(arguments.end(), {"-c", command});
        }
        return run(arguments);
    }
    void fill() const {
        const ProgramResult result = run({"-d", mData, "--store", mStore, "count"});
        ASSERT_EQ(result.status, 0) << result.err;
    }

    const TemporaryDirectory mDirectory;
    const std::string mModule = mDirectory.file("m.yang", moduleText("label"));
    const std::string mData = mDirectory.file(
        "data.json", R"({"m:ManagedElement":[{"id":"1","label":"x","Unit":[{"id":"7"}]}]})");
    const std::string mStore = mDirectory.path() / "kept.store";
};

TEST_F(OrvhostStore, Commits_AreThereAfterANewStart) {
    fill();
    EXPECT_EQ(runKept({"set ManagedElement=1 label=new", "create ManagedElement=1,Unit=8 label=u",
                       "begin", "delete ManagedElement=1,Unit=7"})
                  .status,
              0);
    const ProgramResult result = runKept({"get ManagedElement=1 label", "ls ManagedElement=1 Unit",
                                          "get ManagedElement=1,Unit=8 label"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "new\nManagedElement=1,Unit=7\nManagedElement=1,Unit=8\nu\n");
}

TEST_F(OrvhostStore, Store_WithoutData_BeginsEmpty) {
    EXPECT_EQ(runKept({"create ManagedElement=1"}).status, 0);
    EXPECT_EQ(runKept({"exists ManagedElement=1"}).out, "yes\n");
}

TEST_F(OrvhostStore, Data_IntoAStoreWithObjects_IsRefused) {
    fill();
    const ProgramResult result = run({"-d", mData, "--store", mStore, "count"});
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.err, "orvhost: the store " + mStore +
                              " has objects already, and data (-d) goes into a new one only; "
                              "leave out -d, or use the command load\n");
}

TEST_F(OrvhostStore, Data_ThatIsRefused_LeavesTheStoreNew) {
    const std::string wrong = mDirectory.file("wrong.json", R"({"m:ManagedElement":[{"id":7}]})");
    EXPECT_EQ(run({"-d", wrong, "--store", mStore, "count"}).status, 3);
    fill();
}

TEST_F(OrvhostStore, OtherModel_IsRefusedWithTheDifference) {
    fill();
    const std::string other = mDirectory.file("m.yang", moduleText("title"));
    const ProgramResult result = runKept({"count"});
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.err, HasSubstr("it is of another model: attribute 'label' of class "
                                      "'ManagedElement' is not there any more"));
}

TEST_F(OrvhostStore, Migrate_ToAModelWithMore_KeepsAllObjects) {
    fill();
    EXPECT_EQ(runKept({"set ManagedElement=1 label=new"}).status, 0);
    const std::string text = readFile(mModule);
    mDirectory.file("m.yang", text.substr(0, text.size() - 3) +
                                  "leaf first { type enumeration { enum a; } } leaf colour { type "
                                  "string; } } }");
    const std::string next = mDirectory.path() / "next.store";
    const ProgramResult result = run({"store", "migrate", mStore, next});
    EXPECT_EQ(result.status, 0) << result.err;
    const ProgramResult read = run({"--store", next, "-c", "set ManagedElement=1 colour=red", "-c",
                                    "get ManagedElement=1 label", "-c", "ls ManagedElement=1"});
    EXPECT_THAT(read.out, EndsWith("new\nManagedElement=1,Unit=7\n")) << read.err;
    EXPECT_THAT(runOrvhost({"store", "info", mStore}).out, StartsWith("objects      2\n"));
    EXPECT_EQ(run({"store", "migrate", mStore, next}).status, 3);
}

TEST_F(OrvhostStore, Migrate_OfAssociationsOutOfStep_TakesThemAsTheyAre) {
    const std::string unit = "ManagedElement=Harbour,Equipment=1,RadioUnit=2";
    EXPECT_EQ(
        runOrvhost(withHarbour({"--store", mStore, "-c", "delete " + unit, "-c", "create " + unit}))
            .status,
        0);
    const std::string next = mDirectory.path() / "next.store";
    const ProgramResult result =
        runOrvhost({"-I", EXAMPLES_DIR "/models", "-m", "ran-element", "-m", "ran-equipment", "-m",
                    "ran-function", "store", "migrate", mStore, next});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.err, HasSubstr("does not name it back"));
    EXPECT_THAT(runOrvhost({"store", "info", next}).out, StartsWith("objects      37\n"));
}

TEST_F(OrvhostStore, Migrate_ToAModelWithLess_SaysWhatDoesNotFit) {
    fill();
    mDirectory.file("m.yang", moduleText("title"));
    const std::string next = mDirectory.path() / "next.store";
    const ProgramResult result = run({"store", "migrate", mStore, next});
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.err,
                AllOf(HasSubstr(mStore), HasSubstr("class ManagedElement has no attribute label")));
    EXPECT_THAT(runOrvhost({"store", "info", next}).out, StartsWith("objects      0\n"));
}

TEST_F(OrvhostStore, Migrate_OfNothing_CreatesNothing) {
    const std::string next = mDirectory.path() / "next.store";
    EXPECT_EQ(run({"store", "migrate", mStore, next}).status, 3);
    EXPECT_FALSE(std::filesystem::exists(next));
    std::ofstream(mStore).flush();
    const ProgramResult result = run({"store", "export", mStore, "out.json"});
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.err, HasSubstr("there is nothing in it"));
}

TEST_F(OrvhostStore, FileThatIsNoStore_IsRefusedAndStays) {
    const std::string text(2000, 'x');
    std::ofstream(mStore) << text;
    const ProgramResult result = runKept({"count"});
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.err, HasSubstr("it is no database, or another program's"));
    EXPECT_EQ(readFile(mStore), text);
}

TEST_F(OrvhostStore, Backup_IsAStore) {
    fill();
    const std::string copy = mDirectory.path() / "copy";
    const ProgramResult result = runKept({"backup " + copy, "delete ManagedElement=1,Unit=7"});
    EXPECT_THAT(result.out, StartsWith(copy + ": written\n"));
    EXPECT_EQ(run({"--store", copy, "exists", "ManagedElement=1,Unit=7"}).out, "yes\n");
    EXPECT_EQ(runKept({"exists ManagedElement=1,Unit=7"}).out, "no\n");
    const ProgramResult again = runKept({"backup " + copy});
    EXPECT_EQ(again.status, 1);
    EXPECT_THAT(again.err, HasSubstr("there is such a file already"));
}

TEST_F(OrvhostStore, Diff_ComparesWithTheFileOfAStore) {
    fill();
    const std::string copy = mDirectory.path() / "copy";
    ASSERT_EQ(runKept({"backup " + copy, "delete ManagedElement=1,Unit=7",
                       "set ManagedElement=1 label=new", "create ManagedElement=1,Unit=8 label=u"})
                  .status,
              0);
    const std::string before = readFile(copy);
    const std::string differences = "~ ManagedElement=1\n"
                                    "    label: \"x\" -> \"new\"\n"
                                    "- ManagedElement=1,Unit=7\n"
                                    "+ ManagedElement=1,Unit=8\n"
                                    "    label: \"u\"\n";
    EXPECT_EQ(runKept({"diff " + copy + " committed"}).out, differences);
    EXPECT_EQ(run({"diff", copy, mStore}).out, differences);
    EXPECT_EQ(run({"diff", mData, copy}).out, "");
    EXPECT_EQ(run({"--json", "diff", copy, mStore, "ManagedElement=1,Unit=8"}).out,
              R"({"command":"diff","before":")" + copy + R"(","after":")" + mStore +
                  R"(","dn":"ManagedElement=1,Unit=8","differences":[{"change":"created",)"
                  R"("dn":"ManagedElement=1,Unit=8","attributes":{"label":{"before":null,)"
                  R"("after":"u"}}}]})"
                  "\n");
    EXPECT_EQ(readFile(copy), before);
}

TEST_F(OrvhostStore, Diff_WithAnotherIdentity_IsAboutTheElementAtTheRoot) {
    fill();
    EXPECT_EQ(run({"--me-id", "north", "-d", mData, "diff", mStore, "committed"}).out, "");
}

TEST_F(OrvhostStore, Diff_StoreThatCannotBeRead_SaysWhy) {
    fill();
    const ProgramResult held = runKept({"diff " + mStore + " committed"});
    EXPECT_EQ(held.status, 1);
    EXPECT_THAT(held.err, AllOf(StartsWith("diff: " + mStore + " is in use by process "),
                                HasSubstr("'committed' is what the own store holds")));
    mDirectory.file("m.yang", moduleText("title"));
    EXPECT_THAT(run({"diff", mStore, "committed"}).err,
                HasSubstr("it is of another model: attribute 'label' of class 'ManagedElement' is "
                          "not there any more"));
}

TEST_F(OrvhostStore, OwnFile_IsNeitherReadNorReplaced) {
    fill();
    for (const char* command : {"load ", "source ", "save "}) {
        const ProgramResult result = runKept({command + mStore});
        EXPECT_EQ(result.status, 1) << command;
        EXPECT_THAT(result.err, HasSubstr("the file of this host's store")) << command;
    }
    EXPECT_EQ(run({"store", "check", mStore}).status, 0);
}

TEST_F(OrvhostStore, Backup_WithoutAStore_IsRefused) {
    const ProgramResult result = run({"backup", "copy"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("this host keeps no store"));
}

/// Programs that are started while it lives cannot write files beyond so many bytes.
class FileLimit {
public:
    explicit FileLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &mBefore);
        const rlimit now{bytes, mBefore.rlim_max};
        setrlimit(RLIMIT_FSIZE, &now);
    }
    ~FileLimit() { setrlimit(RLIMIT_FSIZE, &mBefore); }
    FileLimit(const FileLimit&) = delete;
    FileLimit& operator=(const FileLimit&) = delete;

private:
    rlimit mBefore{};
};

TEST_F(OrvhostStore, Commit_DiskFails_DoesNotPromiseThatNothingIsLeft) {
    fill();
    std::vector<std::string> commands{"begin"};
    for (int round = 0; round < 50; ++round) {
        commands.push_back("create ManagedElement=1,Unit=u" + std::to_string(round) +
                           " label=" + std::string(2000, 'x'));
    }
    commands.emplace_back("commit");
    const FileLimit limit(65536);
    const ProgramResult result = runKept(commands);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err,
                AllOf(HasSubstr("OrvHostOutcomeUnknown"),
                      HasSubstr("whether it is committed is not known"),
                      HasSubstr("it cannot be read or written"), HasSubstr("the entry would be "),
                      Not(HasSubstr("nothing of it is left"))));
}

TEST_F(OrvhostStore, StoreCommands_WorkOnTheFile) {
    fill();
    EXPECT_EQ(runKept({"set ManagedElement=1 label=new"}).status, 0);
    EXPECT_THAT(runOrvhost({"store", "info", mStore}).out,
                AllOf(StartsWith("objects      2\ncommits      1\nlast commit  20"),
                      HasSubstr("Z by transaction ")));
    EXPECT_THAT(runOrvhost({"--json", "store", "info", mStore}).out,
                HasSubstr(R"("objects":2,"commits":1)"));
    EXPECT_EQ(runOrvhost({"store", "check", mStore}).out, mStore + ": nothing is wrong\n");
    EXPECT_THAT(runOrvhost({"store", "compact", mStore}).out, HasSubstr(" bytes now\n"));
    const std::string out = mDirectory.path() / "out.json";
    EXPECT_EQ(run({"store", "export", mStore, out}).status, 0);
    EXPECT_THAT(readFile(out), HasSubstr(R"("label": "new")"));
}

TEST_F(OrvhostStore, StoreCommands_DamagedFile_IsReported) {
    fill();
    std::fstream file(mStore, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(4096);
    file << std::string(16384, 'x');
    file.close();
    const ProgramResult result = runOrvhost({"store", "check", mStore});
    EXPECT_NE(result.status, 0);
    EXPECT_THAT(result.out + result.err, HasSubstr(mStore));
}

TEST_F(OrvhostStore, StoreCommands_WithoutSense_AreUsageErrors) {
    for (const std::vector<std::string>& words : {std::vector<std::string>{"store"},
                                                  {"store", "info"},
                                                  {"store", "wash", mStore},
                                                  {"store", "info", mStore, "more"},
                                                  {"store", "export", mStore, "out"},
                                                  {"--store", mStore, "store", "info", mStore},
                                                  {"--store-sync", "often", "count"},
                                                  {"--store-sync", "normal", "count"},
                                                  {"--store", mStore, "--fresh", "count"},
                                                  {"--fresh", "count"},
                                                  {"--store", "postgres://h/d", "count"},
                                                  {"store", "info", "postgres://h/d"},
                                                  {"--store", mStore, "check", "file"}}) {
        EXPECT_EQ(runOrvhost(words).status, 2) << words.back();
    }
    EXPECT_EQ(runOrvhost({"store", "info", mStore}).status, 3);
}

/// The example network without its data, followed by \p more.
std::vector<std::string> onHarbourModel(std::vector<std::string> more) {
    more.insert(more.begin(), {"-I", EXAMPLES_DIR "/models", "-m", "ran-element", "-m",
                               "ran-equipment", "-m", "ran-function", "--me-id", "Harbour"});
    return more;
}

/// A script that moves a radio unit between two antennas, again and again.
std::string movesText() {
    const std::string equipment = "ManagedElement=Harbour,Equipment=1";
    std::string text;
    for (int round = 0; round < 20000; ++round) {
        text += "set " + equipment + ",RadioUnit=1 antennaRef=" + equipment +
                ",AntennaUnit=" + (round % 2 == 0 ? "2" : "1") + ",Antenna=1\n";
    }
    return text;
}

pid_t startOrvhost(const std::vector<std::string>& arguments) {
    const pid_t process = fork();
    if (process == 0) {
        dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
        becomeOrvhost(arguments);
    }
    return process;
}

/// Killed while it moves, a host leaves both sides of each association in step: data at the start
/// is refused if they are not.
TEST_F(OrvhostStore, Associations_OfAHostThatWasKilled_AreInStep) {
    ASSERT_EQ(runOrvhost(onHarbourModel(
                             {"-d", EXAMPLES_DIR "/data/harbour.json", "--store", mStore, "count"}))
                  .status,
              0);
    const std::string script = mDirectory.file("moves", movesText());
    for (const int milliseconds : {300, 500, 700}) {
        const pid_t host = startOrvhost(onHarbourModel({"--store", mStore, "-f", script}));
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        kill(host, SIGKILL);
        int status = 0;
        waitpid(host, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(runOrvhost({"store", "check", mStore}).status, 0);
        const std::string out = mDirectory.path() / "out.json";
        ASSERT_EQ(runOrvhost(onHarbourModel({"store", "export", mStore, out})).status, 0);
        EXPECT_EQ(runOrvhost(onHarbourModel({"-d", out, "count"})).err, "");
    }
    EXPECT_THAT(runOrvhost({"store", "info", mStore}).out, HasSubstr("\nlast commit  20"));
}

}
}
