// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OpeningSteps.h"

namespace OrvExtCmRouterService {

namespace {

// The top level, and not a missing text.
bool isEmpty(const char* dn) {
    return dn != nullptr && *dn == '\0';
}

}

OrvReturnT openOperation(bool started, bool argumentsAreReadable, const IdMappings& mappings,
                         const char* dn, std::string& internalDn) {
    if (!started) {
        return OrvNotActive;
    }
    if (dn == nullptr || !argumentsAreReadable) {
        return OrvFailure;
    }
    internalDn = mappings.toInternalDn(dn);
    return internalDn.empty() ? OrvNotExist : OrvOk;
}

OrvReturnT openWalk(bool started, bool argumentsAreReadable, const IdMappings& mappings,
                    const char* dn, std::string& internalDn) {
    if (started && argumentsAreReadable && isEmpty(dn)) {
        internalDn.clear();
        return OrvOk;
    }
    return openOperation(started, argumentsAreReadable, mappings, dn, internalDn);
}

OrvReturnT openCreation(bool started, bool argumentsAreReadable, const IdMappings& mappings,
                        const char* dn, std::string& internalDn) {
    const OrvReturnT code = openOperation(started, argumentsAreReadable, mappings, dn, internalDn);
    return code == OrvNotExist && isEmpty(dn) ? OrvOk : code;
}

}
