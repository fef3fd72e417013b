// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_POSTGRESQL_POSTGRESQLLOG_H
#define ORV_HOST_STORE_POSTGRESQL_POSTGRESQLLOG_H

#include "PostgresqlConnection.h"
#include "PostgresqlSchema.h"
#include "store/CommitLog.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

/// A commit log in the tables of a PostgreSQL database, for any number of hosts. An entry is as
/// durable when append returns as the server makes commits.
///
/// The row of the table `head` is the turn: who appends has it locked from the first look at the
/// log until the commit of the server. If the server cannot be reached, each call tries to connect
/// again.
///
/// Threads: any; calls run one after the other.
class PostgresqlLog : public CommitLog {
public:
    /// \p target: see PostgresqlConnection. The tables must be there: createPostgresqlStore. Throws
    /// LogUnavailable with a text that says why they cannot be used.
    PostgresqlLog(std::string target, const Model& model, const PostgresqlLimits& limits = {});
    ~PostgresqlLog() override;
    PostgresqlLog(const PostgresqlLog&) = delete;
    PostgresqlLog& operator=(const PostgresqlLog&) = delete;

    LogMark load(const ObjectVisitor& visitor) override;
    LogMark fill(const ObjectSource& objects) override;
    void append(const LogMark& seen, const CatchUp& catchUp, const Decide& decide) override;
    void follow(const LogMark& seen, const CatchUp& catchUp,
                std::chrono::milliseconds patience) override;
    std::optional<CommitNumber> find(const std::string& id) override;
    bool isNew() override;
    std::chrono::milliseconds patience() const override { return mLimits.doubt; }

private:
    template <class Work>
    auto guarded(const Work& work);
    PostgresqlConnection& connection();
    template <class First>
    auto onConnection(const First& first);
    void begin(const char* statement);
    PostgresqlHead head(HeadUse use);
    void deliver(const LogMark& seen, const PostgresqlHead& head, const CatchUp& catchUp);
    void deliverAll(const LogMark& seen, const CatchUp& catchUp);
    void readRest(LogEntry& entry, std::uint64_t size);
    void allowTimeFor(std::size_t bytes);
    bool appendInTurn(const LogMark& seen, const CatchUp& catchUp, const Decide& decide,
                      bool isLastRound);
    std::string idAt(CommitNumber position, const PostgresqlHead& head);
    void write(const std::vector<LogEntry>& entries);
    void insert(const std::vector<ObjectRow>& rows);
    void change(const std::vector<ObjectRow>& rows);
    void remove(const std::vector<ObjectId>& ids);
    void setHead(const LogMark& mark);

    const std::string mTarget;
    const PostgresqlLimits mLimits;
    const std::vector<ModelFact> mFacts;
    const std::string mFingerprint;
    std::mutex mMutex; ///< guards all below
    std::unique_ptr<PostgresqlConnection> mConnection;
    CommitNumber mAppended = kNever; ///< the first entry of the last append
};

}

#endif
