// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SHELL_SHELLRUN_H
#define ORV_HOST_CLI_SHELL_SHELLRUN_H

#include "cli/setup/Options.h"
#include "cli/shell/Shell.h"

namespace OrvHost {

/// How a shell is to answer to these options.
ShellLook lookFor(const Options& options);

/// Runs the commands that the options name, or else those of the prompt or the standard input.
/// Returns the first status that is not ExitOk.
int runShell(const Options& options, Shell& shell);

}

#endif
