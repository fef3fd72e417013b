// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_ERRORS_UNKNOWNCLASS_H
#define ORV_HOST_CLI_ERRORS_UNKNOWNCLASS_H

#include "CliErrors.h"

#include <string>
#include <vector>

namespace OrvHost {

/// The answer to a question about class \p name, which is none of \p classes.
AnswerError unknownClass(const std::string& name, const std::vector<std::string>& classes);

}

#endif
