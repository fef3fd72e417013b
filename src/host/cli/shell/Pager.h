// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SHELL_PAGER_H
#define ORV_HOST_CLI_SHELL_PAGER_H

#include <cstdio>
#include <ostream>
#include <streambuf>
#include <string>

namespace OrvHost {

class Session;

/// While it lives, what commands print goes through the pager if it is longer than the screen:
/// output is held back until it is. A flush ends the output of a command: it waits until the pager
/// is left. For the prompt; standard output is a terminal. One thread.
class Pager : private std::streambuf {
public:
    /// \p session is borrowed. The program is that of the variable PAGER, or less; if the variable
    /// is empty, nothing is held back.
    explicit Pager(Session& session);
    ~Pager() override;
    Pager(const Pager&) = delete;
    Pager& operator=(const Pager&) = delete;

private:
    int overflow(int character) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    int sync() override;

    void start();
    void write(const std::string& text);

    Session& mSession;
    std::ostream mStream;
    std::ostream* mBefore = nullptr; ///< where the session printed; null: there is no pager
    std::string mProgram;
    std::size_t mRows = 0;
    std::size_t mColumns = 0;
    std::string mHeld;
    std::size_t mLines = 0;  ///< of the screen that mHeld takes
    std::size_t mColumn = 0; ///< of the last one
    bool mIsColour = false;  ///< inside the marks of a colour
    FILE* mPipe = nullptr;   ///< to the pager that runs
};

}

#endif
