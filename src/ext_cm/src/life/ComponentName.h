// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_COMPONENTNAME_H
#define ORV_EXT_CM_COMPONENTNAME_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvSpiNames.h"

#include <string_view>

namespace OrvExtCmRouterService {

/// The component's name in the host. One object for the record and all identities that are offered,
/// which the constant of the host's headers is not: that has an address in each source.
inline constexpr char componentName[] = "OrvOamSpiExtCmRouterService";
static_assert(std::string_view(componentName) == OrvOamSpiExtCmRouterService);

/// \p identity with this name, for a table that the component offers.
constexpr VekMgmtSpiInterface_1 offered(const VekMgmtSpiInterface_1& identity) {
    return orvSpiOfferedBy(identity, componentName);
}

}

#endif
