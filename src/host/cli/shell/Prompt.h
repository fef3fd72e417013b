// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SHELL_PROMPT_H
#define ORV_HOST_CLI_SHELL_PROMPT_H

#include "Completer.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace OrvHost {

/// A line editor on the terminal, with a history in a file and completion with the tab key.
///
/// One object at a time, on the thread that starts and ends it; standard input is a terminal, and
/// SIGINT has a handler that returns (see InterruptGuard).
class Prompt {
public:
    /// Completes the word at the end of a line; see Completer.
    using Complete = std::function<Completion(const std::string& line)>;

    /// \p historyFile may be empty: then no history is kept. A history that cannot be read or
    /// written is ignored. As soon as \p endFd can be read, input is at its end; -1: there is none.
    Prompt(Complete complete, std::filesystem::path historyFile, int endFd);
    ~Prompt();
    Prompt(const Prompt&) = delete;
    Prompt& operator=(const Prompt&) = delete;

    /// Shows \p prompt and returns the next line that is entered, without its line end; an empty
    /// one if Ctrl-C cancels it. Nothing at the end of input (Ctrl-D, or see the constructor).
    std::optional<std::string> readLine(const std::string& prompt);

    /// Whether Ctrl-C cancelled the latest line.
    bool wasInterrupted() const;

    /// Shows \p question, and waits for a line. True if it begins with y or Y, or at the end of
    /// input. Ctrl-C means no. Nothing of it is kept in the history.
    bool ask(const std::string& question);

private:
    class Editor;
    std::unique_ptr<Editor> mEditor;
};

}

#endif
