// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Program.h"

int main(int count, char** arguments) {
    return OrvHost::runProgram(count, arguments);
}
