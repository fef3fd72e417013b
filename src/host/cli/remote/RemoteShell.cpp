// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RemoteShell.h"

#include "cli/input/WordSplitter.h"

#include <iostream>
#include <utility>

#include <unistd.h>

namespace OrvHost {

namespace {

/// How long a server may take to say hello: it does that at once.
constexpr int kHelloMilliseconds = 10'000;

}

RemoteShell::RemoteShell(std::string path, const ShellLook& look, const std::string& interface)
    : mPath(std::move(path)),
      mLook(look),
      mLink(mPath, mCancellation),
      mScripts([this](const std::string& line,
                      const std::string& place) { return runLine(line, place); },
               [this] { return isEnded(); }) {
    if (!mLook.json) { // half a document is of no use
        mLink.dropWhenCancelled();
    }
    try {
        greet(look, interface);
    } catch (const FrameError&) {
        throw LoadError(mPath + ": something answers there that is no shell of orvhost");
    }
}

void RemoteShell::greet(const ShellLook& look, const std::string& interface) {
    mLink.send(frameBytes(FrameHello, toBody(ShellHello{kShellProtocol, look, interface})));
    const std::optional<Frame> frame = mLink.receiveWithin(kHelloMilliseconds);
    if (!frame) {
        throw LoadError(mPath + ": no shell of orvhost answers there");
    }
    if (frame->kind == FrameBye) {
        throw LoadError(mPath + ": " + frame->body);
    }
    if (frame->kind != FrameHello) {
        throw FrameError("a hello was expected");
    }
    const ShellWelcome welcome = welcomeFrom(frame->body);
    if (welcome.version != kShellProtocol) {
        throw LoadError(mPath + ": the server speaks version " + std::to_string(welcome.version) +
                        " of the shell's protocol, this orvhost version " +
                        std::to_string(kShellProtocol));
    }
    mGreeting = welcome.greeting;
    mState.prompt = welcome.prompt;
}

ExitStatus RemoteShell::runLine(const std::string& line, const std::string& place) {
    // Ctrl-C between two lines of a script would find no command to cancel.
    if (mCancellation.isCancelled()) {
        mLink.print(STDERR_FILENO, (place.empty() ? "orvhost" : place) + ": cancelled\n");
        mLink.flush();
        return ExitCommandError;
    }
    const SplitLine split = splitWords(line);
    if (!split.isOpen && !split.words.empty() && split.words.front() == "source") {
        return runSource(split.words, line, place);
    }
    return ask(FrameLine, toBody(ScriptLine{line, place}));
}

ExitStatus RemoteShell::runWords(const std::vector<std::string>& words) {
    return words.front() == "source" ? runSource(words, "source", {})
                                     : ask(FrameWords, toBody(words));
}

/// The file is here, not where the server runs.
ExitStatus RemoteShell::runSource(const std::vector<std::string>& words, const std::string& line,
                                  const std::string& place) {
    if (mLook.echo && !mLook.json) {
        mLink.print(STDOUT_FILENO, mState.prompt + line + "\n");
        mLink.flush();
    }
    try {
        return mScripts.source(Words({words.begin() + 1, words.end()}));
    } catch (const UsageError& error) {
        return refuse(ExitUsage, std::string(error.what()) + ". Usage: source FILE", place);
    } catch (const AnswerError& error) {
        return refuse(ExitCommandError, error.what(), place);
    }
}

ExitStatus RemoteShell::refuse(ExitStatus status, const std::string& text,
                               const std::string& place) {
    if (mLook.json) {
        JsonValue error{{"text", text}};
        if (!place.empty()) {
            error["place"] = place;
        }
        mLink.print(STDOUT_FILENO, toLine({{"command", "source"}, {"error", error}}) + "\n");
    } else {
        mLink.print(STDERR_FILENO, (place.empty() ? "" : place + ": ") + "source: " + text + "\n");
    }
    mLink.flush();
    return status;
}

Completion RemoteShell::complete(const std::string& line) {
    const std::optional<Frame> frame = answerTo(FrameComplete, line);
    if (!frame) {
        return {line.size(), {}};
    }
    Completion completion = completionFrom(frame->body);
    return completion.start <= line.size() ? completion : Completion{line.size(), {}};
}

ExitStatus RemoteShell::ask(char kind, const std::string& body) {
    if (body.size() > kLongestLine) {
        mLink.print(STDERR_FILENO, "orvhost: a line of " + std::to_string(body.size()) +
                                       " bytes is too long for a server's shell; at most " +
                                       std::to_string(kLongestLine) + " were expected\n");
        mLink.flush();
        return ExitUsage;
    }
    if (!answerTo(kind, body)) {
        return ExitLoad;
    }
    return static_cast<ExitStatus>(mState.status);
}

/// The frame that ends the answer; nothing if the server is gone.
std::optional<Frame> RemoteShell::answerTo(char kind, const std::string& body) {
    if (mIsLost) {
        return std::nullopt;
    }
    mLink.send(frameBytes(kind, body));
    ++mRequests;
    const std::string cancel = frameBytes(FrameCancel, std::to_string(mRequests));
    try {
        while (std::optional<Frame> frame = mLink.receive(cancel)) {
            switch (frame->kind) {
            case FrameOut:
                mLink.print(STDOUT_FILENO, std::move(frame->body));
                break;
            case FrameErr:
                mLink.print(STDERR_FILENO, std::move(frame->body));
                break;
            case FrameDone:
                mState = stateFrom(frame->body);
                // The server has said so itself if it has cancelled the command.
                if (!mLink.flush() && mState.status == ExitOk) {
                    mLink.print(
                        STDERR_FILENO,
                        "orvhost: the command is done; the rest of its answer is not shown\n");
                    mLink.flush();
                }
                if (!mLink.isPrinted()) {
                    std::cout.setstate(std::ios::badbit);
                }
                return frame;
            case FrameCompleted:
                return frame;
            case FrameBye:
                lose(frame->body);
                return std::nullopt;
            default:
                throw FrameError(std::string("an answer was expected, not '") + frame->kind + "'");
            }
        }
        loseCommand("the server has closed the connection");
    } catch (const FrameError& error) {
        loseCommand(std::string("the server answers what cannot be understood: ") + error.what());
    }
    return std::nullopt;
}

/// At the end of input. Only then can the server have said something without being asked.
void RemoteShell::end() {
    mState.isEnded = true;
    try {
        if (const std::optional<Frame> frame = mLink.receiveWithin(0)) {
            lose(frame->body);
        } else if (!mLink.isOpen()) {
            lose("the server has closed the connection");
        }
    } catch (const FrameError& error) {
        lose(error.what());
    }
}

/// A server that says why it ends has done nothing of the request. Otherwise nobody knows.
void RemoteShell::loseCommand(const std::string& why) {
    mState.uncommitted.clear();
    lose(why + "; what became of the command is not known, and transactions that were open are "
               "aborted");
}

void RemoteShell::lose(const std::string& why) {
    mIsLost = true;
    mLink.flush();
    std::cerr << "orvhost: " << mPath << ": " << why << '\n';
}

}
