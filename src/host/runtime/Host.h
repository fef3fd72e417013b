// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_RUNTIME_HOST_H
#define ORV_HOST_RUNTIME_HOST_H

#include "ComponentLoader.h"
#include "ComponentRegistry.h"
#include "HostInterfaces.h"
#include "PortalTables.h"
#include "model/Model.h"
#include "model/ModelRepository.h"
#include "store/CmRouter.h"
#include "store/MoStore.h"
#include "store/ThreadContext.h"
#include "store/TransactionService.h"

#include <string>
#include <vector>

namespace OrvHost {

struct HostOptions {
    /// How clients know the ManagedElement at the root: the preferred identity, or else the
    /// fallback. Inside it is always "1".
    std::string preferredIdentity;
    std::string fallbackIdentity = "1";
    PortalVersions portals;
};

/// A management framework in small: model, objects, router, transactions, portal and components,
/// put together.
///
/// Life: build it over a model; put data into store(); load components; start them; let clients
/// work through the tables that find() gives; shut down. Many tables are served through statics, so
/// one host at a time lives in a process.
///
/// Threads: building, loading, starting and shutting down, one thread, while no client works.
/// Clients on any number of threads, each transaction on one at a time.
class Host {
public:
    /// \p model must outlive the host.
    explicit Host(const Model& model, const HostOptions& options = {});
    /// Shuts down.
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    const Model& model() const { return mStore.model(); }
    /// For data at start: see DataSet.
    MoStore& store() { return mStore; }
    CmRouter& router() { return mRouter; }
    ThreadContext& threadContext() { return mThreadContext; }
    TransactionService& transactions() { return mTransactions; }
    ComponentRegistry& components() { return mComponents; }
    ComponentLoader& loader() { return mLoader; }

    /// Opens the shared object at \p path and runs its orvLCMinit. Throws ComponentLoadError.
    void loadComponent(const std::string& path, const std::string& argument = {});

    /// Starts all components that are not started, in the order of their dependencies, and reports
    /// on each.
    std::vector<ComponentReport> start();

    /// Aborts open transactions, stops the components in the reverse order and closes their shared
    /// objects. Returns the problems on the way, for people. A second call does nothing.
    std::vector<std::string> shutdown();

    /// The table of the host or of a started component under \p id, or null. \p Table is the record
    /// that belongs to that identity.
    template <class Table>
    Table* find(const VekMgmtSpiInterface_1& id) {
        void* table = nullptr;
        return mComponents.find(id, &table) == OrvOk ? static_cast<Table*>(table) : nullptr;
    }

    /// A transaction that is only for reading: begins here, and ends with this object without a
    /// trace.
    class ReadTransaction {
    public:
        explicit ReadTransaction(Host& host);
        ~ReadTransaction();
        ReadTransaction(const ReadTransaction&) = delete;
        ReadTransaction& operator=(const ReadTransaction&) = delete;

        unsigned long handle() const { return mHandle; }

    private:
        Host& mHost;
        unsigned long mHandle;
    };

private:
    void offerTables();

    ThreadContext mThreadContext;
    MoStore mStore;
    CmRouter mRouter;
    TransactionService mTransactions;
    ModelRepository mModelRepository;
    HostInterfaces mIdentityOnly;
    ComponentRegistry mComponents;
    PortalTables mPortal;
    ComponentLoader mLoader;
};

}

#endif
