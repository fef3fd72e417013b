// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "OpeningSteps.h"

namespace OrvExtCmRouterService {

OrvReturnT openOperation(bool started, const IdMappings& mappings, const char* dn,
                         std::string& internalDn) {
    if (!started) {
        return OrvNotActive;
    }
    internalDn = mappings.toInternalDn(dn);
    return internalDn.empty() ? OrvNotExist : OrvOk;
}

OrvReturnT openWalk(bool started, const IdMappings& mappings, const char* dn,
                    std::string& internalDn) {
    if (started && *dn == '\0') {
        internalDn.clear();
        return OrvOk;
    }
    return openOperation(started, mappings, dn, internalDn);
}

OrvReturnT openCreation(bool started, const IdMappings& mappings, const char* dn,
                        std::string& internalDn) {
    const OrvReturnT code = openOperation(started, mappings, dn, internalDn);
    return code == OrvNotExist && *dn == '\0' ? OrvOk : code;
}

}
