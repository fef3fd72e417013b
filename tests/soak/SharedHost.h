// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SOAK_SHAREDHOST_H
#define ORV_TESTS_SOAK_SHAREDHOST_H

#include "SharedBoard.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace OrvHost {
class MoStore;
}

namespace Soak {

/// One host of a run, in a process of its own.
struct SharedHost {
    SharedBoard& board;
    std::string target; ///< of the store: see OrvHost::PostgresqlConnection
    std::filesystem::path directory;
    std::uint64_t seed = 1;
    unsigned number = 0;
    unsigned start = 0; ///< how often a host was started before

    /// Goes through the steps of the board. \returns the exit status of the process.
    int run() const;

    /// The file in which a host writes what it holds.
    static std::filesystem::path reportOf(const std::filesystem::path& directory, unsigned host,
                                          SharedBoard::Step step);
};

/// What a store holds: the number of its last commit, what is wrong with its references, and its
/// objects; a line for each.
std::vector<std::string> recount(OrvHost::MoStore& store);

/// How a line of what is wrong begins.
inline const std::string kWrong = "wrong: ";

}

#endif
