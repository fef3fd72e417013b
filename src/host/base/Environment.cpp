// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Environment.h"

#include <cstdlib>

namespace OrvHost {

std::optional<std::string> environmentVariable(const std::string& name) {
    const char* const value = std::getenv(name.c_str()); // NOLINT(concurrency-mt-unsafe): see above
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

bool hasCapableTerminal() {
    return environmentVariable("TERM").value_or("dumb") != "dumb";
}

}
