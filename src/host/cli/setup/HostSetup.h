// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SETUP_HOSTSETUP_H
#define ORV_HOST_CLI_SETUP_HOSTSETUP_H

#include "Options.h"
#include "client/Clients.h"
#include "runtime/Host.h"
#include "runtime/LogSink.h"
#include "runtime/WorkListGauge.h"
#include "store/LogFollower.h"
#include "yang/schema/YangModelReader.h"

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace OrvHost {

class DataSet;
class ProgressBar;
class SqliteLog;

/// Everything that must exist before the first command can run: log, model, host, data, components
/// and the clients, built in this order and destroyed in the reverse order. One thread.
class HostSetup {
public:
    /// Throws LoadError with all problems of what was to be loaded. Notes for the user go to \p
    /// errors, which is borrowed.
    HostSetup(const Options& options, std::ostream& errors);
    /// Problems while shutting down go to the error stream.
    ~HostSetup();
    HostSetup(const HostSetup&) = delete;
    HostSetup& operator=(const HostSetup&) = delete;

    Host& host() { return *mHost; }
    Clients& clients() { return *mClients; }
    LogSink& log() { return *mLog; }
    /// What the component keeps for good; null but for a server.
    const WorkListGauge* workList() const { return mWorkList.get(); }
    /// Null if no file keeps the commits.
    SqliteLog* storeFile() { return mStoreFile; }
    /// What the modules say but the model does not represent.
    const std::vector<Problem>& modelNotes() const { return mModel.notes; }
    /// How files hold the objects of the model.
    const std::shared_ptr<const YangSchema>& schema() const { return mModel.schema; }
    /// What has read the model.
    const YangModelReader& modelReader() const { return mReader; }

private:
    void openLog(const Options& options);
    void readModel(const Options& options);
    void reportNotes(const Options& options);
    void openStore(const Options& options);
    void loadData(const Options& options);
    void openSharedStore(const Options& options);
    void requireRoom(const Options& options) const;
    void useStore(const Options& options);
    void gatherOld(const Options& options, DataSet& data, ProgressBar& bar);
    void gather(const Options& options, DataSet& data, ProgressBar& bar);
    void checkAndRepair(const Options& options, DataSet& data, ProgressBar& bar);
    void loadComponents(const Options& options);
    void startComponents();

    std::ostream& mErrors;
    std::unique_ptr<LogSink> mLog;
    YangModelReader mReader;
    YangModel mModel;
    std::shared_ptr<const RuleCheck> mRules; ///< of the modules; null if there are none
    std::unique_ptr<CommitLog> mStore;       ///< null without --store
    SqliteLog* mStoreFile = nullptr;         ///< the same, if it is a file
    bool mIsStoreNew = false;
    std::unique_ptr<WorkListGauge> mWorkList; ///< null but for a server; the host's router calls it
    std::unique_ptr<Host> mHost;
    std::unique_ptr<LogFollower> mFollower; ///< null if no other host can commit
    std::unique_ptr<Clients> mClients;
};

}

#endif
