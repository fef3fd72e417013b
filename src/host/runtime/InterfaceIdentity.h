// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_RUNTIME_INTERFACEIDENTITY_H
#define ORV_HOST_RUNTIME_INTERFACEIDENTITY_H

#include "OrvMgmtSpiInterface_1.h"

#include <string>

namespace OrvHost {

/// True if \p offered satisfies \p wanted. A null field of \p wanted matches anything; a null field
/// of \p offered matches only a null field.
bool satisfies(const VekMgmtSpiInterface_1& offered, const VekMgmtSpiInterface_1& wanted);

/// For messages: "Component/Interface version 1", with "any" for a null field.
std::string identityText(const VekMgmtSpiInterface_1& identity);

}

#endif
