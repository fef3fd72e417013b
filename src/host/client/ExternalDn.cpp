// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ExternalDn.h"

#include "MeIdTranslator.h"

namespace OrvHost {

std::string externalDn(std::string_view internal) {
    std::string dn(internal);
    std::string external = Orv::MeIdTranslator::instance()->toExternalDn(dn);
    return external.empty() ? dn : external;
}

}
