// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_POSTGRESQL_POSTGRESQLTOOLS_H
#define ORV_HOST_STORE_POSTGRESQL_POSTGRESQLTOOLS_H

#include "model/Model.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace OrvHost {

/// What the tables of a store say of themselves.
struct PostgresqlInfo {
    std::uint64_t objects = 0;
    std::uint64_t position = 0;   ///< number of the last commit; 0: none since it was filled
    std::uint64_t firstEntry = 0; ///< number of the oldest commit whose entry is kept
    std::string lastAuthor;       ///< of the last commit; empty: none, or its entry is not kept
    std::int64_t lastAt = 0;      ///< when it was, in seconds since 1970
    std::string model;            ///< the model's fingerprint
    std::uint64_t bytes = 0;      ///< of the tables and their indexes
};

// Hosts may use the store meanwhile. \p target: see PostgresqlConnection. All throw LogUnavailable
// with a text.

/// Creates the tables of a store of \p model, in the first schema of the search path.
void initPostgresqlStore(const std::string& target, const Model& model);
PostgresqlInfo readPostgresqlInfo(const std::string& target);
/// Deletes the entries that are neither among the latest \p entries nor younger than \p age.
/// Returns their number. A host that has not seen one of them yet loads its objects anew.
std::uint64_t trimPostgresqlStore(const std::string& target, std::uint64_t entries,
                                  std::chrono::seconds age);

}

#endif
