// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_VALIDATE_REPORT_H
#define ORV_VALIDATE_REPORT_H

#include "Case.h"

#include <ostream>
#include <string>
#include <vector>

namespace OrvValidate {

struct Finding {
    Case which;
    CaseResult result;
};

/// "text", "tap", "junit".
std::vector<std::string> reportFormats();

/// Writes \p findings on \p out in one of these formats.
void writeReport(const std::string& format, const std::vector<Finding>& findings,
                 std::ostream& out);

/// "1630 cases, 2 failed".
std::string summary(const std::vector<Finding>& findings);

std::size_t countFailed(const std::vector<Finding>& findings);

}

#endif
