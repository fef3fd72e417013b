// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SqliteConnection.h"

#include <sqlite3.h>

#include <system_error>
#include <utility>

namespace OrvHost {

namespace {

int flagsOf(SqliteConnection::Mode mode) {
    switch (mode) {
    case SqliteConnection::Mode::Existing:
        return SQLITE_OPEN_READWRITE;
    case SqliteConnection::Mode::Create:
        break;
    }
    return SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
}

std::string reasonFor(int code, const char* message) {
    switch (code) {
    case SQLITE_FULL:
        return "the disk is full";
    case SQLITE_TOOBIG:
        return "a value, an object or a transaction is larger than the file can keep";
    case SQLITE_IOERR:
        return std::string("it cannot be read or written: ") + message;
    case SQLITE_NOTADB:
        return "it is no database, or another program's";
    case SQLITE_CORRUPT:
        return std::string("it is damaged: ") + message;
    case SQLITE_READONLY:
        return "it cannot be written";
    case SQLITE_CANTOPEN:
        return "it cannot be opened, or files cannot be created in its directory";
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return "another process uses it";
    default:
        return message;
    }
}

}

bool SqliteError::isDiskFull() const {
    return mCode == SQLITE_FULL;
}

bool SqliteError::isTooLarge() const {
    return mCode == SQLITE_TOOBIG;
}

bool SqliteError::isBeforeWriting() const {
    return mCode == SQLITE_FULL || mCode == SQLITE_TOOBIG || mCode == SQLITE_BUSY ||
           mCode == SQLITE_READONLY;
}

SqliteConnection::SqliteConnection(const std::filesystem::path& file, Mode mode) {
    // The engine takes a file of one byte for an empty one, and would write over it.
    std::error_code unknown;
    if (std::filesystem::file_size(file, unknown) == 1) {
        throw SqliteError(SQLITE_NOTADB, reasonFor(SQLITE_NOTADB, ""));
    }
    // Otherwise the engine takes such a name as a URI, if it was built so.
    const std::string name = (file.native().rfind("file:", 0) == 0 ? "./" : "") + file.native();
    int code = sqlite3_open_v2(name.c_str(), &mHandle, flagsOf(mode), nullptr);
    // What cannot be written is opened all the same, and the first read fails as on a broken disk.
    if (code == SQLITE_OK && sqlite3_db_readonly(mHandle, "main") == 1) {
        code = SQLITE_READONLY;
    }
    if (code != SQLITE_OK) {
        const std::string text = reasonFor(code & 0xFF, sqlite3_errstr(code));
        sqlite3_close(std::exchange(mHandle, nullptr));
        throw SqliteError(code & 0xFF, text);
    }
    sqlite3_extended_result_codes(mHandle, 1);
}

SqliteConnection::~SqliteConnection() {
    sqlite3_close(mHandle);
}

void SqliteConnection::fail(int code) const {
    throw SqliteError(code & 0xFF, reasonFor(code & 0xFF, sqlite3_errmsg(mHandle)));
}

void SqliteConnection::run(const std::string& statements) {
    const int code = sqlite3_exec(mHandle, statements.c_str(), nullptr, nullptr, nullptr);
    require(code);
}

void SqliteConnection::require(int code) const {
    if (code != SQLITE_OK) {
        fail(code);
    }
}

std::int64_t SqliteConnection::number(const std::string& query) {
    SqliteStatement statement(*this, query);
    return statement.step() ? static_cast<std::int64_t>(statement.number(0)) : 0;
}

std::string SqliteConnection::text(const std::string& query) {
    SqliteStatement statement(*this, query);
    return statement.step() ? std::string(statement.text(0)) : std::string();
}

std::int64_t SqliteConnection::changes() const {
    return sqlite3_changes64(mHandle);
}

bool SqliteConnection::hasMoved() const {
    int moved = 0;
    require(sqlite3_file_control(mHandle, "main", SQLITE_FCNTL_HAS_MOVED, &moved));
    return moved != 0;
}

void SqliteConnection::endLeftTransaction() {
    if (sqlite3_get_autocommit(mHandle) == 0) {
        run("ROLLBACK");
    }
}

void SqliteConnection::freezeMemory(bool isFrozen) {
    sqlite3_hard_heap_limit64(isFrozen ? sqlite3_memory_used() : 0);
}

void SqliteConnection::limitLength(int bytes) {
    sqlite3_limit(mHandle, SQLITE_LIMIT_LENGTH, bytes);
}

SqliteBackup::SqliteBackup(SqliteConnection& source, const std::filesystem::path& target)
    : mTarget(target, SqliteConnection::Mode::Create),
      mHandle(sqlite3_backup_init(mTarget.handle(), "main", source.handle(), "main")) {
    if (mHandle == nullptr) {
        mTarget.fail(sqlite3_extended_errcode(mTarget.handle()));
    }
}

SqliteBackup::~SqliteBackup() {
    sqlite3_backup_finish(mHandle);
}

bool SqliteBackup::step(int pages) {
    const int code = sqlite3_backup_step(mHandle, pages);
    if (code != SQLITE_OK && code != SQLITE_DONE) {
        // The connection learns of the error when the copy ends.
        throw SqliteError(code & 0xFF, reasonFor(code & 0xFF, sqlite3_errstr(code)));
    }
    return code == SQLITE_OK;
}

SqliteStatement::SqliteStatement(SqliteConnection& connection, const std::string& text)
    : mConnection(connection) {
    const int code = sqlite3_prepare_v3(connection.handle(), text.c_str(), -1,
                                        SQLITE_PREPARE_PERSISTENT, &mHandle, nullptr);
    if (code != SQLITE_OK) {
        connection.fail(code);
    }
}

SqliteStatement::~SqliteStatement() {
    sqlite3_finalize(mHandle);
}

SqliteStatement& SqliteStatement::bind(int place, std::uint64_t number) {
    sqlite3_reset(mHandle); // if what read its rows has left them
    mConnection.require(sqlite3_bind_int64(mHandle, place, static_cast<std::int64_t>(number)));
    return *this;
}

SqliteStatement& SqliteStatement::bind(int place, std::string_view text) {
    sqlite3_reset(mHandle);
    mConnection.require(sqlite3_bind_text64(mHandle, place,
                                            text.data() == nullptr ? "" : text.data(), text.size(),
                                            SQLITE_STATIC, SQLITE_UTF8));
    return *this;
}

SqliteStatement& SqliteStatement::bindBytes(int place, std::string_view bytes) {
    sqlite3_reset(mHandle);
    mConnection.require(sqlite3_bind_blob64(
        mHandle, place, bytes.data() == nullptr ? "" : bytes.data(), bytes.size(), SQLITE_STATIC));
    return *this;
}

bool SqliteStatement::step() {
    const int code = sqlite3_step(mHandle);
    if (code == SQLITE_ROW) {
        return true;
    }
    sqlite3_reset(mHandle);
    if (code != SQLITE_DONE) {
        mConnection.fail(code);
    }
    return false;
}

void SqliteStatement::run() {
    while (step()) {
    }
}

std::uint64_t SqliteStatement::number(int column) const {
    return static_cast<std::uint64_t>(sqlite3_column_int64(mHandle, column));
}

std::string_view SqliteStatement::text(int column) const {
    return bytes(column);
}

std::string_view SqliteStatement::bytes(int column) const {
    const auto* const data = static_cast<const char*>(sqlite3_column_blob(mHandle, column));
    return {data,
            data == nullptr ? 0 : static_cast<std::size_t>(sqlite3_column_bytes(mHandle, column))};
}

SqliteTransaction::SqliteTransaction(SqliteConnection& connection) : mConnection(connection) {
    mConnection.run("BEGIN IMMEDIATE");
}

SqliteTransaction::~SqliteTransaction() {
    if (mIsOpen) {
        try {
            mConnection.run("ROLLBACK");
        } catch (
            const SqliteError&) { // NOLINT(bugprone-empty-catch): endLeftTransaction tries again
        }
    }
}

void SqliteTransaction::commit() {
    mConnection.run("COMMIT");
    mIsOpen = false;
}

}
