// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// orv-validate: runs the cases of the component tests against any build of the component.

#include "Case.h"
#include "ChildProcess.h"
#include "LibraryCheck.h"
#include "Report.h"
#include "StoryLayout.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <unistd.h>

namespace {

using namespace OrvValidate;

constexpr int kPassed = 0;
constexpr int kFailed = 1;
constexpr int kUsage = 2;
constexpr int kNotLoadable = 3;

struct Options {
    std::string library;
    std::string format = "text";
    std::string reportFile;
    std::vector<std::string> filters;
    bool isList = false;
    bool isInProcess = false;
    int seconds = 30;
    int jobs = 0; ///< 0: one for each processor
};

void declare(CLI::App& app, Options& options) {
    app.set_version_flag("--version", std::string("orv-validate ") + ORV_VALIDATE_VERSION);
    app.add_option("library", options.library, "the component to look at")->type_name("FILE");
    app.add_option("--format", options.format, "text, tap or junit")
        ->check(CLI::IsMember(reportFormats()))
        ->type_name("FORMAT");
    app.add_option("-o,--output", options.reportFile, "the file for the report")->type_name("FILE");
    app.add_option("--filter", options.filters,
                   "only cases whose name matches; * and ? as in file "
                   "names; repeatable")
        ->allow_extra_args(false)
        ->type_name("PATTERN");
    app.add_flag("--list", options.isList, "print the names of the cases and run none");
    app.add_flag("--in-process", options.isInProcess,
                 "run the cases in this process, for a debugger");
    app.add_option("--timeout", options.seconds, "seconds for each case; default 30")
        ->check(CLI::Range(1, 86400))
        ->type_name("SECONDS");
    app.add_option("-j,--jobs", options.jobs,
                   "cases at the same time; default: one for each processor")
        ->check(CLI::Range(1, 1024))
        ->type_name("NUMBER");
}

int complain(int code, const std::string& text) {
    std::cerr << "orv-validate: " << text << std::endl;
    return code;
}

/// The file of -o. What is not written case by case gets its name when it is whole, and a report of
/// an earlier run is gone from the beginning.
class ReportFile {
public:
    ReportFile(const std::string& path, bool isWholeOnly)
        : mPath(path), mWritten(isWholeOnly && isOrdinary(path) ? path + ".part" : path) {
        if (mWritten != mPath) {
            std::filesystem::remove(mPath);
        }
        mOut.open(mWritten);
    }

    std::ostream& stream() { return mOut; }

    /// False if not all could be written.
    bool close() {
        mOut.close();
        std::error_code problem;
        if (mOut && mWritten != mPath) {
            std::filesystem::rename(mWritten, mPath, problem);
        }
        return mOut.good() && !problem;
    }

    bool isGood() const { return mOut.good(); }

private:
    // No device and no pipe, whose names must stay.
    static bool isOrdinary(const std::string& path) {
        const std::filesystem::file_status status = std::filesystem::symlink_status(path);
        return !std::filesystem::exists(status) || std::filesystem::is_regular_file(status);
    }

    std::string mPath;
    std::string mWritten;
    std::ofstream mOut;
};

/// One line on a terminal that says how far the run is.
class Progress {
public:
    explicit Progress(bool isShown) : mIsShown(isShown) {}
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() {
        if (mIsShown) {
            std::cerr << kBeginOfCleanLine << std::flush;
        }
    }

    void show(const Totals& totals) const {
        if (mIsShown) {
            std::cerr << kBeginOfCleanLine << totals.done << " of " << totals.cases << ", "
                      << totals.notPassed() << " failed" << std::flush;
        }
    }

private:
    static constexpr const char* kBeginOfCleanLine = "\r\033[K";
    bool mIsShown;
};

/// Runs the cases, and reports each as it ends.
class Run {
public:
    Run(const std::vector<Case>& cases, const Options& options, Report& report,
        const Progress& progress)
        : mCases(cases), mOptions(options), mReport(report), mProgress(progress) {
        mTotals.cases = cases.size();
    }

