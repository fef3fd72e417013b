// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_REMOTE_SHELLPROTOCOL_H
#define ORV_HOST_CLI_REMOTE_SHELLPROTOCOL_H

#include "cli/output/ValueJson.h"
#include "cli/shell/Shell.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

// What a server's shell and its client say to each other, in frames. The client begins with Hello;
// the server answers with Hello, or refuses with Bye. Then the client sends one request at a time,
// and the server answers it: Line and Words with any number of Out and Err, and Done; Complete with
// Completed. Cancel needs no answer. The server can end everything with Bye at any time; the client
// ends by closing the socket.

/// Another version is refused. Raise it when the meaning of a message changes.
constexpr int kShellProtocol = 1;

/// The kinds of frames.
enum ShellFrame : char {
    FrameHello = 'H',     ///< JSON: ShellHello from the client, ShellWelcome from the server
    FrameLine = 'L',      ///< ScriptLine
    FrameWords = 'W',     ///< the words of a command, with a zero byte between them
    FrameComplete = 'T',  ///< the line before the cursor
    FrameCancel = 'X',    ///< the number of the request that is to be cancelled; the first is 1
    FrameOut = 'O',       ///< bytes for the standard output
    FrameErr = 'E',       ///< bytes for the standard error stream
    FrameDone = 'D',      ///< JSON: ShellState
    FrameCompleted = 'C', ///< JSON: Completion
    FrameBye = 'B'        ///< why the server ends the connection, for people
};

/// The body of the client's first message is at most that long, any other one at most kLongestLine.
constexpr std::size_t kLongestHello = 4096;
constexpr std::size_t kLongestLine = std::size_t{1} << 20;
/// The body of a message from the server.
constexpr std::size_t kLongestAnswer = std::size_t{64} << 20;

/// What the client wants.
struct ShellHello {
    int version = kShellProtocol;
    ShellLook look;
    std::string interface; ///< the version of the MO interface; empty: the server's first choice
};

/// What the server says first.
struct ShellWelcome {
    int version = kShellProtocol;
    std::string greeting;
    std::string prompt;
};

/// How things stand after a command.
struct ShellState {
    int status = ExitOk;
    bool isEnded = false; ///< by `quit`
    std::string prompt;
    std::vector<UncommittedWork> uncommitted;
};

/// A line with what comes before its errors, "file:12"; that may be empty.
struct ScriptLine {
    std::string line;
    std::string place;
};

/// \p completion without those of its candidates that would make its body longer than a message can
/// be. What all candidates begin with stays the same. Without any if not even two fit.
Completion shortened(Completion completion);

std::string toBody(const ShellHello& hello);
std::string toBody(const ShellWelcome& welcome);
std::string toBody(const ShellState& state);
std::string toBody(const Completion& completion);
std::string toBody(const ScriptLine& line);
std::string toBody(const std::vector<std::string>& words);

// The other way round. They throw FrameError if the body is not of that form.
ShellHello helloFrom(const std::string& body);
ShellWelcome welcomeFrom(const std::string& body);
ShellState stateFrom(const std::string& body);
Completion completionFrom(const std::string& body);
ScriptLine lineFrom(const std::string& body);
std::vector<std::string> wordsFrom(const std::string& body);

}

#endif
