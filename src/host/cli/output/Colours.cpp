// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Colours.h"

#include "base/Environment.h"

#include <unistd.h>

namespace OrvHost {

bool Colours::areWantedOn(int descriptor) {
    const bool isPermitted = environmentVariable("NO_COLOR").value_or("").empty();
    return isPermitted && hasCapableTerminal() && isatty(descriptor) == 1;
}

}
