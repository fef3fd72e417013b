// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_CHECK_TAPREPORT_H
#define ORV_HOST_CLI_CHECK_TAPREPORT_H

#include "CheckReport.h"

namespace OrvHost {

/// Test Anything Protocol, version 14, which readers of version 13 accept as well: a test for each
/// scenario, with a YAML block if it failed.
class TapReport : public CheckReport {
public:
    explicit TapReport(std::ostream& out) : mOut(out) {}

    void begin(std::size_t scenarios) override;
    void add(const ScenarioResult& result) override;
    void end() override;

private:
    std::ostream& mOut;
    std::size_t mNumber = 0;
};

}

#endif
