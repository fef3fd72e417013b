// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RuleCheck.h"

namespace OrvHost {

std::string toText(const RuleViolation& violation) {
    std::string text = violation.dn.empty() ? "the top level" : violation.dn;
    text += ": ";
    if (!violation.attribute.empty()) {
        text += "attribute '" + violation.attribute + "': ";
    }
    text += violation.text;
    if (!violation.tag.empty()) {
        text += " (error-app-tag " + violation.tag + ")";
    }
    return text;
}

}
