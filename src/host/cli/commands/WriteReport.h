// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_COMMANDS_WRITEREPORT_H
#define ORV_HOST_CLI_COMMANDS_WRITEREPORT_H

#include "cli/output/ValueJson.h"

#include <string>

namespace OrvHost {

class Session;

// Both print the session's hint, too: as a note to standard error, in JSON mode in "missing".

/// Prints the result of a write: \p word, or in JSON mode \p document with "committed" added. \p
/// isCommitted: the write ran outside a transaction of the user and is already committed.
void reportWrite(Session& session, JsonValue document, const std::string& word, bool isCommitted);

/// Prints the result of ending a transaction with the name \p name. \p note, usually empty, is a
/// problem that did not change the result.
void reportEnd(Session& session, const std::string& command, const std::string& name,
               const std::string& word, const std::string& note);

}

#endif