    const Totals& all() {
        mReport.begin(mTotals);
        const auto jobs = static_cast<std::size_t>(mOptions.jobs);
        const std::size_t wanted =
            jobs != 0 ? jobs : std::max(1U, std::thread::hardware_concurrency());
        std::vector<std::thread> threads;
        while (threads.size() < std::min(wanted, mCases.size())) {
            threads.emplace_back([this] { work(); });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        if (mProblem) {
            std::rethrow_exception(mProblem);
        }
        mReport.end(mTotals);
        return mTotals;
    }

    int signal() const { return mSignal; }

private:
    void work() {
        for (std::size_t index = mNext++; index < mCases.size(); index = mNext++) {
            try {
                const Case& which = mCases[index];
                take({which, runCase(which, std::chrono::seconds(mOptions.seconds))});
            } catch (const Interrupted& interrupted) {
                const std::lock_guard<std::mutex> lock(mMutex);
                mSignal = interrupted.signal;
                mTotals.interrupted = sigabbrev_np(interrupted.signal);
                mNext = mCases.size();
            } catch (...) {
                const std::lock_guard<std::mutex> lock(mMutex);
                mProblem = std::current_exception();
                mNext = mCases.size();
            }
        }
    }

    void take(const Finding& finding) {
        const std::lock_guard<std::mutex> lock(mMutex);
        mTotals.count(finding.result);
        mReport.add(finding, mTotals);
        mProgress.show(mTotals);
    }

    const std::vector<Case>& mCases;
    const Options& mOptions;
    Report& mReport;
    const Progress& mProgress;
    std::atomic<std::size_t> mNext{0};
    std::mutex mMutex; ///< guards what follows
    Totals mTotals;
    std::exception_ptr mProblem;
    int mSignal = 0;
};

// What somebody has set for tests of their own must not change these cases.
void clearTestVariables() {
    std::vector<std::string> names;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string_view text(*variable);
        if (text.starts_with("GTEST_") || text.starts_with("GMOCK_")) {
            names.emplace_back(text.substr(0, text.find('=')));
        }
    }
    for (const std::string& name : names) {
        unsetenv(name.c_str()); // NOLINT(concurrency-mt-unsafe): no other thread runs yet
    }
}

// The programs with the cases read these.
void setEnvironment(const std::string& library, const CaseFiles& files) {
    // NOLINTBEGIN(concurrency-mt-unsafe): no other thread runs yet
    setenv("ORV_COMPONENT_LIBRARY", library.c_str(), 1);
    setenv("ORV_COMPONENT_PROBE", files.probe.c_str(), 1);
    setenv(kStoryVariable, std::to_string(kStoryDescriptor).c_str(), 1);
    // NOLINTEND(concurrency-mt-unsafe)
}

int runAndReport(const std::vector<Case>& cases, const Options& options) {
    const bool isToFile = !options.reportFile.empty();
    const std::unique_ptr<Report> onOutput = makeReport(options.format, std::cout);
    const bool isCaseByCase = onOutput->comesCaseByCase();
    std::optional<ReportFile> file;
    std::unique_ptr<Report> inFile;
    if (isToFile) {
        file.emplace(options.reportFile, !isCaseByCase);
        if (!file->isGood()) {
            return complain(kUsage, options.reportFile + " cannot be written");
        }
        inFile = makeReport(options.format, file->stream());
    }
    Totals totals;
    int signal = 0;
    {
        const bool isSeenAnyway = !isToFile && isCaseByCase && isatty(STDOUT_FILENO) != 0;
        const Progress progress(isatty(STDERR_FILENO) != 0 && !isSeenAnyway);
        Run run(cases, options, isToFile ? *inFile : *onOutput, progress);
        totals = run.all();
        signal = run.signal();
    }
    if (isToFile) {
        if (!file->close()) {
            return complain(kUsage, options.reportFile + " cannot be written");
        }
        std::cout << totals.text() << std::endl;
    }
    if (signal != 0) {
        endAsIfBy(signal);
    }
    return totals.notPassed() == 0 ? kPassed : kFailed;
}

bool areOfOneProgram(const std::vector<Case>& cases) {
    return std::all_of(cases.begin(), cases.end(),
                       [&](const Case& which) { return which.program == cases.front().program; });
}

int run(const Options& options) {
    clearTestVariables();
    watchForInterruption();
    const CaseFiles files = findCaseFiles();
    const std::vector<Case> cases = listCases(files, options.filters);
    if (cases.empty()) {
        return complain(kUsage, "no case matches --filter; --list shows all names");
    }
    if (options.isList) {
        for (const Case& which : cases) {
            std::cout << which.fullName() << "\n";
        }
        return kPassed;
    }
    if (options.library.empty()) {
        return complain(kUsage, "which component? Expected: orv-validate [OPTIONS] FILE");
    }
    // A name without a directory would be looked for where libraries are installed.
    const std::string library = std::filesystem::absolute(options.library);
    const std::string problem = whyNotLoadable(library, std::chrono::seconds(options.seconds));
    if (!problem.empty()) {
        return complain(kNotLoadable, options.library + ": " + problem);
    }
    setEnvironment(library, files);
    if (!options.isInProcess) {
        return runAndReport(cases, options);
    }
    if (!areOfOneProgram(cases)) {
        return complain(kUsage, "--in-process needs a --filter with cases of one group, such as " +
                                    cases.front().fullName());
    }
    becomeCases(cases);
}

}

int main(int argc, char** argv) {
    try {
        CLI::App app{
            "Runs the component in a scripted host, case by case, and reports what it does "
            "wrong.",
            "orv-validate"};
        Options options;
        declare(app, options);
        try {
            app.parse(argc, argv);
        } catch (const CLI::ParseError& error) {
            return app.exit(error) == 0 ? kPassed : kUsage;
        }
        return run(options);
    } catch (const Interrupted& interrupted) {
        endAsIfBy(interrupted.signal);
    } catch (const std::exception& error) {
        return complain(kUsage, error.what());
    }
}
