// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_COMPONENTNAME_H
#define ORV_EXT_CM_COMPONENTNAME_H

namespace OrvExtCmRouterService {

/// The component's name in the host: one constant for all identities that it offers.
inline constexpr char componentName[] = "OrvOamSpiExtCmRouterService";

}

#endif
