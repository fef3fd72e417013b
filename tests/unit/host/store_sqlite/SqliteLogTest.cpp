// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "store_sqlite/SqliteLog.h"
#include "Mixture.h"
#include "SampleStore.h"
#include "store_sqlite/SqliteConnection.h"
#include "store_sqlite/StoreTools.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <fstream>
#include <iterator>
#include <optional>
#include <thread>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvHost {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace fs = std::filesystem;

const std::string kA = "Network=1,Node=a";

/// A store in a file, and the log over the file.
struct Kept {
    explicit Kept(const fs::path& file, const Model& model = sampleStoreModel())
        : log(file, model), store(model) {
        store.attach(log);
    }

    SqliteLog log;
    MoStore store;
};

class SqliteLogTest : public testing::Test, protected SampleStore {
protected:
    SqliteLogTest() {
        std::string name = fs::temp_directory_path() / "store_test_XXXXXX";
        directory = mkdtemp(name.data());
        file = directory / "store";
    }
    ~SqliteLogTest() override { fs::remove_all(directory); }

    void fill() {
        SqliteLog log(file, model);
        SampleStore filled;
        filled.store.attach(log);
    }
    static void setLabel(MoStore& where, const std::string& label) {
        const auto tx = where.begin(7, "alice");
        tx->set(kA, "label", text(label));
        tx->commit();
    }
    static LogMark markOf(SqliteLog& log) {
        return log.load([](const ObjectRow&) {});
    }
    std::string whyRefused(const Model& other = sampleStoreModel()) const {
        return errorOf([&] { SqliteLog(file, other); }).what();
    }

    fs::path directory;
    fs::path file;
};

TEST_F(SqliteLogTest, Store_IsAsItWasAfterANewStart) {
    fill();
    {
        Kept kept(file);
        const auto tx = kept.store.begin(1);
        tx->set(kA, {{"label", text("new")}, {"tags", texts({"x", "y"})}, {"height", integer(-3)}});
        tx->create("Network=1", "Node", "id", "c", {{"mode", choice("blue")}});
        tx->create("Network=1,Node=c", "Rack", "id", "r", {});
        tx->remove("Network=1,Node=b");
        tx->commit();
        const auto second = kept.store.begin(2);
        second->create("Network=1", "Node", "id", "b", {});
        second->commit();
    }
    Kept kept(file);
    const auto tx = kept.store.begin(1);
    EXPECT_THAT(namesOf(*tx, "Network=1", "Node"), ElementsAre("a", "c", "b"));
    EXPECT_EQ(tx->get(kA, "label"), text("new"));
    EXPECT_EQ(tx->get(kA, "tags"), texts({"x", "y"}));
    EXPECT_EQ(tx->get(kA, "height"), integer(-3));
    EXPECT_EQ(tx->get(kA, "serial"), text("S-1"));
    EXPECT_EQ(tx->get("Network=1,Node=c", "mode"), choice("blue"));
    EXPECT_TRUE(tx->exists("Network=1,Node=c,Rack=r"));
    EXPECT_EQ(kept.store.size(), 5U);
    setLabel(kept.store, "newer");
    EXPECT_EQ(kept.store.begin(3)->get(kA, "label"), text("newer"));
}

TEST_F(SqliteLogTest, Log_AfterTheEnd_LeavesOneFile) {
    fill();
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(directory)) {
        names.push_back(entry.path().filename());
    }
    EXPECT_THAT(names, ElementsAre("store"));
}

TEST_F(SqliteLogTest, Fill_StoreWithObjects_IsRefused) {
    fill();
    SqliteLog log(file, model);
    EXPECT_FALSE(log.isNew());
    EXPECT_EQ(codeOf([&] { store.attach(log); }), OrvHostWrongState);
}

