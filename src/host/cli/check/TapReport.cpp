// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TapReport.h"

#include "base/JsonText.h"

namespace OrvHost {

namespace {

// In TAP a description ends at an unescaped hash, and is one line.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char character : text) {
        if (character == '#' || character == '\\') {
            result += '\\';
        }
        result += character == '\n' || character == '\r' ? ' ' : character;
    }
    return result;
}

// Every JSON string is a YAML string, too.
std::string yamlText(const std::string& text) {
    return jsonText(text);
}

}

void TapReport::begin(std::size_t scenarios) {
    mOut << "TAP version 14\n1.." << scenarios << std::endl;
}

void TapReport::add(const ScenarioResult& result) {
    mOut << (result.isPassed() ? "ok " : "not ok ") << ++mNumber << " - " << escaped(result.name)
         << '\n';
    mOut << "  ---\n  duration_ms: " << static_cast<long>(result.seconds * 1000)
         << "\n  commands: " << result.commands << '\n';
    if (!result.isPassed()) {
        mOut << "  failures:\n";
    }
    for (const ScenarioFailure& failure : result.failures) {
        mOut << "    - at: " << yamlText(result.placeOf(failure)) << '\n';
        mOut << "      text: " << yamlText(failure.text) << '\n';
    }
    mOut << "  ..." << std::endl;
}

void TapReport::end() {
    mOut.flush();
}

}
