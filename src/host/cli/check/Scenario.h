// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_CHECK_SCENARIO_H
#define ORV_HOST_CLI_CHECK_SCENARIO_H

#include "ScenarioResult.h"
#include "cli/setup/Options.h"

#include <functional>

namespace OrvHost {

/// Runs the script \p file on its own host, with model, data and components as \p options say, and
/// prints none of its answers. All failures of the script are in the result. The script ends at the
/// first failure, unless the options say to continue. \p atLine is called with the line of
/// each command before it runs.
ScenarioResult runScenario(const Options& options, const std::string& file,
                           const std::function<void(int line)>& atLine);

}

#endif
