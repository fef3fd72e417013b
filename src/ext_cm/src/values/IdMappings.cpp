// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "values/IdMappings.h"

namespace OrvExtCmRouterService {

IdMappings::IdMappings(Orv::MeIdTranslator* translator) : _translator(translator) {}

std::string IdMappings::toInternalDn(const std::string& dn) const {
    return _translator->toInternalDn(dn);
}

std::string IdMappings::toExternalDn(const std::string& dn) const {
    return _translator->toExternalDn(dn);
}

std::string IdMappings::convertDn(const std::string& dn, DnConversion direction) const {
    return direction == ToInternal ? toInternalDn(dn) : toExternalDn(dn);
}

const char* IdMappings::rootIdentity() const {
    return _translator->identity();
}

}
