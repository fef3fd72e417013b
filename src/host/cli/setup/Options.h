// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SETUP_OPTIONS_H
#define ORV_HOST_CLI_SETUP_OPTIONS_H

#include "runtime/LogSink.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

/// The options of orvhost.
struct Options {
    std::string projectFile;
    bool trustsProject = false;
    std::vector<std::string> notes;  ///< on where options came from, for people
    std::vector<std::string> models; ///< module names or files
    std::vector<std::filesystem::path> searchPath;
    std::vector<std::string> features; ///< "MODULE:NAME,..."
    bool noFeatures = false;
    bool skipUnknown = false; ///< in data
    bool strict = false;      ///< refuse a model with notes
    bool yangRules = false;   ///< check the rules of the modules, not only `when`
    std::vector<std::filesystem::path> data;
    bool isDataGiven = false; ///< on the command line; other data is left out if a store is not new
    std::string extCm;        ///< the component; empty: the one that belongs to this program
    std::vector<std::string> components; ///< other components
    std::string meId;
    std::string meIdFallback = "1";
    bool repair = false;
    bool asIs = false;         ///< take associations in data as they are
    std::string store;         ///< what keeps all commits, see StoreTarget.h; empty: nothing
    bool isStoreOld = false;   ///< none is created
    bool createsStore = false; ///< the tables of a database
    bool isFresh = false;      ///< each transaction sees what other hosts have committed
    std::filesystem::path migrateFrom; ///< a store whose objects go into a new one; empty: none
    bool storeSyncsEachCommit = true;  ///< or else the last ones may be lost when the power fails
    std::string interfaceVersion = "3_1";

    unsigned int logLevel = 4;
    std::string logFile; ///< empty: standard error
    LogFormat logFormat = LogFormat::Text;

    bool json = false;
    bool keepGoing = false;
    bool echo = false;
    std::optional<std::string> historyFile;

    std::vector<std::string> commandLines; ///< from -c
    std::vector<std::string> scripts;      ///< from -f; "-" is standard input
    std::vector<std::string> words;        ///< one command, split into words

    std::string recording;               ///< of `replay`, which cannot be combined with commands
    bool showsTransactions = false;      ///< for `replay`
    std::vector<std::string> storeWords; ///< of `store`, which cannot be combined with commands

    std::vector<std::string> scenarios; ///< of `check`, which cannot be combined with commands
    std::string reportFormat;           ///< of `check`; empty: not given
    std::string reportFile;             ///< empty: standard output
    unsigned int checkSeconds = 600;    ///< the limit of each scenario; 0: none

    std::optional<std::string> connect; ///< the socket of a server's shell; no host is set up here
    std::optional<std::string> shellUnix; ///< where `serve` offers shells

    bool isServer = false;                  ///< `serve`, which cannot be combined with commands
    std::optional<std::string> netconfSsh;  ///< ADDRESS:PORT
    std::optional<std::string> netconfUnix; ///< a path
    std::vector<std::string> netconfUsers;  ///< "NAME=KEYFILE"
    std::vector<std::string> readOnlyUsers;
    std::string passwordFile;
    std::optional<std::string> hostKey;         ///< a file
    std::optional<std::string> unconfirmedNote; ///< a file
    unsigned int candidateSeconds = 3600;       ///< the limit of a candidate without edits; 0: none
};

/// The result of reading the program's arguments: options, or a reason to end at once.
struct ParsedArguments {
    std::optional<Options> options;
    int exitStatus = 0; ///< if there are no options; help, version or error have been printed
};

/// Reads the program's arguments. \p reportFormats: those that `check` knows.
ParsedArguments parseArguments(int count, const char* const* arguments,
                               const std::vector<std::string>& reportFormats);

}

#endif
