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

// The first of the entries that stay.
CommitNumber firstToKeep(PostgresqlConnection& connection, const PostgresqlHead& head,
                         std::uint64_t entries, std::chrono::seconds age) {
    const CommitNumber end = head.mark.position + 1;
    const CommitNumber byNumber = end > entries ? end - entries : 1;
    const PostgresqlRows young = connection.run(
        "SELECT coalesce(min(pos), $1) FROM log WHERE at > now() - make_interval(secs => $2)",
        PostgresqlParameters().number(end).number(static_cast<std::uint64_t>(age.count())));
    return std::max(head.first, std::min(byNumber, young.number(0, 0)));
}

std::uint64_t trim(PostgresqlConnection& connection, std::uint64_t entries,
                   std::chrono::seconds age) {
    connection.run("BEGIN");
    PostgresqlTransaction transaction(connection);
    const PostgresqlHead head = readHead(connection, HeadUse::Lock);
    const CommitNumber first = firstToKeep(connection, head, entries, age);
    if (first == head.first) {
        return 0;
    }
    connection.run("UPDATE head SET first = $1, before = (SELECT id FROM log WHERE pos = $1 - 1)",
                   PostgresqlParameters().number(first));
    const PostgresqlRows deleted =
        connection.run("DELETE FROM log WHERE pos < $1", PostgresqlParameters().number(first));
    transaction.commit();
    return deleted.changed();
}

PostgresqlInfo infoOf(PostgresqlConnection& connection) {
    connection.run("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY");
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
