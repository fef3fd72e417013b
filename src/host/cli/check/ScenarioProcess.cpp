// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ScenarioProcess.h"

#include "Scenario.h"
#include "base/Counted.h"
#include "cli/errors/CliErrors.h"
#include "cli/output/ValueJson.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <system_error>

#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvHost {

namespace {

constexpr std::chrono::milliseconds kLongestWait{60000};

[[noreturn]] void failWith(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

/// A pipe from the scenario's process to the one that waits for it.
class Pipe {
public:
    Pipe() {
        if (pipe(mEnds) != 0) {
            failWith("pipe");
        }
    }
    ~Pipe() {
        closeEnd(0);
        closeEnd(1);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    void closeReader() { closeEnd(0); }
    void closeWriter() { closeEnd(1); }

    void write(const std::string& text) const {
        std::size_t done = 0;
        while (done < text.size()) {
            const ssize_t count = ::write(mEnds[1], text.data() + done, text.size() - done);
            if (count < 0 && errno != EINTR) {
                failWith("write");
            }
            done += count > 0 ? static_cast<std::size_t>(count) : 0;
        }
    }

    using Clock = std::chrono::steady_clock;

    /// All that is written until the end, or until \p deadline; \p isInTime receives which.
    std::string readUntil(Clock::time_point deadline, bool& isInTime) const {
        std::string text;
        char buffer[4096];
        for (;;) {
            isInTime = waitUntil(deadline);
            if (!isInTime) {
                return text;
            }
            const ssize_t count = ::read(mEnds[0], buffer, sizeof buffer);
            if (count == 0) {
                return text;
            }
            if (count > 0) {
                text.append(buffer, static_cast<std::size_t>(count));
            } else if (errno != EINTR) {
                failWith("read");
            }
        }
    }

private:
    /// True as soon as there is something to read.
    bool waitUntil(Clock::time_point deadline) const {
        for (;;) {
            const auto rest =
                std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
            const bool isLong = rest > kLongestWait;
            const auto wait = isLong ? kLongestWait : std::max(rest, std::chrono::milliseconds(0));
            pollfd waiting{mEnds[0], POLLIN, 0};
            const int count = poll(&waiting, 1, static_cast<int>(wait.count()));
            if (count < 0 && errno != EINTR) {
                failWith("poll");
            }
            if (count != 0) {
                return true;
            }
            if (!isLong) {
                return false;
            }
        }
    }

    void closeEnd(int end) {
        if (mEnds[end] >= 0) {
            close(mEnds[end]);
            mEnds[end] = -1;
        }
    }

    int mEnds[2]{-1, -1};
};

JsonValue toJson(const ScenarioResult& result) {
    JsonValue failures = JsonValue::array();
    for (const ScenarioFailure& failure : result.failures) {
        failures.add({{"line", failure.line}, {"text", failure.text}});
    }
    return {{"commands", result.commands}, {"broken", result.isBroken}, {"failures", failures}};
}

// What the process has sent: a document for each command that it began, and one at its end.
struct ProcessReport {
    int lastLine = 0; // of the last command; 0: none was begun
    std::size_t commands = 0;
    std::optional<JsonValue> result;
};

ProcessReport parseReport(const std::string& text) {
    ProcessReport report;
    std::size_t begin = 0;
    for (std::size_t end = text.find('\n'); end != std::string::npos;
         end = text.find('\n', begin)) {
        const JsonValue document = JsonValue::parse(text.substr(begin, end - begin));
        if (document.isNumber()) {
            report.lastLine = document.get<int>();
            ++report.commands;
        } else {
            report.result = document;
        }
        begin = end + 1;
    }
    return report;
}

int waitFor(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            failWith("waitpid");
        }
    }
    return status;
}

// Why a process ended, if it failed; empty if it ended normally.
std::string breakdown(int status) {
    if (WIFSIGNALED(status)) {
        const char* name = sigabbrev_np(WTERMSIG(status));
        return "the process was ended by SIG" +
               (name != nullptr ? std::string(name) : std::to_string(WTERMSIG(status)));
    }
    const int code = WEXITSTATUS(status);
    return code == 0 ? std::string() : "the process ended with status " + std::to_string(code);
}

// When the checking process ends, even by a signal to that process alone, the running scenario
// ends, too.
void endWithParent(pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The parent may have ended before the request was made.
    if (getppid() != parent) {
        _exit(1);
    }
}

[[noreturn]] void runInChild(const Options& options, const std::string& file, pid_t parent,
                             Pipe& pipe) {
    pipe.closeReader();
    endWithParent(parent);
    // What components print must not be mixed into the report.
    dup2(STDERR_FILENO, STDOUT_FILENO);
    const ScenarioResult result =
        runScenario(options, file, [&](int line) { pipe.write(std::to_string(line) + "\n"); });
    pipe.write(toLine(toJson(result)) + "\n");
    std::exit(0); // NOLINT(concurrency-mt-unsafe): no other thread runs
}

ScenarioResult resultOf(const std::string& file, const ProcessReport& report, int status) {
    ScenarioResult result;
    result.name = file;
    result.commands = report.commands;
    if (report.result) {
        result.commands = report.result->at("commands").get<std::size_t>();
        result.isBroken = report.result->at("broken").get<bool>();
        for (const JsonValue& failure : report.result->at("failures").elements()) {
            result.failures.push_back(
                {failure.at("line").get<int>(), failure.at("text").get<std::string>()});
        }
    }
    const std::string problem = breakdown(status);
    if (!problem.empty()) {
        result.isBroken = true;
        // Without a result, the process failed at the last line that it reported.
        result.failures.push_back({report.result ? 0 : report.lastLine, problem});
    }
    return result;
}

}

namespace {

ScenarioResult notDone(const Options& options, const std::string& file,
                       const ProcessReport& report) {
    ScenarioResult result;
    result.name = file;
    result.commands = report.commands;
    result.failures.push_back(
        {report.lastLine, "not done after " + counted(options.checkSeconds, "second") +
                              ", the limit of --timeout" +
                              (report.commands == 0 ? ": no command was begun; the model, the data "
                                                      "and the components were still being loaded"
                                                    : "")});
    return result;
}

std::chrono::steady_clock::time_point deadlineOf(const Options& options,
                                                 std::chrono::steady_clock::time_point start) {
    return options.checkSeconds == 0 ? std::chrono::steady_clock::time_point::max()
                                     : start + std::chrono::seconds(options.checkSeconds);
}

}

ScenarioResult runScenarioProcess(const Options& options, const std::string& file) {
    const auto start = std::chrono::steady_clock::now();
    // Otherwise both processes would print the text that is still in the buffer.
    std::cout.flush();
    Pipe pipe;
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0) {
        failWith("fork");
    }
    if (child == 0) {
        runInChild(options, file, parent, pipe);
    }
    // Reading ends when the last writer has closed its end. It must come before waiting, because a
    // child that writes into a full pipe does not end.
    pipe.closeWriter();
    bool isInTime = true;
    const ProcessReport report = parseReport(pipe.readUntil(deadlineOf(options, start), isInTime));
    ScenarioResult result;
    if (isInTime) {
        result = resultOf(file, report, waitFor(child));
    } else {
        kill(child, SIGKILL);
        waitFor(child);
        result = notDone(options, file, report);
    }
    result.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return result;
}

}
