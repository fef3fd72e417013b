// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SqliteLog.h"

#include "StoreSchema.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <random>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace OrvHost {

/// What append uses for each commit.
struct SqliteLog::Statements {
    explicit Statements(SqliteConnection& connection)
        : head(connection, "SELECT pos, id, first, before FROM head"),
          idAt(connection, "SELECT id FROM log WHERE pos = ?1"),
          entriesAfter(connection,
                       "SELECT pos, id, author, change FROM log WHERE pos > ?1 ORDER BY pos"),
          positionOf(connection, "SELECT pos FROM log WHERE id = ?1"),
          insertEntry(connection,
                      "INSERT INTO log(pos, id, author, at, change) VALUES(?1, ?2, ?3, ?4, ?5)"),
          insertObject(connection, "INSERT INTO objects(oid, parent, class, name, attributes, "
                                   "changed) VALUES(?1, ?2, ?3, ?4, ?5, ?6)"),
          changeObject(connection,
                       "UPDATE objects SET attributes = ?2, changed = ?3 WHERE oid = ?1"),
          deleteObject(connection, "DELETE FROM objects WHERE oid = ?1"),
          trim(connection, "DELETE FROM log WHERE pos < ?1"),
          setHead(connection, "UPDATE head SET pos = ?1, id = ?2, first = ?3, before = ?4") {}

    SqliteStatement head;
    SqliteStatement idAt;
    SqliteStatement entriesAfter;
    SqliteStatement positionOf;
    SqliteStatement insertEntry;
    SqliteStatement insertObject;
    SqliteStatement changeObject;
    SqliteStatement deleteObject;
    SqliteStatement trim;
    SqliteStatement setHead;
};

namespace {

// What the file beside the store keeps when it is written from its start again.
constexpr std::uint64_t kMaxJournal = 16U << 20U;

// The name of a new file is on the disk only when its directory is.
void syncDirectoryOf(const std::filesystem::path& file) {
    const std::filesystem::path directory = std::filesystem::absolute(file).parent_path();
    const int descriptor = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool isSynced = descriptor >= 0 && fsync(descriptor) == 0;
    if (descriptor >= 0) {
        close(descriptor);
    }
    if (!isSynced) {
        refuseStore(file, "its directory cannot be written to the disk");
    }
}

// Never in the place of a file that has come meanwhile, where the file system can say so.
void renameToNew(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        throw std::filesystem::filesystem_error("rename", from, to,
                                                std::error_code(errno, std::generic_category()));
    }
    std::filesystem::rename(from, to);
}

// Whether the model has the class is checked by the one who loads.
ClassIndex classOf(const std::filesystem::path& file, std::uint64_t number) {
    if (number > std::numeric_limits<ClassIndex>::max()) {
        refuseStore(file, "there is no class " + std::to_string(number));
    }
    return static_cast<ClassIndex>(number);
}

std::unique_ptr<SqliteConnection> openStore(const std::filesystem::path& file, const Model& model,
                                            SqliteLog::Sync sync) {
    std::error_code error;
    if (!std::filesystem::exists(file, error)) {
        syncDirectoryOf(file); // what cannot be done later must leave no file behind
    }
    auto connection = std::make_unique<SqliteConnection>(file, SqliteConnection::Mode::Create);
    connection->run("PRAGMA locking_mode=EXCLUSIVE");
    if (isEmptyDatabase(*connection)) {
        createStore(*connection, model);
        syncDirectoryOf(file);
    }
    requireStore(*connection);
    requireModel(*connection, modelFacts(model));
    // The engine answers with the mode that it has now, and this is no error for it.
    const std::string mode = connection->text("PRAGMA journal_mode=WAL");
    if (mode != "wal") {
        throw SqliteError(0, "its file system does not permit the journal that a store needs (the "
                             "engine chose '" +
                                 mode + "')");
    }
    connection->run("PRAGMA journal_size_limit=" + std::to_string(kMaxJournal));
    connection->run(sync == SqliteLog::Sync::Full ? "PRAGMA synchronous=FULL"
                                                  : "PRAGMA synchronous=NORMAL");
    return connection;
}

}

SqliteLog::SqliteLog(const std::filesystem::path& file, const Model& model, Sync sync)
    : mFile(file), mHolder(file) {
    try {
        mConnection = openStore(file, model, sync);
        mHeld.emplace(file);
        mStatements = std::make_unique<Statements>(*mConnection);
    } catch (const SqliteError& error) {
        refuseStore(file, error.what());
    }
}

SqliteLog::~SqliteLog() = default;

