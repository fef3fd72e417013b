// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Colours.h"

#include "base/Environment.h"

#include <unistd.h>

namespace OrvHost {

Colours Colours::ofStream(int descriptor) {
    const bool isPermitted = environmentVariable("NO_COLOR").value_or("").empty();
    return Colours(isPermitted && hasCapableTerminal() && isatty(descriptor) == 1);
}

}
