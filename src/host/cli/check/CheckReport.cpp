// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "CheckReport.h"

#include "JUnitReport.h"
#include "JsonReport.h"
#include "TapReport.h"
#include "TextReport.h"

namespace OrvHost {

std::vector<std::string> reportFormats() {
    return {"text", "tap", "junit", "json"};
}

std::unique_ptr<CheckReport> makeReport(const std::string& format, std::ostream& out) {
    if (format == "tap") {
        return std::make_unique<TapReport>(out);
    }
    if (format == "junit") {
        return std::make_unique<JUnitReport>(out);
    }
    if (format == "json") {
        return std::make_unique<JsonReport>(out);
    }
    return std::make_unique<TextReport>(out);
}

}