/// Runs \p work alone, and brings what the engine refuses into the form of this interface.
template <class Work>
auto SqliteLog::guarded(const Work& work) {
    const std::lock_guard<std::mutex> guard(mMutex);
    try {
        mConnection->endLeftTransaction();
        return work();
    } catch (const SqliteError& error) {
        const std::string text = mFile.string() + ": " + error.what();
        if (error.isTooLarge()) {
            throw LogTooLarge(OrvInvalidArgument, text);
        }
        if (error.isDiskFull()) {
            throw LogTooLarge(OrvHostStoreUnavailable, text);
        }
        throw LogUnavailable(text);
    }
}

void SqliteLog::reached(Stage stage) const {
    if (mStageHook) {
        mStageHook(stage);
    }
}

SqliteLog::Head SqliteLog::head() {
    Head result;
    SqliteStatement& rows = mStatements->head;
    while (rows.step()) {
        result = {
            {rows.number(0), std::string(rows.text(1))}, rows.number(2), std::string(rows.text(3))};
    }
    return result;
}

bool SqliteLog::isNew() {
    return guarded([&] { return head().mark == LogMark(); });
}

LogMark SqliteLog::load(const ObjectVisitor& visitor) {
    return guarded([&] {
        SqliteStatement rows(*mConnection, "SELECT oid, parent, class, name, attributes, changed "
                                           "FROM objects ORDER BY oid");
        while (rows.step()) {
            visitor({rows.number(0), rows.number(1), classOf(mFile, rows.number(2)), rows.text(3),
                     rows.bytes(4), rows.number(5)});
        }
        return head().mark;
    });
}

LogMark SqliteLog::fill(const ObjectSource& objects) {
    return guarded([&] {
        SqliteTransaction transaction(*mConnection);
        if (!(head().mark == LogMark())) {
            throw HostError(OrvHostWrongState, mFile.string() + " has had objects already");
        }
        objects([&](const ObjectRow& row) { putObject(row); });
        LogMark mark{0, "filled-" + std::to_string(std::random_device()())};
        setHead({mark, 1, mark.id});
        transaction.commit();
        // Otherwise the file beside it would keep the size of all objects.
        mConnection->run("PRAGMA wal_checkpoint(TRUNCATE)");
        return mark;
    });
}

std::string SqliteLog::idAt(CommitNumber position, const Head& head) {
    if (position == head.mark.position) {
        return head.mark.id;
    }
    if (position + 1 == head.first) {
        return head.before;
    }
    std::string id;
    for (SqliteStatement& row = mStatements->idAt.bind(1, position); row.step();) {
        id = row.text(0);
    }
    return id;
}

void SqliteLog::deliver(const LogMark& seen, const Head& head, const CatchUp& catchUp) {
    const bool isKept = seen.position + 1 >= head.first && seen.position <= head.mark.position;
    if (!isKept || idAt(seen.position, head) != seen.id) {
        throw LogDiverged("position " + std::to_string(seen.position) + " of " + mFile.string() +
                          " is not what it was");
    }
    if (seen.position == head.mark.position) {
        return;
    }
    for (SqliteStatement& row = mStatements->entriesAfter.bind(1, seen.position); row.step();) {
        LogEntry entry;
        entry.mark = {row.number(0), std::string(row.text(1))};
        entry.author = row.text(2);
        entry.change = row.bytes(3);
        catchUp(entry);
    }
}

void SqliteLog::append(const LogMark& seen, const CatchUp& catchUp, const Decide& decide) {
    guarded([&] {
        requireInPlace();
        SqliteTransaction transaction(*mConnection);
        reached(Stage::Begun);
        const Head before = head();
        deliver(seen, before, catchUp);
        const std::vector<LogEntry> entries = decide(before.mark.position);
        if (entries.empty()) {
            return;
        }
        reached(Stage::Decided);
        for (const LogEntry& entry : entries) {
            write(entry);
        }
        endWith(entries.back().mark, before);
        reached(Stage::Written);
        commit(transaction);
        reached(Stage::Committed);
    });
}

// What is written to a file without a name is gone when the process ends.
void SqliteLog::requireInPlace() const {
    if (mConnection->hasMoved()) {
        throw LogUnavailable(mFile.string() + " was removed or replaced while it was in use");
    }
}

// Drops the oldest entries, if there are too many now. Those that were dropped before, when fewer
// were kept, do not come back.
void SqliteLog::endWith(const LogMark& last, const Head& before) {
    const CommitNumber first = last.position > mEntriesKept ? last.position - mEntriesKept + 1 : 1;
    Head after{last, before.first, before.before};
    if (first > before.first) {
        after.before = idAt(first - 1, after);
        after.first = first;
        mStatements->trim.bind(1, first).run();
    }
    setHead(after);
}

