// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_SQLITE_SQLITECONNECTION_H
#define ORV_HOST_STORE_SQLITE_SQLITECONNECTION_H

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_backup;
struct sqlite3_stmt;

namespace OrvHost {

/// What the engine refuses: what() says it for people, without the name of the file.
class SqliteError : public std::runtime_error {
public:
    /// \p code: the primary result code of the engine; 0 if it is not the engine that refuses.
    SqliteError(int code, const std::string& text) : std::runtime_error(text), mCode(code) {}

    // What it is about.
    bool isDiskFull() const;
    bool isTooLarge() const; ///< for the engine, whatever room there is
    /// At the end of a transaction: the engine has not begun to write it.
    bool isBeforeWriting() const;

private:
    int mCode;
};

/// An open database. All functions throw SqliteError. One thread at a time.
class SqliteConnection {
public:
    enum class Mode { Existing, Create };

    SqliteConnection(const std::filesystem::path& file, Mode mode);
    ~SqliteConnection();
    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;

    /// Runs statements without results.
    void run(const std::string& statements);
    /// The first column of the first row.
    std::int64_t number(const std::string& query);
    std::string text(const std::string& query);
    /// The number of rows that the last statement has changed.
    std::int64_t changes() const;
    /// Whether the file has been removed, or has another name, since it was opened.
    bool hasMoved() const;
    /// Ends what a transaction has left that could not be rolled back for lack of memory.
    void endLeftTransaction();
    /// No text and no row gets longer than so many bytes.
    void limitLength(int bytes);

    /// All connections together get no more memory than they have now, or as much as they need.
    static void freezeMemory(bool isFrozen);

    sqlite3* handle() const { return mHandle; }
    [[noreturn]] void fail(int code) const;
    /// Fails if \p code is not that of a success.
    void require(int code) const;

private:
    sqlite3* mHandle = nullptr;
};

/// A prepared statement. One thread, that of its connection.
class SqliteStatement {
public:
    SqliteStatement(SqliteConnection& connection, const std::string& text);
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    /// Values of the parameters, from 1. Texts must stay until the statement has run.
    SqliteStatement& bind(int place, std::uint64_t number);
    SqliteStatement& bind(int place, std::string_view text);
    SqliteStatement& bindBytes(int place, std::string_view bytes);

    /// True if there is a row, false at the end; the statement can be used again then.
    bool step();
    /// For statements without rows.
    void run();

    // Columns of the row, from 0. Texts are valid until the next step.
    std::uint64_t number(int column) const;
    std::string_view text(int column) const;
    std::string_view bytes(int column) const;

private:
    SqliteConnection& mConnection;
    sqlite3_stmt* mHandle = nullptr;
};

/// Copies a database to another file in portions; between them the database can be used, and what
/// is written then is in the copy.
class SqliteBackup {
public:
    /// \p target, which may be an empty file, must have no other content. Both throw SqliteError.
    SqliteBackup(SqliteConnection& source, const std::filesystem::path& target);
    ~SqliteBackup();
    SqliteBackup(const SqliteBackup&) = delete;
    SqliteBackup& operator=(const SqliteBackup&) = delete;

    /// Copies the next \p pages of the engine. False if there are no more: the copy is complete and
    /// on the disk.
    bool step(int pages);

private:
    SqliteConnection mTarget;
    sqlite3_backup* mHandle = nullptr;
};

/// Rolls back in the destructor what was not committed.
class SqliteTransaction {
public:
    /// Nobody else can write from now on.
    explicit SqliteTransaction(SqliteConnection& connection);
    ~SqliteTransaction();
    SqliteTransaction(const SqliteTransaction&) = delete;
    SqliteTransaction& operator=(const SqliteTransaction&) = delete;

    void commit();

private:
    SqliteConnection& mConnection;
    bool mIsOpen = true;
};

}

#endif
