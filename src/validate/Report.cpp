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

class TextReport : public Report {
public:
    explicit TextReport(std::ostream& out) : mOut(out) {}

    void begin(const Totals&) override {}
    void add(const Finding& finding, const Totals&) override {
        const auto& [which, result] = finding;
        mOut << word(result.verdict) << "  " << which.fullName() << " (" << seconds(result.duration)
             << " s)\n";
        if (result.verdict != Verdict::Passed) {
            mOut << "    " << result.reason << "\n" << indented(result.story, "    ");
        }
        mOut.flush();
    }
    void end(const Totals& totals) override { mOut << totals.text() << std::endl; }

private:
    std::ostream& mOut;
};

class TapReport : public Report {
public:
    explicit TapReport(std::ostream& out) : mOut(out) {}

    void begin(const Totals& totals) override {
        mOut << "TAP version 14\n1.." << totals.cases << std::endl;
    }
    void add(const Finding& finding, const Totals& totals) override {
        const auto& [which, result] = finding;
        const bool isPassed = result.verdict == Verdict::Passed;
        mOut << (isPassed ? "ok " : "not ok ") << totals.done << " - " << which.fullName() << "\n";
        if (!isPassed) {
            mOut << "  ---\n  verdict: \"" << word(result.verdict) << "\"\n  reason: \""
                 << result.reason << "\"\n  duration_ms: " << result.duration.count()
                 << "\n  story: |2\n"
                 << indented(printable(result.story), "    ") << "  ...\n";
        }
        mOut.flush();
    }
    void end(const Totals& totals) override {
        if (!totals.interrupted.empty()) {
            mOut << "Bail out! " << totals.text() << std::endl;
        }
    }

private:
    std::ostream& mOut;
};

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

class JUnitReport : public Report {
public:
    explicit JUnitReport(std::ostream& out) : mOut(out) {}

    void begin(const Totals&) override {}
    bool comesCaseByCase() const override { return false; }
    void add(const Finding& finding, const Totals&) override {
        const auto& [which, result] = finding;
        openCase(suiteOf(which), caseOf(which), result.duration);
        if (result.verdict == Verdict::Passed) {
            mCases << "/>\n";
            return;
        }
        const std::string element = result.verdict == Verdict::Failed ? "failure" : "error";
        mCases << ">\n      <" << element << attribute("message", result.reason) << ">"
               << escapeXml(result.story) << "</" << element << ">\n    </testcase>\n";
    }
    void end(const Totals& totals) override {
        std::size_t cases = totals.done;
        std::size_t errors = totals.errors;
        if (!totals.interrupted.empty()) {
            // A run that was cut short must not look like one in which all is well.
            openCase("orv-validate", "Run", std::chrono::milliseconds(0));
            mCases << ">\n      <error" << attribute("message", totals.text())
                   << "/>\n    </testcase>\n";
            ++cases;
            ++errors;
        }
        const std::string sums =
            attribute("name", "orv-validate") + attribute("tests", std::to_string(cases)) +
            attribute("failures", std::to_string(totals.failed)) +
            attribute("errors", std::to_string(errors)) + attribute("time", seconds(totals.time));
        mOut << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites" << sums
             << ">\n  <testsuite" << sums << ">\n"
             << mCases.str() << "  </testsuite>\n</testsuites>" << std::endl;
    }

private:
    void openCase(const std::string& suite, const std::string& name,
                  std::chrono::milliseconds duration) {
        mCases << "    <testcase" << attribute("classname", suite) << attribute("name", name)
               << attribute("time", seconds(duration));
    }

    std::ostream& mOut;
    std::ostringstream mCases;
};

}

void Totals::count(const CaseResult& result) {
    ++done;
    failed += result.verdict == Verdict::Failed ? 1 : 0;
    errors += result.verdict == Verdict::Crashed || result.verdict == Verdict::TimedOut ? 1 : 0;
    time += result.duration;
}

std::string Totals::text() const {
    const std::string all = std::to_string(cases) + (cases == 1 ? " case" : " cases");
    const std::string bad = std::to_string(notPassed()) + " failed";
    return interrupted.empty() ? all + ", " + bad
                               : "ended by SIG" + interrupted + " after " + std::to_string(done) +
                                     " of " + all + ", " + bad;
}

std::vector<std::string> reportFormats() {
    return {"text", "tap", "junit"};
}

std::unique_ptr<Report> makeReport(const std::string& format, std::ostream& out) {
    if (format == "tap") {
        return std::make_unique<TapReport>(out);
    }
    if (format == "junit") {
        return std::make_unique<JUnitReport>(out);
    }
    return std::make_unique<TextReport>(out);
}

}
