// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "values/KnownAttributes.h"

#include "DnUtil.h"

namespace OrvExtCmRouterService {

// An empty text is accepted in every version.
bool IdSlot::isRefused() const {
    if (text == nullptr) {
        return isSet;
    }
    return *text != '\0' && !Orv::DnUtil::validateMoNamingAttr(text);
}

std::string externalRootId(const IdMappings& mappings, const char* id) {
    std::string dn(rootClass);
    dn.append("=").append(id);
    const std::string external = mappings.toExternalDn(dn);
    // Without a "=" this is the whole text: npos + 1 is 0.
    return external.substr(external.find('=') + 1);
}

}
