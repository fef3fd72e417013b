// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MemoryLog.h"

#include <utility>

namespace OrvHost {

namespace {

struct InTurn {
    explicit InTurn(std::atomic<bool>& flag) : mFlag(flag) { mFlag = true; }
    ~InTurn() { mFlag = false; }
    InTurn(const InTurn&) = delete;
    InTurn& operator=(const InTurn&) = delete;

private:
    std::atomic<bool>& mFlag;
};

}

LogMark MemoryLog::load(const ObjectVisitor& visitor) {
    std::size_t done = 0;
    for (const auto& [id, object] : mObjects) {
        if (mLoadEnd != 0 && done++ == mLoadEnd) {
            throw LogUnavailable("the connection is lost");
        }
        visitor({id, object.parent, object.moc, object.name, object.attributes, object.changedAt});
    }
    return {head(), mEntries.empty() ? mFirstId : mEntries.back().mark.id};
}

LogMark MemoryLog::fill(const ObjectSource& objects) {
    if (head() > 0 || !mObjects.empty()) {
        throw HostError(OrvHostWrongState, "the log has had objects");
    }
    objects([&](const ObjectRow& row) {
        mObjects[row.id] = {row.parent, row.moc, std::string(row.name), std::string(row.attributes),
                            row.changedAt};
    });
    mFirstId = "filled";
    return {0, mFirstId};
}

void MemoryLog::deliver(const LogMark& seen, const CatchUp& catchUp) const {
    if (seen.position < mFirst || seen.position > head()) {
        throw LogDiverged("position " + std::to_string(seen.position) + " is not in the log");
    }
    const std::size_t next = seen.position - mFirst;
    const std::string& id = next == 0 ? mFirstId : mEntries[next - 1].mark.id;
    if (id != seen.id) {
        throw LogDiverged("position " + std::to_string(seen.position) +
                          " of the log is not what it was");
    }
    for (std::size_t at = next; at < mEntries.size(); ++at) {
        LogEntry entry = mEntries[at];
        entry.mark.position += mSkipped;
        catchUp(entry);
    }
}

void MemoryLog::append(const LogMark& seen, const CatchUp& catchUp, const Decide& decide) {
    const std::lock_guard<std::mutex> turn(mTurn);
    const InTurn inTurn(mIsInTurn);
    const Failure failure = std::exchange(mFailure, std::exchange(mLaterFailure, Failure::None));
    if (failure == Failure::Unavailable) {
        throw LogUnavailable("the log is away");
    }
    if (failure == Failure::InDoubtAtOnce) {
        throw LogInDoubt("the log did not answer");
    }
    deliver(seen, catchUp);
    std::vector<LogEntry> entries = decide(head());
    if (entries.empty()) {
        return;
    }
    for (const LogEntry& entry : entries) {
        if (entry.change.size() > mLimit) {
            throw LogTooLarge(OrvInvalidArgument, "the change is too large");
        }
    }
    if (failure != Failure::InDoubtNotAppended) {
        ++mAppends;
        for (LogEntry& entry : entries) {
            take(std::move(entry));
        }
    }
    if (failure != Failure::None) {
        throw LogInDoubt("the log did not answer");
    }
}

void MemoryLog::take(LogEntry entry) {
    for (const ObjectRow& row : entry.created) {
        mObjects[row.id] = {row.parent, row.moc, std::string(row.name), std::string(row.attributes),
                            row.changedAt};
    }
    for (const ObjectRow& row : entry.changed) {
        Object& object = mObjects.at(row.id);
        object.attributes = row.attributes;
        object.changedAt = row.changedAt;
    }
    for (const ObjectId id : entry.deleted) {
        mObjects.erase(id);
    }
    entry.created.clear();
    entry.changed.clear();
    entry.deleted.clear();
    mEntries.push_back(std::move(entry));
}

void MemoryLog::follow(const LogMark& seen, const CatchUp& catchUp, std::chrono::milliseconds) {
    const std::lock_guard<std::mutex> turn(mTurn);
    const InTurn inTurn(mIsInTurn);
    deliver(seen, catchUp);
}

std::optional<CommitNumber> MemoryLog::find(const std::string& id) {
    const std::lock_guard<std::mutex> turn(mTurn);
    if (!mCanFind) {
        throw LogUnavailable("the log is away");
    }
    for (const LogEntry& entry : mEntries) {
        if (entry.mark.id == id) {
            return entry.mark.position + mSkipped;
        }
    }
    return std::nullopt;
}

void MemoryLog::trim(std::size_t count) {
    mFirst += count;
    mFirstId = mEntries[count - 1].mark.id;
    mEntries.erase(mEntries.begin(), mEntries.begin() + static_cast<std::ptrdiff_t>(count));
}

void MemoryLog::loseLast() {
    mEntries.back().mark.id = "another";
}

void MemoryLog::inject(const std::string& change) {
    LogEntry entry;
    entry.mark = {head() + 1, "injected"};
    entry.author = "somebody";
    entry.change = change;
    mEntries.push_back(std::move(entry));
}

}
