// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_CHECK_SCENARIOPROCESS_H
#define ORV_HOST_CLI_CHECK_SCENARIOPROCESS_H

#include "ScenarioResult.h"
#include "cli/setup/Options.h"

namespace OrvHost {

/// Runs a scenario in its own process, so that each scenario starts fresh, components included, and
/// a crash does not affect the others. What components print goes to standard error. No other
/// thread may run in this process.
ScenarioResult runScenarioProcess(const Options& options, const std::string& file);

}

#endif
