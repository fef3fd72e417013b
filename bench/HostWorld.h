// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_BENCH_HOSTWORLD_H
#define ORV_BENCH_HOSTWORLD_H

#include "OrvOamSpiManagedObject_3.h"
#include "Values.h"
#include "model/Model.h"
#include "runtime/Host.h"

#include <memory>
#include <string>
#include <vector>

namespace OrvBench {

/// Ends the process with a message unless \p isTrue: what was measured would mean nothing.
void require(bool isTrue, const char* what);

/// How many references the two attributes of the association must have, and which objects there
/// are at the beginning.
struct HostShape {
    OrvHost::Bounds masts{0, OrvHost::kUnbounded};    ///< of an antenna
    OrvHost::Bounds antennas{0, OrvHost::kUnbounded}; ///< of a mast
    int antennaCount = 0;
    int mastCount = 0;
    bool areMounted = false; ///< antenna n is on mast n
};

/// A host that is new for each measurement, with the component loaded. Calls go through the
/// component's table.
///
///     ManagedElement=1
///     ├── Site=1
///     │   └── Antenna=0, 1, ...   label, height, near (masts, nothing refers back), masts
///     └── Mast=0, 1, ...          label, antennas (the other side of masts)
///
/// One object lives in a process.
class HostWorld {
public:
    HostWorld(const std::string& component, const HostShape& shape);
    HostWorld(const HostWorld&) = delete;
    HostWorld& operator=(const HostWorld&) = delete;

    static std::string site() { return "ManagedElement=1,Site=1"; }
    static std::string antenna(int number);
    static std::string mast(int number);

    OrvHost::Host& host() { return *mHost; }
    const OrvOamSpiManagedObject_3& table() const { return *mTable; }

    unsigned long begin() { return mHost->transactions().begin(); }
    void commit(unsigned long txHandle);
    void abort(unsigned long txHandle);

    void set(unsigned long txHandle, const std::string& dn, const char* attribute,
             const Value3& value) const;
    /// The texts of an attribute.
    std::vector<std::string> texts(unsigned long txHandle, const std::string& dn,
                                   const char* attribute) const;
    unsigned long long count(unsigned long txHandle, const std::string& parent,
                             const char* className) const;

private:
    OrvHost::Model mModel;
    std::unique_ptr<OrvHost::Host> mHost;
    OrvOamSpiManagedObject_3* mTable = nullptr;
};

}

#endif
