// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_CHECK_SCENARIO_H
#define ORV_HOST_CLI_CHECK_SCENARIO_H

#include "ScenarioResult.h"
#include "cli/Options.h"

#include <functional>

namespace OrvHost {

/// Runs the script \p file on a host of its own, with model, data and components as \p options
/// tell, and prints nothing of its answers. Every failure that a script can have is in the result.
/// It ends at the first one, unless the options tell to go on. \p atLine is told each line before
/// it runs.
ScenarioResult runScenario(const Options& options, const std::string& file,
                           const std::function<void(int line)>& atLine);

}

#endif
