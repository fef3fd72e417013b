// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_REPLAY_REPLAYCOMMAND_H
#define ORV_HOST_CLI_REPLAY_REPLAYCOMMAND_H

#include "cli/errors/CliErrors.h"
#include "cli/setup/Options.h"

#include <ostream>

namespace OrvHost {

/// Runs `replay FILE`: plays a recording of orv-record against a component, and writes to \p out
/// how far it went and the first difference. ExitOk if there is none, ExitCommandError if there is
/// one. Throws LoadError if the file cannot be played to its end, or the component not be loaded.
ExitStatus replay(const Options& options, std::ostream& out);

}

#endif
