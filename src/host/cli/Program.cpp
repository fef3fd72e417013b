// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Program.h"

#include "cli/check/Check.h"
#include "cli/check/CheckReport.h"
#include "cli/commands/CommandTable.h"
#include "cli/commands/Commands.h"
#include "cli/errors/CliErrors.h"
#include "cli/output/AlignedText.h"
#include "cli/remote/RemoteShell.h"
#include "cli/replay/ReplayCommand.h"
#include "cli/serve/Serve.h"
#include "cli/session/Session.h"
#include "cli/setup/HostSetup.h"
#include "cli/setup/Options.h"
#include "cli/setup/ProjectFile.h"
#include "cli/setup/StoreCommand.h"
#include "cli/shell/LocalShell.h"
#include "cli/shell/ShellRun.h"
#include "store_sqlite/SqliteLog.h"

#include <csignal>
#include <iostream>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace OrvHost {

namespace {

// If a standard stream is closed, the next file that is opened gets its number, and output would be
// written into that file. The number is taken by a stand-in on which writing (or reading) fails
// instead.
void keepStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) {
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

// Who reads through a pipe, as `head` does, ends when it has enough, and wants no message.
bool isReaderGone() {
    pollfd output{STDOUT_FILENO, POLLOUT, 0};
    return poll(&output, 1, 0) == 1 && (output.revents & POLLERR) != 0;
}

// If answers could not be written, for example because the disk is full, the run is not a success.
int statusWithOutput(int status) {
    if (std::cout.flush()) {
        return status;
    }
    if (!isReaderGone()) {
        std::cerr << "orvhost: the standard output cannot be written to its end\n";
    }
    return status == ExitOk ? ExitCommandError : status;
}

// Help needs no model.
bool isHelpAlone(const Options& options) {
    return options.commandLines.empty() && options.scripts.empty() && !options.words.empty() &&
           options.words.size() <= 2 && options.words.front() == "help";
}

bool isInit(const Options& options) {
    return options.words.size() == 1 && options.words.front() == "init";
}

int runWithOptions(const Options& options) {
    try {
        if (isInit(options)) {
            writeProjectTemplate();
            std::cout << kProjectFile << " is written\n";
            return ExitOk;
        }
        for (const std::string& note : options.notes) {
            std::cerr << "orvhost: note: " << note << '\n';
        }
        if (!options.scenarios.empty()) {
            return checkScenarios(options, std::cout);
        }
        if (options.isServer) {
            return serve(options, std::cout);
        }
        if (!options.recording.empty()) {
            return replay(options, std::cout);
        }
        if (!options.storeWords.empty()) {
            return runStoreCommand(options.storeWords, options.json, std::cout);
        }
        if (options.connect) {
            RemoteShell shell(*options.connect, lookFor(options), options.interfaceVersion);
            return runShell(options, shell);
        }
        const CommandTable commands;
        if (isHelpAlone(options)) {
            const bool hasName = options.words.size() > 1;
            printHelp(commands, hasName ? std::optional(options.words[1]) : std::nullopt,
                      {options.json, false}, std::cout);
            return ExitOk;
        }
        HostSetup setup(options, std::cerr);
        Session session(setup.host(), setup.clients(), setup.log(), std::cout, options.json);
        session.showRuleCost(options.yangRules);
        session.setModelNotes(setup.modelNotes());
        session.setSchema(setup.schema());
        if (SqliteLog* const store = setup.storeFile()) {
            session.setBackup([store](const auto& target) { store->backup(target); });
        }
        LocalShell shell(session, commands, lookFor(options), options.models);
        return runShell(options, shell);
    } catch (const UsageError& failure) {
        std::cerr << "orvhost: " << withoutControls(failure.what()) << '\n';
        return ExitUsage;
    } catch (const std::exception& failure) {
        std::cerr << "orvhost: " << withoutControls(failure.what()) << '\n';
        return ExitLoad;
    }
}

}

int runProgram(int count, const char* const* arguments) {
    keepStandardStreams();
    // A file that grows over its limit fails to be written, like one on a full disk.
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    const ParsedArguments parsed = parseArguments(count, arguments, reportFormats());
    return statusWithOutput(parsed.options ? runWithOptions(*parsed.options) : parsed.exitStatus);
}

}
