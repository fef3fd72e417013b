// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// orv-validate: runs the cases of the component tests against any build of the component.

#include "Case.h"
#include "LibraryCheck.h"
#include "Report.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

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

std::vector<Finding> runAll(const std::vector<Case>& cases, const Options& options) {
    std::vector<Finding> findings(cases.size());
    std::atomic<std::size_t> next{0};
    std::mutex mutex;
    std::exception_ptr problem;
    const auto work = [&] {
        for (std::size_t index = next++; index < cases.size(); index = next++) {
            try {
                findings[index] = {cases[index],
                                   runCase(cases[index], std::chrono::seconds(options.seconds))};
            } catch (...) {
                const std::lock_guard<std::mutex> lock(mutex);
                problem = std::current_exception();
                next = cases.size();
            }
        }
    };
    const unsigned int jobs = options.jobs != 0 ? static_cast<unsigned int>(options.jobs)
                                                : std::max(1U, std::thread::hardware_concurrency());
    std::vector<std::thread> threads;
    for (unsigned int job = 0; job < jobs; ++job) {
        threads.emplace_back(work);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    if (problem) {
        std::rethrow_exception(problem);
    }
    return findings;
}

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
    // NOLINTEND(concurrency-mt-unsafe)
}

int report(const std::vector<Finding>& findings, const Options& options) {
    if (options.reportFile.empty()) {
        writeReport(options.format, findings, std::cout);
    } else {
        std::ofstream file(options.reportFile);
        writeReport(options.format, findings, file);
        file.close();
        if (!file) {
            return complain(kUsage, options.reportFile + " cannot be written");
        }
        std::cout << summary(findings) << "\n";
    }
    return countFailed(findings) == 0 ? kPassed : kFailed;
}

bool areOfOneProgram(const std::vector<Case>& cases) {
    return std::all_of(cases.begin(), cases.end(),
                       [&](const Case& which) { return which.program == cases.front().program; });
}

int run(const Options& options) {
    clearTestVariables();
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
    const std::string problem = whyNotLoadable(library);
    if (!problem.empty()) {
        return complain(kNotLoadable, options.library + ": " + problem);
    }
    setEnvironment(library, files);
    if (!options.isInProcess) {
        return report(runAll(cases, options), options);
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
    } catch (const std::exception& error) {
        return complain(kUsage, error.what());
    }
}
