// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_REMOTE_REMOTESHELL_H
#define ORV_HOST_CLI_REMOTE_REMOTESHELL_H

#include "cli/remote/ServerLink.h"
#include "cli/remote/ShellProtocol.h"
#include "cli/shell/ScriptRunner.h"
#include "cli/shell/Shell.h"

#include <string>
#include <vector>

namespace OrvHost {

/// A shell that runs inside a server, which is reached by a UNIX socket. Scripts are read here. If
/// the server goes away, the error stream says so, once, and the shell has ended.
class RemoteShell : public Shell {
public:
    /// \p interface: the version of the MO interface. Throws LoadError if there is no server, or it
    /// refuses.
    RemoteShell(std::string path, const ShellLook& look, const std::string& interface);

    ExitStatus runLine(const std::string& line, const std::string& place) override;
    ExitStatus runWords(const std::vector<std::string>& words) override;
    ExitStatus runScript(std::istream& script, const std::string& name, bool keepGoing) override {
        return mScripts.run(script, name, keepGoing);
    }

    std::string greeting() override { return mGreeting; }
    std::string prompt() override { return mState.prompt; }
    Completion complete(const std::string& line) override;
    CancellationToken& cancellation() override { return mCancellation; }
    std::vector<UncommittedWork> uncommitted() override { return mState.uncommitted; }

    bool isEnded() const override { return mIsLost || mState.isEnded; }
    void end() override;
    void goOn() override { mState.isEnded = false; }
    int endFd() const override { return mLink.fd(); }
    bool isLost() const override { return mIsLost; }

private:
    void greet(const ShellLook& look, const std::string& interface);
    ExitStatus runSource(const std::vector<std::string>& words, const std::string& line,
                         const std::string& place);
    ExitStatus refuse(ExitStatus status, const std::string& text, const std::string& place);
    ExitStatus ask(char kind, const std::string& body);
    std::optional<Frame> answerTo(char kind, const std::string& body);
    void lose(const std::string& why);
    void loseCommand(const std::string& why);

    std::string mPath;
    ShellLook mLook;
    CancellationToken mCancellation;
    ServerLink mLink;
    ScriptRunner mScripts;
    std::string mGreeting;
    ShellState mState;
    unsigned long long mRequests = 0;
    bool mIsLost = false;
};

}

#endif
