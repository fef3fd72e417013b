// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_CHECK_CHECK_H
#define ORV_HOST_CLI_CHECK_CHECK_H

#include "cli/errors/CliErrors.h"
#include "cli/setup/Options.h"

#include <ostream>

namespace OrvHost {

/// Runs all scenarios that \p options name, also after a failure, and reports on \p out and where
/// the options say. ExitOk if all passed; ExitLoad if one could not run to its end; otherwise
/// ExitCommandError.
ExitStatus checkScenarios(const Options& options, std::ostream& out);

}

#endif
