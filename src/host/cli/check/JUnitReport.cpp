// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "JUnitReport.h"

#include "XmlEscape.h"

#include <algorithm>
#include <cstdio>

namespace OrvHost {

namespace {

std::string secondsText(double seconds) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", seconds);
    return text;
}

std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

std::string attribute(const std::string& name, const std::string& value) {
    return " " + name + "=\"" + escapeXml(value) + "\"";
}

// Readers of the format expect at most one for each case.
std::string failuresXml(const ScenarioResult& result) {
    const std::string element = result.isBroken ? "error" : "failure";
    std::string message =
        result.placeOf(result.failures.front()) + ": " + firstLine(result.failures.front().text);
    if (result.failures.size() > 1) {
        message += " (and " + std::to_string(result.failures.size() - 1) + " more)";
    }
    std::string all;
    for (const ScenarioFailure& failure : result.failures) {
        all += (all.empty() ? "" : "\n") + result.placeOf(failure) + ": " + failure.text;
    }
    return "      <" + element + attribute("message", message) + ">" + escapeXml(all) + "</" +
           element + ">\n";
}

std::string caseXml(const ScenarioResult& result) {
    const std::string head = "    <testcase" + attribute("classname", "orvhost") +
                             attribute("name", result.name) +
                             attribute("time", secondsText(result.seconds));
    return result.isPassed() ? head + "/>\n"
                             : head + ">\n" + failuresXml(result) + "    </testcase>\n";
}

}

void JUnitReport::begin(std::size_t scenarios) {
    mResults.reserve(scenarios);
}

void JUnitReport::add(const ScenarioResult& result) {
    mResults.push_back(result);
}

void JUnitReport::end() {
    const auto counted = [&](bool isBroken) {
        const auto count =
            std::count_if(mResults.begin(), mResults.end(), [&](const ScenarioResult& result) {
                return !result.isPassed() && result.isBroken == isBroken;
            });
        return std::to_string(count);
    };
    double seconds = 0;
    for (const ScenarioResult& result : mResults) {
        seconds += result.seconds;
    }
    const std::string sums =
        attribute("name", "orvhost check") + attribute("tests", std::to_string(mResults.size())) +
        attribute("failures", counted(false)) + attribute("errors", counted(true)) +
        attribute("time", secondsText(seconds));
    mOut << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites" << sums << ">\n  <testsuite"
         << sums << ">\n";
    for (const ScenarioResult& result : mResults) {
        mOut << caseXml(result);
    }
    mOut << "  </testsuite>\n</testsuites>" << std::endl;
}

}
