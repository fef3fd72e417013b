// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "JsonReport.h"

#include "cli/output/ValueJson.h"

namespace OrvHost {

void JsonReport::begin(std::size_t) {}

void JsonReport::add(const ScenarioResult& result) {
    JsonValue failures = JsonValue::array();
    for (const ScenarioFailure& failure : result.failures) {
        failures.add({{"place", result.placeOf(failure)}, {"text", failure.text}});
    }
    mOut << toLine({{"command", "check"},
                    {"scenario", result.name},
                    {"passed", result.isPassed()},
                    {"commands", result.commands},
                    {"seconds", result.seconds},
                    {"failures", failures}})
         << std::endl;
}

void JsonReport::end() {}

}
