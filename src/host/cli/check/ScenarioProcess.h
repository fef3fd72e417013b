// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_CHECK_SCENARIOPROCESS_H
#define ORV_HOST_CLI_CHECK_SCENARIOPROCESS_H

#include "ScenarioResult.h"
#include "cli/Options.h"

namespace OrvHost {

/// Runs a scenario in a process of its own, so that each begins afresh, components included, and
/// one that crashes takes no other with it. What components print goes to standard error. No other
/// thread may run in this process.
ScenarioResult runScenarioProcess(const Options& options, const std::string& file);

}

#endif
