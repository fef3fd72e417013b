// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_COMMITLOG_H
#define ORV_HOST_STORE_COMMITLOG_H

#include "StoreTypes.h"
#include "base/HostError.h"
#include "model/Model.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

/// Identifies an object of a log for ever: the commit that created it, and its place among the
/// objects that this commit created. In the order of these numbers parents come before their
/// children, and siblings in their order. 0 stands for the top level.
using ObjectId = std::uint64_t;
constexpr unsigned kPlaceBits = 24;
constexpr std::uint64_t kMaxPlaces = std::uint64_t{1} << kPlaceBits;
constexpr ObjectId objectId(CommitNumber createdAt, std::uint64_t place) {
    return createdAt << kPlaceBits | place;
}

/// An object as a log keeps it. The texts are valid while the row is handed over.
struct ObjectRow {
    ObjectId id = 0;
    ObjectId parent = 0;
    ClassIndex moc = 0;
    std::string_view name{};
    std::string_view attributes{}; ///< as AttributeBytes
    CommitNumber changedAt = 0;
};

/// A place in a log: the position of an entry, and what the entry is called. Two logs, or two
/// histories of one, can have different entries at one position.
struct LogMark {
    CommitNumber position = 0;
    std::string id{};

    bool operator==(const LogMark&) const = default;
};

/// One commit.
struct LogEntry {
    LogMark mark;
    std::string author; ///< the transaction, for people: "transaction 11 of alice"
    std::string change; ///< as LogChange::encoded

    // What becomes of the rows. An entry that is read from a log has none of these.
    std::vector<ObjectRow> created;
    std::vector<ObjectRow> changed; ///< `id`, `attributes` and `changedAt` only
    std::vector<ObjectId> deleted;
};

/// Nothing has happened: the log cannot be reached or written.
class LogUnavailable : public HostError {
public:
    explicit LogUnavailable(const std::string& text) : HostError(OrvHostStoreUnavailable, text) {}
};

/// Nothing has happened: the log has no room for these entries. It may have for smaller ones.
class LogTooLarge : public HostError {
public:
    /// \p code: OrvHostStoreUnavailable if there may be room later, otherwise OrvInvalidArgument.
    LogTooLarge(OrvReturnT code, const std::string& text) : HostError(code, text) {}
};

/// It is not known whether the entries were appended.
class LogInDoubt : public HostError {
public:
    /// Who can say it: CommitLog::find, or only a new start.
    enum class Until { Found, NewStart };

    explicit LogInDoubt(const std::string& text, Until until = Until::Found)
        : HostError(OrvHostOutcomeUnknown, text), mUntil(until) {}

    Until until() const { return mUntil; }

private:
    Until mUntil;
};

/// The entry at the mark that was seen is gone, or is another one. What this store holds is not
/// what the log holds, so it must write nothing any more.
class LogDiverged : public HostError {
public:
    explicit LogDiverged(const std::string& text) : HostError(OrvHostStoreUnavailable, text) {}
};

/// Where commits go before anybody sees them, and where those of other hosts come from: entries in
/// one order for all, and the objects that they lead to. The numbers of entries are the commit
/// numbers of the stores.
///
/// Threads: one call at a time from each store. Several stores, in one process or in several, may
/// use one log if the log allows it.
class CommitLog {
public:
    virtual ~CommitLog() = default;

    using ObjectVisitor = std::function<void(const ObjectRow& row)>;
    /// Calls its argument with all objects, in the order of their numbers.
    using ObjectSource = std::function<void(const ObjectVisitor& take)>;
    using CatchUp = std::function<void(const LogEntry& entry)>;
    /// Gets the position of the last entry and returns those that follow it. What it throws goes to
    /// the caller of append, and nothing is appended.
    using Decide = std::function<std::vector<LogEntry>(CommitNumber head)>;

    /// Calls \p visitor with all objects, in the order of their numbers. Returns the mark at which
    /// they stand. Throws LogUnavailable, and what \p visitor throws.
    virtual LogMark load(const ObjectVisitor& visitor) = 0;
    /// Whether it has never had an object. Throws LogUnavailable.
    virtual bool isNew() = 0;
    /// Puts objects into a log that has never had any, all or none: the state before the first
    /// entry. The mark that it returns is not that of the log without objects. Throws HostError
    /// with OrvHostWrongState if it has had some.
    virtual LogMark fill(const ObjectSource& objects) = 0;
    /// While no other store can append: calls \p catchUp for each entry after \p seen, in their
    /// order and each once, then \p decide, at most once, and appends what it returns, all or
    /// nothing. The entries are durable when it returns. Throws LogUnavailable, LogTooLarge,
    /// LogInDoubt or LogDiverged.
    virtual void append(const LogMark& seen, const CatchUp& catchUp, const Decide& decide) = 0;
    /// Calls \p catchUp for each entry after \p seen; waits up to \p patience for the first one.
    /// Throws LogUnavailable or LogDiverged.
    virtual void follow(const LogMark& seen, const CatchUp& catchUp,
                        std::chrono::milliseconds patience) = 0;
    /// The position of the entry with that id, after all appends that are in progress. Throws
    /// LogUnavailable.
    virtual std::optional<CommitNumber> find(const std::string& id) = 0;
    /// For how long it is worth to ask with find while it fails.
    virtual std::chrono::milliseconds patience() const { return std::chrono::seconds(2); }
};

}

#endif
