// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ChildProcess.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvValidate {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kCannotRun = 127; // as shells answer

[[noreturn]] void failWith(int code, const std::string& what) {
    throw std::system_error(code, std::generic_category(), what);
}

/// A pipe; each end is closed at the latest when this goes.
class Pipe {
public:
    Pipe() {
        // Processes that other threads start at the same time must not inherit the ends.
        if (pipe2(mEnds, O_CLOEXEC) != 0) {
            failWith(errno, "pipe");
        }
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        ::close(mEnds[0]);
        closeWriter();
    }

    int reader() const { return mEnds[0]; }
    int writer() const { return mEnds[1]; }
    void closeWriter() {
        if (mEnds[1] >= 0) {
            ::close(mEnds[1]);
            mEnds[1] = -1;
        }
    }

private:
    int mEnds[2] = {-1, -1};
};

std::atomic<int> interruptedBy{0};
// Readable for ever from the first signal on, so that all who wait see it. -1: nobody watches.
int interruptionReader = -1;
int interruptionWriter = -1;

void noteSignal(int signal) {
    const int savedError = errno;
    int none = 0;
    if (interruptedBy.compare_exchange_strong(none, signal)) {
        const char byte = 0;
        [[maybe_unused]] const ssize_t count = write(interruptionWriter, &byte, 1);
    }
    errno = savedError;
}

// In the child, between fork and exec: only what is safe while other threads hold locks.
void becomeChild(pid_t parent, int output) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(kCannotRun); // too late to be told of its end
    }
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        std::signal(signal, SIG_DFL);
    }
    const int input = open("/dev/null", O_RDONLY | O_CLOEXEC);
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
}

// In the child: the file stays open when a program is run.
void keepOpen(int descriptor, int number) {
    if (descriptor == number) {
        fcntl(descriptor, F_SETFD, 0);
    } else {
        dup2(descriptor, number);
    }
}

pid_t forkChild(int output, const std::function<void()>& work) {
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0) {
        failWith(errno, "fork");
    }
    if (child == 0) {
        becomeChild(parent, output);
        work();
        // Without the ends of statics: those of this program belong to the parent.
        _exit(0);
    }
    setpgid(child, child); // whoever comes first
    return child;
}

void throwIfInterrupted() {
    if (const int signal = interruptedBy) {
        throw Interrupted{signal};
    }
}

// False at the end of the text. Of an endless text the beginning is kept.
bool readSome(int descriptor, std::string& text) {
    constexpr std::size_t kMostText = std::size_t{256} * 1024;
    char buffer[4096];
    const ssize_t count = read(descriptor, buffer, sizeof buffer);
    if (count < 0 && errno != EINTR) {
        failWith(errno, "read");
    }
    const auto length = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    text.append(buffer, std::min(length, kMostText - text.size()));
    return count != 0;
}

// Reads what the child writes until it has ended; what it has started may still write. False if it
// has not ended before the deadline.
bool readUntilEnd(int output, int child, Clock::time_point deadline, std::string& text) {
    bool isOpen = true;
    for (;;) {
        throwIfInterrupted();
        const auto rest =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        if (rest.count() <= 0) {
            return false;
        }
        pollfd waiting[] = {
            {isOpen ? output : -1, POLLIN, 0}, {child, POLLIN, 0}, {interruptionReader, POLLIN, 0}};
        poll(waiting, std::size(waiting), static_cast<int>(std::min<long>(rest.count(), 60000)));
        if (waiting[0].revents != 0) {
            isOpen = readSome(output, text);
        } else if (waiting[1].revents != 0) {
            return true;
        }
    }
}

/// A child and all that it has started; they end at the latest when this goes.
class Family {
public:
    // The C library's own function for it cannot be called from C++ everywhere.
    explicit Family(pid_t head)
        : mHead(head), mDescriptor(static_cast<int>(syscall(SYS_pidfd_open, head, 0))) {
        if (mDescriptor < 0) {
            const int code = errno;
            end();
            failWith(code, "pidfd_open");
        }
    }
    Family(const Family&) = delete;
    Family& operator=(const Family&) = delete;
    ~Family() {
        close(mDescriptor);
        if (mHead > 0) {
            end();
        }
    }

    /// Readable when the head has ended.
    int descriptor() const { return mDescriptor; }

    /// Gives back the status of the head. Until then nobody else gets its number.
    int end() {
        int status = 0;
        kill(-mHead, SIGKILL);
        while (waitpid(mHead, &status, 0) < 0 && errno == EINTR) {
        }
        mHead = 0;
        return status;
    }

private:
    pid_t mHead;
    int mDescriptor;
};

}

void watchForInterruption() {
    static Pipe pipe;
    interruptionReader = pipe.reader();
    interruptionWriter = pipe.writer();
    struct sigaction action {};
    action.sa_handler = &noteSignal;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction former {};
        sigaction(signal, nullptr, &former);
        if (former.sa_handler != SIG_IGN) { // as nohup has it
            sigaction(signal, &action, nullptr);
        }
    }
}

void endAsIfBy(int signal) {
    std::signal(signal, SIG_DFL);
    raise(signal);
    _exit(128 + signal);
}

std::vector<char*> argumentPointers(const std::vector<std::string>& arguments) {
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) {
        pointers.push_back(const_cast<char*>(argument.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

ChildEnd runChild(const std::function<void()>& work, std::chrono::seconds limit) {
    Pipe pipe;
    const Clock::time_point deadline = Clock::now() + limit;
    Family family(forkChild(pipe.writer(), work));
    pipe.closeWriter();
    ChildEnd end;
    end.isInTime = readUntilEnd(pipe.reader(), family.descriptor(), deadline, end.output);
    end.status = family.end();
    return end;
}

ChildEnd runChild(const std::vector<std::string>& arguments, std::chrono::seconds limit) {
    return runChild(arguments, limit, -1, -1);
}

ChildEnd runChild(const std::vector<std::string>& arguments, std::chrono::seconds limit,
                  int descriptor, int number) {
    if (access(arguments.front().c_str(), X_OK) != 0) {
        failWith(errno, arguments.front());
    }
    const std::vector<char*> pointers = argumentPointers(arguments);
    return runChild(
        [&pointers, descriptor, number] {
            if (descriptor >= 0) {
                keepOpen(descriptor, number);
            }
            execv(pointers.front(), pointers.data());
            _exit(kCannotRun);
        },
        limit);
}

std::string breakdown(int status) {
    if (WIFSIGNALED(status)) {
        const char* name = sigabbrev_np(WTERMSIG(status));
        return "the process was ended by SIG" +
               (name != nullptr ? std::string(name) : std::to_string(WTERMSIG(status)));
    }
    const int code = WEXITSTATUS(status);
    return code == 0 ? std::string() : "the process ended with status " + std::to_string(code);
}

}
