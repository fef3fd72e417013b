// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Program.h"

#include "base/Environment.h"
#include "base/TextFile.h"
#include "cli/check/Check.h"
#include "cli/check/CheckReport.h"
#include "cli/commands/CommandTable.h"
#include "cli/commands/Commands.h"
#include "cli/errors/CliErrors.h"
#include "cli/serve/Serve.h"
#include "cli/session/InterruptGuard.h"
#include "cli/session/Session.h"
#include "cli/setup/HostSetup.h"
#include "cli/setup/Options.h"
#include "cli/setup/ProjectFile.h"
#include "cli/setup/StoreCommand.h"
#include "cli/shell/Completer.h"
#include "cli/shell/Interpreter.h"
#include "cli/shell/Pager.h"
#include "cli/shell/Prompt.h"
#include "store_sqlite/SqliteLog.h"

#include <csignal>
#include <fstream>
#include <iostream>

#include <fcntl.h>
#include <unistd.h>

namespace OrvHost {

namespace {

std::filesystem::path historyFile(const Options& options) {
    if (options.historyFile) {
        return *options.historyFile;
    }
    const auto home = environmentVariable("HOME");
    return home ? std::filesystem::path(*home) / ".orvhost_history" : std::filesystem::path();
}

template <class Items, class ToText>
std::string listed(const Items& items, const ToText& toText) {
    std::string text;
    for (const auto& item : items) {
        text += (text.empty() ? "" : ", ") + toText(item);
    }
    return text;
}

/// Runs what the options ask for, and keeps the first status that is not ExitOk.
class Run {
public:
    Run(const Options& options, Session& session, const CommandTable& commands)
        : mOptions(options),
          mSession(session),
          mCommands(commands),
          mInterpreter(session, commands, std::cerr) {
        mInterpreter.echo(options.echo);
        mInterpreter.setColours(Colours::ofStream(STDERR_FILENO));
        mSession.setColours(Colours::ofStream(STDOUT_FILENO));
    }

    int run() {
        for (const std::string& line : mOptions.commandLines) {
            step([&] { return mInterpreter.runLine(line); });
        }
        for (const std::string& script : mOptions.scripts) {
            step([&] { return runScript(script); });
        }
        if (!mOptions.words.empty()) {
            step([&] { return mInterpreter.runWords(mOptions.words); });
        }
        if (hasNoCommands()) {
            step([&] { return isatty(STDIN_FILENO) == 1 ? runPrompt() : runScript("-"); });
        }
        tellWhatIsAborted();
        return mStatus;
    }

private:
    bool hasNoCommands() const {
        return mOptions.commandLines.empty() && mOptions.scripts.empty() && mOptions.words.empty();
    }

    template <class Step>
    void step(Step&& run) {
        if (mSession.isEnded() || (mStatus != ExitOk && !mOptions.keepGoing)) {
            return;
        }
        const ExitStatus status = run();
        mStatus = mStatus == ExitOk ? status : mStatus;
    }

    // Without this, a forgotten commit looks like a success.
    void tellWhatIsAborted() const {
        for (const OpenTransactions::Entry& open : mSession.transactions().all()) {
            if (open.writes > 0) {
                std::cerr << "note: transaction " << open.name << " was still open, with "
                          << open.writes << (open.writes == 1 ? " write" : " writes")
                          << "; it is aborted, nothing of it is left\n";
            }
        }
    }

    ExitStatus runScript(const std::string& name) {
        if (name == "-") {
            return mInterpreter.runScript(std::cin, "stdin", mOptions.keepGoing);
        }
        if (const std::string problem = whyNotReadable(name); !problem.empty()) {
            std::cerr << "orvhost: " << name << ": " << problem << '\n';
            return ExitUsage;
        }
        std::ifstream script(name);
        return mInterpreter.runScript(script, name, mOptions.keepGoing);
    }

    // Somebody who types sees each answer, so errors during the session do not make its exit status
    // a failure.
    ExitStatus runPrompt() {
        InterruptGuard interrupts;
        Completer completer(mSession, mCommands);
        Prompt prompt(completer, historyFile(mOptions));
        mInterpreter.echo(false); // the line is on the screen
        mSession.giveHints(true);
        mSession.setQuestion([&prompt](const std::string& text) { return prompt.ask(text); });
        greet();
        while (!mSession.isEnded()) {
            const std::optional<std::string> line = prompt.readLine(mSession.prompt());
            if (prompt.wasInterrupted()) {
                endAtSecondInterrupt(prompt, interrupts);
            } else if (line) {
                const InterruptGuard::Command running(mSession.cancellation());
                const Pager pager(mSession);
                mInterpreter.runLine(*line);
            } else {
                mSession.end();
            }
            if (mSession.isEnded() && !isEndWanted(prompt)) {
                mSession.goOn();
            }
        }
        mSession.setQuestion({});
        return ExitOk;
    }

    // What is loaded, in two lines.
    void greet() {
        if (mSession.wantsJson()) {
            return;
        }
        const auto name = [](const auto& one) { return one.name; };
        const auto itself = [](const std::string& one) { return one; };
        const std::size_t objects = mSession.host().store().size();
        mSession.out() << "orvhost " ORVHOST_VERSION ": " << mSession.model().classes.size()
                       << " classes" << (mOptions.models.empty() ? "" : " of ")
                       << listed(mOptions.models, itself) << "; " << objects
                       << (objects == 1 ? " object" : " objects") << "\ncomponents: "
                       << listed(mSession.host().components().components(), name)
                       << "; 'help' lists the commands\n";
    }

    // In a line, Ctrl-C drops it; twice means that somebody wants to leave.
    void endAtSecondInterrupt(Prompt& prompt, InterruptGuard& interrupts) {
        if (!interrupts.takeSecond()) {
            return;
        }
        if (prompt.ask("End orvhost? [y/N] ")) {
            mSession.end();
        }
        interrupts.forget();
    }

    bool isEndWanted(Prompt& prompt) {
        std::string question;
        for (const OpenTransactions::Entry& open : mSession.transactions().all()) {
            if (open.writes > 0) {
                question += (question.empty() ? "" : ", ") + open.name;
            }
        }
        return question.empty() ||
               prompt.ask("Not committed, and lost at the end: " + question + ". End? [y/N] ");
    }

    const Options& mOptions;
    Session& mSession;
    const CommandTable& mCommands;
    Interpreter mInterpreter;
    ExitStatus mStatus = ExitOk;
};

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

// If answers could not be written, for example because the disk is full, the run is not a success.
int statusWithOutput(int status) {
    if (std::cout.flush()) {
        return status;
    }
    std::cerr << "orvhost: the standard output cannot be written to its end\n";
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
        if (!options.storeWords.empty()) {
            return runStoreCommand(options.storeWords, options.json, std::cout);
        }
        const CommandTable commands;
        if (isHelpAlone(options)) {
            const bool hasName = options.words.size() > 1;
            printHelp(commands, hasName ? std::optional(options.words[1]) : std::nullopt,
                      options.json, std::cout);
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
        return Run(options, session, commands).run();
    } catch (const UsageError& failure) {
        std::cerr << "orvhost: " << failure.what() << '\n';
        return ExitUsage;
    } catch (const std::exception& failure) {
        std::cerr << "orvhost: " << failure.what() << '\n';
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
