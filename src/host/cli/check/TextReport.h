// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_CHECK_TEXTREPORT_H
#define ORV_HOST_CLI_CHECK_TEXTREPORT_H

#include "CheckReport.h"

namespace OrvHost {

/// For people: a line for each scenario, with its failures below, and a line with the totals.
class TextReport : public CheckReport {
public:
    explicit TextReport(std::ostream& out) : mOut(out) {}

    void begin(std::size_t scenarios) override;
    void add(const ScenarioResult& result) override;
    void end() override;

private:
    std::ostream& mOut;
    std::size_t mScenarios = 0;
    std::size_t mFailed = 0;
};

}

#endif
