// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_BENCH_BENCHHOST_H
#define ORV_BENCH_BENCHHOST_H

#include "OrvOamSpiManagedObject_1.h"
#include "OrvOamSpiManagedObject_3.h"
#include "OrvOamSpiTransactionalResource_2.h"
#include "VekOamSpiManagedObject_3_1.h"
#include "model/Model.h"
#include "runtime/Host.h"

#include <memory>
#include <string>

namespace OrvBench {

/// Ends the process with a message unless \p code is OrvOk: the time of a call that failed would be
/// meaningless.
void check(OrvReturnT code, const char* what);

/// One of the two ways to the same objects, and the form of DNs on it. The calls that are measured
/// are those of the tables themselves: the same on both ways, with values that were made before.
/// Through the client library the time of its conversions would be measured with them.
struct Side {
    const char* name;
    std::string root; ///< DN of the root
    OrvOamSpiManagedObject_1* v1;
    OrvOamSpiManagedObject_3* v3;
    VekOamSpiManagedObject_3_1* v3_1;
    OrvOamSpiTransactionalResource_2* resource;

    /// The DN of an object below the root; \p steps are its steps below the root.
    std::string dn(const std::string& steps) const { return root + "," + steps; }
};

/// The reference host with the component loaded and the objects that all workloads use.
///
///     ManagedElement
///     ├── Mast=0, 1, ... masts()
///     ├── Site=n1, n8, n64 ...   each with so many antennas, Antenna=0, 1, ...; each on a mast
///     └── Site=free              antennas that are on no mast
///
/// A mast's `antennas` and an antenna's `mast` are the two sides of an association. `neighbours`
/// of a mast point to masts and nothing points back. One object lives in a process.
///
/// Threads: as the host. The workloads give each thread its own objects to write.
class BenchHost {
public:
    /// The sizes for which growth is measured; also the numbers of antennas of the sites.
    static constexpr int sizes[] = {1, 8, 64, 512, 4096};
    static constexpr int masts = 4096;
    static constexpr int freeAntennas = 4097;

    /// Loads the component at \p component. Throws the exceptions of the host.
    explicit BenchHost(const std::string& component);
    BenchHost(const BenchHost&) = delete;
    BenchHost& operator=(const BenchHost&) = delete;
    ~BenchHost();

    OrvHost::Host& host() { return *mHost; }

    /// Through the component.
    const Side& component() const { return mComponent; }
    /// Directly to the router.
    const Side& router() const { return mRouter; }

    unsigned long begin();
    void abort(unsigned long txHandle);

private:
    void findTables();

    OrvHost::Model mModel;
    std::unique_ptr<OrvHost::Host> mHost;
    Side mComponent;
    Side mRouter;
};

}

#endif
