// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LibraryCheck.h"

#include "ChildProcess.h"
#include "MemoryFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <unistd.h>

namespace OrvValidate {

namespace {

constexpr char kLoadable[] = "loadable";

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

// The path of the libext_cm.so that \p library was linked with, itself or by way of others; empty
// if there is none.
std::string linkedComponent(void* library) {
    link_map* own = nullptr;
    if (dlinfo(library, RTLD_DI_LINKMAP, &own) != 0) {
        return "";
    }
    const link_map* loaded = own;
    while (loaded->l_prev != nullptr) {
        loaded = loaded->l_prev;
    }
    for (; loaded != nullptr; loaded = loaded->l_next) {
        const std::filesystem::path path = loaded->l_name;
        if (loaded != own && path.filename() == "libext_cm.so") {
            return path;
        }
    }
    return "";
}

std::string whyNotLinkable(const std::string& path) {
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (library == nullptr) {
        return dlerror(); // NOLINT(concurrency-mt-unsafe): one thread
    }
    const std::string component = linkedComponent(library);
    if (!component.empty()) {
        return "it is linked with " + component +
               ", as interceptors are; that file, or another build of it, was expected";
    }
    for (const char* function : {"orvLCMinit", "orvLCMterminate"}) {
        if (dlsym(library, function) == nullptr) {
            return std::string("it does not export ") + function;
        }
    }
    return "";
}

constexpr std::size_t kLongestVerdict = 4096;

// In the child: without its verdict it must not end as if it had one.
void write(const std::string& verdict, const MemoryFile& file) {
    if (!file.write(verdict.data(), verdict.size())) {
        _exit(1);
    }
}

std::string whyNotLoaded(const ChildEnd& end, std::chrono::seconds limit) {
    const std::string problem = breakdown(end.status);
    const std::string what =
        !end.isInTime     ? "not done after " + std::to_string(limit.count()) + " seconds"
        : problem.empty() ? "the process ended with status 0 before it was loaded"
                          : problem;
    return "it cannot be loaded: " + what + (end.output.empty() ? "" : "; it wrote: " + end.output);
}

}

std::string whyNotLoadable(const std::string& path, std::chrono::seconds limit) {
    std::string problem = whyNotOfThisMachine(path);
    if (!problem.empty()) {
        return problem;
    }
    const MemoryFile file;
    const ChildEnd end = runChild(
        [&] {
            const std::string reason = whyNotLinkable(path);
            write(reason.empty() ? kLoadable : reason, file);
        },
        limit);
    const std::string verdict = file.read(kLongestVerdict);
    if (!end.isInTime || verdict.empty()) {
        return whyNotLoaded(end, limit);
    }
    return verdict == kLoadable ? "" : verdict;
}

}
