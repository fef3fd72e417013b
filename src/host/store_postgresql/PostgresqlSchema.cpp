// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "PostgresqlSchema.h"

#include "store/RecordLayout.h"

namespace OrvHost {

namespace {

constexpr std::uint64_t kFormat = 1;

// The same as in a file of SQLite, see StoreSchema.cpp. Changes are not compressed, so that a piece
// of one is read without the others.
constexpr const char* kTables = R"(
CREATE TABLE head(one boolean PRIMARY KEY DEFAULT true CHECK (one), format bigint NOT NULL,
                  pos bigint NOT NULL, id text NOT NULL, first bigint NOT NULL,
                  before text NOT NULL, model text NOT NULL, layout bytea NOT NULL);
CREATE TABLE log(pos bigint PRIMARY KEY, id text NOT NULL UNIQUE, author text NOT NULL,
                 at timestamptz NOT NULL DEFAULT clock_timestamp(), change bytea NOT NULL);
ALTER TABLE log ALTER COLUMN change SET STORAGE EXTERNAL;
CREATE TABLE objects(object bigint PRIMARY KEY, parent bigint NOT NULL, class bigint NOT NULL,
                     name text NOT NULL, attributes bytea NOT NULL, changed bigint NOT NULL);
CREATE TABLE model(place bigint PRIMARY KEY, subject text NOT NULL, fact text NOT NULL);
)";

// Names and texts of any language must go in.
void requireUnicode(PostgresqlConnection& connection) {
    const PostgresqlRows rows = connection.run("SELECT current_setting('server_encoding')");
    if (rows.text(0, 0) != "UTF8") {
        throw PostgresqlError("", "the database has the encoding " + std::string(rows.text(0, 0)) +
                                      ", and a store needs UTF8");
    }
}

}

void createPostgresqlStore(PostgresqlConnection& connection, const Model& model) {
    requireUnicode(connection);
    const std::vector<ModelFact> facts = modelFacts(model);
    connection.run(kWriteTransaction);
    PostgresqlTransaction transaction(connection);
    connection.runAll(kTables);
    std::vector<std::string_view> subjects;
    std::vector<std::string_view> texts;
    for (const ModelFact& one : facts) {
        subjects.push_back(one.subject);
        texts.push_back(one.text);
    }
    connection.run("INSERT INTO model(place, subject, fact) SELECT place, subject, fact FROM "
                   "unnest($1, $2) WITH ORDINALITY AS facts(subject, fact, place)",
                   PostgresqlParameters().texts(subjects).texts(texts));
    connection.run("INSERT INTO head(format, pos, id, first, before, model, layout) "
                   "VALUES($1, 0, '', 1, '', $2, $3)",
                   PostgresqlParameters()
                       .number(kFormat)
                       .text(fingerprintOf(facts))
                       .bytes(encodedLayout(model)));
    transaction.commit();
}

PostgresqlHead readHead(PostgresqlConnection& connection, HeadUse use) {
    const PostgresqlRows rows = connection.run(
        use == HeadUse::Lock ? "SELECT pos, id, first, before, model, format FROM head FOR UPDATE"
                             : "SELECT pos, id, first, before, model, format FROM head");
    if (rows.size() != 1) {
        throw PostgresqlError("", "the table 'head' has not exactly one row");
    }
    if (rows.number(0, 5) != kFormat) {
        throw PostgresqlError("", "its format is " + std::to_string(rows.number(0, 5)) +
                                      ", and this version knows format " + std::to_string(kFormat) +
                                      " only");
    }
    return {{rows.number(0, 0), std::string(rows.text(0, 1))},
            rows.number(0, 2),
            std::string(rows.text(0, 3)),
            std::string(rows.text(0, 4))};
}

void requireModel(PostgresqlConnection& connection, const std::vector<ModelFact>& model) {
    if (readHead(connection, HeadUse::Read).model == fingerprintOf(model)) {
        return;
    }
    const PostgresqlRows rows = connection.run("SELECT subject, fact FROM model ORDER BY place");
    std::vector<ModelFact> stored;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        stored.push_back({std::string(rows.text(row, 0)), std::string(rows.text(row, 1))});
    }
    const std::string difference = firstDifference(stored, model);
    throw PostgresqlError("", "it is of another model: " +
                                  (difference.empty() ? "its fingerprint differs" : difference));
}

}
