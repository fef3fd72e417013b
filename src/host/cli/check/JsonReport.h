// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_CHECK_JSONREPORT_H
#define ORV_HOST_CLI_CHECK_JSONREPORT_H

#include "CheckReport.h"

namespace OrvHost {

/// A JSON document, in one line, for each scenario.
class JsonReport : public CheckReport {
public:
    explicit JsonReport(std::ostream& out) : mOut(out) {}

    void begin(std::size_t scenarios) override;
    void add(const ScenarioResult& result) override;
    void end() override;

private:
    std::ostream& mOut;
};

}

#endif
