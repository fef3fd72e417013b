// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Graphviz.h"

#include "base/Counted.h"
#include "cli/errors/CliErrors.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <thread>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace OrvHost {

namespace {

constexpr std::chrono::milliseconds kPause{10};
constexpr std::chrono::seconds kTimeToEnd{2};

[[noreturn]] void failAt(const std::string& step, int error) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): only one thread draws.
    throw AnswerError("dot: " + step + ": " + std::strerror(error));
}

/// A file without a name, which disappears with this object. With pipes, one side would have to
/// read while the other one writes; files do not need that.
class ScratchFile {
public:
    ScratchFile() : mFile(std::tmpfile(), &std::fclose) {
        if (!mFile) {
            failAt("cannot make a temporary file", errno);
        }
    }

    int descriptor() const { return fileno(mFile.get()); }

    void write(const std::string& text) {
        const bool isWritten = std::fwrite(text.data(), 1, text.size(), mFile.get()) == text.size();
        if (!isWritten || std::fflush(mFile.get()) != 0) {
            failAt("cannot write a temporary file", errno);
        }
        std::rewind(mFile.get());
    }

    std::string read() {
        std::rewind(mFile.get());
        std::string text;
        char block[65536];
        while (const std::size_t size = std::fread(block, 1, sizeof block, mFile.get())) {
            text.append(block, size);
        }
        return text;
    }

private:
    std::unique_ptr<FILE, int (*)(FILE*)> mFile;
};

/// The standard files that a child process gets.
class StandardFiles {
public:
    StandardFiles(const ScratchFile& in, const ScratchFile& out, const ScratchFile& err) {
        posix_spawn_file_actions_init(&mActions);
        posix_spawn_file_actions_adddup2(&mActions, in.descriptor(), STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&mActions, out.descriptor(), STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&mActions, err.descriptor(), STDERR_FILENO);
    }
    StandardFiles(const StandardFiles&) = delete;
    StandardFiles& operator=(const StandardFiles&) = delete;
    ~StandardFiles() { posix_spawn_file_actions_destroy(&mActions); }

    const posix_spawn_file_actions_t* get() const { return &mActions; }

private:
    posix_spawn_file_actions_t mActions{};
};

/// Gives a child process a process group of its own.
class OwnGroup {
public:
    OwnGroup() {
        posix_spawnattr_init(&mAttributes);
        posix_spawnattr_setflags(&mAttributes, POSIX_SPAWN_SETPGROUP);
        posix_spawnattr_setpgroup(&mAttributes, 0);
    }
    OwnGroup(const OwnGroup&) = delete;
    OwnGroup& operator=(const OwnGroup&) = delete;
    ~OwnGroup() { posix_spawnattr_destroy(&mAttributes); }

    const posix_spawnattr_t* get() const { return &mAttributes; }

private:
    posix_spawnattr_t mAttributes{};
};

pid_t startDot(const StandardFiles& files) {
    std::string program = "dot";
    std::string format = "-Tsvg";
    char* const words[] = {program.data(), format.data(), nullptr};
    pid_t child = 0;
    const OwnGroup group;
    const int error =
        posix_spawnp(&child, program.c_str(), files.get(), group.get(), words, environ);
    if (error == ENOENT) {
        throw AnswerError("the program dot is not in PATH. It comes with Graphviz (package "
                          "graphviz); --dot gives the text that it would draw");
    }
    if (error != 0) {
        failAt("cannot be started", error);
    }
    return child;
}

/// Its status as soon as it has ended; without \p waits, nothing if it still runs.
std::optional<int> statusOf(pid_t child, bool waits) {
    int status = 0;
    for (;;) {
        const pid_t ended = waitpid(child, &status, waits ? 0 : WNOHANG);
        if (ended >= 0) {
            return ended == child ? std::optional(status) : std::nullopt;
        }
        if (errno != EINTR) {
            failAt("cannot be waited for", errno);
        }
    }
}

std::optional<int> statusUntil(pid_t child, const std::function<bool()>& isEnough) {
    std::optional<int> status = statusOf(child, false);
    while (!status && !isEnough()) {
        std::this_thread::sleep_for(kPause);
        status = statusOf(child, false);
    }
    return status;
}

/// Whether it has ended; its status can still be asked for, and its number is not given away.
bool hasEnded(pid_t child) {
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == child;
}

/// Ends it with all that it has started: dot can be a script that starts the program proper, which
/// need not end with it.
void end(pid_t child) {
    kill(-child, SIGTERM);
    const auto deadline = std::chrono::steady_clock::now() + kTimeToEnd;
    while (!hasEnded(child) && std::chrono::steady_clock::now() <= deadline) {
        std::this_thread::sleep_for(kPause);
    }
    kill(-child, SIGKILL);
    statusOf(child, true);
}

/// Why the child failed, for people; empty if it succeeded.
std::string waitFor(pid_t child, std::chrono::seconds limit, const std::string& advice,
                    const CancellationToken& cancellation) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    const std::optional<int> ended = statusUntil(child, [&] {
        return cancellation.isCancelled() || std::chrono::steady_clock::now() > deadline;
    });
    if (!ended) {
        end(child);
        cancellation.throwIfCancelled();
        throw AnswerError("dot has not finished after " +
                          counted(static_cast<std::uint64_t>(limit.count()), "second") + ". " +
                          advice);
    }
    const int status = *ended;
    if (WIFSIGNALED(status)) {
        return "was ended by signal " + std::to_string(WTERMSIG(status));
    }
    return WEXITSTATUS(status) == 0 ? std::string()
                                    : "failed with status " + std::to_string(WEXITSTATUS(status));
}

}

std::string renderSvg(const std::string& dot, std::chrono::seconds limit, const std::string& advice,
                      const CancellationToken& cancellation) {
    ScratchFile in;
    ScratchFile out;
    ScratchFile err;
    in.write(dot);
    cancellation.throwIfCancelled();
    const std::string failure = waitFor(startDot({in, out, err}), limit, advice, cancellation);
    cancellation.throwIfCancelled();
    std::string svg = out.read();
    if (!failure.empty() || svg.empty()) {
        const std::string said = err.read();
        throw AnswerError(
            "dot " + (failure.empty() ? "drew nothing" : failure) +
            (said.empty() ? "" : ": " + said.substr(0, said.find_last_not_of('\n') + 1)));
    }
    return svg;
}

}
