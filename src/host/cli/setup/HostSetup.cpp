// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "HostSetup.h"

#include "ComponentFinder.h"
#include "LoggingWrapper.h"
#include "StoreTarget.h"
#include "base/Counted.h"
#include "base/Join.h"
#include "base/RootObject.h"
#include "cli/errors/CliErrors.h"
#include "cli/output/AlignedText.h"
#include "cli/output/ProgressBar.h"
#include "model/ValueCheck.h"
#include "runtime/DataSet.h"
#include "store_postgresql/PostgresqlLog.h"
#include "store_postgresql/PostgresqlTools.h"
#include "store_sqlite/SqliteLog.h"
#include "store_sqlite/StoreTools.h"
#include "yang/instances/InstanceDataReader.h"
#include "yang/rules/YangRules.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <iostream>
#include <sstream>

#include <unistd.h>

namespace OrvHost {

namespace {

// How long a commit of another host may stay unseen.
constexpr std::chrono::milliseconds kFollowPause{20};

void failIfAny(const std::vector<std::string>& problems) {
    if (!problems.empty()) {
        throw LoadError(joinedLines(problems, [](const std::string& line) { return line; }));
    }
}

void printNotes(const std::vector<std::string>& notes, ProgressBar& bar) {
    constexpr std::size_t kMostNotes = 20;
    const std::size_t shown = std::min(notes.size(), kMostNotes);
    for (std::size_t at = 0; at < shown; ++at) {
        bar.print("note: " + notes[at]);
    }
    if (shown < notes.size()) {
        bar.print("note: and " + std::to_string(notes.size() - shown) + " more of this kind");
    }
}

std::string withoutBlanks(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    return text;
}

/// The names between the commas.
std::vector<std::string> namesIn(const std::string& text) {
    std::vector<std::string> names;
    std::istringstream stream(withoutBlanks(text));
    for (std::string name; std::getline(stream, name, ',');) {
        if (!name.empty()) {
            names.push_back(name);
        }
    }
    return names;
}

// Data that is saved gives the element at the root this name.
void checkIdentity(const Model& model, const std::string& identity) {
    const auto moc = model.findClass(kRootClass);
    if (!moc || !model.classes[*moc].isTopLevel) {
        return;
    }
    const ClassDef& root = model.classes[*moc];
    const std::string reason =
        whyRefused(root.findAttribute(root.namingAttribute)->type, Value(identity));
    if (!reason.empty()) {
        throw LoadError("--me-id: the key of " + root.name + " (" + toText(root.source) +
                        ") does not permit the identity '" + identity + "': " + reason);
    }
}

// How messages on other hosts name this one.
std::string hostName() {
    std::array<char, 256> name{};
    const bool isKnown = gethostname(name.data(), name.size() - 1) == 0;
    return std::string(isKnown ? name.data() : "an unknown host") + ", process " +
           std::to_string(getpid());
}

void logWarning(const std::string& text) {
    constexpr unsigned int kLevel = 4;
    Orv::LoggingWrapper& log = *Orv::LoggingWrapper::instance();
    if (log.get_level() >= kLevel) {
        log.trace_v2_printf(Orv::Trace::Common, static_cast<VekMwSpiTraceLevelT>(kLevel), "store",
                            "follow", 0, "%s", text.c_str());
    }
}

// Before another one is created.
void requireOldStore(const Options& options) {
    if (!options.migrateFrom.empty()) {
        readStoreInfo(options.migrateFrom);
    }
    if (options.isStoreOld) {
        readStoreInfo(options.store);
    }
}

}

HostSetup::HostSetup(const Options& options, std::ostream& errors) : mErrors(errors) {
    openLog(options);
    readModel(options);
    checkIdentity(mModel.model, options.meId.empty() ? options.meIdFallback : options.meId);
    openStore(options);
    HostOptions hostOptions;
    hostOptions.preferredIdentity = options.meId;
    hostOptions.fallbackIdentity = options.meIdFallback;
    hostOptions.rules = mRules.get();
    mHost = std::make_unique<Host>(mModel.model, hostOptions);
    loadData(options);
    useStore(options);
    if (options.isServer) {
        mWorkList = std::make_unique<WorkListGauge>(*mHost);
    }
    loadComponents(options);
    startComponents();
    mClients = std::make_unique<Clients>(*mHost);
    mClients->choose(options.interfaceVersion);
}

HostSetup::~HostSetup() {
    mFollower.reset();
    mClients.reset();
    if (mHost) {
        for (const std::string& problem : mHost->shutdown()) {
            mErrors << "orvhost: " << withoutControls(problem) << '\n';
        }
    }
    if (mLog && !mLog->isComplete()) {
        mErrors << "orvhost: the log is not complete: lines could not be written\n";
    }
}

void HostSetup::openLog(const Options& options) {
    Orv::LoggingWrapper::instance()->setLevel(options.logLevel);
    try {
        mLog = options.logFile.empty()
                   ? std::make_unique<LogSink>(std::cerr, options.logFormat)
                   : std::make_unique<LogSink>(options.logFile, options.logFormat);
    } catch (const std::runtime_error& failure) {
        throw LoadError(failure.what());
    }
}

void HostSetup::readModel(const Options& options) {
    if (options.models.empty()) {
        throw LoadError("no model was named: -m MODULE, or a project file (orvhost init)");
    }
    for (const auto& directory : options.searchPath) {
        mReader.searchIn(directory);
    }
    for (const std::string& module : options.models) {
        mReader.load(module);
    }
    for (const std::string& features : options.features) {
        const std::size_t colon = features.find(':');
        mReader.selectFeatures(withoutBlanks(features.substr(0, colon)),
                               namesIn(features.substr(colon + 1)));
    }
    if (options.noFeatures) {
        mReader.withoutFeatures();
    }
    if (options.yangRules) {
        mReader.withAllRules();
    }
    try {
        mModel = mReader.read();
        mRules = rulesOf(mModel.schema);
    } catch (const ModelError& failure) {
        throw LoadError(failure.what());
    }
    reportNotes(options);
}

void HostSetup::reportNotes(const Options& options) {
    const std::size_t count = mModel.notes.size();
    if (count == 0) {
        return;
    }
    if (options.strict) {
        const auto toLine = [](const Problem& note) { return toText(note); };
        throw LoadError("the model leaves out what follows, and --strict permits nothing of it\n" +
                        joinedLines(mModel.notes, toLine));
    }
    mErrors << "orvhost: note: the model leaves out " << counted(count, "statement")
            << " of the modules; 'model --notes' lists " << (count == 1 ? "it" : "them") << '\n';
}

// Before data is read, which may take long.
void HostSetup::openStore(const Options& options) {
    if (options.store.empty()) {
        return;
    }
    try {
        if (isPostgresql(options.store)) {
            openSharedStore(options);
        } else {
            requireOldStore(options);
            auto file = std::make_unique<SqliteLog>(
                options.store, mModel.model,
                options.storeSyncsEachCommit ? SqliteLog::Sync::Full : SqliteLog::Sync::Normal);
            mStoreFile = file.get();
            mStore = std::move(file);
        }
        mIsStoreNew = mStore->isNew();
    } catch (const HostError& failure) {
        throw LoadError(failure.what());
    }
    requireRoom(options);
}

void HostSetup::openSharedStore(const Options& options) {
    const std::string target = postgresqlTarget(options.store);
    if (options.createsStore) {
        initPostgresqlStore(target, mModel.model);
    }
    if (!options.migrateFrom.empty()) {
        readStoreInfo(options.migrateFrom);
    }
    mStore = std::make_unique<PostgresqlLog>(target, mModel.model);
}

void HostSetup::requireRoom(const Options& options) const {
    if (!options.migrateFrom.empty() && !mIsStoreNew) {
        throw LoadError("the store " + options.store +
                        " has had objects already; a new one was expected");
    }
    if (options.isDataGiven && !mIsStoreNew) {
        throw LoadError("the store " + options.store +
                        " has objects already, and data (-d) goes into a new one only; leave "
                        "out -d, or use the command load");
    }
}

void HostSetup::useStore(const Options& options) {
    if (!mStore) {
        return;
    }
    const bool isShared = mStoreFile == nullptr;
    try {
        mHost->store().attach(*mStore, isShared ? hostName() : std::string());
    } catch (const HostError& failure) {
        throw LoadError(failure.what());
    }
    if (!isShared) {
        return;
    }
    if (options.isFresh) {
        mHost->store().setFresh();
    }
    mFollower = std::make_unique<LogFollower>(mHost->store(), kFollowPause, logWarning);
}

void HostSetup::loadData(const Options& options) {
    if (mStore && !mIsStoreNew) {
        if (!options.data.empty()) {
            mErrors << "orvhost: note: the data is left out: the store has objects already\n";
        }
        return; // what the store holds was checked when it came in
    }
    DataSet data(mModel.model);
    ProgressBar bar(mErrors, isatty(STDERR_FILENO) == 1);
    gather(options, data, bar);
    gatherOld(options, data, bar);
    bar.update("checking", data.size(), 0);
    checkAndRepair(options, data, bar);
    failIfAny(data.moveInto(mHost->store(), [&](std::size_t done, std::size_t all) {
        bar.update("storing", done, all);
    }));
}

// What the other model calls differently is found by the check of the data.
void HostSetup::gatherOld(const Options& options, DataSet& data, ProgressBar& bar) {
    if (options.migrateFrom.empty()) {
        return;
    }
    bar.update("reading", 0, 0);
    try {
        readObjects(options.migrateFrom,
                    [&](const std::string& dn, std::vector<NamedValue> values) {
                        data.add({dn, std::move(values), {options.migrateFrom, 0}});
                    });
    } catch (const HostError& failure) {
        throw LoadError(failure.what());
    }
}

void HostSetup::gather(const Options& options, DataSet& data, ProgressBar& bar) {
    InstanceDataReader reader(mModel.schema);
    reader.nameRoot(kRootName);
    reader.onProgress([&](const DataProgress& progress) {
        bar.update("reading", progress.bytesDone, progress.bytesInAll);
    });
    if (options.skipUnknown) {
        reader.skipUnknown();
    }
    bar.update("reading", 0, 0);
    try {
        reader.read(options.data, [&](DataObject&& object, const std::string& file) {
            data.add({std::move(object.dn), std::move(object.attributes), {file, object.line}});
        });
    } catch (const InstanceDataError& failure) {
        throw LoadError(failure.what());
    }
    for (const Problem& note : reader.notes()) {
        bar.print("note: " + toText(note));
    }
}

void HostSetup::checkAndRepair(const Options& options, DataSet& data, ProgressBar& bar) {
    if (options.repair) {
        for (const std::string& line : data.repair()) {
            bar.print("repaired: " + line);
        }
    }
    std::vector<std::string> problems = data.unreachable();
    for (std::string& problem : problems) {
        problem += " See --me-id.";
    }
    // What an old store holds was left so by its clients.
    const bool isAsIs = options.asIs || !options.migrateFrom.empty();
    const DataReport report = data.check(isAsIs ? Associations::AsTheyAre : Associations::InStep);
    problems.insert(problems.end(), report.problems.begin(), report.problems.end());
    if (report.isAboutAssociations) {
        problems.emplace_back("--repair adds the missing sides of associations; --as-is takes "
                              "associations as they are.");
    }
    printNotes(report.notes, bar);
    failIfAny(problems);
    if (mRules) {
        bar.update("checking rules", data.size(), 0);
        failIfAny(data.checkRules(*mRules));
    }
    for (const std::string& note : data.misnamedInLists()) {
        bar.print("note: " + note);
    }
}

void HostSetup::loadComponents(const Options& options) {
    try {
        mHost->loadComponent(options.extCm.empty() ? findExtCm() : options.extCm);
        for (const std::string& path : options.components) {
            mHost->loadComponent(path);
        }
    } catch (const ComponentLoadError& failure) {
        throw LoadError(failure.what());
    }
}

void HostSetup::startComponents() {
    std::vector<std::string> problems;
    for (const ComponentReport& report : mHost->start()) {
        if (report.state != ComponentState::Started) {
            problems.push_back("component " + report.name + " is not started: " + report.problem);
        }
    }
    failIfAny(problems);
}

}
