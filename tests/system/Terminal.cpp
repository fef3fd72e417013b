// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Terminal.h"

#include "Program.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace SystemTest {

namespace {

constexpr std::chrono::seconds kPatience{30};
constexpr int kPollMilliseconds = 100;

}

Terminal::Terminal(const std::vector<std::string>& arguments, const std::string& pager) {
    winsize size{};
    size.ws_row = 24;
    size.ws_col = 200;
    mChild = forkpty(&mMaster, nullptr, nullptr, &size);
    if (mChild < 0) {
        throw std::runtime_error("forkpty failed");
    }
    if (mChild == 0) {
        setenv("TERM", "vt100", 1);
        setenv("PAGER", pager.c_str(), 1);
        becomeOrvhost(arguments);
    }
}

Terminal::~Terminal() {
    if (mChild > 0) {
        kill(mChild, SIGKILL);
        waitpid(mChild, nullptr, 0);
    }
    close(mMaster);
}

void Terminal::type(const std::string& keys) {
    if (write(mMaster, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size())) {
        throw std::runtime_error("the terminal takes no keys");
    }
}

bool Terminal::waitFor(const std::string& text) {
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (std::chrono::steady_clock::now() < deadline) {
        const std::size_t found = mUnread.find(text);
        if (found != std::string::npos) {
            mSeen = mUnread.substr(0, found + text.size());
            mUnread.erase(0, found + text.size());
            return true;
        }
        if (!readSome()) {
            break;
        }
    }
    mSeen = mUnread;
    return false;
}

// False at the end of the program's output.
bool Terminal::readSome() {
    pollfd waiting{mMaster, POLLIN, 0};
    if (poll(&waiting, 1, kPollMilliseconds) <= 0) {
        return true;
    }
    char buffer[4096];
    const ssize_t count = read(mMaster, buffer, sizeof buffer);
    if (count <= 0) {
        return false;
    }
    mUnread.append(buffer, static_cast<std::size_t>(count));
    return true;
}

int Terminal::finish() {
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (std::chrono::steady_clock::now() < deadline && readSome()) {
    }
    int status = 0;
    if (waitpid(mChild, &status, WNOHANG) == 0) {
        usleep(200000);
        if (waitpid(mChild, &status, WNOHANG) == 0) {
            return -2;
        }
    }
    mChild = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}
