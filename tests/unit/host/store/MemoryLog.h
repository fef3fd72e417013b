// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_HOST_STORE_MEMORYLOG_H
#define ORV_TESTS_HOST_STORE_MEMORYLOG_H

#include "store/CommitLog.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// A commit log in memory, for any number of stores, that fails on request.
class MemoryLog : public CommitLog {
public:
    enum class Failure {
        None,
        Unavailable,        ///< append does nothing
        InDoubtAppended,    ///< append does its work and says that it is in doubt
        InDoubtNotAppended, ///< append does nothing and says that it is in doubt
        InDoubtAtOnce,      ///< the same, before it asks what to append
    };
    struct Object {
        ObjectId parent = 0;
        ClassIndex moc = 0;
        std::string name;
        std::string attributes;
        CommitNumber changedAt = 0;

        bool operator==(const Object&) const = default;
    };

    LogMark load(const ObjectVisitor& visitor) override;
    bool isNew() override { return mEntries.empty() && mObjects.empty(); }
    LogMark fill(const ObjectSource& objects) override;
    void append(const LogMark& seen, const CatchUp& catchUp, const Decide& decide) override;
    void follow(const LogMark& seen, const CatchUp& catchUp,
                std::chrono::milliseconds patience) override;
    std::optional<CommitNumber> find(const std::string& id) override;

    /// What happens to the next append.
    void failNext(Failure failure) { mFailure = failure; }
    /// What happens to the append after the next one.
    void failAfterNext(Failure failure) { mLaterFailure = failure; }
    /// find does not answer from now on.
    void failFind() { mCanFind = false; }
    /// Entries with a change of more than so many bytes are refused.
    void limitChange(std::size_t bytes) { mLimit = bytes; }
    /// load ends after so many objects, as if the connection were lost; 0: it does not.
    void cutOffLoad(std::size_t objects) { mLoadEnd = objects; }
    /// Entries are handed over, and found, with positions that are higher by so much.
    void skipPositions(CommitNumber count) { mSkipped = count; }
    /// Puts \p object in, as foreign hands could.
    void put(ObjectId id, Object object) { mObjects[id] = std::move(object); }
    /// Forgets the first \p count entries.
    void trim(std::size_t count);
    /// Replaces the last entry by another one, as if a fail-over had lost it.
    void loseLast();
    /// Puts \p change in as an entry.
    void inject(const std::string& change);

    /// Whether append runs.
    bool isInTurn() const { return mIsInTurn; }
    /// How often stores have appended something.
    std::size_t appends() const { return mAppends; }
    const std::vector<LogEntry>& entries() const { return mEntries; }
    const std::map<ObjectId, Object>& objects() const { return mObjects; }

private:
    void deliver(const LogMark& seen, const CatchUp& catchUp) const;
    void take(LogEntry entry);
    CommitNumber head() const { return mFirst + mEntries.size(); }

    std::mutex mTurn;
    std::map<ObjectId, Object> mObjects;
    std::vector<LogEntry> mEntries;
    CommitNumber mFirst = 0; ///< the position before that of the first entry
    std::string mFirstId;    ///< the id of the entry there
    std::size_t mAppends = 0;
    Failure mFailure = Failure::None;
    Failure mLaterFailure = Failure::None;
    std::atomic<bool> mIsInTurn{false};
    bool mCanFind = true;
    std::size_t mLimit = SIZE_MAX;
    std::size_t mLoadEnd = 0;
    CommitNumber mSkipped = 0;
};

}

#endif
