// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "InterruptGuard.h"

#include <atomic>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <time.h>
#include <unistd.h>

namespace OrvHost {
namespace {

constexpr long long kNanosecondsPerSecond = 1'000'000'000;
constexpr const char* kQuestion =
    "\nThe command has not stopped yet. End orvhost? What is not committed is lost. [y/N] ";

constexpr long long kNever = -kNanosecondsPerSecond;

// What the handler can reach.
std::atomic<CancellationToken*> theToken{nullptr}; // null: no command runs
std::atomic<long long> theLastTime{kNever};
std::atomic<bool> theSecondCame{false};
std::atomic<bool> theQuestionIsWanted{true};

long long now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * kNanosecondsPerSecond + time.tv_nsec;
}

// Only calls that a signal handler may make. Standard output can be a file; the question is for
// the terminal.
bool isEndWanted() {
    const int terminal = open("/dev/tty", O_WRONLY | O_CLOEXEC | O_NOCTTY);
    const int out = terminal < 0 ? STDERR_FILENO : terminal;
    const bool isAsked = write(out, kQuestion, std::strlen(kQuestion)) >= 0;
    if (terminal >= 0) {
        close(terminal);
    }
    if (!isAsked) {
        return true;
    }
    char first = '\n';
    char key = 0;
    for (bool isFirst = true; read(STDIN_FILENO, &key, 1) == 1 && key != '\n'; isFirst = false) {
        first = isFirst ? key : first;
    }
    return key != '\n' || first == 'y' || first == 'Y';
}

void endProcess() {
    signal(SIGINT, SIG_DFL);
    sigset_t interrupt;
    sigemptyset(&interrupt);
    sigaddset(&interrupt, SIGINT);
    pthread_sigmask(SIG_UNBLOCK, &interrupt, nullptr);
    raise(SIGINT);
}

void askToEnd() {
    if (isEndWanted()) {
        endProcess();
    }
    theLastTime = kNever;
}

extern "C" void takeInterrupt(int) {
    const int error = errno;
    const long long time = now();
    const bool isSecond = time - theLastTime.exchange(time) < kNanosecondsPerSecond;
    CancellationToken* token = theToken.load();
    if (token == nullptr) {
        theSecondCame = isSecond;
    } else {
        token->cancel();
        if (isSecond && theQuestionIsWanted.load()) {
            askToEnd();
        }
    }
    errno = error;
}

}

InterruptGuard::InterruptGuard() {
    forget();
    struct sigaction action {};
    action.sa_handler = takeInterrupt;
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, &mBefore);
}

InterruptGuard::~InterruptGuard() {
    sigaction(SIGINT, &mBefore, nullptr);
}

InterruptGuard::Command::Command(CancellationToken& token) : mToken(token) {
    theToken = &token;
}

InterruptGuard::Command::~Command() {
    theToken = nullptr;
    mToken.renew();
}

void InterruptGuard::ask(bool wanted) {
    theQuestionIsWanted = wanted;
}

bool InterruptGuard::takeSecond() {
    return theSecondCame.exchange(false);
}

void InterruptGuard::forget() {
    theLastTime = kNever;
    theSecondCame = false;
}

}
