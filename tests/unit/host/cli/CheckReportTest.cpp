// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "cli/check/CheckReport.h"

#include "cli/check/XmlEscape.h"
#include "cli/output/ValueJson.h"

#include <gmock/gmock.h>

#include <sstream>

namespace OrvHost {
namespace {

using testing::HasSubstr;

ScenarioResult passed() {
    return {"good.orv", 3, 0.25, {}, false};
}

ScenarioResult failed() {
    return {"bad#1.orv", 2, 1.5, {{7, "expect: <get>\n  expected: \"a\" & b"}}, false};
}

ScenarioResult broken() {
    return {"broken.orv", 1, 0.0, {{0, "the process was ended by SIGSEGV"}}, true};
}

std::string reported(const std::string& format, const std::vector<ScenarioResult>& results) {
    std::ostringstream out;
    const auto report = makeReport(format, out);
    report->begin(results.size());
    for (const ScenarioResult& result : results) {
        report->add(result);
    }
    report->end();
    return out.str();
}

TEST(CheckReportTest, Text_PassedAndFailed_TellsPlacesAndTheSum) {
    EXPECT_EQ(reported("text", {passed(), failed(), broken()}),
              "ok      good.orv (3 commands, 0.25 s)\n"
              "FAILED  bad#1.orv (2 commands, 1.50 s)\n"
              "  bad#1.orv:7: expect: <get>\n"
              "    expected: \"a\" & b\n"
              "FAILED  broken.orv (1 command, 0.00 s)\n"
              "  broken.orv: the process was ended by SIGSEGV\n"
              "3 scenarios, 2 failed\n");
}

TEST(CheckReportTest, Tap_PassedAndFailed_HasThePlanAndDiagnostics) {
    EXPECT_EQ(reported("tap", {passed(), failed()}),
              "TAP version 14\n"
              "1..2\n"
              "ok 1 - good.orv\n"
              "  ---\n"
              "  duration_ms: 250\n"
              "  commands: 3\n"
              "  ...\n"
              "not ok 2 - bad\\#1.orv\n"
              "  ---\n"
              "  duration_ms: 1500\n"
              "  commands: 2\n"
              "  failures:\n"
              "    - at: \"bad#1.orv:7\"\n"
              "      text: \"expect: <get>\\n  expected: \\\"a\\\" & b\"\n"
              "  ...\n");
}

TEST(CheckReportTest, JUnit_PassedFailedAndBroken_AreCountedAndEscaped) {
    EXPECT_EQ(
        reported("junit", {passed(), failed(), broken()}),
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<testsuites name=\"orvhost check\" tests=\"3\" failures=\"1\" errors=\"1\" "
        "time=\"1.750\">\n"
        "  <testsuite name=\"orvhost check\" tests=\"3\" failures=\"1\" errors=\"1\" "
        "time=\"1.750\">\n"
        "    <testcase classname=\"orvhost\" name=\"good.orv\" time=\"0.250\"/>\n"
        "    <testcase classname=\"orvhost\" name=\"bad#1.orv\" time=\"1.500\">\n"
        "      <failure message=\"bad#1.orv:7: expect: &lt;get&gt;\">bad#1.orv:7: expect: "
        "&lt;get&gt;&#10;  expected: &quot;a&quot; &amp; b</failure>\n"
        "    </testcase>\n"
        "    <testcase classname=\"orvhost\" name=\"broken.orv\" time=\"0.000\">\n"
        "      <error message=\"broken.orv: the process was ended by SIGSEGV\">broken.orv: the "
        "process was ended by SIGSEGV</error>\n"
        "    </testcase>\n"
        "  </testsuite>\n"
        "</testsuites>\n");
}

TEST(CheckReportTest, JUnit_SeveralFailures_AreOneElement) {
    ScenarioResult result = failed();
    result.failures.push_back({9, "get: no"});
    const std::string report = reported("junit", {result});
    EXPECT_THAT(report, testing::HasSubstr("expect: &lt;get&gt; (and 1 more)\">"));
    EXPECT_THAT(report, testing::HasSubstr("&#10;bad#1.orv:9: get: no</failure>"));
    EXPECT_EQ(report.find("<failure "), report.rfind("<failure "));
}

TEST(CheckReportTest, Json_EachScenario_IsADocument) {
    const JsonValue document = JsonValue::parse(reported("json", {failed()}));
    EXPECT_EQ(document.at("scenario"), "bad#1.orv");
    EXPECT_EQ(document.at("passed"), false);
    EXPECT_EQ(document.at("failures").elements().at(0).at("place"), "bad#1.orv:7");
}

TEST(XmlEscapeTest, Text_OfAnyBytes_IsWellFormed) {
    EXPECT_EQ(escapeXml("a<b>&\"c\"\n\t\r"), "a&lt;b&gt;&amp;&quot;c&quot;&#10;&#9;&#13;");
    EXPECT_EQ(escapeXml(std::string("\x01\x00\x1b", 3)), "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_EQ(escapeXml("\xff"), "\xef\xbf\xbd");
    EXPECT_EQ(escapeXml("\xef\xbf\xbf!"), "\xef\xbf\xbd!");
    EXPECT_EQ(escapeXml("h\xc3\xa4user"), "h\xc3\xa4user");
}

}
}
