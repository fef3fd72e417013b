// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_COMPONENTENTRY_H
#define ORV_EXT_CM_COMPONENTENTRY_H

#include "OrvMgmtSpiInterfacePortal.h"
#include "OrvReturn.h"

/// \file
/// What a host finds in the shared object. Everything else it reaches through the component record
/// that is registered here, and through the interfaces that the record names.

extern "C" {

/// Registers the component and initialises it. Called first, and again if the host likes. The text
/// is ignored. OrvFailure if the host has no portal of version "1", or the code with which the
/// portal refused. The host must not call start before this has returned. Exceptions pass.
__attribute__((visibility("default"))) OrvReturnT
orvLCMinit(OrvMgmtSpiInterfacePortalAccessor* accessor, const char* argument);

/// Takes the registration back, if it was made at a portal of version "3". The service lives on
/// until the process ends.
__attribute__((visibility("default"))) void orvLCMterminate();
}

#endif
