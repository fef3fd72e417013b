// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_BUILD_SAMPLE_SMALLHOST_H
#define ORV_TESTS_BUILD_SAMPLE_SMALLHOST_H

#include "CellRouter.h"
#include "OrvMgmtSpiComponent_1.h"
#include "OrvMgmtSpiInterfacePortal.h"

#include <string>
#include <vector>

/// The smallest host that component and sample can live in: a portal of version "1", a router, and
/// a transaction table. What is loaded is registered, and found by others once it is.
///
/// The destructor stops, terminates and closes what was loaded, the last first. One lives at a
/// time.
class SmallHost {
public:
    SmallHost();
    ~SmallHost();
    SmallHost(const SmallHost&) = delete;
    SmallHost& operator=(const SmallHost&) = delete;

    /// Opens a shared object and calls its orvLCMinit. Throws std::runtime_error.
    OrvMgmtSpiComponent_1& load(const std::string& path);

    /// The table that is offered under this identity; null if there is none.
    void* find(const VekMgmtSpiInterface_1& identity);

    CellRouter router;

private:
    struct Loaded {
        void* library;
        OrvMgmtSpiComponent_1* record;
    };

    static void* getPortal(const char* version);
    static OrvReturnT getInterface(VekMgmtSpiInterface_1 id, void** result);
    static OrvReturnT registerComponent(OrvMgmtSpiComponent_1* component);

    OrvMgmtSpiInterfacePortal_1 mPortal = {};
    OrvMgmtSpiInterfacePortalAccessor mAccessor = {};
    std::vector<VekMgmtSpiInterface_1*> mHostTables;
    OrvMgmtSpiComponent_1* mRegistered = nullptr;
    std::vector<Loaded> mLoaded;
};

#endif
