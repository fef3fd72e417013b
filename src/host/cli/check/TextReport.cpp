// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TextReport.h"

#include "base/Counted.h"
#include "cli/output/AlignedText.h"

#include <cstdio>

namespace OrvHost {

namespace {

std::string secondsText(double seconds) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f s", seconds);
    return text;
}

std::string indented(const std::string& text) {
    std::string result;
    for (const char character : text) {
        result += character;
        result += character == '\n' ? "  " : "";
    }
    return result;
}

}

void TextReport::begin(std::size_t scenarios) {
    mScenarios = scenarios;
}

void TextReport::add(const ScenarioResult& result) {
    mOut << (result.isPassed() ? "ok      " : "FAILED  ") << result.name << " ("
         << counted(result.commands, "command") << ", " << secondsText(result.seconds) << ")\n";
    for (const ScenarioFailure& failure : result.failures) {
        mOut << "  " << result.placeOf(failure) << ": " << indented(withoutControls(failure.text))
             << '\n';
    }
    mOut.flush();
    mFailed += result.isPassed() ? 0 : 1;
}

void TextReport::end() {
    mOut << counted(mScenarios, "scenario") << ", " << mFailed << " failed" << std::endl;
}

}
