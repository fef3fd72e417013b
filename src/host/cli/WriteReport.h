// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_WRITEREPORT_H
#define ORV_HOST_CLI_WRITEREPORT_H

#include "ValueJson.h"

#include <string>

namespace OrvHost {

class Session;

/// Prints what became of a write: \p word, or in JSON mode \p document with "committed" added.
/// \p isCommitted: the write had no transaction and is committed by itself.
void reportWrite(Session& session, JsonValue document, const std::string& word, bool isCommitted);

/// Prints what became of a transaction that was called \p name. \p note, mostly empty, is what went
/// wrong on the way without changing that.
void reportEnd(Session& session, const std::string& command, const std::string& name,
               const std::string& word, const std::string& note);

}

#endif
