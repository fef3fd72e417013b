// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Report.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace OrvValidate {

namespace {

const char* word(Verdict verdict) {
    switch (verdict) {
    case Verdict::Passed:
        return "ok";
    case Verdict::Failed:
        return "FAILED";
    case Verdict::Crashed:
        return "CRASHED";
    case Verdict::TimedOut:
        return "TIMED OUT";
    }
    return "unknown";
}

std::string indented(const std::string& text, const std::string& indent) {
    std::string result;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        result += indent + line + "\n";
    }
    return result;
}

std::string seconds(std::chrono::milliseconds duration) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", static_cast<double>(duration.count()) / 1000);
    return text;
}

// What the formats hold without escapes: a component may print any bytes.
std::string printable(std::string text) {
    std::replace_if(
        text.begin(), text.end(),
        [](unsigned char c) { return c != '\n' && (c < ' ' || c >= 0x7f); }, '?');
    return text;
}

std::string escapeXml(const std::string& text) {
    std::string escaped;
    for (const char character : printable(text)) {
        switch (character) {
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '&':
            escaped += "&amp;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += character;
        }
    }
    return escaped;
}

void writeText(const std::vector<Finding>& findings, std::ostream& out) {
    for (const auto& [which, result] : findings) {
        out << word(result.verdict) << "  " << which.fullName() << " (" << seconds(result.duration)
            << " s)\n";
        if (result.verdict != Verdict::Passed) {
            out << "    " << result.reason << "\n" << indented(result.story, "    ");
        }
    }
    out << summary(findings) << "\n";
}

void writeTap(const std::vector<Finding>& findings, std::ostream& out) {
    out << "TAP version 14\n1.." << findings.size() << "\n";
    std::size_t number = 0;
    for (const auto& [which, result] : findings) {
        const bool isPassed = result.verdict == Verdict::Passed;
        out << (isPassed ? "ok " : "not ok ") << ++number << " - " << which.fullName() << "\n";
        if (!isPassed) {
            out << "  ---\n  verdict: \"" << word(result.verdict) << "\"\n  reason: \""
                << result.reason << "\"\n  duration_ms: " << result.duration.count()
                << "\n  story: |2\n"
                << indented(printable(result.story), "    ") << "  ...\n";
        }
    }
}

std::string attribute(const std::string& name, const std::string& value) {
    return " " + name + "=\"" + escapeXml(value) + "\"";
}

// "Suite.Case" or "Set/Suite.Case/Parameter": readers of the format group by what precedes the dot.
std::string suiteOf(const Case& which) {
    return which.group + "." + which.name.substr(0, which.name.find('.'));
}

std::string caseOf(const Case& which) {
    return which.name.substr(which.name.find('.') + 1);
}

void writeJUnit(const std::vector<Finding>& findings, std::ostream& out) {
    const auto failed = static_cast<std::size_t>(
        std::count_if(findings.begin(), findings.end(), [](const Finding& finding) {
            return finding.result.verdict == Verdict::Failed;
        }));
    std::chrono::milliseconds all{0};
    for (const Finding& finding : findings) {
        all += finding.result.duration;
    }
    const std::string sums = attribute("name", "orv-validate") +
                             attribute("tests", std::to_string(findings.size())) +
                             attribute("failures", std::to_string(failed)) +
                             attribute("errors", std::to_string(countFailed(findings) - failed)) +
                             attribute("time", seconds(all));
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites" << sums << ">\n  <testsuite"
        << sums << ">\n";
    for (const auto& [which, result] : findings) {
        out << "    <testcase" << attribute("classname", suiteOf(which))
            << attribute("name", caseOf(which)) << attribute("time", seconds(result.duration));
        if (result.verdict == Verdict::Passed) {
            out << "/>\n";
            continue;
        }
        const std::string element = result.verdict == Verdict::Failed ? "failure" : "error";
        out << ">\n      <" << element << attribute("message", result.reason) << ">"
            << escapeXml(result.story) << "</" << element << ">\n    </testcase>\n";
    }
    out << "  </testsuite>\n</testsuites>\n";
}

}

std::vector<std::string> reportFormats() {
    return {"text", "tap", "junit"};
}

void writeReport(const std::string& format, const std::vector<Finding>& findings,
                 std::ostream& out) {
    if (format == "tap") {
        writeTap(findings, out);
    } else if (format == "junit") {
        writeJUnit(findings, out);
    } else {
        writeText(findings, out);
    }
}

std::string summary(const std::vector<Finding>& findings) {
    return std::to_string(findings.size()) + (findings.size() == 1 ? " case, " : " cases, ") +
           std::to_string(countFailed(findings)) + " failed";
}

std::size_t countFailed(const std::vector<Finding>& findings) {
    return static_cast<std::size_t>(
        std::count_if(findings.begin(), findings.end(), [](const Finding& finding) {
            return finding.result.verdict != Verdict::Passed;
        }));
}

}
