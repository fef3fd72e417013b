// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_COMPONENTENTRY_H
#define ORV_EXT_CM_COMPONENTENTRY_H

#include "OrvMgmtSpiInterfacePortal.h"
#include "OrvReturn.h"

/// \file
/// What a host finds in the shared object, by dlsym. Everything else it reaches through the
/// component record that is registered here, and through the interfaces that the record names. What
/// comes before and after: OrvHostGuide.h, 3 and 4. Conventions: OrvConventions.h.

extern "C" {

/// Registers the component and initialises it. Called first, and may be called again. The text
/// is ignored and may be null. \p accessor is the host's until the shared object is closed.
/// OrvFailure if it is null or the host has no portal of version "1", or the code with which the
/// portal refused. The host must not call start before this has returned. It looks up no table but
/// the portals: all others are looked up by start. Exceptions pass.
__attribute__((visibility("default"))) OrvReturnT
orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char* argument);

/// Takes the registration back, if it was made at a portal of version "3". Called when the
/// component is stopped, also after an orvLCMinit that failed. The service lives on until the
/// process ends. Exceptions pass.
__attribute__((visibility("default"))) void orvLCMterminate();
}

#endif
