// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The translator with its translations written into the journal, in the place of the helper
// library's for every shared object in the process.

#include "MeIdTranslator.h"
#include "Stage.h"

#include <string>

namespace {

const std::string kRootStep = "ManagedElement=";

void record(const char* function, const std::string& dn) {
    using Scripted::arg;
    Scripted::Stage::current().script.record({function, {arg(dn.c_str())}, nullptr});
}

/// Empty if the root of \p dn does not bear \p from.
std::string withRoot(const std::string& dn, const std::string& from, const std::string& to) {
    if (dn.rfind(kRootStep, 0) != 0) {
        return dn;
    }
    const std::size_t comma = dn.find(',');
    const std::string rest = comma == std::string::npos ? "" : dn.substr(comma);
    return dn == kRootStep + from + rest ? kRootStep + to + rest : "";
}

}

std::string Orv::MeIdTranslator::toInternalDn(const std::string& dn) {
    record("Translator.toInternalDn", dn);
    return withRoot(dn, identity(), "1");
}

std::string Orv::MeIdTranslator::toExternalDn(const std::string& dn) {
    record("Translator.toExternalDn", dn);
    return withRoot(dn, "1", identity());
}
