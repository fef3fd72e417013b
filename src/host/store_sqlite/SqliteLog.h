// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_SQLITE_SQLITELOG_H
#define ORV_HOST_STORE_SQLITE_SQLITELOG_H

#include "SqliteConnection.h"
#include "StoreHolder.h"
#include "base/HeldFile.h"
#include "model/ModelFingerprint.h"
#include "store/CommitLog.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace OrvHost {

/// A commit log in a file of SQLite, for one process. Every commit is on the disk before append
/// returns.
///
/// The file holds the objects, the last thousand entries, and what the objects depend on in the
/// model. Beside it there are, while it is in use, the engine's "-wal" and the file of StoreHolder.
///
/// Threads: any; calls run one after the other.
class SqliteLog : public CommitLog {
public:
    enum class Sync {
        Full,  ///< nothing that is acknowledged is lost, if the disk keeps what it confirms
        Normal ///< the last commits may be lost when the power fails, but not when a process ends
    };
    /// What happens next in append; for tests that end the process there.
    enum class Stage { Begun, Decided, Written, Committed };
    using StageHook = std::function<void(Stage stage)>;

    /// Opens \p file, or creates it for \p model. Throws LogUnavailable with a text that names the
    /// file: it is in use, cannot be opened or written, is no store, has a newer format, or is of
    /// another model, with the first difference.
    SqliteLog(const std::filesystem::path& file, const Model& model, Sync sync = Sync::Full);
    ~SqliteLog() override;
    SqliteLog(const SqliteLog&) = delete;
    SqliteLog& operator=(const SqliteLog&) = delete;

    LogMark load(const ObjectVisitor& visitor) override;
    bool isNew() override;
    LogMark fill(const ObjectSource& objects) override;
    void append(const LogMark& seen, const CatchUp& catchUp, const Decide& decide) override;
    void follow(const LogMark& seen, const CatchUp& catchUp,
                std::chrono::milliseconds patience) override;
    std::optional<CommitNumber> find(const std::string& id) override;

    /// Copies the store, as of the last commit, to \p target, which must not exist. The copy is on
    /// the disk and under its name as a whole or not at all. Commits go on meanwhile, and are in
    /// the copy. Throws LogUnavailable.
    void backup(const std::filesystem::path& target);

    /// How many of the latest entries are kept from the next append on.
    void keepEntries(std::uint64_t count) { mEntriesKept = count; }
    /// The file gets no larger than so many pages of the engine: commits that need more are refused
    /// as on a full disk.
    void limitPages(std::uint64_t pages);
    /// What is longer than so many bytes is refused: a value, an object, a transaction.
    void limitLength(int bytes);
    /// \p hook is called in append. Set it before the first append.
    void setStageHook(StageHook hook) { mStageHook = std::move(hook); }

private:
    struct Statements;

    template <class Work>
    auto guarded(const Work& work);
    /// The last entry, the position of the oldest one that is kept, and the id of the one in front
    /// of that.
    struct Head {
        LogMark mark;
        CommitNumber first = 0;
        std::string before;
    };
    Head head();
    void deliver(const LogMark& seen, const Head& head, const CatchUp& catchUp);
    std::string idAt(CommitNumber position, const Head& head);
    void write(const LogEntry& entry);
    void setHead(const Head& head);
    void endWith(const LogMark& last, const Head& before);
    void requireInPlace() const;
    void commit(SqliteTransaction& transaction);
    void copyTo(const std::filesystem::path& file);
    void putObject(const ObjectRow& row);
    void reached(Stage stage) const;

    const std::filesystem::path mFile;
    std::mutex mMutex; ///< guards all below
    StoreHolder mHolder;
    std::optional<HeldFile> mHeld; ///< as long as it is open
    std::unique_ptr<SqliteConnection> mConnection;
    std::unique_ptr<Statements> mStatements;
    StageHook mStageHook;
    std::uint64_t mEntriesKept = 1000; ///< only tools and people read them
};

}

#endif
