// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "PostgresqlTools.h"

#include "PostgresqlSchema.h"

#include <algorithm>

namespace OrvHost {

namespace {

template <class Work>
auto withStore(const std::string& target, const Work& work) {
    try {
        PostgresqlConnection connection(target, {});
        return work(connection);
    } catch (const PostgresqlError& error) {
        throw LogUnavailable(
            std::string("the store of PostgreSQL: ") + error.what() +
            (error.state() == "42P01" ? "; orvhost store init creates the tables" : ""));
    }
}

bool isYoung(PostgresqlConnection& connection, CommitNumber position, std::chrono::seconds age) {
    const PostgresqlRows rows = connection.run(
        "SELECT (at > now() - make_interval(secs => $2))::int::bigint FROM log WHERE pos = $1",
        PostgresqlParameters().number(position).number(static_cast<std::uint64_t>(age.count())));
    return rows.size() == 0 || rows.number(0, 0) != 0;
}

// The first of the entries that stay. Their times are in the order of their positions, so that few
// of them are looked at.
CommitNumber firstToKeep(PostgresqlConnection& connection, const PostgresqlHead& head,
                         std::uint64_t entries, std::chrono::seconds age) {
    const CommitNumber end = head.mark.position + 1;
    CommitNumber first = head.first;
    CommitNumber last = std::max(first, end > entries ? end - entries : 1);
    while (first < last) {
        const CommitNumber middle = first + (last - first) / 2;
        if (isYoung(connection, middle, age)) {
            last = middle;
        } else {
            first = middle + 1;
        }
    }
    return first;
}

// Hosts wait for this one, so it is short.
void moveFirst(PostgresqlConnection& connection, CommitNumber first) {
    connection.run(kWriteTransaction);
    PostgresqlTransaction transaction(connection);
    if (readHead(connection, HeadUse::Lock).first < first) {
        connection.run("UPDATE head SET first = $1, before = (SELECT id FROM log WHERE pos = $1 - "
                       "1)",
                       PostgresqlParameters().number(first));
        transaction.commit();
    }
}

/// Where a portion of entries ends that begins at \p from: the server deletes it well within the
/// time that an answer may take, however large entries are.
CommitNumber endOfPortion(PostgresqlConnection& connection, CommitNumber from, CommitNumber last) {
    constexpr CommitNumber kMostEntries = 10'000;
    constexpr CommitNumber kMostBytes = 64 << 20;
    const CommitNumber end = std::min(from + kMostEntries, last);
    const CommitNumber tooLarge =
        connection
            .run("SELECT coalesce(min(pos), $2)::bigint FROM (SELECT pos, "
                 "sum(octet_length(change)) OVER (ORDER BY pos) AS bytes FROM log "
                 "WHERE pos >= $1 AND pos < $2) AS sums WHERE bytes > $3",
                 PostgresqlParameters().number(from).number(end).number(kMostBytes))
            .number(0, 0);
    return std::max(tooLarge, from + 1);
}

// Nobody reads entries before the first one, so nothing is locked. What an earlier call has left is
// among them.
std::uint64_t deleteBefore(PostgresqlConnection& connection, CommitNumber first) {
    std::uint64_t deleted = 0;
    CommitNumber from =
        connection.run("SELECT coalesce(min(pos), 0)::bigint FROM log").number(0, 0);
    while (from < first) {
        const CommitNumber end = endOfPortion(connection, from, first);
        deleted += connection
                       .run("DELETE FROM log WHERE pos >= $1 AND pos < $2",
                            PostgresqlParameters().number(from).number(end))
                       .changed();
        from = end;
    }
    return deleted;
}

std::uint64_t trim(PostgresqlConnection& connection, std::uint64_t entries,
                   std::chrono::seconds age) {
    const CommitNumber first =
        firstToKeep(connection, readHead(connection, HeadUse::Read), entries, age);
    moveFirst(connection, first);
    return deleteBefore(connection, first);
}

PostgresqlInfo infoOf(PostgresqlConnection& connection) {
    connection.run(kReadTransaction);
    PostgresqlTransaction transaction(connection);
    const PostgresqlHead head = readHead(connection, HeadUse::Read);
    PostgresqlInfo info;
    info.position = head.mark.position;
    info.firstEntry = head.first;
    info.model = head.model;
    info.objects = connection.run("SELECT count(*) FROM objects").number(0, 0);
    info.bytes = connection
                     .run("SELECT (pg_total_relation_size('head') + pg_total_relation_size('log') "
                          "+ pg_total_relation_size('objects') + "
                          "pg_total_relation_size('model'))::bigint")
                     .number(0, 0);
    const PostgresqlRows last = connection.run(
        "SELECT author, extract(epoch FROM at)::bigint FROM log ORDER BY pos DESC LIMIT 1");
    if (last.size() > 0) {
        info.lastAuthor = last.text(0, 0);
        info.lastAt = static_cast<std::int64_t>(last.number(0, 1));
    }
    return info;
}

}

void initPostgresqlStore(const std::string& target, const Model& model) {
    withStore(target,
              [&](PostgresqlConnection& connection) { createPostgresqlStore(connection, model); });
}

PostgresqlInfo readPostgresqlInfo(const std::string& target) {
    return withStore(target, [](PostgresqlConnection& connection) { return infoOf(connection); });
}

std::uint64_t trimPostgresqlStore(const std::string& target, std::uint64_t entries,
                                  std::chrono::seconds age) {
    return withStore(
        target, [&](PostgresqlConnection& connection) { return trim(connection, entries, age); });
}

}
