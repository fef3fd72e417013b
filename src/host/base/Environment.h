// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_ENVIRONMENT_H
#define ORV_HOST_BASE_ENVIRONMENT_H

#include <optional>
#include <string>

namespace OrvHost {

/// The value of an environment variable, which may be empty; nothing if it is not set. Nothing in
/// this program sets variables, so any thread may ask.
std::optional<std::string> environmentVariable(const std::string& name);

/// True if the terminal, if there is one, understands colours and other control sequences.
bool hasCapableTerminal();

}

#endif
