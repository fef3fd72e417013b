// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_CHECK_CHECK_H
#define ORV_HOST_CLI_CHECK_CHECK_H

#include "cli/CliError.h"
#include "cli/Options.h"

#include <ostream>

namespace OrvHost {

/// Runs the scenarios that \p options name, all of them whatever becomes of each, and reports on
/// \p out and where the options tell. ExitOk if all passed; ExitLoad if one could not be run to its
/// end; or else ExitCommandError.
ExitStatus checkScenarios(const Options& options, std::ostream& out);

}

#endif
