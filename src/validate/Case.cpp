// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Case.h"

#include "ChildProcess.h"
#include "Story.h"
#include "StoryLayout.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include <fnmatch.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvValidate {

namespace {

namespace fs = std::filesystem;

constexpr std::chrono::seconds kListingLimit{60};

struct Group {
    const char* name;
    const char* program;
};

// Some cases need a program that replaces a part of the helper library, so there are several.
const Group kGroups[] = {
    {"calls", "component_test"},
    {"translation", "component_translation_test"},
    {"hostile", "component_translator_test"},
    {"children", "component_children_test"},
    {"locks", "component_locks_test"},
    {"faults", "component_faults_test"},
    {"threads", "component_threads_test"},
};

bool matches(const Case& which, const std::vector<std::string>& filters) {
    return filters.empty() || std::any_of(filters.begin(), filters.end(), [&](const auto& filter) {
               return fnmatch(filter.c_str(), which.fullName().c_str(), 0) == 0;
           });
}

bool isSuite(const std::string& line) {
    return !line.empty() && line.front() != ' ' && line.find(' ') == std::string::npos &&
           line.back() == '.';
}

// A suite stands at the beginning of a line and ends with a dot; its cases are indented. What
// follows a # is the value of a parameter.
std::vector<Case> parseListing(const Group& group, const std::string& program,
                               const std::string& text) {
    std::vector<Case> cases;
    std::istringstream lines(text);
    std::string suite;
    for (std::string line; std::getline(lines, line);) {
        const std::string item = line.substr(0, line.find("  #"));
        if (isSuite(item)) {
            suite = item;
        } else if (item.rfind("  ", 0) == 0 && !suite.empty()) {
            cases.push_back({group.name, program, suite + item.substr(2)});
        }
    }
    return cases;
}

bool beginsWith(const std::string& line, const char* text) {
    return line.rfind(text, 0) == 0;
}

// The lines between those that frame a case; all if it has not even begun.
std::string storyIn(const std::string& output) {
    std::string story;
    std::istringstream lines(output);
    bool isInside = false;
    bool hasBegun = false;
    for (std::string line; std::getline(lines, line);) {
        if (beginsWith(line, "[ RUN      ]")) {
            isInside = true;
            hasBegun = true;
        } else if (beginsWith(line, "[  FAILED  ]")) {
            isInside = false;
        } else if (isInside) {
            story += line + "\n";
        }
    }
    return hasBegun ? story : output;
}

// A component that ends the process with status 0 must not make a case pass.
bool saysPassed(const std::string& output) {
    return output.find("[  PASSED  ] 1 test.") != std::string::npos;
}

// ", in orvLCMinit", or nothing if the component was not being called. The names come from memory
// that the component can write into: in a reason they must be words.
std::string placeOf(const Story& story) {
    std::string place;
    for (const std::string& name : story.underWay()) {
        place += place.empty() ? ", in " : ", ";
        std::copy_if(name.begin(), name.end(), std::back_inserter(place), [](unsigned char each) {
            return std::isalnum(each) != 0 || each == '_' || each == '.' || each == ' ';
        });
    }
    return place;
}

void judge(const ChildEnd& end, const Story& story, std::chrono::seconds limit,
           CaseResult& result) {
    if (end.isInTime && end.status == 0 && saysPassed(end.output)) {
        return;
    }
    const std::string said = storyIn(end.output);
    if (end.isInTime && !WIFSIGNALED(end.status) &&
        end.output.find("[  FAILED  ]") != std::string::npos) {
        result.verdict = Verdict::Failed;
        result.reason = "an expectation was not met";
        result.story = said + story.steps();
        return;
    }
    if (!end.isInTime) {
        result.verdict = Verdict::TimedOut;
        result.reason = "not done after " + std::to_string(limit.count()) + " seconds";
    } else {
        result.verdict = Verdict::Crashed;
        result.reason = WIFSIGNALED(end.status)
                            ? breakdown(end.status)
                            : "the process ended in the middle of the case, with status " +
                                  std::to_string(WEXITSTATUS(end.status));
    }
    result.reason += placeOf(story);
    result.story = said + story.text();
}

}

CaseFiles findCaseFiles() {
    const fs::path here = fs::read_symlink("/proc/self/exe").parent_path();
    const fs::path installed = (here / ORV_VALIDATE_CASES).lexically_normal();
    const CaseFiles places[] = {
        {here, here / ORV_VALIDATE_PROBE_IN_BUILD},
        {installed, installed / ORV_VALIDATE_PROBE},
    };
    for (const CaseFiles& files : places) {
        if (fs::exists(fs::path(files.programs) / kGroups[0].program) && fs::exists(files.probe)) {
            return files;
        }
    }
    throw std::runtime_error("the programs with the cases are neither in " + here.string() +
                             " nor in " + installed.string());
}

std::vector<Case> listCases(const CaseFiles& files, const std::vector<std::string>& filters) {
    std::vector<Case> cases;
    for (const Group& group : kGroups) {
        const std::string program = fs::path(files.programs) / group.program;
        const ChildEnd end = runChild({program, "--gtest_list_tests"}, kListingLimit);
        const std::string problem = end.isInTime ? breakdown(end.status) : "no list in time";
        const std::vector<Case> all = parseListing(group, program, end.output);
        if (!problem.empty() || all.empty()) {
            throw std::runtime_error(
                (program + " lists no cases: ").append(problem).append("\n").append(end.output));
        }
        std::copy_if(all.begin(), all.end(), std::back_inserter(cases),
                     [&](const Case& which) { return matches(which, filters); });
    }
    return cases;
}

CaseResult runCase(const Case& which, std::chrono::seconds limit) {
    const auto start = std::chrono::steady_clock::now();
    CaseResult result;
    const Story story;
    const ChildEnd end =
        runChild({which.program, "--gtest_color=no", "--gtest_filter=" + which.name}, limit,
                 story.descriptor(), kStoryDescriptor);
    judge(end, story, limit, result);
    result.duration = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - start);
    return result;
}

void becomeCases(const std::vector<Case>& cases) {
    std::string filter;
    for (const Case& which : cases) {
        filter += (filter.empty() ? "" : ":") + which.name;
    }
    const std::vector<std::string> arguments{cases.front().program, "--gtest_filter=" + filter};
    execv(arguments.front().c_str(), argumentPointers(arguments).data());
    throw std::system_error(errno, std::generic_category(), arguments.front());
}

}
