// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Program.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace SystemTest {

namespace {

void redirect(int descriptor, const std::string& path, int flags) {
    const int file = open(path.c_str(), flags, 0600);
    if (file < 0 || dup2(file, descriptor) < 0) {
        _exit(126);
    }
    close(file);
}

int waitFor(pid_t child) {
    int status = 0;
    if (waitpid(child, &status, 0) != child) {
        throw std::runtime_error("waitpid failed");
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int run(const std::vector<std::string>& arguments, const std::string& in, const std::string& out,
        const std::string& err, const std::string& home = {}) {
    const pid_t child = fork();
    if (child < 0) {
        throw std::runtime_error("fork failed");
    }
    if (child == 0) {
        redirect(STDIN_FILENO, in, O_RDONLY);
        redirect(STDERR_FILENO, err, O_WRONLY | O_TRUNC);
        if (out.empty()) {
            close(STDOUT_FILENO);
        } else {
            redirect(STDOUT_FILENO, out, O_WRONLY | O_TRUNC);
        }
        if (home.empty()) {
            becomeOrvhost(arguments);
        }
        setenv("HOME", home.c_str(), 1);
        becomeOrvhost(arguments, home);
    }
    return waitFor(child);
}

}

TemporaryDirectory::TemporaryDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "orvhost_test.XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("mkdtemp failed");
    }
    mPath = name;
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}

std::string TemporaryDirectory::file(const std::string& name, const std::string& text) const {
    const std::filesystem::path path = mPath / name;
    std::ofstream(path) << text;
    return path.string();
}

std::string readFile(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

[[noreturn]] void becomeOrvhost(const std::vector<std::string>& arguments,
                                const std::string& directory) {
    std::vector<std::string> words{ORVHOST_PROGRAM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    if (chdir(directory.c_str()) == 0) {
        execv(ORVHOST_PROGRAM, pointers.data());
    }
    _exit(127);
}

ProgramResult runOrvhost(const std::vector<std::string>& arguments, const std::string& input) {
    const TemporaryDirectory directory;
    const std::string in = directory.file("in", input);
    const std::string out = directory.file("out", "");
    const std::string err = directory.file("err", "");
    const int status = run(arguments, in, out, err);
    return {status, readFile(out), readFile(err)};
}

ProgramResult runOrvhostIn(const TemporaryDirectory& directory,
                           const std::vector<std::string>& arguments) {
    const TemporaryDirectory streams;
    const std::string in = streams.file("in", "");
    const std::string out = streams.file("out", "");
    const std::string err = streams.file("err", "");
    const std::string home = directory.path().string();
    const int status = run(arguments, in, out, err, home);
    return {status, readFile(out), readFile(err)};
}

ProgramResult runOrvhostInto(const std::string& out, const std::vector<std::string>& arguments) {
    const TemporaryDirectory directory;
    const std::string in = directory.file("in", "");
    const std::string err = directory.file("err", "");
    const int status = run(arguments, in, out, err);
    return {status, "", readFile(err)};
}

ProgramResult runOrvhostOn(const TemporaryDirectory& directory, const std::string& module,
                           const std::string& data, const std::vector<std::string>& options) {
    std::vector<std::string> arguments{"-m", directory.file("m.yang", module), "-d",
                                       directory.file("m.json", data)};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return runOrvhost(arguments);
}

std::vector<std::string> withSite(const std::vector<std::string>& more) {
    std::vector<std::string> arguments{"-I",    "models", "-m",      "site",    "-m",
                                       "power", "-d",     "network", "--me-id", "east"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

std::vector<std::string> withHarbour(const std::vector<std::string>& more) {
    std::vector<std::string> arguments{"-I",      EXAMPLES_DIR "/models",
                                       "-m",      "ran-element",
                                       "-m",      "ran-equipment",
                                       "-m",      "ran-function",
                                       "-d",      EXAMPLES_DIR "/data/harbour.json",
                                       "--me-id", "Harbour"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

ProgramResult runOnHarbour(const std::string& script, const std::vector<std::string>& options) {
    std::vector<std::string> arguments = withHarbour(options);
    arguments.emplace_back("--keep-going");
    return runOrvhost(arguments, script);
}

ProgramResult runCommands(const std::vector<std::string>& commands,
                          const std::vector<std::string>& options) {
    std::vector<std::string> arguments = withSite(options);
    for (const std::string& command : commands) {
        arguments.insert(arguments.end(), {"-c", command});
    }
    return runOrvhost(arguments);
}

}
