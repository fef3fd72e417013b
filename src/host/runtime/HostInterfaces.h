// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_RUNTIME_HOSTINTERFACES_H
#define ORV_HOST_RUNTIME_HOSTINTERFACES_H

#include "OrvMgmtSpiInterface_1.h"
#include "OrvSpiNames.h"

#include <array>

namespace OrvHost {

/// Interfaces that components require but that this host implements without any function: events,
/// log and trace. Each record is the identity alone. Log and trace go through Orv::LoggingWrapper;
/// this host has no events.
class HostInterfaces {
public:
    const std::array<VekMgmtSpiInterface_1, 3>& all() const { return mIdentities; }

private:
    std::array<VekMgmtSpiInterface_1, 3> mIdentities{
        {OrvOamSpiEventRouter_1_Id,
         orvSpiOfferedBy(OrvMwSpiLog_1_Id, "OrvMwSpiLogService"),
         {"VekMwSpiTraceService", VekMwSpiTrace_Id.interfaceName, "2"}}};
};

}

#endif
