// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "PostgresqlConnection.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include <libpq-fe.h>
#include <poll.h>

namespace OrvHost {

namespace {

// The numbers of types are the same in all servers.
constexpr unsigned kBytesType = 17;
constexpr unsigned kNumberType = 20;
constexpr unsigned kTextType = 25;
constexpr unsigned kBytesArrayType = 1001;
constexpr unsigned kTextArrayType = 1009;
constexpr unsigned kNumberArrayType = 1016;

constexpr unsigned kNumberSize = 8;
constexpr int kBinary = 1;

std::string binaryNumber(std::uint64_t value) {
    std::string bytes;
    putPostgresqlNumber(bytes, value, kNumberSize);
    return bytes;
}

// One line: with several servers each has one of its own.
std::string inOneLine(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        const std::string_view part = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(part.size() + 1, text.size()));
        if (!part.empty()) {
            line += line.empty() ? "" : "; ";
            line += part.substr(std::min(part.find_first_not_of(" \t"), part.size()));
        }
    }
    return line;
}

bool isSecret(std::string_view keyword) {
    return keyword == "password" || keyword == "sslpassword";
}

// Another user can see the arguments of a process. What the library says of a target that it does
// not understand can hold a part of a password.
void refusePassword(const std::string& target) {
    PQconninfoOption* const options = PQconninfoParse(target.c_str(), nullptr);
    if (options == nullptr) {
        throw PostgresqlError("",
                              "the target is not understood, expected "
                              "postgresql://HOST/DATABASE or KEYWORD=VALUE with blanks between, "
                              "such as host=HOST dbname=DATABASE");
    }
    bool hasPassword = false;
    for (const PQconninfoOption* one = options; one->keyword != nullptr; ++one) {
        hasPassword = hasPassword || (isSecret(one->keyword) && one->val != nullptr);
    }
    PQconninfoFree(options);
    if (hasPassword) {
        throw PostgresqlError("", "a password is not given in the target, where others can read "
                                  "it, but in the file ~/.pgpass or the variable PGPASSWORD");
    }
}

// Remembers warnings in the text that is given as \p place.
void noteWarning(void* place, const PGresult* notice) {
    const char* const severity = PQresultErrorField(notice, PG_DIAG_SEVERITY_NONLOCALIZED);
    const char* const text = PQresultErrorField(notice, PG_DIAG_MESSAGE_PRIMARY);
    if (severity != nullptr && text != nullptr && std::string_view(severity) == "WARNING") {
        *static_cast<std::string*>(place) = text;
    }
}

/// Reads the rows of COPY in the binary form.
class CopyReader {
public:
    explicit CopyReader(const PostgresqlConnection::TakeFields& take) : mTake(take) {}

    void read(std::string_view bytes) {
        mRest = bytes;
        if (!mHasHeader) {
            takeBytes(kSignatureSize + 4);
            takeBytes(number(4));
            mHasHeader = true;
        }
        while (!mRest.empty() && !mIsAtEnd) {
            readRow();
        }
    }

private:
    static constexpr std::size_t kSignatureSize = 11;

    void readRow() {
        const std::uint64_t count = number(2);
        mIsAtEnd = count == 0xFFFF;
        if (mIsAtEnd) {
            return;
        }
        mFields.clear();
        for (std::uint64_t at = 0; at < count; ++at) {
            const std::uint64_t size = number(4);
            mFields.push_back(size == 0xFFFFFFFF ? std::string_view() : takeBytes(size));
        }
        mTake(mFields);
    }
    std::uint64_t number(std::size_t size) { return getPostgresqlNumber(takeBytes(size)); }
    std::string_view takeBytes(std::size_t size) {
        if (size > mRest.size()) {
            throw PostgresqlError("", "the server sent a row that has no end");
        }
        const std::string_view taken = mRest.substr(0, size);
        mRest.remove_prefix(size);
        return taken;
    }

    const PostgresqlConnection::TakeFields& mTake;
    std::string_view mRest;
    std::vector<std::string_view> mFields;
    bool mHasHeader = false;
    bool mIsAtEnd = false;
};

}

