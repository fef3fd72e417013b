// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_STAGE_H
#define ORV_TESTS_COMPONENT_SUPPORT_STAGE_H

#include "Iterations.h"
#include "Model.h"
#include "OrvMgmtSpiInterfacePortal.h"
#include "OrvOamSpiManagedObject_1.h"
#include "OrvOamSpiManagedObject_3.h"
#include "OrvOamSpiTransaction_1.h"
#include "Results.h"
#include "Script.h"
#include "VekMgmtSpiThreadContext_2.h"
#include "VekOamSpiManagedObject_3_1.h"
#include "VekOamSpiModelRepository_4.h"
#include "World.h"

#include <iosfwd>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace Scripted {

/// What a scripted host can have or lack.
enum class Part {
    Portal1,
    Portal3,
    Router1,
    Router3,
    Router3_1,
    VekRouter3, ///< the version "3" router under the service name of version "3_1"
    ModelRepository,
    ThreadContext,
    TransactionTable
};

/// The part's name, in what GoogleTest prints.
void PrintTo(Part part, std::ostream* out);

/// What the functions behind the host's tables work on. A table function is handed no object, so
/// there is one stage at a time, which they find by current().
///
/// Threads: set up by the test on one thread; after that the members guard themselves.
struct Stage {
    Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;
    ~Stage();

    static Stage& current();

    bool has(Part part) const { return missing.count(part) == 0; }

    Script script;
    Results results{script};
    Model model;
    World world{[this](const std::string& moc, const std::string& attribute) {
        return model.unset(moc, attribute);
    }};
    Iterations iterations;
    std::set<Part> missing;

    /// What registerComponent was given and unregisterComponent not; null: nothing.
    OrvMgmtSpiComponent_1* registered = nullptr;
    /// What registerComponent was given last, even if the call was refused.
    OrvMgmtSpiComponent_1* lastRecord = nullptr;

    /// Called by the thread context for each message that it takes.
    void addMessage(const std::string& text);
    std::vector<std::string> messages() const;

private:
    mutable std::mutex mMutex;
    std::vector<std::string> mMessages;
    static Stage* sCurrent;
};

// The host's tables. Their functions record the call, then answer from the current stage.
OrvMgmtSpiInterfacePortalAccessor* portalAccessor();
/// The host's lookup as Orv::Portal calls it.
OrvReturnT orvPortalLookup(VekMgmtSpiInterface_1 id, void** result);
OrvOamSpiTransaction_1* transactionTable();
VekMgmtSpiThreadContext_2* threadContextTable();
VekOamSpiModelRepository_4* modelRepositoryTable();
OrvOamSpiManagedObject_1* router1Table();
OrvOamSpiManagedObject_3* router3Table();
OrvOamSpiManagedObject_3* vekRouter3Table();
VekOamSpiManagedObject_3_1* router3_1Table();

}

#endif
