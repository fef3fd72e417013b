// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_HOST_STORE_SQLITE_STORESTART_H
#define ORV_TESTS_HOST_STORE_SQLITE_STORESTART_H

#include "store/CommitLog.h"
#include "store_sqlite/SqliteConnection.h"

#include <filesystem>

namespace OrvHost {

/// The mark in front of the first entry of a store that nobody uses.
inline LogMark startOf(const std::filesystem::path& file) {
    SqliteConnection connection(file, SqliteConnection::Mode::Existing);
    return {static_cast<CommitNumber>(connection.number("SELECT first - 1 FROM head")),
            connection.text("SELECT before FROM head")};
}

}

#endif
