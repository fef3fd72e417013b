// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Options.h"

#include "CommandSplit.h"
#include "DnUtil.h"
#include "ProjectFile.h"
#include "StoreTarget.h"
#include "cli/errors/CliErrors.h"
#include "cli/input/LogLevel.h"
#include "cli/output/AlignedText.h"
#include "client/Clients.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <memory>
#include <utility>

namespace OrvHost {

namespace {

constexpr const char* kFooter = R"(
Commands come from -c, from scripts (-f), from the words after the options, or, if there are none,
from the prompt or standard input. 'orvhost help' lists them. Options of orvhost come before the
command, its own options after it:

  orvhost -I models -m ran-element -d net.json tree / --depth 2

'check FILE...' in place of a command runs scenarios, each on fresh data, and reports on them:

  orvhost -I models -m ran-element -d net.json check --report junit *.orv

'init' in place of a command writes a template of a project file, orvhost.toml.

'export FILE [DN]' in place of a command saves the data, as the command 'save' does:

  orvhost -I models -m ran-element -d net.json export net.xml

'serve' in place of a command runs a NETCONF server until a signal ends it:

  orvhost -I models -m ran-element -d net.json serve --netconf-user al=al.pub

--connect PATH runs the commands in such a server, which listens there (serve --shell-unix PATH):

  orvhost --connect PATH -c begin -c 'set DN userLabel=x' -c commit

--store FILE keeps all commits in a file, which is created if there is none; data (-d)
goes into a new one only. --store postgresql:CONNECTION keeps them in the tables of a database, which
several hosts share; CONNECTION is what libpq takes: 'host=... dbname=...', or postgresql://...

'store' in place of a command works on such a file while no host uses it, or on such tables:

