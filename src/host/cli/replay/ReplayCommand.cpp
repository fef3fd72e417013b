// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ReplayCommand.h"

#include "Replay.h"
#include "cli/output/ValueJson.h"
#include "cli/setup/ComponentFinder.h"

#include <stdexcept>

namespace OrvHost {

namespace {

using OrvRecord::Difference;
using OrvRecord::PlayReport;

std::string componentOf(const Options& options) {
    if (!options.components.empty()) {
        return options.components.front();
    }
    return options.extCm.empty() ? findExtCm() : options.extCm;
}

std::string counted(std::uint64_t number, const char* what) {
    return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

void print(const PlayReport& report, const std::string& file, std::ostream& out) {
    if (report.difference) {
        const Difference& difference = *report.difference;
        out << file << ": differs after " << counted(report.calls, "call") << ", at byte "
            << difference.position << ", thread " << difference.thread << "\n  in        "
            << difference.inside << "\n  after     "
            << (difference.before.empty() ? "nothing" : difference.before) << "\n  recorded  "
            << difference.recorded << "\n  came      " << difference.came << '\n';
        return;
    }
    out << file << ": " << counted(report.calls, "call") << " of the component, "
        << counted(report.hostCalls, "call") << " of the host, "
        << counted(report.transactions, "transaction") << ": no difference"
        << (report.problem.empty() ? "" : " so far") << '\n';
}

void printJson(const PlayReport& report, const std::string& file, std::ostream& out) {
    JsonValue document{{"command", "replay"},
                       {"file", file},
                       {"calls", report.calls},
                       {"hostCalls", report.hostCalls},
                       {"transactions", report.transactions},
                       {"problem", report.problem}};
    if (report.difference) {
        const Difference& difference = *report.difference;
        document["difference"] = {{"byte", difference.position},     {"thread", difference.thread},
                                  {"in", difference.inside},         {"after", difference.before},
                                  {"recorded", difference.recorded}, {"came", difference.came}};
    }
    out << toLine(document) << '\n';
}

}

ExitStatus replay(const Options& options, std::ostream& out) {
    OrvRecord::TransactionWatch watch;
    if (options.showsTransactions) {
        watch = [&](std::uint64_t handle, std::uint64_t calls) {
            out << "transaction " << handle << ": " << counted(calls, "call") << '\n';
        };
    }
    PlayReport report;
    try {
        report = OrvRecord::playRecording(options.recording, componentOf(options), watch);
    } catch (const std::runtime_error& failure) {
        throw LoadError(failure.what());
    }
    (options.json ? printJson : print)(report, options.recording, out);
    if (!report.problem.empty()) {
        throw LoadError(options.recording + ": " + report.problem);
    }
    return report.difference ? ExitCommandError : ExitOk;
}

}
