// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_VALIDATE_REPORT_H
#define ORV_VALIDATE_REPORT_H

#include "Case.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace OrvValidate {

struct Finding {
    Case which;
    CaseResult result;
};

/// How many cases there are, and how they have ended so far.
struct Totals {
    std::size_t cases = 0;
    std::size_t done = 0;
    std::size_t failed = 0;  ///< an expectation was not met
    std::size_t errors = 0;  ///< a crash, or not done in time
    std::string interrupted; ///< the signal that ended the run early; empty: none
    std::chrono::milliseconds time{0};

    void count(const CaseResult& result);
    std::size_t notPassed() const { return failed + errors; }
    /// "1700 cases, 2 failed".
    std::string text() const;
};

/// A report that is written case by case. One thread at a time.
class Report {
public:
    virtual ~Report() = default;

    virtual void begin(const Totals& totals) = 0;
    virtual void add(const Finding& finding, const Totals& totals) = 0;
    virtual void end(const Totals& totals) = 0;
    /// False: all of it comes with end, since its first line has the totals.
    virtual bool comesCaseByCase() const { return true; }
};

/// "text", "tap", "junit".
std::vector<std::string> reportFormats();

/// A report in one of these formats on \p out, which must outlive it.
std::unique_ptr<Report> makeReport(const std::string& format, std::ostream& out);

}

#endif