  orvhost store info FILE       what it holds (tables as well)
  orvhost store check FILE      whether it is whole
  orvhost store compact FILE    gives back the space of what was deleted
  orvhost -I models -m ran-element store export FILE net.xml
  orvhost -I models -m ran-element store migrate FILE NEW    to another model
  orvhost -I models -m ran-element store init postgresql:...    makes the tables
  orvhost store trim postgresql:... [ENTRIES [HOURS]]    deletes old log entries

'replay FILE' in place of a command plays a recording of the calls of a component.

Exit status: 0 all went well, 1 a command was answered with an error, 2 usage, 3 loading failed, or
the server of --connect is not there.)";

constexpr std::size_t kHelpColumns = 80;

/// Helps in lines that fit.
class HelpFormatter : public CLI::Formatter {
public:
    std::string make_option_desc(const CLI::Option* option) const override {
        std::string text = wrapped(option->get_description(), kHelpColumns - get_column_width());
        return text.substr(0, text.find_last_not_of('\n') + 1);
    }
};

// An identity becomes a part of DNs. Empty means that there is none.
std::string whyNoIdentity(const std::string& identity) {
    return identity.empty() || Orv::DnUtil::validateMoNamingAttr(identity.c_str())
               ? std::string()
               : "'" + identity +
                     "' cannot name an object: a text was expected without control characters and "
                     "without , = + \" \\ < > ; that neither begins nor ends with a space";
}

std::string whyNoFeatures(const std::string& text) {
    const std::size_t colon = text.find(':');
    return colon != std::string::npos && colon > 0
               ? std::string()
               : "'" + text + "' names no module; MODULE:NAME,... was expected";
}

// projectSettings reads these two itself, before the others are parsed.
void addProject(CLI::App& app, Options& options) {
    app.add_option("--project", options.projectFile,
                   "Project file, with options; empty for none. Without it, orvhost.toml in the "
                   "working folder");
    app.add_flag("--trust", options.trustsProject,
                 "Let this orvhost.toml load components, now and later");
}

void addLoading(CLI::App& app, Options& options) {
    app.add_option("-m,--model", options.models, "YANG module, by name or file; repeat for more")
        ->allow_extra_args(false);
    app.add_option("-I,--path", options.searchPath, "Directory to search for modules; repeatable")
        ->allow_extra_args(false);
    app.add_option("--feature", options.features,
                   "MODULE:NAME,...: of this module only these features are on; repeatable")
        ->allow_extra_args(false)
        ->check(whyNoFeatures);
    app.add_flag("--no-features", options.noFeatures,
                 "Features of modules without --feature are off");
    app.add_flag("--strict", options.strict,
                 "Refuse a model that leaves something of the modules out");
    app.add_flag("--yang-rules", options.yangRules,
                 "Check must, unique and the targets of leafrefs at validate and in data");
    app.add_option("-d,--data", options.data,
                   "Instance data, JSON or XML: a file, or a directory of them; repeatable")
        ->allow_extra_args(false);
    app.add_flag("--skip-unknown", options.skipUnknown,
                 "Leave out data that no loaded module knows");
    app.add_flag("--repair", options.repair,
                 "Add the missing sides of bidirectional associations to the data");
    app.add_flag("--as-is", options.asIs,
                 "Take data that violates associations, with notes: as it was saved");
    app.add_option("--store", options.store,
                   "File that keeps all commits, created if it is new; or postgresql:CONNECTION");
    app.add_flag("--fresh", options.isFresh,
                 "Let each transaction see what other hosts of the store have committed before it "
                 "begins");
    app.add_option_function<std::string>(
           "--store-sync",
           [&options](const std::string& text) { options.storeSyncsEachCommit = text == "full"; },
           "For a store in a file. full (default): a commit is on the disk when it is answered; "
           "normal: the last commits may be lost when the power fails")
        ->check(CLI::IsMember({"full", "normal"}));
    app.add_option("--ext-cm", options.extCm,
                   "The component libext_cm.so, if not the one of this installation");
    app.add_flag("--transactions", options.showsTransactions,
                 "For replay: print each transaction that was finished");
    app.add_option("-C,--component", options.components,
                   "A further component to load, such as an interceptor; repeatable")
        ->allow_extra_args(false);
    app.add_option("--me-id", options.meId,
                   "Identity by which clients know the ManagedElement at the root")
        ->check(whyNoIdentity);
    app.add_option("--me-id-fallback", options.meIdFallback, "Identity to use if that one is empty")
        ->check(whyNoIdentity)
        ->capture_default_str();
}

void addLogging(CLI::App& app, Options& options) {
    app.add_option_function<std::string>(
        "--log-level",
        [&options](const std::string& text) {
            try {
                options.logLevel = parseLogLevel(text);
            } catch (const UsageError& failure) {
                throw CLI::ValidationError("--log-level", failure.what());
            }
        },
        "off, error, warning (default), info, trace, or a number");
    app.add_option("--log-file", options.logFile,
                   "File to append the log to, instead of standard error");
    app.add_option_function<std::string>(
           "--log-format",
           [&options](const std::string& text) {
               options.logFormat = text == "json" ? LogFormat::Json : LogFormat::Text;
           },
           "text (default) or json")
        ->check(CLI::IsMember({"text", "json"}));
}

void addCheck(CLI::App& app, const std::vector<std::string>& reportFormats, Options& options) {
    app.add_option("--report", options.reportFormat,
                   "Format in which 'check' reports: text, tap, junit or json")
        ->check(CLI::IsMember(reportFormats));
    app.add_option("--report-file", options.reportFile,
                   "File for that report; standard output then gets one for people");
    app.add_option("--timeout", options.checkSeconds,
                   "Seconds, from the loading on, after which 'check' ends a scenario as failed; 0 "
                   "for no limit")
        ->check(CLI::Range(0U, 86400U))
        ->capture_default_str();
}

// On the command line. What only a project or a variable sets does not concern commands that do not
// use it.
bool isGiven(const GivenOptions& given, const char* option) {
    return given.count(option) > 0;
}

// `check FILE...` is used in the place of a command, but it runs scripts and cannot be combined
// with commands.
void takeScenarios(const GivenOptions& given, Options& options) {
    const bool isCheck = !options.words.empty() && options.words.front() == "check";
    if (!isCheck) {
        if (!options.reportFormat.empty() || !options.reportFile.empty()) {
            throw CLI::ValidationError("--report and --report-file can only be used with check");
        }
        return;
    }
    if (!options.commandLines.empty() || !options.scripts.empty()) {
        throw CLI::ValidationError("check cannot be combined with -c or -f");
    }
    if (isGiven(given, "--store")) {
        throw CLI::ValidationError("check runs each scenario on fresh data, without --store");
    }
    options.store.clear();
    options.scenarios.assign(options.words.begin() + 1, options.words.end());
    options.words.clear();
    if (options.scenarios.empty()) {
        throw CLI::ValidationError("check needs the FILE of a scenario, or of several");
    }
}

constexpr const char* kServerGroup = "Server (with serve)";

std::string whyNoUser(const std::string& text) {
    const std::size_t equals = text.find('=');
    return equals != std::string::npos && equals > 0 && equals + 1 < text.size()
               ? std::string()
               : "'" + text + "' names no user and file; NAME=KEYFILE was expected";
}

// An empty path would mean something else, or nothing, to what uses it.
std::string whyNoPath(const std::string& text) {
    return text.empty() ? "'' names no file; the path of one was expected" : std::string();
}

void addServer(CLI::App& app, Options& options) {
    app.add_option("--netconf-ssh", options.netconfSsh,
                   "ADDRESS:PORT for NETCONF over SSH; 127.0.0.1:8300 if somebody can log in")
        ->group(kServerGroup);
    app.add_option("--netconf-unix", options.netconfUnix,
                   "Path of a socket for NETCONF; only its owner can connect")
        ->check(whyNoPath)
        ->group(kServerGroup);
    app.add_option("--netconf-user", options.netconfUsers,
                   "NAME=KEYFILE: a user with a file of public keys; repeatable")
        ->allow_extra_args(false)
        ->check(whyNoUser)
        ->group(kServerGroup);
    app.add_option("--netconf-passwords", options.passwordFile,
                   "File of lines NAME:HASH, hashed as 'openssl passwd -6' does")
        ->check(whyNoPath)
        ->group(kServerGroup);
    app.add_option("--netconf-read-only", options.readOnlyUsers,
                   "A user who may only read; repeatable")
        ->allow_extra_args(false)
        ->group(kServerGroup);
    app.add_option("--host-key", options.hostKey,
                   "File of the server's SSH key, made if there is none; ~/.orvhost_host_key")
        ->check(whyNoPath)
        ->group(kServerGroup);
    app.add_option("--shell-unix", options.shellUnix,
                   "Path of a socket for 'orvhost --connect'; only its owner can connect")
        ->check(whyNoPath)
        ->group(kServerGroup);
    app.add_option("--unconfirmed-note", options.unconfirmedNote,
                   "File that remembers that a confirmed commit waits, for the next start; "
                   "FILE.unconfirmed with --store FILE")
        ->check(whyNoPath)
        ->group(kServerGroup);
    app.add_option("--candidate-timeout", options.candidateSeconds,
                   "Seconds after its last edit when a candidate is discarded, and after its last "
                   "command when a shell with an open transaction is ended; 0: never")
        ->capture_default_str()
        ->group(kServerGroup);
}

// `serve` is used in the place of a command, but it runs none.
void takeServer(const CLI::App& app, Options& options) {
    options.isServer = !options.words.empty() && options.words.front() == "serve";
    if (!options.isServer) {
        if (options.netconfSsh || options.netconfUnix || options.shellUnix ||
            !options.netconfUsers.empty() || !options.readOnlyUsers.empty() ||
            !options.passwordFile.empty() || options.hostKey || options.unconfirmedNote ||
            app.get_option("--candidate-timeout")->count() > 0) {
            throw CLI::ValidationError("the options of the server can only be used with serve");
        }
        return;
    }
    if (options.words.size() > 1 || !options.commandLines.empty() || !options.scripts.empty()) {
        throw CLI::ValidationError("serve cannot be combined with commands");
    }
    options.words.clear();
    // A server's log says who did what.
    if (app.get_option("--log-level")->count() == 0) {
        options.logLevel = parseLogLevel("info");
    }
}

// The client library knows that name, too.
void refuseOtherName(const std::string& store) {
    if (store.rfind("postgres:", 0) == 0) {
        throw CLI::ValidationError("a store in PostgreSQL is named postgresql:..., not postgres:");
    }
}

// Options that would change nothing.
void requireStoreFor(const GivenOptions& given, const Options& options) {
    refuseOtherName(options.store);
    if (isGiven(given, "--fresh") && !isPostgresql(options.store)) {
        throw CLI::ValidationError("--fresh can only be used with --store postgresql:...");
    }
    if (options.unconfirmedNote && options.store.empty()) {
        throw CLI::ValidationError("--unconfirmed-note can only be used with --store");
    }
    if (isGiven(given, "--store-sync") && (options.store.empty() || isPostgresql(options.store))) {
        throw CLI::ValidationError("--store-sync can only be used with --store FILE");
    }
}

// `store` works on the file of a store. An export is a host that saves and ends.
void takeStore(const GivenOptions& given, Options& options) {
    if (options.words.empty() || options.words.front() != "store") {
        return;
    }
    if (!options.commandLines.empty() || !options.scripts.empty() || isGiven(given, "--store")) {
        throw CLI::ValidationError("store cannot be combined with -c, -f or --store");
    }
    if (isGiven(given, "--data")) {
        throw CLI::ValidationError("store cannot be combined with -d");
    }
    options.store.clear();
    options.data.clear();
    const std::vector<std::string> words(options.words.begin() + 1, options.words.end());
    const std::string what = words.empty() ? "" : words.front();
    for (const std::string& word : words) {
        refuseOtherName(word);
    }
    if (what == "export" && words.size() >= 3) {
        std::error_code error;
        if (!isPostgresql(words[1]) && !std::filesystem::exists(words[1], error)) {
            throw CLI::ValidationError("there is no store " + words[1]);
        }
        options.store = words[1];
        options.isStoreOld = true;
        options.words.assign(words.begin() + 2, words.end());
        options.words.insert(options.words.begin(), "save");
        return;
    }
    if (what == "migrate" && words.size() == 3) {
        options.migrateFrom = words[1];
        options.store = words[2];
        options.words = {"count"};
        return;
    }
    const bool isShared = words.size() > 1 && isPostgresql(words[1]);
    if (what == "init" && words.size() == 2 && isShared) {
        options.store = words[1];
        options.createsStore = true;
        options.words = {"count"};
        return;
    }
    const bool isKnown = isShared ? what == "info" || what == "trim"
                                  : what == "info" || what == "check" || what == "compact";
    const std::size_t most = what == "trim" ? 4 : 2;
    if (!isKnown || words.size() < 2 || words.size() > most) {
        throw CLI::ValidationError(
            "store needs info FILE, check FILE, compact FILE, export FILE TARGET, migrate FILE "
            "NEW, init postgresql:..., info postgresql:..., or trim postgresql:... [ENTRIES "
            "[HOURS]]");
    }
    options.words.clear();
    options.storeWords = words;
}

// `replay` plays a recording in place of a host with a model and data.
void takeReplay(const CLI::App& app, Options& options) {
    if (options.words.empty() || options.words.front() != "replay") {
        if (options.showsTransactions) {
            throw CLI::ValidationError("--transactions can only be used with replay");
        }
        return;
    }
    for (const CLI::Option* const option :
         app.get_options([](const CLI::Option* each) { return each->count() > 0; })) {
        const std::string name = option->get_name();
        constexpr const char* allowed[] = {"--component", "--ext-cm", "--json", "--transactions"};
        if (!option->get_positional() &&
            std::find(std::begin(allowed), std::end(allowed), name) == std::end(allowed)) {
            throw CLI::ValidationError(name + " cannot be combined with replay, which needs "
                                              "nothing but the recording and a component");
        }
    }
    if (options.words.size() != 2 || options.components.size() > 1) {
        throw CLI::ValidationError("replay needs FILE, and at most one --component");
    }
    options.recording = options.words[1];
    options.words.clear();
}

// In place of a command, saving is called as other programs call it.
void takeExport(Options& options) {
    const std::size_t name = !options.words.empty() && options.words.front() == "help" ? 1 : 0;
    if (options.words.size() > name && options.words[name] == "export") {
        options.words[name] = "save";
    }
}

void takeInit(const Options& options) {
    if (!options.words.empty() && options.words.front() == "init" && options.words.size() > 1) {
        throw CLI::ValidationError(std::string("init takes no words: it writes ") + kProjectFile +
                                   " in the working folder");
    }
}

// What the server has, or what is done without one.
void takeConnect(const GivenOptions& given, const Options& options) {
    if (!options.connect) {
        return;
    }
    for (const char* const option :
         {"--project",     "--trust",     "--model",      "--path",           "--feature",
          "--no-features", "--strict",    "--yang-rules", "--data",           "--skip-unknown",
          "--repair",      "--as-is",     "--store",      "--fresh",          "--store-sync",
          "--ext-cm",      "--component", "--me-id",      "--me-id-fallback", "--log-level",
          "--log-file",    "--log-format"}) {
        if (isGiven(given, option)) {
            throw CLI::ValidationError(std::string(option) +
                                       " cannot be combined with --connect: the server has its "
                                       "own model, data, components and log");
        }
    }
    const std::string first = options.words.empty() ? "" : options.words.front();
    for (const char* const verb : {"check", "init", "replay", "serve", "store", "export"}) {
        if (first == verb) {
            throw CLI::ValidationError(first + " cannot be combined with --connect");
        }
    }
}

void addCommands(CLI::App& app, Options& options) {
    app.add_option("-c,--command", options.commandLines, "A command to run; repeatable")
        ->allow_extra_args(false);
    app.add_option("-f,--script", options.scripts,
                   "A file of commands to run, - for standard input; repeatable")
        ->allow_extra_args(false);
    app.add_flag("--keep-going", options.keepGoing, "Continue after a command that failed");
    app.add_flag("--echo", options.echo,
                 "Show each line of scripts and -c in front of its answer, as at the prompt");
    app.add_option("--interface", options.interfaceVersion,
                   "Version of the MO interface to use: 1, 3 or 3_1")
        ->check(CLI::IsMember(Clients::versions()))
        ->capture_default_str();
    app.add_option("--connect", options.connect,
                   "Run the commands in a server, at the PATH of its socket (serve --shell-unix)");
    app.add_flag("--json", options.json, "Print one JSON document for each command");
    app.add_option("--history", options.historyFile,
                   "File for the history of the prompt; empty for none");
    app.add_option("COMMAND", options.words, "One command, in words");
}

// The verbs that take options of the program after them.
std::vector<std::string> takingOptions() {
    return {"check", "init", "replay", "serve", "store"};
}

}

