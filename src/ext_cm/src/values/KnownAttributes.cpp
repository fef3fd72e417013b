// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "values/KnownAttributes.h"

#include "DnUtil.h"

#include <cstring>
#include <string_view>

namespace OrvExtCmRouterService {

namespace {

constexpr std::string_view rootClass = "ManagedElement";

}

// An empty text is accepted in every version.
bool IdSlot::isRefused() const {
    if (text == nullptr) {
        return isSet;
    }
    return *text != '\0' && !Orv::DnUtil::validateMoNamingAttr(text);
}

bool isRootId(const char* attrName, const char* dn) {
    return attrName != nullptr && *attrName == 'm' &&
           std::strcmp(attrName, "managedElementId") == 0 &&
           std::strncmp(dn, rootClass.data(), rootClass.size()) == 0 &&
           std::strchr(dn, ',') == nullptr;
}

std::string externalRootId(const IdMappings& mappings, const char* id) {
    std::string dn(rootClass);
    dn.append("=").append(id);
    const std::string external = mappings.toExternalDn(dn);
    // Without a "=" this is the whole text: npos + 1 is 0.
    return external.substr(external.find('=') + 1);
}

}
