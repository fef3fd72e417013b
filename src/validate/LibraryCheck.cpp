// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LibraryCheck.h"

#include "ChildProcess.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include <dlfcn.h>
#include <elf.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvValidate {

namespace {

constexpr unsigned int kLoadingLimit = 20; // seconds

// The two classes of files have these fields at the same places.
struct ElfHead {
    std::array<unsigned char, EI_NIDENT> ident{};
    Elf64_Half type = 0;
    Elf64_Half machine = 0;
};

bool readHead(const std::string& path, ElfHead& head) {
    std::ifstream file(path, std::ios::binary);
    file.read(reinterpret_cast<char*>(head.ident.data()), EI_NIDENT);
    file.read(reinterpret_cast<char*>(&head.type), sizeof head.type);
    file.read(reinterpret_cast<char*>(&head.machine), sizeof head.machine);
    return file.good() && std::memcmp(head.ident.data(), ELFMAG, SELFMAG) == 0;
}

std::string whyNotOfThisMachine(const std::string& path) {
    std::error_code problem;
    const auto status = std::filesystem::status(path, problem);
    if (!std::filesystem::exists(status)) {
        return "there is no such file";
    }
    if (!std::filesystem::is_regular_file(status)) {
        return "this is not a file";
    }
    if (access(path.c_str(), R_OK) != 0) {
        return std::string("it cannot be read: ") + std::strerror(errno); // NOLINT: one thread
    }
    ElfHead library;
    ElfHead self;
    if (!readHead(path, library)) {
        return "this is not an ELF file; a shared object was expected";
    }
    if (!readHead("/proc/self/exe", self)) {
        return "this program cannot read its own file";
    }
    if (library.machine != self.machine || library.ident[EI_CLASS] != self.ident[EI_CLASS] ||
        library.ident[EI_DATA] != self.ident[EI_DATA]) {
        return "it is made for another architecture (ELF machine " +
               std::to_string(library.machine) + ", this one is " + std::to_string(self.machine) +
               ")";
    }
    return library.type == ET_DYN ? "" : "this is an ELF file, but not a shared object";
}

std::string whyNotLinkable(const std::string& path) {
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (library == nullptr) {
        return dlerror(); // NOLINT(concurrency-mt-unsafe): one thread
    }
    for (const char* function : {"orvLCMinit", "orvLCMterminate"}) {
        if (dlsym(library, function) == nullptr) {
            return std::string("it does not export ") + function;
        }
    }
    return "";
}

[[noreturn]] void loadInChild(const std::string& path, int output) {
    alarm(kLoadingLimit);
    const std::string problem = whyNotLinkable(path);
    const bool isSent =
        write(output, problem.data(), problem.size()) == static_cast<ssize_t>(problem.size());
    // Without the ends of statics: a component that is only loaded need not survive them.
    _exit(isSent ? 0 : 1);
}

}

std::string whyNotLoadable(const std::string& path) {
    const std::string problem = whyNotOfThisMachine(path);
    if (!problem.empty()) {
        return problem;
    }
    int ends[2];
    if (pipe(ends) != 0) {
        return std::string("pipe: ") + std::strerror(errno); // NOLINT: one thread
    }
    const pid_t child = fork();
    if (child == 0) {
        loadInChild(path, ends[1]);
    }
    close(ends[1]);
    std::string text;
    char buffer[512];
    for (ssize_t count = 0; (count = read(ends[0], buffer, sizeof buffer)) > 0;) {
        text.append(buffer, static_cast<std::size_t>(count));
    }
    close(ends[0]);
    int status = 1;
    if (child < 0 || waitpid(child, &status, 0) != child) {
        return "no process could be started";
    }
    const std::string end = breakdown(status);
    return end.empty() ? text : "it cannot be loaded: " + end;
}

}