ParsedArguments parseArguments(int count, const char* const* arguments,
                               const std::vector<std::string>& reportFormats) {
    Options options;
    CLI::App app(wrapped("A small management framework: loads a model, data and components, and "
                         "runs client operations through them.",
                         kHelpColumns),
                 "orvhost");
    app.formatter(std::make_shared<HelpFormatter>());
    app.set_version_flag("--version", "orvhost " ORVHOST_VERSION);
    app.footer(wrapped(kFooter, kHelpColumns));
    addProject(app, options);
    addLoading(app, options);
    addLogging(app, options);
    addCommands(app, options);
    addCheck(app, reportFormats, options);
    addServer(app, options);
    try {
        std::vector<std::string> words =
            withCommandApart(app, {arguments + 1, arguments + count}, takingOptions());
        const GivenOptions given = givenOptions(app, words);
        // What a project says is of a host's; components of it are not the one to play against.
        const bool isWithoutProject =
            isGiven(given, "--connect") || commandWord(app, words) == "replay";
        ProjectSettings project =
            isWithoutProject ? ProjectSettings() : projectSettings(app, words);
        words.insert(words.begin(), project.arguments.begin(), project.arguments.end());
        options.notes = std::move(project.notes);
        std::reverse(words.begin(), words.end()); // as the parser wants them
        app.parse(std::move(words));
        options.isDataGiven = isGiven(given, "--data");
        takeConnect(given, options);
        takeScenarios(given, options);
        takeInit(options);
        takeExport(options);
        takeStore(given, options);
        takeReplay(app, options);
        requireStoreFor(given, options);
        takeServer(app, options);
    } catch (const ProjectError& failure) {
        std::cerr << "orvhost: " << withoutControls(failure.what()) << '\n';
        return {std::nullopt, ExitUsage};
    } catch (const CLI::ParseError& end) {
        const int status = app.exit(end);
        return {std::nullopt, status == 0 ? ExitOk : ExitUsage};
    }
    return {options, ExitOk};
}

}