void SqliteLog::setHead(const Head& head) {
    mStatements->setHead.bind(1, head.mark.position)
        .bind(2, head.mark.id)
        .bind(3, head.first)
        .bind(4, head.before)
        .run();
}

// When the disk fails here, or memory runs out, what was written is read at the next start only.
void SqliteLog::commit(SqliteTransaction& transaction) {
    try {
        transaction.commit();
    } catch (const SqliteError& error) {
        if (error.isBeforeWriting()) {
            throw;
        }
        throw LogInDoubt(mFile.string() + ": " + error.what() +
                             "; whether the commit is in the file is known after a new start",
                         LogInDoubt::Until::NewStart);
    }
}

void SqliteLog::write(const LogEntry& entry) {
    mStatements->insertEntry.bind(1, entry.mark.position)
        .bind(2, entry.mark.id)
        .bind(3, entry.author)
        .bind(4, static_cast<std::uint64_t>(std::time(nullptr)))
        .bindBytes(5, entry.change)
        .run();
    for (const ObjectRow& row : entry.created) {
        putObject(row);
    }
    for (const ObjectRow& row : entry.changed) {
        mStatements->changeObject.bind(1, row.id)
            .bindBytes(2, row.attributes)
            .bind(3, row.changedAt)
            .run();
        if (mConnection->changes() != 1) {
            throw LogDiverged("object " + std::to_string(row.id) + " of " + mFile.string() +
                              " is gone");
        }
    }
    for (const ObjectId id : entry.deleted) {
        mStatements->deleteObject.bind(1, id).run();
        if (mConnection->changes() != 1) {
            throw LogDiverged("object " + std::to_string(id) + " of " + mFile.string() +
                              " is gone");
        }
    }
}

void SqliteLog::putObject(const ObjectRow& row) {
    mStatements->insertObject.bind(1, row.id)
        .bind(2, row.parent)
        .bind(3, row.moc)
        .bind(4, row.name)
        .bindBytes(5, row.attributes)
        .bind(6, row.changedAt)
        .run();
}

// No other process can append, so there is nothing to wait for.
void SqliteLog::follow(const LogMark& seen, const CatchUp& catchUp, std::chrono::milliseconds) {
    guarded([&] { deliver(seen, head(), catchUp); });
}

std::optional<CommitNumber> SqliteLog::find(const std::string& id) {
    return guarded([&] {
        std::optional<CommitNumber> position;
        for (SqliteStatement& row = mStatements->positionOf.bind(1, id); row.step();) {
            position = row.number(0);
        }
        return position;
    });
}

void SqliteLog::backup(const std::filesystem::path& target) {
    const auto refuseCopy = [&](const std::string& why) -> LogUnavailable {
        return LogUnavailable(target.string() + ": " + why);
    };
    std::error_code error;
    if (std::filesystem::exists(target, error)) {
        throw refuseCopy("there is such a file already, a new one was expected");
    }
    std::string temporary = target.string() + ".XXXXXX";
    const int descriptor = mkostemp(temporary.data(), O_CLOEXEC);
    if (descriptor < 0) {
        throw refuseCopy("it cannot be created: " + std::generic_category().message(errno));
    }
    close(descriptor);
    try {
        copyTo(temporary);
        const std::filesystem::file_status own = std::filesystem::status(mFile);
        if (own.type() == std::filesystem::file_type::regular) {
            std::filesystem::permissions(temporary, own.permissions());
        }
        renameToNew(temporary, target);
    } catch (const SqliteError& failure) {
        std::filesystem::remove(temporary, error);
        throw refuseCopy(failure.what());
    } catch (const std::filesystem::filesystem_error& failure) {
        std::filesystem::remove(temporary, error);
        throw refuseCopy(failure.code().message());
    }
    syncDirectoryOf(target);
}

// In portions, and with pauses in which others get their turn.
void SqliteLog::copyTo(const std::filesystem::path& file) {
    constexpr int kPages = 256;
    constexpr std::chrono::milliseconds kPause{1};
    std::unique_lock<std::mutex> guard(mMutex);
    mConnection->endLeftTransaction();
    SqliteBackup copy(*mConnection, file);
    while (copy.step(kPages)) {
        guard.unlock();
        std::this_thread::sleep_for(kPause);
        guard.lock();
    }
}

void SqliteLog::limitLength(int bytes) {
    guarded([&] { mConnection->limitLength(bytes); });
}

void SqliteLog::limitPages(std::uint64_t pages) {
    guarded([&] { mConnection->run("PRAGMA max_page_count=" + std::to_string(pages)); });
}

}
