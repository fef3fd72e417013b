// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_CHECK_CHECKREPORT_H
#define ORV_HOST_CLI_CHECK_CHECKREPORT_H

#include "ScenarioResult.h"

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace OrvHost {

/// Writes the results of scenarios in some format: call begin, then add for each, then end.
class CheckReport {
public:
    virtual ~CheckReport() = default;

    virtual void begin(std::size_t scenarios) = 0;
    virtual void add(const ScenarioResult& result) = 0;
    virtual void end() = 0;
};

/// "text", "tap", "junit", "json".
std::vector<std::string> reportFormats();

/// A report of one of these formats, on \p out, which must outlive it.
std::unique_ptr<CheckReport> makeReport(const std::string& format, std::ostream& out);

}

#endif
