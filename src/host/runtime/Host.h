// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_RUNTIME_HOST_H
#define ORV_HOST_RUNTIME_HOST_H

#include "ComponentLoader.h"
#include "ComponentRegistry.h"
#include "HostInterfaces.h"
#include "PortalTables.h"
#include "model/Model.h"
#include "repository/ModelRepository.h"
#include "router/CmRouter.h"
#include "store/MoStore.h"
#include "transactions/ThreadContext.h"
#include "transactions/TransactionService.h"

#include <string>
#include <vector>

namespace OrvHost {

struct HostOptions {
    /// The external identity of the ManagedElement at the root: the preferred one, or if it is
    /// empty the fallback. In internal DNs the identity is always "1".
    std::string preferredIdentity;
    std::string fallbackIdentity = "1";
    PortalVersions portals{};
    /// What is checked at the validation of transactions besides the model's own rules; null:
    /// nothing. It must outlive the host. Data that is put into the store is not checked: see
    /// DataSet.
    const RuleCheck* rules = nullptr;
};

/// A small management framework: model, objects, router, transactions, portal and components in one
/// object.
///
/// Order of use: build it over a model; put data into store(); load components; start them; let
/// clients work through the tables that find() returns; shut down. Many tables are functions
/// without an object argument, so only one host at a time can exist in a process.
///
/// Threads: one thread builds, loads, starts and shuts down, while no client works. Clients may use
/// any number of threads, each transaction on one thread at a time.
class Host {
public:
    /// \p model must outlive the host.
    explicit Host(const Model& model, const HostOptions& options = {});
    /// Shuts down.
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    const Model& model() const { return mStore.model(); }
    /// To fill with data before the start: see DataSet.
    MoStore& store() { return mStore; }
    CmRouter& router() { return mRouter; }
    /// \p watcher is called with the changes of each commit, those included that components made to
    /// keep associations in step; see CommitFeed. End the subscription before the host.
    [[nodiscard]] CommitFeed::Subscription watch(CommitWatcher watcher) {
        return mStore.watch(std::move(watcher));
    }
    ThreadContext& threadContext() { return mThreadContext; }
    TransactionService& transactions() { return mTransactions; }
    ComponentRegistry& components() { return mComponents; }
    ComponentLoader& loader() { return mLoader; }

    /// Opens the shared object at \p path and runs its orvLCMinit. Throws ComponentLoadError.
    void loadComponent(const std::string& path, const std::string& argument = {});

    /// Starts all components that are not started, in the order of their dependencies, and reports
    /// on each component.
    std::vector<ComponentReport> start();

    /// Aborts open transactions, stops the components in the reverse order and closes their shared
    /// objects. Returns the problems, for people. A second call does nothing.
    std::vector<std::string> shutdown();

    /// The table of the host or of a started component under \p id, or null. \p Table is the record
    /// that belongs to that identity.
    template <class Table>
    Table* find(const VekMgmtSpiInterface_1& id) {
        void* table = nullptr;
        return mComponents.find(id, &table) == OrvOk ? static_cast<Table*>(table) : nullptr;
    }

    /// A transaction for reads only: begins in the constructor, and is aborted in the destructor.
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
