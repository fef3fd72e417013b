// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_SQLITE_STORESCHEMA_H
#define ORV_HOST_STORE_SQLITE_STORESCHEMA_H

#include "SqliteConnection.h"
#include "model/ModelFingerprint.h"

#include <filesystem>
#include <string>
#include <vector>

namespace OrvHost {

/// Throws LogUnavailable, which names the store.
[[noreturn]] void refuseStore(const std::filesystem::path& file, const std::string& why);

/// Creates the tables of a store in an empty database, all or nothing.
void createStore(SqliteConnection& connection, const Model& model);
/// Whether there is nothing in the database.
bool isEmptyDatabase(SqliteConnection& connection);
/// Throws SqliteError with a text if the database is no store, or one of a newer format.
void requireStore(SqliteConnection& connection);
/// What the model of the store says.
std::vector<ModelFact> storedFacts(SqliteConnection& connection);
/// Throws SqliteError with the first difference if the store is of another model.
void requireModel(SqliteConnection& connection, const std::vector<ModelFact>& model);

}

#endif