void putPostgresqlNumber(std::string& bytes, std::uint64_t value, unsigned size) {
    for (unsigned at = size; at > 0; --at) {
        bytes += static_cast<char>(value >> (8 * (at - 1)) & 0xFFU);
    }
}

std::uint64_t getPostgresqlNumber(std::string_view bytes) {
    std::uint64_t value = 0;
    for (const char byte : bytes) {
        value = value << 8U | static_cast<unsigned char>(byte);
    }
    return value;
}

PostgresqlParameters& PostgresqlParameters::add(unsigned type, std::string value) {
    mTypes.push_back(type);
    mValues.push_back(std::move(value));
    return *this;
}

PostgresqlParameters& PostgresqlParameters::number(std::uint64_t value) {
    return add(kNumberType, binaryNumber(value));
}

PostgresqlParameters& PostgresqlParameters::text(std::string_view value) {
    return add(kTextType, std::string(value));
}

PostgresqlParameters& PostgresqlParameters::bytes(std::string_view value) {
    return add(kBytesType, std::string(value));
}

PostgresqlParameters& PostgresqlParameters::addArray(unsigned type, unsigned element,
                                                     const std::vector<std::string_view>& values) {
    std::string bytes;
    putPostgresqlNumber(bytes, values.empty() ? 0 : 1, 4); // dimensions
    putPostgresqlNumber(bytes, 0, 4);                      // no null in it
    putPostgresqlNumber(bytes, element, 4);
    if (!values.empty()) {
        putPostgresqlNumber(bytes, values.size(), 4);
        putPostgresqlNumber(bytes, 1, 4); // the first index
    }
    for (const std::string_view value : values) {
        putPostgresqlNumber(bytes, value.size(), 4);
        bytes += value;
    }
    return add(type, std::move(bytes));
}

PostgresqlParameters& PostgresqlParameters::numbers(const std::vector<std::uint64_t>& values) {
    std::string all;
    for (const std::uint64_t value : values) {
        putPostgresqlNumber(all, value, kNumberSize);
    }
    std::vector<std::string_view> texts;
    for (std::size_t at = 0; at < values.size(); ++at) {
        texts.push_back(std::string_view(all).substr(at * kNumberSize, kNumberSize));
    }
    return addArray(kNumberArrayType, kNumberType, texts);
}

PostgresqlParameters& PostgresqlParameters::texts(const std::vector<std::string_view>& values) {
    return addArray(kTextArrayType, kTextType, values);
}

PostgresqlParameters& PostgresqlParameters::byteTexts(const std::vector<std::string_view>& values) {
    return addArray(kBytesArrayType, kBytesType, values);
}

void PostgresqlRows::Clear::operator()(pg_result* result) const {
    PQclear(result);
}

std::size_t PostgresqlRows::size() const {
    return static_cast<std::size_t>(PQntuples(mResult.get()));
}

std::uint64_t PostgresqlRows::number(std::size_t row, int column) const {
    const std::string_view bytes = text(row, column);
    if (PQftype(mResult.get(), column) != kNumberType || bytes.size() != kNumberSize) {
        throw PostgresqlError("", std::string("the column '") + PQfname(mResult.get(), column) +
                                      "' does not hold a number of the type bigint");
    }
    return getPostgresqlNumber(bytes);
}

std::string_view PostgresqlRows::text(std::size_t row, int column) const {
    const int at = static_cast<int>(row);
    return {PQgetvalue(mResult.get(), at, column),
            static_cast<std::size_t>(PQgetlength(mResult.get(), at, column))};
}

std::uint64_t PostgresqlRows::changed() const {
    return std::strtoull(PQcmdTuples(mResult.get()), nullptr, 10);
}

std::string_view PostgresqlRows::command() const {
    return PQcmdStatus(mResult.get());
}

PostgresqlConnection::PostgresqlConnection(const std::string& target,
                                           const PostgresqlLimits& limits)
    : mLimits(limits) {
    refusePassword(target);
    try {
        connect(target);
        setLimits();
    } catch (...) {
        PQfinish(mHandle);
        throw;
    }
}

PostgresqlConnection::~PostgresqlConnection() {
    PQfinish(mHandle);
}

