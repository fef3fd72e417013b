// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "InterruptGuard.h"

#include <atomic>
#include <cerrno>
#include <cstring>

#include <time.h>
#include <unistd.h>

namespace OrvHost {
namespace {

constexpr long long kNanosecondsPerSecond = 1'000'000'000;
constexpr const char* kQuestion =
    "\nThe command has not stopped yet. End orvhost? What is not committed is lost. [y/N] ";

// What the handler can reach.
std::atomic<CancellationToken*> theToken{nullptr};
std::atomic<long long> theLastTime{-kNanosecondsPerSecond};

std::atomic<bool> theQuestionIsWanted{true};

long long now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * kNanosecondsPerSecond + time.tv_nsec;
}

// Only calls that a signal handler may make.
bool isEndWanted() {
    if (write(STDOUT_FILENO, kQuestion, std::strlen(kQuestion)) < 0) {
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

extern "C" void cancelCommand(int) {
    const int error = errno;
    if (CancellationToken* token = theToken.load()) {
        token->cancel();
    }
    const long long time = now();
    const bool isSecond = time - theLastTime.exchange(time) < kNanosecondsPerSecond;
    if (isSecond && theQuestionIsWanted.load()) {
        if (isEndWanted()) {
            endProcess();
        }
        theLastTime = now() - kNanosecondsPerSecond;
    }
    errno = error;
}

}

InterruptGuard::InterruptGuard(CancellationToken& token) : mToken(token) {
    theToken = &token;
    theLastTime = now() - kNanosecondsPerSecond;
    struct sigaction action {};
    action.sa_handler = cancelCommand;
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, &mBefore);
}

void InterruptGuard::ask(bool wanted) {
    theQuestionIsWanted = wanted;
}

InterruptGuard::~InterruptGuard() {
    sigaction(SIGINT, &mBefore, nullptr);
    theToken = nullptr;
    mToken.renew();
}

}
