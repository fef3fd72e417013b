// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_POSTGRESQL_POSTGRESQLSCHEMA_H
#define ORV_HOST_STORE_POSTGRESQL_POSTGRESQLSCHEMA_H

#include "PostgresqlConnection.h"
#include "model/ModelFingerprint.h"
#include "store/CommitLog.h"

#include <string>
#include <vector>

namespace OrvHost {

constexpr const char* kReadTransaction = "BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY";
/// Each statement sees what was committed before it, so the head is the latest when it is locked.
constexpr const char* kWriteTransaction = "BEGIN ISOLATION LEVEL READ COMMITTED READ WRITE";

/// The row of the table `head`: the last entry, the position of the oldest one that is kept, the
/// id of the one in front of that, and the fingerprint of the model.
struct PostgresqlHead {
    LogMark mark;
    CommitNumber first = 1;
    std::string before;
    std::string model;
};

/// What a request for the head does besides reading it.
enum class HeadUse {
    Read,
    Lock ///< waits for the transaction that has it, and keeps it from others until the own one ends
};

/// Creates the tables of a store, all or nothing. Throws PostgresqlError, also if there are tables
/// of these names.
void createPostgresqlStore(PostgresqlConnection& connection, const Model& model);
/// Throws PostgresqlError if there is no store, or none of the format that this version knows.
PostgresqlHead readHead(PostgresqlConnection& connection, HeadUse use);
/// Throws PostgresqlError with the first difference if the store is of another model.
void requireModel(PostgresqlConnection& connection, const std::vector<ModelFact>& model);

}

#endif