// What stands before `dbname` can be given in the target as well, what stands after it cannot.
void PostgresqlConnection::connect(const std::string& target) {
    const std::string seconds = std::to_string(mLimits.connect.count());
    const std::string milliseconds = std::to_string(mLimits.answer.count());
    const std::array<const char*, 7> names{"connect_timeout",
                                           "tcp_user_timeout",
                                           "target_session_attrs",
                                           "application_name",
                                           "dbname",
                                           "client_encoding",
                                           nullptr};
    const std::array<const char*, 7> values{seconds.c_str(), milliseconds.c_str(), "read-write",
                                            "orvhost",       target.c_str(),       "UTF8",
                                            nullptr};
    mHandle = PQconnectdbParams(names.data(), values.data(), 1);
    if (PQstatus(mHandle) != CONNECTION_OK) {
        throw PostgresqlError("", mHandle == nullptr ? "memory has run out" : lastMessage());
    }
    PQsetNoticeReceiver(mHandle, noteWarning, &mWarning);
    if (PQsetnonblocking(mHandle, 1) != 0) {
        throw PostgresqlError("", lastMessage());
    }
}

// A server can be set up to answer commits before they are durable. Its own side of the connection
// must end, too, when this machine has gone away in the middle of an answer.
void PostgresqlConnection::setLimits() {
    run("SELECT set_config('idle_in_transaction_session_timeout', $1, false), "
        "set_config('lock_timeout', $2, false), "
        "set_config('tcp_user_timeout', $3, false), "
        "set_config('synchronous_commit', CASE WHEN current_setting('synchronous_commit') IN "
        "('off', 'local') THEN 'on' ELSE current_setting('synchronous_commit') END, false)",
        PostgresqlParameters()
            .text(std::to_string(mLimits.idle.count()) + "ms")
            .text(std::to_string(mLimits.turn.count()) + "ms")
            .text(std::to_string(mLimits.answer.count()) + "ms"));
}

bool PostgresqlConnection::isLost() const {
    return mIsLost || PQstatus(mHandle) != CONNECTION_OK;
}

std::string PostgresqlConnection::lastMessage() const {
    return inOneLine(PQerrorMessage(mHandle));
}

void PostgresqlConnection::lose(const std::string& text) {
    mIsLost = true;
    throw PostgresqlError("", text);
}

void PostgresqlConnection::fail(const pg_result* result) const {
    const char* const state = PQresultErrorField(result, PG_DIAG_SQLSTATE);
    const char* const message = PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY);
    throw PostgresqlError(state == nullptr ? "" : state,
                          message == nullptr ? lastMessage() : message);
}

// Not one of the waits of the library, since they have no end.
void PostgresqlConnection::wait(bool forWriting) {
    pollfd socket{PQsocket(mHandle), static_cast<short>(forWriting ? POLLIN | POLLOUT : POLLIN), 0};
    if (socket.fd < 0) {
        lose("the connection is closed");
    }
    const int ready = poll(&socket, 1, static_cast<int>(mLimits.answer.count()));
    if (ready == 0) {
        lose("the server has not answered for " + std::to_string(mLimits.answer.count()) + " ms");
    }
    if (ready > 0 && (socket.revents & (POLLIN | POLLHUP | POLLERR)) != 0 &&
        PQconsumeInput(mHandle) == 0) {
        lose(lastMessage());
    }
}

void PostgresqlConnection::flush() {
    for (int left = PQflush(mHandle); left != 0; left = PQflush(mHandle)) {
        if (left < 0) {
            lose(lastMessage());
        }
        wait(true);
    }
}

pg_result* PostgresqlConnection::nextResult() {
    flush();
    while (PQisBusy(mHandle) != 0) {
        wait(false);
    }
    return PQgetResult(mHandle);
}

// All results of what was sent: the last one, or the error among them.
PostgresqlRows PostgresqlConnection::finish() {
    PostgresqlRows last(nullptr);
    PostgresqlRows error(nullptr);
    while (pg_result* const next = nextResult()) {
        const bool isError =
            PQresultStatus(next) == PGRES_FATAL_ERROR || PQresultStatus(next) == PGRES_BAD_RESPONSE;
        (isError ? error : last) = PostgresqlRows(next);
    }
    if (error) {
        fail(error.handle());
    }
    if (!last) {
        lose("the connection is lost: " + lastMessage());
    }
    return last;
}

