// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SETUP_STORETARGET_H
#define ORV_HOST_CLI_SETUP_STORETARGET_H

#include <string>

namespace OrvHost {

/// Where a store is: a file, or the tables of a PostgreSQL database, if the text begins with
/// `postgresql:`.
bool isPostgresql(const std::string& store);

/// What the client library of PostgreSQL takes: a URI as it stands, otherwise what follows the
/// colon.
std::string postgresqlTarget(const std::string& store);

}

#endif
