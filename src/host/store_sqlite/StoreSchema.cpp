// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StoreSchema.h"

#include "store/CommitLog.h"
#include "store/RecordLayout.h"

#include <string>

namespace OrvHost {

namespace {

constexpr std::int64_t kApplicationId = 0x4F52564D; // "ORVM"
constexpr std::int64_t kFormat = 1;

// `first` is the position of the oldest entry that is kept, `before` the id of the one in front of
// it, `layout` what records are read with.
constexpr const char* kTables = R"(
CREATE TABLE head(pos INTEGER NOT NULL, id TEXT NOT NULL, first INTEGER NOT NULL,
                  before TEXT NOT NULL, model TEXT NOT NULL, layout BLOB NOT NULL);
CREATE TABLE log(pos INTEGER PRIMARY KEY, id TEXT NOT NULL UNIQUE, author TEXT NOT NULL,
                 at INTEGER NOT NULL, change BLOB NOT NULL);
CREATE TABLE objects(oid INTEGER PRIMARY KEY, parent INTEGER NOT NULL, class INTEGER NOT NULL,
                     name TEXT NOT NULL, attributes BLOB NOT NULL, changed INTEGER NOT NULL);
CREATE TABLE model(place INTEGER PRIMARY KEY, subject TEXT NOT NULL, fact TEXT NOT NULL);
)";

}

bool isEmptyDatabase(SqliteConnection& connection) {
    return connection.number("SELECT count(*) FROM sqlite_master") == 0;
}

void refuseStore(const std::filesystem::path& file, const std::string& why) {
    throw LogUnavailable("the store " + file.string() + " cannot be used: " + why);
}

void createStore(SqliteConnection& connection, const Model& model) {
    const std::vector<ModelFact> facts = modelFacts(model);
    const std::string layout = encodedLayout(model);
    SqliteTransaction transaction(connection);
    connection.run(kTables);
    connection.run("PRAGMA application_id=" + std::to_string(kApplicationId) +
                   "; PRAGMA user_version=" + std::to_string(kFormat));
    SqliteStatement fact(connection, "INSERT INTO model(subject, fact) VALUES(?1, ?2)");
    for (const ModelFact& one : facts) {
        fact.bind(1, one.subject).bind(2, one.text).run();
    }
    SqliteStatement head(connection, "INSERT INTO head(pos, id, first, before, model, layout) "
                                     "VALUES(0, '', 1, '', ?1, ?2)");
    const std::string fingerprint = fingerprintOf(facts);
    head.bind(1, fingerprint).bindBytes(2, layout).run();
    transaction.commit();
}

void requireStore(SqliteConnection& connection) {
    if (isEmptyDatabase(connection)) {
        throw SqliteError(0,
                          "there is nothing in it; the first host that opens it makes it a store");
    }
    if (connection.number("PRAGMA application_id") != kApplicationId) {
        throw SqliteError(0, "it is a database of another program, and no store");
    }
    const std::int64_t format = connection.number("PRAGMA user_version");
    if (format != kFormat) {
        throw SqliteError(0, "its format is " + std::to_string(format) +
                                 ", and this version knows format " + std::to_string(kFormat) +
                                 " only");
    }
}

std::vector<ModelFact> storedFacts(SqliteConnection& connection) {
    std::vector<ModelFact> facts;
    SqliteStatement rows(connection, "SELECT subject, fact FROM model ORDER BY place");
    while (rows.step()) {
        facts.push_back({std::string(rows.text(0)), std::string(rows.text(1))});
    }
    return facts;
}

void requireModel(SqliteConnection& connection, const std::vector<ModelFact>& model) {
    if (connection.text("SELECT model FROM head") == fingerprintOf(model)) {
        return;
    }
    const std::string difference = firstDifference(storedFacts(connection), model);
    throw SqliteError(0, "it is of another model: " +
                             (difference.empty() ? "its fingerprint differs" : difference));
}

}