TEST_F(SqliteLogTest, Open_FileThatAProcessUses_NamesThatProcess) {
    fill();
    int ready[2];
    int done[2];
    ASSERT_EQ(pipe(ready) + pipe(done), 0);
    const pid_t other = fork();
    if (other == 0) {
        char byte = 0;
        const SqliteLog log(file, sampleStoreModel());
        const bool said = write(ready[1], "r", 1) == 1;
        _exit(said && read(done[0], &byte, 1) == 1 ? 0 : 1);
    }
    char byte = 0;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    EXPECT_THAT(whyRefused(), AllOf(StartsWith(file.string() + " is in use by process " +
                                               std::to_string(other) + " on "),
                                    HasSubstr(", since 20"), EndsWith("Z")));
    EXPECT_THAT(errorOf([&] { readStoreInfo(file); }).what(),
                HasSubstr("is in use by process " + std::to_string(other)));
    kill(other, SIGKILL);
    waitpid(other, nullptr, 0);
    EXPECT_EQ(whyRefused(), "");
    for (const int end : {ready[0], ready[1], done[0], done[1]}) {
        close(end);
    }
}

TEST_F(SqliteLogTest, Open_LinkToAFileInUse_IsRefused) {
    const Kept kept(file);
    file = directory / "link";
    fs::create_symlink("store", file);
    EXPECT_THAT(whyRefused(), StartsWith(file.string() + " is in use by process " +
                                         std::to_string(getpid()) + " on "));
}

TEST_F(SqliteLogTest, Open_InADirectoryThatIsNotThere_LeavesNothingBehind) {
    file = directory / "none" / ".." / "store"; // the engine would find a place for it
    EXPECT_EQ(whyRefused(), "the store " + file.string() +
                                " cannot be used: its directory cannot be written to the disk");
    EXPECT_TRUE(fs::is_empty(directory));
}

TEST_F(SqliteLogTest, Open_FileThatIsNoDatabase_IsRefused) {
    std::ofstream(file) << "This is a text, and it is longer than the head of a database.\n"
                        << std::string(1000, 'x');
    EXPECT_EQ(whyRefused(), "the store " + file.string() +
                                " cannot be used: it is no database, or another program's");
}

TEST_F(SqliteLogTest, Open_FileOfOneByte_IsRefusedAndStays) {
    std::ofstream(file) << "x";
    EXPECT_EQ(whyRefused(), "the store " + file.string() +
                                " cannot be used: it is no database, or another program's");
    EXPECT_EQ(fs::file_size(file), 1U);
}

TEST_F(SqliteLogTest, Open_EmptyFile_BecomesAStore) {
    std::ofstream(file).flush(); // as a process leaves it that is killed at once
    EXPECT_EQ(errorOf([&] { checkStore(file); }).what(),
              "the store " + file.string() +
                  " cannot be used: there is nothing in it; the first "
                  "host that opens it makes it a store");
    fill();
    EXPECT_THAT(checkStore(file), IsEmpty());
}

TEST_F(SqliteLogTest, Open_DatabaseOfAnotherProgram_IsRefused) {
    SqliteConnection(file, SqliteConnection::Mode::Create).run("CREATE TABLE t(x)");
    EXPECT_THAT(whyRefused(), HasSubstr("it is a database of another program, and no store"));
}

TEST_F(SqliteLogTest, Open_NewerFormat_IsRefused) {
    fill();
    SqliteConnection(file, SqliteConnection::Mode::Existing).run("PRAGMA user_version=2");
    EXPECT_THAT(whyRefused(), HasSubstr("its format is 2, and this version knows format 1 only"));
}

TEST_F(SqliteLogTest, Open_OtherModel_IsRefusedWithTheDifference) {
    fill();
    Model other = sampleStoreModel();
    other.classes[*other.findClass("Node")].attributes[1].name = "title";
    EXPECT_EQ(whyRefused(other), "the store " + file.string() +
                                     " cannot be used: it is of another model: attribute "
                                     "'label' of class 'Node' is not there any more");
    EXPECT_EQ(whyRefused(), "");
}

