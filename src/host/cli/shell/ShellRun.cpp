// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ShellRun.h"

#include "base/Counted.h"
#include "base/Environment.h"
#include "base/TextFile.h"
#include "cli/output/Colours.h"
#include "cli/session/InterruptGuard.h"
#include "cli/shell/Prompt.h"

#include <fstream>
#include <iostream>

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

bool hasNoCommands(const Options& options) {
    return options.commandLines.empty() && options.scripts.empty() && options.words.empty();
}

/// Runs what the options ask for, and keeps the first status that is not ExitOk.
class Run {
public:
    Run(const Options& options, Shell& shell) : mOptions(options), mShell(shell) {}

    int run() {
        for (const std::string& line : mOptions.commandLines) {
            step([&] { return mShell.runLine(line, {}); });
        }
        for (const std::string& script : mOptions.scripts) {
            step([&] { return runScript(script); });
        }
        if (!mOptions.words.empty()) {
            step([&] { return mShell.runWords(mOptions.words); });
        }
        if (hasNoCommands(mOptions)) {
            step([&] { return isatty(STDIN_FILENO) == 1 ? runPrompt() : runScript("-"); });
        }
        tellWhatIsAborted();
        return mStatus;
    }

private:
    template <class Step>
    void step(Step&& run) {
        if (mShell.isEnded() || (mStatus != ExitOk && !mOptions.keepGoing)) {
            return;
        }
        const ExitStatus status = run();
        mStatus = mStatus == ExitOk ? status : mStatus;
    }

    // Without this, a forgotten commit looks like a success.
    void tellWhatIsAborted() const {
        for (const UncommittedWork& open : mShell.uncommitted()) {
            std::cerr << "note: transaction " << open.transaction << " was still open, with "
                      << counted(open.writes, "writing command")
                      << "; it is aborted, nothing of it is left\n";
        }
    }

    ExitStatus runScript(const std::string& name) {
        if (name == "-") {
            return mShell.runScript(std::cin, "stdin", mOptions.keepGoing);
        }
        if (const std::string problem = whyNotReadable(name); !problem.empty()) {
            std::cerr << "orvhost: " << name << ": " << problem << '\n';
            return ExitUsage;
        }
        std::ifstream script(name);
        return mShell.runScript(script, name, mOptions.keepGoing);
    }

    // Somebody who types sees each answer, so errors during the session do not make its exit status
    // a failure.
    ExitStatus runPrompt() {
        InterruptGuard interrupts;
        Prompt prompt([this](const std::string& line) { return mShell.complete(line); },
                      historyFile(mOptions), mShell.endFd());
        mShell.setQuestion([&prompt](const std::string& text) { return prompt.ask(text); });
        if (!mOptions.json) {
            std::cout << mShell.greeting() << std::flush;
        }
        while (!mShell.isEnded()) {
            const std::optional<std::string> line = prompt.readLine(mShell.prompt());
            if (prompt.wasInterrupted()) {
                endAtSecondInterrupt(prompt, interrupts);
            } else if (line) {
                const InterruptGuard::Command running(mShell.cancellation());
                mShell.runTyped(*line);
            } else {
                mShell.end();
            }
            if (mShell.isEnded() && !mShell.isLost() && !isEndWanted(prompt)) {
                mShell.goOn();
            }
        }
        mShell.setQuestion({});
        return mShell.isLost() ? ExitLoad : ExitOk;
    }

    // In a line, Ctrl-C drops it; twice means that somebody wants to leave.
    void endAtSecondInterrupt(Prompt& prompt, InterruptGuard& interrupts) {
        if (!interrupts.takeSecond()) {
            return;
        }
        if (prompt.ask("End orvhost? [y/N] ")) {
            mShell.end();
        }
        interrupts.forget();
    }

    bool isEndWanted(Prompt& prompt) {
        std::string question;
        for (const UncommittedWork& open : mShell.uncommitted()) {
            question += (question.empty() ? "" : ", ") + open.transaction;
        }
        return question.empty() ||
               prompt.ask("Not committed, and lost at the end: " + question + ". End? [y/N] ");
    }

    const Options& mOptions;
    Shell& mShell;
    ExitStatus mStatus = ExitOk;
};

}

ShellLook lookFor(const Options& options) {
    const bool isTyped = hasNoCommands(options) && isatty(STDIN_FILENO) == 1;
    return {options.json, options.echo && !isTyped, Colours::areWantedOn(STDOUT_FILENO),
            Colours::areWantedOn(STDERR_FILENO), isTyped};
}

int runShell(const Options& options, Shell& shell) {
    return Run(options, shell).run();
}

}
