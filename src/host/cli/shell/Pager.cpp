// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Pager.h"

#include "base/Environment.h"
#include "cli/session/InterruptGuard.h"
#include "cli/session/Session.h"

#include <csignal>

#include <sys/ioctl.h>
#include <unistd.h>

namespace OrvHost {

namespace {

// Without less, everything is simply shown.
constexpr const char* kUsual = "command -v less >/dev/null 2>&1 && exec less -R; exec cat";

}

Pager::Pager(Session& session)
    : mSession(session), mStream(this), mProgram(environmentVariable("PAGER").value_or(kUsual)) {
    winsize size{};
    if (mProgram.empty() || session.wantsJson() || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 ||
        size.ws_row == 0 || size.ws_col == 0) {
        return;
    }
    mRows = size.ws_row;
    mColumns = size.ws_col;
    mBefore = &session.redirect(mStream);
}

Pager::~Pager() {
    if (mBefore != nullptr) {
        sync();
        mSession.redirect(*mBefore);
    }
}

int Pager::overflow(int character) {
    const char one = static_cast<char>(character);
    xsputn(&one, 1);
    return character;
}

std::streamsize Pager::xsputn(const char* text, std::streamsize size) {
    const std::string added(text, static_cast<std::size_t>(size));
    if (mPipe != nullptr) {
        write(added);
        return size;
    }
    mHeld += added;
    for (const char character : added) {
        if (mIsColour || character == '\x1b') { // takes no column
            mIsColour = character != 'm';
            continue;
        }
        const bool isEnd = character == '\n' || mColumn == mColumns;
        mLines += isEnd ? 1 : 0;
        mColumn = isEnd ? 0 : mColumn + 1;
    }
    // The last row is for the next prompt.
    if (mLines >= mRows) {
        start();
    }
    return size;
}

void Pager::start() {
    mBefore->flush();
    // Without R, less shows colours as odd characters.
    const std::string command = "export LESS=\"${LESS-R}\"; " + mProgram;
    mPipe = popen(command.c_str(), "w"); // NOLINT(cert-env33-c): the user's own program
    if (mPipe != nullptr) {
        // The pager can be left before the end; it has the keyboard, so nothing is asked meanwhile.
        std::signal(SIGPIPE, SIG_IGN);
        InterruptGuard::ask(false);
        write(std::exchange(mHeld, {}));
    } else {
        *mBefore << std::exchange(mHeld, {});
    }
}

// What the pager does not take any more is dropped.
void Pager::write(const std::string& text) {
    static_cast<void>(std::fwrite(text.data(), 1, text.size(), mPipe));
}

int Pager::sync() {
    if (mPipe != nullptr) {
        pclose(mPipe);
        mPipe = nullptr;
        std::signal(SIGPIPE, SIG_DFL);
        InterruptGuard::ask(true);
    }
    *mBefore << std::exchange(mHeld, {}) << std::flush;
    mLines = 0;
    mColumn = 0;
    return 0;
}

}
