// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ChildProcess.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvValidate {

namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void failWith(int code, const std::string& what) {
    throw std::system_error(code, std::generic_category(), what);
}

/// One end of a pipe.
class Descriptor {
public:
    explicit Descriptor(int number) : mNumber(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }

    int number() const { return mNumber; }
    void close() {
        if (mNumber >= 0) {
            ::close(mNumber);
            mNumber = -1;
        }
    }

private:
    int mNumber;
};

pid_t spawn(const std::vector<std::string>& arguments, int output) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
    pid_t child = 0;
    const int code = posix_spawn(&child, arguments.front().c_str(), &actions, nullptr,
                                 argumentPointers(arguments).data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (code != 0) {
        failWith(code, arguments.front());
    }
    return child;
}

// False at the deadline, or if there is nothing to read by then.
bool waitForInput(int descriptor, Clock::time_point deadline) {
    for (;;) {
        const auto rest =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        if (rest.count() <= 0) {
            return false;
        }
        pollfd waiting{descriptor, POLLIN, 0};
        const int wait = static_cast<int>(std::clamp<long>(rest.count(), 0, 60000));
        if (poll(&waiting, 1, wait) > 0) {
            return true;
        }
    }
}

// False if the writer has not closed its end before the deadline.
// Of an endless output the beginning is kept.
bool readAll(int descriptor, Clock::time_point deadline, std::string& text) {
    constexpr std::size_t kMostText = std::size_t{256} * 1024;
    char buffer[4096];
    while (waitForInput(descriptor, deadline)) {
        const ssize_t count = read(descriptor, buffer, sizeof buffer);
        if (count == 0) {
            return true;
        }
        if (count > 0) {
            text.append(buffer, std::min(static_cast<std::size_t>(count), kMostText - text.size()));
        } else if (errno != EINTR) {
            failWith(errno, "read");
        }
    }
    return false;
}

// False if the process still runs at the deadline.
bool waitForEnd(pid_t child, Clock::time_point deadline, int& status) {
    for (;;) {
        const pid_t ended = waitpid(child, &status, WNOHANG);
        if (ended == child) {
            return true;
        }
        if (ended < 0 && errno != EINTR) {
            failWith(errno, "waitpid");
        }
        if (Clock::now() >= deadline) {
            return false;
        }
        usleep(1000);
    }
}

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

ChildEnd runChild(const std::vector<std::string>& arguments, std::chrono::seconds limit) {
    int ends[2];
    // Processes that other threads start at the same time must not inherit the ends.
    if (pipe2(ends, O_CLOEXEC) != 0) {
        failWith(errno, "pipe");
    }
    Descriptor reader(ends[0]);
    Descriptor writer(ends[1]);
    const Clock::time_point deadline = Clock::now() + limit;
    const pid_t child = spawn(arguments, writer.number());
    writer.close();
    ChildEnd end;
    end.isInTime =
        readAll(reader.number(), deadline, end.output) && waitForEnd(child, deadline, end.status);
    if (!end.isInTime) {
        kill(child, SIGKILL);
        while (waitpid(child, &end.status, 0) < 0 && errno == EINTR) {
        }
    }
    return end;
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
