// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Graphviz.h"

#include "cli/errors/CliErrors.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace OrvHost {

namespace {

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

pid_t startDot(const StandardFiles& files) {
    std::string program = "dot";
    std::string format = "-Tsvg";
    char* const words[] = {program.data(), format.data(), nullptr};
    pid_t child = 0;
    const int error = posix_spawnp(&child, program.c_str(), files.get(), nullptr, words, environ);
    if (error == ENOENT) {
        throw AnswerError("the program dot is not in PATH. It comes with Graphviz (package "
                          "graphviz); --dot gives the text that it would draw");
    }
    if (error != 0) {
        failAt("cannot be started", error);
    }
    return child;
}

/// Why the child failed, for people; empty if it succeeded.
std::string waitFor(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) != child) {
        if (errno != EINTR) {
            failAt("cannot be waited for", errno);
        }
    }
    if (WIFSIGNALED(status)) {
        return "was ended by signal " + std::to_string(WTERMSIG(status));
    }
    return WEXITSTATUS(status) == 0 ? std::string()
                                    : "failed with status " + std::to_string(WEXITSTATUS(status));
}

}

std::string renderSvg(const std::string& dot) {
    ScratchFile in;
    ScratchFile out;
    ScratchFile err;
    in.write(dot);
    const std::string failure = waitFor(startDot({in, out, err}));
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
