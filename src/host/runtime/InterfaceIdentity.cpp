// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "InterfaceIdentity.h"

#include <cstring>

namespace OrvHost {

namespace {

bool fieldSatisfies(const char* offered, const char* wanted) {
    if (wanted == nullptr) {
        return true;
    }
    return offered != nullptr && std::strcmp(offered, wanted) == 0;
}

std::string fieldText(const char* field) {
    return field != nullptr ? field : "any";
}

}

bool satisfies(const VekMgmtSpiInterface_1& offered, const VekMgmtSpiInterface_1& wanted) {
    return fieldSatisfies(offered.interfaceName, wanted.interfaceName) &&
           fieldSatisfies(offered.componentName, wanted.componentName) &&
           fieldSatisfies(offered.interfaceVersion, wanted.interfaceVersion);
}

std::string identityText(const VekMgmtSpiInterface_1& identity) {
    return fieldText(identity.componentName) + "/" + fieldText(identity.interfaceName) +
           " version " + fieldText(identity.interfaceVersion);
}

}
