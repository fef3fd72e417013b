// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_PROGRAM_H
#define ORV_HOST_CLI_PROGRAM_H

namespace OrvHost {

/// The whole of orvhost. Gives the exit status; nothing is thrown.
int runProgram(int count, const char* const* arguments);

}

#endif
