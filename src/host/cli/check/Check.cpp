// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Check.h"

#include "CheckReport.h"
#include "ScenarioProcess.h"
#include "base/AtomicFile.h"

#include <algorithm>
#include <cerrno>
#include <fstream>

namespace OrvHost {

namespace {

/// The reports of one run: the chosen format goes to the file, if one is given; standard output
/// then gets a report as well.
class Reports {
public:
    Reports(const Options& options, std::ostream& out) : mFileName(options.reportFile) {
        const std::string format =
            options.reportFormat.empty() ? (options.json ? "json" : "text") : options.reportFormat;
        if (options.reportFile.empty()) {
            mReports.push_back(makeReport(format, out));
            return;
        }
        errno = 0;
        mFile.open(options.reportFile);
        if (!mFile) {
            throw LoadError(fileErrorText(options.reportFile, "cannot be opened for writing"));
        }
        mReports.push_back(makeReport(format, mFile));
        mReports.push_back(makeReport(options.json ? "json" : "text", out));
    }

    template <class Step>
    void forEach(Step&& step) {
        for (const auto& report : mReports) {
            step(*report);
        }
    }

    void end() {
        errno = 0;
        forEach([](CheckReport& report) { report.end(); });
        if (mFile.is_open() && !mFile.flush()) {
            throw LoadError(fileErrorText(mFileName, "cannot be written to its end"));
        }
    }

private:
    std::string mFileName;
    std::ofstream mFile;
    std::vector<std::unique_ptr<CheckReport>> mReports;
};

ExitStatus statusOf(const ScenarioResult& result) {
    if (result.isPassed()) {
        return ExitOk;
    }
    return result.isBroken ? ExitLoad : ExitCommandError;
}

}

ExitStatus checkScenarios(const Options& options, std::ostream& out) {
    Reports reports(options, out);
    ExitStatus status = ExitOk;
    reports.forEach([&](CheckReport& report) { report.begin(options.scenarios.size()); });
    for (const std::string& file : options.scenarios) {
        const ScenarioResult result = runScenarioProcess(options, file);
        reports.forEach([&](CheckReport& report) { report.add(result); });
        status = std::max(status, statusOf(result));
    }
    reports.end();
    return status;
}

}