void PostgresqlConnection::requireSent(int isSent) {
    if (isSent == 0) {
        lose(lastMessage());
    }
}

PostgresqlRows PostgresqlConnection::run(const char* statement,
                                         const PostgresqlParameters& parameters) {
    if (isLost()) {
        lose("the connection is lost");
    }
    std::vector<const char*> values;
    std::vector<int> sizes;
    for (const std::string& value : parameters.mValues) {
        values.push_back(value.data());
        sizes.push_back(static_cast<int>(value.size()));
    }
    const std::vector<int> forms(values.size(), kBinary);
    requireSent(PQsendQueryParams(mHandle, statement, static_cast<int>(values.size()),
                                  parameters.mTypes.data(), values.data(), sizes.data(),
                                  forms.data(), kBinary));
    return finish();
}

void PostgresqlConnection::runAll(const std::string& statements) {
    requireSent(PQsendQuery(mHandle, statements.c_str()));
    finish();
}

void PostgresqlConnection::copyOut(const std::string& query, const TakeFields& take) {
    const std::string statement = "COPY (" + query + ") TO STDOUT (FORMAT binary)";
    requireSent(PQsendQuery(mHandle, statement.c_str()));
    const PostgresqlRows begun(nextResult());
    if (PQresultStatus(begun.handle()) != PGRES_COPY_OUT) {
        fail(begun.handle());
    }
    // What is left of a copy that is not taken as a whole would stand before the next answer.
    try {
        CopyReader reader(take);
        char* bytes = nullptr;
        for (int size = 0; (size = PQgetCopyData(mHandle, &bytes, 1)) != -1;) {
            if (size == 0) {
                wait(false);
            } else if (size < 0) {
                lose(lastMessage());
            } else {
                const std::unique_ptr<char, void (*)(void*)> kept(bytes, PQfreemem);
                reader.read({bytes, static_cast<std::size_t>(size)});
            }
        }
    } catch (...) {
        mIsLost = true;
        throw;
    }
    finish();
}

// The library would keep all that the server has not taken yet.
void PostgresqlConnection::putCopied(std::string_view bytes) {
    constexpr std::size_t kMostUnsent = 1'000'000;
    if (PQputCopyData(mHandle, bytes.data(), static_cast<int>(bytes.size())) != 1) {
        lose(lastMessage());
    }
    mUnsent += bytes.size();
    if (mUnsent > kMostUnsent) {
        flush();
        mUnsent = 0;
    }
}

void PostgresqlConnection::copyIn(const char* statement,
                                  const std::function<void(const TakeBytes& take)>& give) {
    constexpr std::string_view kSignature("PGCOPY\n\377\r\n\0\0\0\0\0\0\0\0\0", 19);
    constexpr std::string_view kEnd("\377\377", 2);
    requireSent(PQsendQuery(mHandle, statement));
    const PostgresqlRows begun(nextResult());
    if (PQresultStatus(begun.handle()) != PGRES_COPY_IN) {
        fail(begun.handle());
    }
    try {
        putCopied(kSignature);
        give([this](std::string_view bytes) { putCopied(bytes); });
        putCopied(kEnd);
        flush();
        for (int isTaken = 0; (isTaken = PQputCopyEnd(mHandle, nullptr)) != 1;) {
            if (isTaken < 0) {
                lose(lastMessage());
            }
            wait(true);
        }
    } catch (...) {
        mIsLost = true;
        throw;
    }
    finish();
}

PostgresqlTransaction::~PostgresqlTransaction() {
    if (!mIsOpen || mConnection.isLost()) {
        return;
    }
    try {
        mConnection.run("ROLLBACK");
    } catch (const PostgresqlError&) {
        mConnection.giveUp();
    }
}

void PostgresqlTransaction::commit() {
    mIsOpen = false;
    mConnection.takeWarning();
    const PostgresqlRows rows = mConnection.run("COMMIT");
    if (rows.command() != "COMMIT") {
        throw PostgresqlError("", "the server rolled back");
    }
    const std::string warning = mConnection.takeWarning();
    if (!warning.empty()) {
        throw PostgresqlError("", warning);
    }
}

}
