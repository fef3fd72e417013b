// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_WATCHREPORT_H
#define ORV_HOST_CLI_COMMANDS_WATCHREPORT_H

namespace OrvHost {

class Session;

/// Prints the commits that touched watched objects since the last call; in JSON mode a document for
/// each.
void reportWatched(Session& session);

}

#endif
