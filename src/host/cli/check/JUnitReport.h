// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_CHECK_JUNITREPORT_H
#define ORV_HOST_CLI_CHECK_JUNITREPORT_H

#include "CheckReport.h"

namespace OrvHost {

/// JUnit XML: one suite with a case for each scenario. It is written at the end, since the totals
/// come first in the file.
class JUnitReport : public CheckReport {
public:
    explicit JUnitReport(std::ostream& out) : mOut(out) {}

    void begin(std::size_t scenarios) override;
    void add(const ScenarioResult& result) override;
    void end() override;

private:
    std::ostream& mOut;
    std::vector<ScenarioResult> mResults;
};

}

#endif
