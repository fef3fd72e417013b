// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SHELL_LOCALSHELL_H
#define ORV_HOST_CLI_SHELL_LOCALSHELL_H

#include "cli/session/Session.h"
#include "cli/shell/Completer.h"
#include "cli/shell/Interpreter.h"
#include "cli/shell/Shell.h"

#include <string>
#include <vector>

namespace OrvHost {

/// A shell on a session of this program.
class LocalShell : public Shell {
public:
    /// All but \p models, their names, is borrowed.
    LocalShell(Session& session, const CommandTable& commands, const ShellLook& look,
               std::vector<std::string> models);

    ExitStatus runLine(const std::string& line, const std::string& place) override {
        return mInterpreter.runLine(line, place);
    }
    ExitStatus runWords(const std::vector<std::string>& words) override {
        return mInterpreter.runWords(words);
    }
    ExitStatus runScript(std::istream& script, const std::string& name, bool keepGoing) override {
        return mInterpreter.runScript(script, name, keepGoing);
    }
    ExitStatus runTyped(const std::string& line) override;

    std::string greeting() override;
    std::string prompt() override { return mSession.prompt(); }
    Completion complete(const std::string& line) override { return mCompleter.complete(line); }
    CancellationToken& cancellation() override { return mSession.cancellation(); }
    std::vector<UncommittedWork> uncommitted() override { return uncommittedOf(mSession); }

    void setQuestion(const Question& question) override { mSession.setQuestion(question); }

    bool isEnded() const override { return mSession.isEnded(); }
    void end() override { mSession.end(); }
    void goOn() override { mSession.goOn(); }

    /// What the session would lose.
    static std::vector<UncommittedWork> uncommittedOf(Session& session);
    /// What is loaded, in two lines.
    static std::string greetingOf(Session& session, const std::vector<std::string>& models);

private:
    Session& mSession;
    std::vector<std::string> mModels;
    Interpreter mInterpreter;
    Completer mCompleter;
};

}

#endif
