// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_POSTGRESQL_POSTGRESQLCONNECTION_H
#define ORV_HOST_STORE_POSTGRESQL_POSTGRESQLCONNECTION_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct pg_conn;
struct pg_result;

namespace OrvHost {

/// What the server refuses, or that it cannot be reached: what() says it for people.
class PostgresqlError : public std::runtime_error {
public:
    /// \p state: the code of the SQL standard; empty if it is not the server that refuses.
    PostgresqlError(std::string state, const std::string& text)
        : std::runtime_error(text), mState(std::move(state)) {}

    const std::string& state() const { return mState; }
    /// Of the class that the first two characters of the code name.
    bool isOfClass(std::string_view stateClass) const { return mState.substr(0, 2) == stateClass; }

private:
    std::string mState;
};

/// How long something may take.
struct PostgresqlLimits {
    std::chrono::seconds connect{3};         ///< with each server that the target names
    std::chrono::milliseconds idle{5000};    ///< between two requests of one commit
    std::chrono::milliseconds turn{10000};   ///< until another host ends its commit
    std::chrono::milliseconds answer{15000}; ///< until bytes come back; more than the three above
    std::chrono::milliseconds doubt{30000};  ///< until it is known what became of a commit
};

/// The parameters of a statement.
class PostgresqlParameters {
public:
    PostgresqlParameters& number(std::uint64_t value);
    PostgresqlParameters& text(std::string_view value);
    PostgresqlParameters& bytes(std::string_view value);
    // Arrays.
    PostgresqlParameters& numbers(const std::vector<std::uint64_t>& values);
    PostgresqlParameters& texts(const std::vector<std::string_view>& values);
    PostgresqlParameters& byteTexts(const std::vector<std::string_view>& values);

private:
    friend class PostgresqlConnection;
    PostgresqlParameters& add(unsigned type, std::string value);
    PostgresqlParameters& addArray(unsigned type, unsigned element,
                                   const std::vector<std::string_view>& values);

    std::vector<unsigned> mTypes;
    std::vector<std::string> mValues; ///< in the binary form of their types
};

/// The rows that a statement has returned.
class PostgresqlRows {
public:
    /// Takes \p result over; null: none.
    explicit PostgresqlRows(pg_result* result) : mResult(result) {}

    explicit operator bool() const { return mResult != nullptr; }
    pg_result* handle() const { return mResult.get(); }
    std::size_t size() const;
    /// A value of the type bigint. Throws PostgresqlError if it is of another type.
    std::uint64_t number(std::size_t row, int column) const;
    /// A text, or bytes. Valid as long as the rows.
    std::string_view text(std::size_t row, int column) const;
    /// The number of rows that the statement has changed.
    std::uint64_t changed() const;
    /// What the server says that it has done.
    std::string_view command() const;

private:
    struct Clear {
        void operator()(pg_result* result) const;
    };
    std::unique_ptr<pg_result, Clear> mResult;
};

/// A connection with a server. Nothing waits longer than the limits permit. All functions throw
/// PostgresqlError; if the connection is lost then, every later call fails. One thread at a time.
class PostgresqlConnection {
public:
    /// \p target: what libpq understands, `host=... dbname=...` or a URI. A password in it is
    /// refused. What it does not say comes from the usual variables and files.
    PostgresqlConnection(const std::string& target, const PostgresqlLimits& limits);
    ~PostgresqlConnection();
    PostgresqlConnection(const PostgresqlConnection&) = delete;
    PostgresqlConnection& operator=(const PostgresqlConnection&) = delete;

    /// Runs one statement.
    PostgresqlRows run(const char* statement, const PostgresqlParameters& parameters = {});
    /// Runs several statements without results, as one transaction.
    void runAll(const std::string& statements);

    /// Takes the values of one row in the binary form of their types.
    using TakeFields = std::function<void(const std::vector<std::string_view>& fields)>;
    /// Calls \p take with each row that \p query finds, while they come.
    void copyOut(const std::string& query, const TakeFields& take);
    /// Takes rows, in the binary form of the protocol.
    using TakeBytes = std::function<void(std::string_view bytes)>;
    /// Puts the rows that \p give hands over into a table: \p statement is COPY ... FROM STDIN.
    void copyIn(const char* statement, const std::function<void(const TakeBytes& take)>& give);

    /// The last warning that came with an answer, and none from then on; empty if there was none.
    std::string takeWarning() { return std::exchange(mWarning, {}); }

    bool isLost() const;
    /// Makes it a lost one.
    void giveUp() { mIsLost = true; }

private:
    void connect(const std::string& target);
    void setLimits();
    void wait(bool forWriting);
    void flush();
    pg_result* nextResult();
    PostgresqlRows finish();
    void requireSent(int isSent);
    void putCopied(std::string_view bytes);
    [[noreturn]] void lose(const std::string& text);
    [[noreturn]] void fail(const pg_result* result) const;
    std::string lastMessage() const;

    const PostgresqlLimits mLimits;
    pg_conn* mHandle = nullptr;
    std::string mWarning;
    std::size_t mUnsent = 0; ///< bytes of a copy that may not be under way yet
    bool mIsLost = false;
};

/// A transaction of the server. It is rolled back if it is not committed.
class PostgresqlTransaction {
public:
    /// One has begun on \p connection.
    explicit PostgresqlTransaction(PostgresqlConnection& connection) : mConnection(connection) {}
    ~PostgresqlTransaction();
    PostgresqlTransaction(const PostgresqlTransaction&) = delete;
    PostgresqlTransaction& operator=(const PostgresqlTransaction&) = delete;

    /// Throws PostgresqlError: then the outcome is not known. So it is if the server warns: it has
    /// committed, and has not waited for the copies that it should wait for.
    void commit();

private:
    PostgresqlConnection& mConnection;
    bool mIsOpen = true;
};

// Numbers in the binary form of the protocol.
void putPostgresqlNumber(std::string& bytes, std::uint64_t value, unsigned size);
std::uint64_t getPostgresqlNumber(std::string_view bytes);

}

#endif
