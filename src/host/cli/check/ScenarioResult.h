// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_CHECK_SCENARIORESULT_H
#define ORV_HOST_CLI_CHECK_SCENARIORESULT_H

#include <cstddef>
#include <string>
#include <vector>

namespace OrvHost {

/// What went wrong in a scenario, and at which line.
struct ScenarioFailure {
    int line = 0; ///< 0: not at a line
    std::string text;
};

/// The result of a scenario.
struct ScenarioResult {
    std::string name; ///< its file
    std::size_t commands = 0;
    double seconds = 0;
    std::vector<ScenarioFailure> failures;
    /// The scenario could not run to its end: its file, the model, the data or a component could
    /// not be used, or the process crashed.
    bool isBroken = false;

    bool isPassed() const { return failures.empty(); }
    /// "file:12", or the file alone.
    std::string placeOf(const ScenarioFailure& failure) const {
        return failure.line > 0 ? name + ":" + std::to_string(failure.line) : name;
    }
};

}

#endif