TEST_F(SqliteLogTest, Open_DirectoryThatDoesNotExist_IsRefused) {
    file = directory / "none" / "store";
    EXPECT_EQ(whyRefused(), file.string() + " cannot be opened: " + file.string() +
                                "-holder cannot be written: No such file or directory");
}

TEST_F(SqliteLogTest, Open_EmptyPath_IsRefused) {
    file.clear();
    EXPECT_EQ(whyRefused(), "the path of the store's file is empty");
}

TEST_F(SqliteLogTest, Open_DirectoryThatCannotBeWritten_IsRefused) {
    if (geteuid() == 0) {
        // Rights do not stop this user; a directory that is a file does.
        std::ofstream(directory / "plain") << "x";
        file = directory / "plain" / "store";
        EXPECT_THAT(whyRefused(), HasSubstr("cannot be written: Not a directory"));
        return;
    }
    fs::permissions(directory, fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_THAT(whyRefused(), HasSubstr("cannot be written: Permission denied"));
    fs::permissions(directory, fs::perms::owner_all);
}

/// Lives as a user whom rights stop, if this one is not such a user already.
class OrdinaryUser {
public:
    OrdinaryUser() { set(mIsRoot ? kNobody : geteuid()); }
    ~OrdinaryUser() { set(mIsRoot ? 0 : geteuid()); }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    static void set(uid_t user) { EXPECT_EQ(seteuid(user), 0); }
    static constexpr uid_t kNobody = 65534;

    const bool mIsRoot = geteuid() == 0;
};

TEST_F(SqliteLogTest, Open_FileThatCannotBeWritten_SaysSo) {
    fill();
    fs::permissions(directory, fs::perms::all);
    fs::permissions(file, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    {
        const OrdinaryUser user;
        const std::string text = "the store " + file.string() +
                                 " cannot be used: it cannot be "
                                 "written";
        EXPECT_EQ(whyRefused(), text);
        EXPECT_EQ(errorOf([&] { readStoreInfo(file); }).what(), text);
    }
    fs::permissions(file, fs::perms::owner_write, fs::perm_options::add);
    EXPECT_EQ(Kept(file).store.size(), 3U);
}

TEST_F(SqliteLogTest, Open_NameLikeAUri_IsTheFileOfThatName) {
    const fs::path before = fs::current_path();
    fs::current_path(directory);
    file = "file:store?mode=memory";
    fill();
    {
        Kept kept(file);
        setLabel(kept.store, "kept");
        kept.log.backup("file:copy");
    }
    EXPECT_EQ(Kept(file).store.begin(1)->get(kA, "label"), text("kept"));
    EXPECT_EQ(Kept("file:copy").store.begin(1)->get(kA, "label"), text("kept"));
    EXPECT_TRUE(fs::exists(directory / file));
    EXPECT_TRUE(fs::exists(directory / "file:copy"));
    fs::current_path(before);
}

TEST_F(SqliteLogTest, Commit_DiskIsFull_IsRefusedAndTheStoreGoesOn) {
    fill();
    Kept kept(file);
    kept.log.limitPages(20);
    const auto tx = kept.store.begin(1);
    tx->set(kA, "label", text(std::string(200000, 'x')));
    const HostError error = errorOf([&] { tx->commit(); });
    EXPECT_EQ(error.code(), OrvHostStoreUnavailable);
    EXPECT_EQ(error.what(), file.string() + ": the disk is full");
    EXPECT_EQ(kept.store.begin(2)->get(kA, "label"), text("first"));
    tx->rollback();
    setLabel(kept.store, "short");
    EXPECT_EQ(kept.store.begin(3)->get(kA, "label"), text("short"));
}

TEST_F(SqliteLogTest, Attach_RecordThatIsNone_IsRefused) {
    fill();
    SqliteConnection(file, SqliteConnection::Mode::Existing)
        .run("UPDATE objects SET attributes = x'0142' WHERE name = 'a'");
    SqliteLog log(file, model);
    MoStore empty(model);
    EXPECT_THAT(errorOf([&] { empty.attach(log); }).what(),
                HasSubstr("object 2 of the store ('a') cannot be read: the bytes end too early"));
}

TEST_F(SqliteLogTest, Attach_ClassThatIsTooLarge_IsRefused) {
    fill();
    SqliteConnection(file, SqliteConnection::Mode::Existing)
        .run("UPDATE objects SET class = class + 4294967296 WHERE name = 'a'");
    SqliteLog log(file, model);
    MoStore empty(model);
    EXPECT_THAT(errorOf([&] { empty.attach(log); }).what(), HasSubstr("there is no class 4294967"));
}

TEST_F(SqliteLogTest, Entries_ThatWereDropped_DoNotComeBack) {
    fill();
    {
        Kept kept(file);
        kept.log.keepEntries(2);
        for (const char* label : {"1", "2", "3", "4", "5"}) {
            setLabel(kept.store, label);
        }
        kept.log.keepEntries(1000);
        setLabel(kept.store, "6");
    }
    EXPECT_THAT(checkStore(file), IsEmpty());
    EXPECT_EQ(readStoreInfo(file).firstEntry, 4U);
}

TEST_F(SqliteLogTest, Entries_NoneIsKept_TheNextCommitFits) {
    fill();
    {
        Kept kept(file);
        kept.log.keepEntries(0);
        setLabel(kept.store, "1");
        setLabel(kept.store, "2");
    }
    EXPECT_THAT(checkStore(file), IsEmpty());
    Kept kept(file);
    setLabel(kept.store, "3");
    EXPECT_EQ(kept.store.begin(1)->get(kA, "label"), text("3"));
}

TEST_F(SqliteLogTest, TwoStores_OfOneFile_FollowEachOther) {
    fill();
    Kept kept(file);
    MoStore second(model);
    second.attach(kept.log, "second");
    setLabel(kept.store, "1");
    second.catchUp();
    EXPECT_EQ(second.begin(1)->get(kA, "label"), text("1"));
    setLabel(second, "2");
    kept.log.keepEntries(1);
    kept.store.catchUp();
    setLabel(kept.store, "3");
    second.catchUp();
    EXPECT_EQ(contentOf(second), contentOf(kept.store));
}

TEST_F(SqliteLogTest, Fill_OfAnEmptyStore_IsSeenByOneThatWasEmpty) {
    SqliteLog log(file, model);
    MoStore early(model);
    early.attach(log);
    store.attach(log);
    EXPECT_EQ(codeOf([&] { early.catchUp(); }), OrvHostStoreUnavailable);
    early.reload();
    EXPECT_EQ(contentOf(early), contentOf(store));
}

TEST_F(SqliteLogTest, Open_FileThatCannotHaveTheJournal_IsRefused) {
    file = ":memory:"; // the engine keeps a database of that name in memory
    EXPECT_THAT(whyRefused(), HasSubstr("does not permit the journal that a store needs (the "
                                        "engine chose 'memory')"));
}

TEST_F(SqliteLogTest, Open_NameThatIsTooLong_IsRefused) {
    file = directory / std::string(5000, 'x');
    EXPECT_THAT(whyRefused(), HasSubstr("File name too long"));
    EXPECT_EQ(codeOf([&] { checkStore(file); }), OrvHostStoreUnavailable);
}

TEST_F(SqliteLogTest, Commit_LargerThanTheEngineTakes_SaysSo) {
    fill();
    Kept kept(file);
    kept.log.limitLength(2000);
    const HostError error = errorOf([&] { setLabel(kept.store, std::string(5000, 'x')); });
    EXPECT_EQ(error.code(), OrvInvalidArgument);
    EXPECT_EQ(error.what(),
              file.string() +
                  ": a value, an object or a transaction is larger than the file can keep");
    setLabel(kept.store, "short");
    EXPECT_EQ(kept.store.begin(3)->get(kA, "label"), text("short"));
}

/// Files get no longer than they are while it lives: writing more is an error of input and output.
class NoGrowth {
public:
    explicit NoGrowth(const fs::path& file) {
        mSignal = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &mBefore);
        const rlimit now{fs::file_size(file), mBefore.rlim_max};
        setrlimit(RLIMIT_FSIZE, &now);
    }
    ~NoGrowth() {
        setrlimit(RLIMIT_FSIZE, &mBefore);
        static_cast<void>(std::signal(SIGXFSZ, mSignal));
    }
    NoGrowth(const NoGrowth&) = delete;
    NoGrowth& operator=(const NoGrowth&) = delete;

private:
    rlimit mBefore{};
    void (*mSignal)(int) = nullptr;
};

TEST_F(SqliteLogTest, Commit_DiskFailsAtTheEnd_IsUnknown) {
    fill();
    {
        Kept kept(file);
        setLabel(kept.store, "before");
        std::optional<NoGrowth> noGrowth;
        kept.log.setStageHook([&](SqliteLog::Stage stage) {
            if (stage == SqliteLog::Stage::Written) {
                noGrowth.emplace(file.string() + "-wal");
            }
        });
        const HostError error = errorOf([&] { setLabel(kept.store, "doubtful"); });
        noGrowth.reset();
        kept.log.setStageHook({});
        EXPECT_EQ(error.code(), OrvHostOutcomeUnknown);
        EXPECT_THAT(error.what(), HasSubstr("whether the commit is in the file is known after a "
                                            "new start; the entry would be "));
        EXPECT_EQ(kept.store.begin(1)->get(kA, "label"), text("before"));
        setLabel(kept.store, "after");
    }
    EXPECT_THAT(checkStore(file), IsEmpty());
    EXPECT_EQ(Kept(file).store.begin(1)->get(kA, "label"), text("after"));
}

TEST_F(SqliteLogTest, Open_NothingCanBeWritten_CanBeRead) {
    fill();
    std::ofstream(directory / "empty").flush();
    const NoGrowth noGrowth(directory / "empty");
    EXPECT_EQ(Kept(file).store.size(), 3U);
    EXPECT_EQ(readStoreInfo(file).objects, 3U);
}

TEST_F(SqliteLogTest, Commit_MemoryRunsOutAtTheEnd_IsUnknownAndTheStoreGoesOn) {
    fill();
    {
        Kept kept(file);
        setLabel(kept.store, "before");
        kept.log.setStageHook([&](SqliteLog::Stage stage) {
            if (stage == SqliteLog::Stage::Written) {
                SqliteConnection::freezeMemory(true);
            }
        });
        const OrvReturnT code = codeOf([&] { setLabel(kept.store, "doubtful"); });
        EXPECT_EQ(codeOf([&] { kept.store.catchUp(); }), OrvHostStoreUnavailable);
        SqliteConnection::freezeMemory(false);
        kept.log.setStageHook({});
        EXPECT_EQ(code, OrvHostOutcomeUnknown);
        kept.store.catchUp();
        EXPECT_EQ(kept.store.begin(1)->get(kA, "label"), text("before"));
        setLabel(kept.store, "after");
    }
    EXPECT_THAT(checkStore(file), IsEmpty());
    EXPECT_EQ(Kept(file).store.begin(1)->get(kA, "label"), text("after"));
}

TEST_F(SqliteLogTest, Commit_FileWasRemoved_IsRefused) {
    fill();
    Kept kept(file);
    fs::rename(file, directory / "elsewhere");
    const HostError error = errorOf([&] { setLabel(kept.store, "lost"); });
    EXPECT_EQ(error.code(), OrvHostStoreUnavailable);
    EXPECT_EQ(error.what(), file.string() + " was removed or replaced while it was in use");
    kept.log.backup(directory / "copy");
    EXPECT_EQ(fs::status(directory / "copy").permissions() & ~fs::perms(0600), fs::perms::none);
    fs::rename(directory / "elsewhere", file);
    setLabel(kept.store, "kept");
    EXPECT_EQ(kept.store.begin(1)->get(kA, "label"), text("kept"));
}

TEST_F(SqliteLogTest, Backup_WhileCommitsGoOn_DoesNotHoldThemUp) {
    for (int at = 0; at < 3000; ++at) {
        store.load("Network=1,Node=n" + std::to_string(at),
                   {{"label", text(std::string(2000, 'y'))}});
    }
    SqliteLog log(file, model);
    store.attach(log);
    std::atomic<bool> isDone{false};
    int commits = 0;
    std::thread backup([&] {
        log.backup(directory / "copy");
        isDone = true;
    });
    while (!isDone) {
        setLabel(store, std::to_string(++commits));
    }
    backup.join();
    EXPECT_GT(commits, 3);
    EXPECT_THAT(checkStore(directory / "copy"), IsEmpty());
    EXPECT_EQ(Kept(directory / "copy").store.size(), 3003U);
}

TEST_F(SqliteLogTest, Backup_ThatFails_LeavesNoFile) {
    fill();
    Kept kept(file);
    std::ofstream(directory / "copy.tmp") << "mine";
    EXPECT_THAT(errorOf([&] { kept.log.backup(directory / "none" / "copy"); }).what(),
                HasSubstr("it cannot be created: No such file or directory"));
    EXPECT_THAT(errorOf([&] { kept.log.backup(directory / std::string(5000, 'x')); }).what(),
                HasSubstr("it cannot be created: File name too long"));
    kept.log.backup(directory / "copy");
    EXPECT_TRUE(fs::exists(directory / "copy.tmp"));
    EXPECT_EQ(fs::status(directory / "copy").permissions(), fs::status(file).permissions());
    const auto filesNow = [&] {
        return std::distance(fs::directory_iterator(directory), fs::directory_iterator());
    };
    const auto before = filesNow();
    {
        std::ofstream(directory / "small") << "x";
        const NoGrowth noGrowth(directory / "small");
        EXPECT_EQ(codeOf([&] { kept.log.backup(directory / "second"); }), OrvHostStoreUnavailable);
    }
    EXPECT_EQ(filesNow(), before + 1);
}

TEST_F(SqliteLogTest, Entries_OldOnesAreDropped) {
    fill();
    Kept kept(file);
    const LogMark start = markOf(kept.log);
    kept.log.keepEntries(2);
    for (const char* label : {"1", "2", "3", "4"}) {
        setLabel(kept.store, label);
    }
    std::vector<CommitNumber> seen;
    const auto note = [&](const LogEntry& entry) { seen.push_back(entry.mark.position); };
    EXPECT_EQ(codeOf([&] { kept.log.follow(start, note, {}); }), OrvHostStoreUnavailable);
    EXPECT_THAT(seen, IsEmpty());
}

TEST_F(SqliteLogTest, Find_KnowsIdsOfEntries) {
    fill();
    Kept kept(file);
    const LogMark start = markOf(kept.log);
    setLabel(kept.store, "1");
    std::string id;
    kept.log.follow(start, [&](const LogEntry& entry) { id = entry.mark.id; }, {});
    EXPECT_EQ(kept.log.find(id), 1U);
    EXPECT_EQ(kept.log.find("none"), std::nullopt);
}

TEST_F(SqliteLogTest, Backup_OfAStoreInUse_IsAStore) {
    fill();
    const fs::path copy = directory / "copy";
    Kept kept(file);
    setLabel(kept.store, "before");
    kept.log.backup(copy);
    setLabel(kept.store, "after");
    EXPECT_THAT(checkStore(copy), IsEmpty());
    EXPECT_EQ(Kept(copy).store.begin(1)->get(kA, "label"), text("before"));
    EXPECT_THAT(errorOf([&] { kept.log.backup(copy); }).what(),
                HasSubstr("there is such a file already"));
}

TEST_F(SqliteLogTest, Info_SaysWhatTheFileHolds) {
    fill();
    {
        Kept kept(file);
        setLabel(kept.store, "1");
    }
    const StoreInfo info = readStoreInfo(file);
    EXPECT_EQ(info.objects, 3U);
    EXPECT_EQ(info.position, 1U);
    EXPECT_EQ(info.firstEntry, 1U);
    EXPECT_EQ(info.lastAuthor, "transaction 7 of alice");
    EXPECT_EQ(info.model, fingerprintOf(modelFacts(model)));
    EXPECT_THAT(errorOf([&] { readStoreInfo(directory / "none"); }).what(),
                HasSubstr("there is no such file"));
}

TEST_F(SqliteLogTest, Check_FindsWhatCannotBe) {
    fill();
    EXPECT_THAT(checkStore(file), IsEmpty());
    SqliteConnection(file, SqliteConnection::Mode::Existing)
        .run("DELETE FROM objects WHERE name = '1'; UPDATE objects SET class = 99 WHERE name = "
             "'b'; INSERT INTO log VALUES(7, 'x', 'y', 0, x'00')");
    EXPECT_THAT(checkStore(file), ElementsAre("2 objects without their parents",
                                              "1 objects of classes that the model does not have",
                                              "1 entries outside of the log's bounds"));
    SqliteConnection(file, SqliteConnection::Mode::Existing).run("DELETE FROM head");
    EXPECT_THAT(checkStore(file), ElementsAre("the table 'head' has not exactly one row"));
}

TEST_F(SqliteLogTest, Check_FindsWhatAHostCannotRead) {
    fill();
    {
        Kept kept(file);
        setLabel(kept.store, "1");
    }
    SqliteConnection(file, SqliteConnection::Mode::Existing)
        .run("UPDATE objects SET attributes = x'0142' WHERE name = 'a'; UPDATE log SET change = "
             "x'01'; UPDATE head SET model = 'x'");
    EXPECT_THAT(checkStore(file),
                ElementsAre("the fingerprint is not that of the model in it",
                            "Network=1,Node=a cannot be read: the bytes end too early",
                            "entry 1: the bytes end too early"));
}

TEST_F(SqliteLogTest, Check_LayoutThatIsNone_IsReported) {
    fill();
    const auto checkLayout = [&](const std::string& bytes) {
        SqliteConnection(file, SqliteConnection::Mode::Existing)
            .run("UPDATE head SET layout = " + bytes);
        return checkStore(file);
    };
    EXPECT_THAT(checkLayout("CAST(x'0100' || replace(hex(zeroblob(20000)), '00', '01000700') AS "
                            "BLOB)"),
                ElementsAre(HasSubstr("what its model says of records: ")));
    EXPECT_THAT(checkLayout("CAST(layout || x'00' AS BLOB)"),
                ElementsAre(HasSubstr("what its model says of records: ")));
}

TEST_F(SqliteLogTest, Fill_LeavesNoLargeFileBeside) {
    for (int at = 0; at < 2000; ++at) {
        store.load("Network=1,Node=n" + std::to_string(at),
                   {{"label", text(std::string(2000, 'y'))}});
    }
    SqliteLog log(file, model);
    store.attach(log);
    EXPECT_LT(fs::file_size(file.string() + "-wal"), 100000U);
}

TEST_F(SqliteLogTest, Compact_GivesSpaceBack) {
    fill();
    {
        Kept kept(file);
        kept.log.keepEntries(1);
        setLabel(kept.store, std::string(500000, 'x'));
        setLabel(kept.store, "short");
        setLabel(kept.store, "shorter");
    }
    const auto [before, after] = compactStore(file);
    EXPECT_GT(before, 500000U);
    EXPECT_LT(after, 100000U);
    EXPECT_EQ(Kept(file).store.begin(1)->get(kA, "label"), text("shorter"));
}

}
}
