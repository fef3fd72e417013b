// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SERVE_SERVE_H
#define ORV_HOST_CLI_SERVE_SERVE_H

#include "cli/setup/Options.h"

#include <ostream>

namespace OrvHost {

/// Runs the server until SIGTERM or SIGINT. SIGHUP opens the log's file again. Prints to \p out
/// where clients find it, as soon as they can connect. Returns the exit status; throws what
/// HostSetup and NetconfServer throw, and LoadError if this program has no server.
int serve(const Options& options, std::ostream& out);

}

#endif
