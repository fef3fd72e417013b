// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SOAK_SCENE_H
#define ORV_TESTS_SOAK_SCENE_H

#include "Cast.h"
#include "Ledger.h"
#include "RouterTap.h"
#include "client/Clients.h"
#include "runtime/Host.h"
#include "runtime/WorkListGauge.h"
#include "yang/schema/YangModelReader.h"

#include <optional>

namespace Soak {

class Tally;

/// The reference host with the loaded component and a generated network, and its clients in all
/// three versions.
///
/// Threads: one thread for constructor and destructor; any for everything else, each transaction on
/// one.
class Scene {
public:
    /// Creates the parents of one cast for each of \p writers, the parents of the cast that all
    /// share, and the counters.
    /// \throws std::runtime_error
    Scene(unsigned writers, Tally& tally);
    /// The same on a store that hosts in several processes share: \p log leads to it, and \p host
    /// is the name of this one. The first scene of a store fills it. The log must outlive the
    /// scene. \throws std::runtime_error, OrvHost::HostError
    Scene(unsigned writers, Tally& tally, OrvHost::CommitLog& log, const std::string& host);

    /// The network from which all scenes start.
    static void loadNetwork(OrvHost::MoStore& store);

    OrvHost::Host& host() { return *mHost; }
    /// What the component keeps on purpose.
    OrvHost::WorkListGauge::Size workList() const { return mGauge->size(); }
    const Cast& ownCast(unsigned writer) const { return mCasts[writer]; }
    const Cast& sharedCast() const { return mCasts.back(); }

    /// A carrier whose attribute `configuredMaxTxPower` is incremented.
    static std::string counterDn(std::size_t counter);

    OrvHost::Client& client3() { return mClients->version3(); }
    OrvHost::Client& client3_1() { return mClients->version3_1(); }
    OrvHost::Client& client1() { return mClients->version1(); }

    /// Creates the parents of a cast. Throws OperationError.
    void createUnits(unsigned long txHandle, const Cast& cast);

private:
    Scene(unsigned writers, Tally& tally, OrvHost::CommitLog* log, const std::string& host);

    void startComponent();
    void makeStage();

    OrvHost::YangModel mModel;
    std::vector<Cast> mCasts;
    // The functions of both are in the router's tables, and the component uses those until it is
    // unloaded.
    std::optional<OrvHost::WorkListGauge> mGauge;
    std::optional<RouterTap> mTap;
    std::unique_ptr<OrvHost::Host> mHost;
    std::optional<OrvHost::Clients> mClients;
};

}

#endif
