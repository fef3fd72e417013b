// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef CELL_STATE_CELLSTATECOMPONENT_H
#define CELL_STATE_CELLSTATECOMPONENT_H

#include "CellStateInterceptor.h"

#include <orv/Component.h>

/// The component as the host sees it. It offers no interface; while it is started its interceptor
/// is in the repository.
///
/// The interceptor lives as long as the shared object is loaded. That is longer than anything that
/// may still use it after a stop.
///
/// Threads: as the base class; the host starts and stops it on one thread while no operation runs.
class CellStateComponent : public Orv::Component<CellStateComponent> {
public:
    CellStateComponent();

private:
    OrvReturnT initialize(const char* argument) override;
    void terminate() override;
    OrvReturnT start(OrvStateChangeReason reason) override;
    OrvReturnT stop(OrvStateChangeReason reason) override;

    VekMgmtSpiInterface_1 mRepositoryIdentity;
    CellStateInterceptor mInterceptor;
    bool mEntered = false;
};

#endif
