// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// A disk that becomes full at any moment of the life of a store: in a transaction that is too large
// for the engine's memory, at the commit, or while the journal is copied to the file.

#include "Mixture.h"
#include "SampleStore.h"
#include "store_sqlite/SqliteLog.h"
#include "store_sqlite/StoreTools.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <set>

#include <unistd.h>

namespace OrvHost {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

const std::string kA = "Network=1,Node=a";

/// While it lives, the disk takes so many writes of the engine, and then none.
class Disk {
public:
    explicit Disk(unsigned long writes) {
        left = writes;
        wasFull = false;
        vfs().xSetSystemCall(&vfs(), "pwrite", reinterpret_cast<sqlite3_syscall_ptr>(&write));
        vfs().xSetSystemCall(&vfs(), "pwrite64", reinterpret_cast<sqlite3_syscall_ptr>(&write));
    }
    ~Disk() {
        vfs().xSetSystemCall(&vfs(), "pwrite", nullptr);
        vfs().xSetSystemCall(&vfs(), "pwrite64", nullptr);
    }
    Disk(const Disk&) = delete;
    Disk& operator=(const Disk&) = delete;

    static inline bool wasFull = false;

private:
    static sqlite3_vfs& vfs() { return *sqlite3_vfs_find(nullptr); }
    static ssize_t write(int file, const void* bytes, std::size_t size, off_t at) {
        if (left == 0) {
            wasFull = true;
            errno = ENOSPC;
            return -1;
        }
        --left;
        return pwrite(file, bytes, size, at);
    }

    static inline unsigned long left = 0;
};

class SqliteFullDiskTest : public testing::Test {
protected:
    SqliteFullDiskTest() {
        std::string name = fs::temp_directory_path() / "full_disk_test_XXXXXX";
        directory = mkdtemp(name.data());
    }
    ~SqliteFullDiskTest() override { fs::remove_all(directory); }

    fs::path directory;
};

/// In which work the engine met the full disk first.
enum class Moment {
    Writing,    ///< a transaction, before its commit
    Committing, ///< which the client was told
    Copying     ///< the journal to the file, behind a commit that succeeded
};

/// A store that commits until the disk is full, and what it was told.
class Life {
public:
    explicit Life(const fs::path& file) : mFile(file) {
        SqliteLog log(file, sampleStoreModel());
        SampleStore filled;
        filled.store.attach(log);
    }

    /// Small commits around one that is larger than the engine's memory, and than its journal
    /// before it is copied to the file. Returns when the disk was full; none if it
    /// never was.
    std::optional<Moment> commitUntilFull(unsigned long writes) {
        SqliteLog log(mFile, sampleStoreModel());
        MoStore store(sampleStoreModel());
        store.attach(log);
        std::optional<Moment> moment;
        bool isWritten = false;
        log.setStageHook([&](SqliteLog::Stage stage) {
            isWritten = !Disk::wasFull && stage == SqliteLog::Stage::Written;
        });
        {
            const Disk disk(writes);
            for (const std::size_t size : {10UL, 5'000'000UL, 10UL, 100'000UL, 10UL}) {
                isWritten = false;
                const bool isCommitted = commit(store, size);
                if (Disk::wasFull && !moment) {
                    moment = isCommitted ? Moment::Copying
                             : isWritten ? Moment::Committing
                                         : Moment::Writing;
                }
            }
        }
        EXPECT_EQ(store.begin(1)->get(kA, "label"), text(mKnown)) << "after " << writes;
        commit(store, 20);
        EXPECT_EQ(mAnswers.back(), OrvOk) << "there is room again, after " << writes;
        return moment;
    }

    /// The codes of the commits, OrvOk for those that succeeded.
    const std::vector<OrvReturnT>& answers() const { return mAnswers; }
    /// The last text that was committed.
    const std::string& known() const { return mKnown; }

private:
    bool commit(MoStore& store, std::size_t size) {
        const std::string label(size, static_cast<char>('a' + mAnswers.size()));
        mAnswers.push_back(codeOf([&] {
            const auto tx = store.begin(7);
            tx->set(kA, "label", text(label));
            tx->commit();
        }));
        if (mAnswers.back() != OrvOk) {
            return false;
        }
        mKnown = label;
        return true;
    }

    const fs::path mFile;
    std::vector<OrvReturnT> mAnswers;
    std::string mKnown = "first";
};

TEST_F(SqliteFullDiskTest, AtAnyWrite_RefusesCommitsAndKeepsWhatWasAnswered) {
    std::set<Moment> met;
    bool isToGoOn = true;
    // Each write at first, then fewer and fewer: the large commit has thousands.
    for (unsigned long writes = 0; isToGoOn; writes += 1 + writes / 8) {
        const fs::path file = directory / std::to_string(writes);
        Life life(file);
        const std::optional<Moment> moment = life.commitUntilFull(writes);
        isToGoOn = moment.has_value();
        if (moment) {
            met.insert(*moment);
        }
        for (const OrvReturnT code : life.answers()) {
            EXPECT_TRUE(code == OrvOk || code == OrvHostStoreUnavailable) << code;
        }
        EXPECT_THAT(checkStore(file), IsEmpty()) << "after " << writes;
        SqliteLog log(file, sampleStoreModel());
        MoStore again(sampleStoreModel());
        again.attach(log);
        EXPECT_EQ(again.begin(1)->get(kA, "label"), text(life.known())) << "after " << writes;
    }
    EXPECT_THAT(met, ElementsAre(Moment::Writing, Moment::Committing, Moment::Copying));
}

}
}
