// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "PostgresqlLog.h"

#include <algorithm>
#include <limits>
#include <random>
#include <thread>
#include <utility>

namespace OrvHost {

namespace {

// A field of the server holds 1 GB at most, and so does a message to it; and there are some copies
// of it in memory.
constexpr std::size_t kMaxBytes = 200'000'000;
// How many rows, and how many bytes of them, go to the server in one statement. It fits into what
// the sockets in between hold, so that a host that stops does not leave half of one: the server
// waits for the rest of a statement without limit.
constexpr std::size_t kRowsTogether = 2'000;
constexpr std::size_t kBytesTogether = 50'000;
// From here on an entry takes the host some time.
constexpr std::size_t kLargeEntry = 1'000'000;
// Entries that are new are read before the turn if there are more than these, so that nobody waits
// for that, unless as many have come again some times.
constexpr CommitNumber kFewEntries = 300;
constexpr unsigned kRounds = 3;
constexpr std::chrono::milliseconds kPause{10};

// An answer is not longer than what the sockets in between hold, so that the server always comes to
// the point at which it waits for the next request. As long as it sends, it has no limit for a host
// that has stopped. A longer entry comes in pieces.
constexpr const char* kNextEntries =
    "SELECT pos, id, author, size, substring(change FROM 1 FOR 65536) FROM (SELECT pos, id, "
    "author, change, octet_length(change)::bigint AS size, sum(octet_length(change) + "
    "octet_length(author) + octet_length(id) + 40) OVER (ORDER BY pos) AS sum FROM log WHERE pos > "
    "$1 AND pos <= $1 + 256) AS next WHERE sum <= 65536 OR pos = $1 + 1 ORDER BY pos";
constexpr const char* kNextPiece =
    "SELECT substring(change FROM $2::int FOR 65536) FROM log WHERE pos = $1";

constexpr unsigned kNumberSize = 8;

ClassIndex classOf(std::uint64_t number) {
    if (number > std::numeric_limits<ClassIndex>::max()) {
        throw PostgresqlError("", "there is no class " + std::to_string(number));
    }
    return static_cast<ClassIndex>(number);
}

ObjectRow rowOf(const std::vector<std::string_view>& fields) {
    return {getPostgresqlNumber(fields.at(0)),
            getPostgresqlNumber(fields.at(1)),
            classOf(getPostgresqlNumber(fields.at(2))),
            fields.at(3),
            fields.at(4),
            getPostgresqlNumber(fields.at(5))};
}

void putField(std::string& bytes, std::string_view field) {
    putPostgresqlNumber(bytes, field.size(), 4);
    bytes += field;
}

void putField(std::string& bytes, std::uint64_t number) {
    putPostgresqlNumber(bytes, kNumberSize, 4);
    putPostgresqlNumber(bytes, number, kNumberSize);
}

std::string copyRow(const ObjectRow& row) {
    std::string bytes;
    putPostgresqlNumber(bytes, 6, 2); // fields
    putField(bytes, row.id);
    putField(bytes, row.parent);
    putField(bytes, row.moc);
    putField(bytes, row.name);
    putField(bytes, row.attributes);
    putField(bytes, row.changedAt);
    return bytes;
}

// Calls \p work with portions of rows that fit into a statement.
template <class Row, class Size, class Work>
void inPortions(const std::vector<Row>& rows, const Size& sizeOf, const Work& work) {
    std::vector<Row> portion;
    std::size_t bytes = 0;
    for (const Row& row : rows) {
        portion.push_back(row);
        bytes += sizeOf(row);
        if (portion.size() == kRowsTogether || bytes > kBytesTogether) {
            work(portion);
            portion.clear();
            bytes = 0;
        }
    }
    if (!portion.empty()) {
        work(portion);
    }
}

std::size_t bytesOf(const ObjectRow& row) {
    constexpr std::size_t kNumbers = 64;
    return row.name.size() + row.attributes.size() + kNumbers;
}

// Of the largest thing that goes to the server as a whole.
std::size_t largestOf(const LogEntry& entry) {
    std::size_t largest = entry.change.size();
    for (const auto* const rows : {&entry.created, &entry.changed}) {
        for (const ObjectRow& row : *rows) {
            largest = std::max(largest, bytesOf(row));
        }
    }
    return largest;
}

void requireFit(const std::vector<LogEntry>& entries) {
    for (const LogEntry& entry : entries) {
        const std::size_t largest = largestOf(entry);
        if (largest > kMaxBytes) {
            throw LogTooLarge(OrvInvalidArgument,
                              "a commit with " + std::to_string(largest) +
                                  " bytes at once does not fit into the log, at most " +
                                  std::to_string(kMaxBytes) + " do");
        }
    }
}

// What the server does not take because of what it is, and what may fit later or alone.
bool isOfTheData(const PostgresqlError& error) {
    return error.isOfClass("22") || error.isOfClass("54");
}
bool isOutOfRoom(const PostgresqlError& error) {
    return error.state() == "53100" || error.state() == "53200";
}

std::string explained(const PostgresqlError& error) {
    std::string text = std::string("the store of PostgreSQL: ") + error.what();
    if (error.state() == "42P01") {
        return text + "; orvhost store init creates the tables";
    }
    if (error.state() == "55P03") {
        return text + "; another host has not ended its commit";
    }
    return text;
}

}

/// Runs \p work alone, and brings what the server refuses into the form of this interface. A
/// connection on which something failed is not used again if it is lost.
template <class Work>
auto PostgresqlLog::guarded(const Work& work) {
    const std::lock_guard<std::mutex> guard(mMutex);
    try {
        return work();
    } catch (const PostgresqlError& error) {
        if (isOfTheData(error)) {
            throw LogTooLarge(OrvInvalidArgument, explained(error));
        }
        if (isOutOfRoom(error)) {
            throw LogTooLarge(OrvHostStoreUnavailable, explained(error));
        }
        throw LogUnavailable(explained(error));
    }
}

PostgresqlLog::PostgresqlLog(std::string target, const Model& model, const PostgresqlLimits& limits)
    : mTarget(std::move(target)),
      mLimits(limits),
      mFacts(modelFacts(model)),
      mFingerprint(fingerprintOf(mFacts)) {
    guarded([&] { requireModel(connection(), mFacts); });
}

PostgresqlLog::~PostgresqlLog() = default;

PostgresqlConnection& PostgresqlLog::connection() {
    if (mConnection && mConnection->isLost()) {
        mConnection.reset();
    }
    if (!mConnection) {
        mConnection = std::make_unique<PostgresqlConnection>(mTarget, mLimits);
    }
    return *mConnection;
}

// That a server has gone away since the last call shows at the first statement only.
template <class First>
auto PostgresqlLog::onConnection(const First& first) {
    const bool isUsed = mConnection && !mConnection->isLost();
    try {
        return first(connection());
    } catch (const PostgresqlError&) {
        if (!isUsed || !mConnection->isLost()) {
            throw;
        }
    }
    return first(connection());
}

void PostgresqlLog::begin(const char* statement) {
    onConnection([&](PostgresqlConnection& connection) { connection.run(statement); });
}

PostgresqlHead PostgresqlLog::head(HeadUse use) {
    PostgresqlHead head = readHead(*mConnection, use);
    if (head.model != mFingerprint) {
        throw LogDiverged("the store of PostgreSQL is of another model now");
    }
    return head;
}

bool PostgresqlLog::isNew() {
    return guarded([&] {
        return onConnection([](PostgresqlConnection& connection) {
            return readHead(connection, HeadUse::Read).mark == LogMark();
        });
    });
}

LogMark PostgresqlLog::load(const ObjectVisitor& visitor) {
    return guarded([&] {
        begin(kReadTransaction);
        PostgresqlTransaction transaction(*mConnection);
        requireModel(*mConnection, mFacts);
        LogMark mark = head(HeadUse::Read).mark;
        mConnection->copyOut(
            "SELECT object, parent, class, name, attributes, changed FROM objects "
            "ORDER BY object",
            [&](const std::vector<std::string_view>& fields) { visitor(rowOf(fields)); });
        return mark;
    });
}

LogMark PostgresqlLog::fill(const ObjectSource& objects) {
    return guarded([&] {
        begin(kWriteTransaction);
        PostgresqlTransaction transaction(*mConnection);
        if (!(head(HeadUse::Lock).mark == LogMark())) {
            throw HostError(OrvHostWrongState, "the store of PostgreSQL has had objects already");
        }
        mConnection->copyIn("COPY objects(object, parent, class, name, attributes, changed) FROM "
                            "STDIN (FORMAT binary)",
                            [&](const PostgresqlConnection::TakeBytes& take) {
                                objects([&](const ObjectRow& row) { take(copyRow(row)); });
                            });
        LogMark mark{0, "filled-" + std::to_string(std::random_device()())};
        setHead(mark);
        mConnection->run("UPDATE head SET before = id"); // it stands in front of the first entry
        try {
            transaction.commit();
        } catch (const PostgresqlError& error) {
            mConnection->giveUp();
            throw LogInDoubt(explained(error) + "; whether the objects are there is known after a "
                                                "new start",
                             LogInDoubt::Until::NewStart);
        }
        return mark;
    });
}

std::string PostgresqlLog::idAt(CommitNumber position, const PostgresqlHead& head) {
    if (position == head.mark.position) {
        return head.mark.id;
    }
    if (position + 1 == head.first) {
        return head.before;
    }
    const PostgresqlRows rows = mConnection->run("SELECT id FROM log WHERE pos = $1",
                                                 PostgresqlParameters().number(position));
    return rows.size() == 0 ? std::string() : std::string(rows.text(0, 0));
}

void PostgresqlLog::deliver(const LogMark& seen, const PostgresqlHead& head,
                            const CatchUp& catchUp) {
    const std::string position = "position " + std::to_string(seen.position);
    if (seen.position + 1 < head.first) {
        throw LogDiverged("the entry after " + position + " of the log is not kept any more");
    }
    if (seen.position > head.mark.position || idAt(seen.position, head) != seen.id) {
        throw LogDiverged(position + " of the log is not what it was");
    }
    for (CommitNumber last = seen.position; last < head.mark.position;) {
        const PostgresqlRows rows =
            mConnection->run(kNextEntries, PostgresqlParameters().number(last));
        if (rows.size() == 0) {
            throw LogDiverged("the log has no entry after position " + std::to_string(last));
        }
        for (std::size_t row = 0; row < rows.size(); ++row) {
            LogEntry entry;
            entry.mark = {rows.number(row, 0), std::string(rows.text(row, 1))};
            entry.author = rows.text(row, 2);
            entry.change = rows.text(row, 4);
            readRest(entry, rows.number(row, 3));
            last = entry.mark.position;
            catchUp(entry);
        }
    }
}

void PostgresqlLog::readRest(LogEntry& entry, std::uint64_t size) {
    if (entry.change.size() == size) {
        return;
    }
    entry.change.reserve(size);
    while (entry.change.size() < size) {
        const PostgresqlRows rows = mConnection->run(
            kNextPiece,
            PostgresqlParameters().number(entry.mark.position).number(entry.change.size() + 1));
        if (rows.size() == 0 || rows.text(0, 0).empty()) {
            throw PostgresqlError("", "an entry of the log is gone while it is read");
        }
        entry.change += rows.text(0, 0);
    }
    allowTimeFor(size);
}

// The limit between two requests counts while the host works on what it has got: a second more for
// each megabyte.
void PostgresqlLog::allowTimeFor(std::size_t bytes) {
    if (bytes > kLargeEntry) {
        mConnection->run(
            "SELECT set_config('idle_in_transaction_session_timeout', $1, true)",
            PostgresqlParameters().text(
                std::to_string(static_cast<std::size_t>(mLimits.idle.count()) + bytes / 1000) +
                "ms"));
    }
}

void PostgresqlLog::append(const LogMark& seen, const CatchUp& catchUp, const Decide& decide) {
    guarded([&] {
        LogMark last = seen;
        const CatchUp take = [&](const LogEntry& entry) {
            catchUp(entry);
            last = entry.mark;
        };
        for (unsigned round = 1; !appendInTurn(last, take, decide, round == kRounds); ++round) {
            deliverAll(last, take);
        }
    });
}

// False, and nothing is done, if there are many new entries and not \p isLastRound.
bool PostgresqlLog::appendInTurn(const LogMark& seen, const CatchUp& catchUp, const Decide& decide,
                                 bool isLastRound) {
    begin(kWriteTransaction);
    PostgresqlTransaction transaction(*mConnection);
    const PostgresqlHead before = head(HeadUse::Lock);
    if (!isLastRound && before.mark.position > seen.position + kFewEntries) {
        return false;
    }
    deliver(LogMark(seen), before, catchUp);
    const std::vector<LogEntry> entries = decide(before.mark.position);
    if (entries.empty()) {
        return true;
    }
    requireFit(entries);
    write(entries);
    setHead(entries.back().mark);
    mAppended = entries.front().mark.position;
    try {
        transaction.commit();
    } catch (const PostgresqlError& error) {
        mConnection->giveUp();
        throw LogInDoubt(explained(error));
    }
    return true;
}

void PostgresqlLog::deliverAll(const LogMark& seen, const CatchUp& catchUp) {
    begin(kReadTransaction);
    PostgresqlTransaction transaction(*mConnection);
    deliver(LogMark(seen), head(HeadUse::Read), catchUp);
}

// An object that one entry creates, another one of the same append can change or delete.
void PostgresqlLog::write(const std::vector<LogEntry>& entries) {
    for (const LogEntry& entry : entries) {
        mConnection->run("INSERT INTO log(pos, id, author, change) VALUES($1, $2, $3, $4)",
                         PostgresqlParameters()
                             .number(entry.mark.position)
                             .text(entry.mark.id)
                             .text(entry.author)
                             .bytes(entry.change));
        inPortions(entry.created, bytesOf, [&](const auto& rows) { insert(rows); });
        inPortions(entry.changed, bytesOf, [&](const auto& rows) { change(rows); });
        inPortions(
            entry.deleted, [](ObjectId) { return kNumberSize; },
            [&](const auto& ids) { remove(ids); });
    }
}

void PostgresqlLog::insert(const std::vector<ObjectRow>& rows) {
    std::vector<std::uint64_t> ids;
    std::vector<std::uint64_t> parents;
    std::vector<std::uint64_t> classes;
    std::vector<std::string_view> names;
    std::vector<std::string_view> attributes;
    std::vector<std::uint64_t> commits;
    for (const ObjectRow& row : rows) {
        ids.push_back(row.id);
        parents.push_back(row.parent);
        classes.push_back(row.moc);
        names.push_back(row.name);
        attributes.push_back(row.attributes);
        commits.push_back(row.changedAt);
    }
    mConnection->run("INSERT INTO objects(object, parent, class, name, attributes, changed) "
                     "SELECT * FROM unnest($1, $2, $3, $4, $5, $6)",
                     PostgresqlParameters()
                         .numbers(ids)
                         .numbers(parents)
                         .numbers(classes)
                         .texts(names)
                         .byteTexts(attributes)
                         .numbers(commits));
}

void PostgresqlLog::change(const std::vector<ObjectRow>& rows) {
    std::vector<std::uint64_t> ids;
    std::vector<std::string_view> attributes;
    std::vector<std::uint64_t> commits;
    for (const ObjectRow& row : rows) {
        ids.push_back(row.id);
        attributes.push_back(row.attributes);
        commits.push_back(row.changedAt);
    }
    const PostgresqlRows done = mConnection->run(
        "UPDATE objects SET attributes = new.attributes, changed = new.changed FROM "
        "unnest($1, $2, $3) AS new(object, attributes, changed) "
        "WHERE objects.object = new.object",
        PostgresqlParameters().numbers(ids).byteTexts(attributes).numbers(commits));
    if (done.changed() != rows.size()) {
        throw LogDiverged("an object of the log that is to be changed is gone");
    }
}

void PostgresqlLog::remove(const std::vector<ObjectId>& ids) {
    const PostgresqlRows done = mConnection->run("DELETE FROM objects WHERE object = ANY($1)",
                                                 PostgresqlParameters().numbers(ids));
    if (done.changed() != ids.size()) {
        throw LogDiverged("an object of the log that is to be deleted is gone");
    }
}

void PostgresqlLog::setHead(const LogMark& mark) {
    mConnection->run("UPDATE head SET pos = $1, id = $2",
                     PostgresqlParameters().number(mark.position).text(mark.id));
}

// Nothing is read in a transaction unless there is something new.
void PostgresqlLog::follow(const LogMark& seen, const CatchUp& catchUp,
                           std::chrono::milliseconds patience) {
    const auto end = std::chrono::steady_clock::now() + patience;
    for (;;) {
        const bool isSame = guarded([&] {
            const PostgresqlHead now = onConnection([](PostgresqlConnection& connection) {
                return readHead(connection, HeadUse::Read);
            });
            return now.mark == seen && now.model == mFingerprint;
        });
        if (!isSame) {
            break;
        }
        if (std::chrono::steady_clock::now() >= end) {
            return;
        }
        std::this_thread::sleep_for(kPause);
    }
    guarded([&] { deliverAll(seen, catchUp); });
}

// An entry can be seen before the copies have it for which a commit waits: when the server was
// started again meanwhile, or its wait was ended. The commit of this transaction, which has locked
// a row, waits for all that was written before it.
std::optional<CommitNumber> PostgresqlLog::find(const std::string& id) {
    return guarded([&]() -> std::optional<CommitNumber> {
        begin(kWriteTransaction);
        PostgresqlTransaction transaction(*mConnection);
        const PostgresqlHead now = readHead(*mConnection, HeadUse::Lock);
        const PostgresqlRows rows =
            mConnection->run("SELECT pos FROM log WHERE id = $1", PostgresqlParameters().text(id));
        if (rows.size() == 0 && now.first > mAppended) {
            throw PostgresqlError("", "the entries of that time are not kept any more");
        }
        if (rows.size() == 0) {
            return std::nullopt;
        }
        try {
            transaction.commit();
        } catch (const PostgresqlError&) {
            mConnection->giveUp();
            throw;
        }
        return rows.number(0, 0);
    });
}

}
