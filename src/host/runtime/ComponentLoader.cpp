// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ComponentLoader.h"

#include "ComponentRegistry.h"
#include "OrvReturnText.h"

#include <Poco/Exception.h>
#include <Poco/SharedLibrary.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <system_error>

#include <dlfcn.h>
#include <link.h>

namespace OrvHost {

using Reason = ComponentLoadError::Reason;

namespace {

constexpr unsigned char kNativeClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;

template <class Record>
bool readAt(std::ifstream& file, std::uint64_t place, Record& record) {
    file.seekg(static_cast<std::streamoff>(place));
    return static_cast<bool>(file.read(reinterpret_cast<char*>(&record), sizeof record));
}

// True if the file is shorter than its headers say, for example after an interrupted copy. The
// system maps such a file without an error, and the process ends when it touches the missing part.
bool isCutOff(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::error_code unknown;
    const std::uintmax_t size = std::filesystem::file_size(path, unknown);
    ElfW(Ehdr) header{};
    const bool isOurs = !unknown && readAt(file, 0, header) &&
                        std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 &&
                        header.e_ident[EI_CLASS] == kNativeClass;
    if (!isOurs) {
        return false; // not a shared object: the system reports that when it opens the file
    }
    for (unsigned int number = 0; number < header.e_phnum; ++number) {
        ElfW(Phdr) segment{};
        if (!readAt(file, header.e_phoff + std::uint64_t{number} * sizeof segment, segment) ||
            (segment.p_type == PT_LOAD && segment.p_offset + segment.p_filesz > size)) {
            return true;
        }
    }
    return false;
}

// The path of the shared object that holds \p symbol; empty if it is the one of \p path, or if the
// system does not tell. What a shared object does not have itself is looked for in those that it
// was linked with.
std::string otherHome(const void* symbol, const std::string& path) {
    Dl_info place{};
    std::error_code unknown;
    const bool isElsewhere = dladdr(symbol, &place) != 0 && place.dli_fname != nullptr &&
                             !std::filesystem::equivalent(place.dli_fname, path, unknown) &&
                             !unknown;
    return isElsewhere ? place.dli_fname : std::string();
}

}

/// One open shared object. The destructor undoes the steps that were done, however far loading
/// came.
class ComponentLoader::Library {
public:
    Library(ComponentRegistry& registry, const std::string& path)
        : mRegistry(registry), mPath(path) {
        open();
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() { close(); }

    void findEntryPoints() {
        mInit = reinterpret_cast<InitFn>(symbol("orvLCMinit"));
        mTerminate = reinterpret_cast<TerminateFn>(symbol("orvLCMterminate"));
    }

    void init(OrvMgmtSpiInterfacePortalAccessor* accessor, const std::string& argument) {
        const ComponentRegistry::OwnerScope scope(mRegistry, this);
        mInitCalled = true;
        const OrvReturnT code = callInit(accessor, argument);
        if (code != OrvOk) {
            throw ComponentLoadError(Reason::InitRefused, mPath,
                                     std::string("orvLCMinit answered ") +
                                         Orv::OrvReturn::strerror(code) + " (" +
                                         std::to_string(code) + ")",
                                     code);
        }
    }

    /// Undoes all steps; a second call does nothing. \p leavesOpen: but for the first, so that what
    /// the shared object keeps is not freed. Returns what went wrong, or an empty text.
    std::string close(bool leavesOpen = false) {
        std::string problem = terminate();
        mRegistry.drop(this);
        mLeavesOpen = mLeavesOpen || leavesOpen;
        try {
            if (!mLeavesOpen) {
                mLibrary.unload();
            }
        } catch (const Poco::Exception& failure) {
            problem += failure.displayText();
        }
        return problem.empty() ? problem : mPath + ": " + problem;
    }

    const std::string& path() const { return mPath; }

private:
    using InitFn = OrvReturnT (*)(OrvMgmtSpiInterfacePortalAccessor*, const char*);
    using TerminateFn = void (*)();

    void open() {
        if (mPath.empty()) {
            throw ComponentLoadError(Reason::NotALibrary, "(empty path)",
                                     "the path of a shared object was expected");
        }
        if (isCutOff(mPath)) {
            throw ComponentLoadError(
                Reason::NotALibrary, mPath,
                "cannot be opened as a shared object: the file ends too early");
        }
        try {
            // Local symbols: both entry points have the same names in every component.
            mLibrary.load(std::filesystem::absolute(mPath).string(),
                          Poco::SharedLibrary::SHLIB_LOCAL);
        } catch (const Poco::Exception& failure) {
            throw ComponentLoadError(Reason::NotALibrary, mPath,
                                     "cannot be opened as a shared object: " + failure.message());
        }
    }

    void* symbol(const char* name) {
        if (!mLibrary.hasSymbol(name)) {
            throw ComponentLoadError(Reason::MissingEntryPoint, mPath,
                                     std::string("has no entry point ") + name);
        }
        void* const found = mLibrary.getSymbol(name);
        const std::string home = otherHome(found, mPath);
        if (!home.empty()) {
            throw ComponentLoadError(Reason::MissingEntryPoint, mPath,
                                     std::string("has no entry point ") + name +
                                         " of its own, only that of " + home +
                                         ", which it was linked with");
        }
        return found;
    }

    OrvReturnT callInit(OrvMgmtSpiInterfacePortalAccessor* accessor, const std::string& argument) {
        try {
            return mInit(accessor, argument.c_str());
        } catch (const std::exception& failure) {
            throw ComponentLoadError(Reason::InitThrew, mPath,
                                     std::string("orvLCMinit threw an exception: ") +
                                         failure.what());
        } catch (...) {
            throw ComponentLoadError(Reason::InitThrew, mPath,
                                     "orvLCMinit threw something that is no std::exception");
        }
    }

    std::string terminate() {
        if (!mInitCalled) {
            return {};
        }
        mInitCalled = false;
        const ComponentRegistry::OwnerScope scope(mRegistry, this);
        try {
            mTerminate();
        } catch (const std::exception& failure) {
            return std::string("orvLCMterminate threw an exception: ") + failure.what();
        } catch (...) {
            return "orvLCMterminate threw something that is no std::exception";
        }
        return {};
    }

    ComponentRegistry& mRegistry;
    std::string mPath;
    Poco::SharedLibrary mLibrary;
    InitFn mInit = nullptr;
    TerminateFn mTerminate = nullptr;
    bool mLeavesOpen = false;
    bool mInitCalled = false;
};

ComponentLoader::ComponentLoader(ComponentRegistry& registry,
                                 OrvMgmtSpiInterfacePortalAccessor* accessor)
    : mRegistry(registry), mAccessor(accessor) {}

ComponentLoader::~ComponentLoader() {
    unloadAll();
}

void ComponentLoader::load(const std::string& path, const std::string& argument) {
    if (isLoaded(path)) {
        throw ComponentLoadError(Reason::AlreadyLoaded, path, "is loaded already");
    }
    auto library = std::make_unique<Library>(mRegistry, path);
    library->findEntryPoints();
    library->init(mAccessor, argument);
    mLibraries.push_back(std::move(library));
}

// A second dlopen of an open file returns the same shared object, with the same single service
// object, so the host must notice it first.
bool ComponentLoader::isLoaded(const std::string& path) const {
    return std::any_of(mLibraries.begin(), mLibraries.end(), [&](const auto& library) {
        std::error_code unreadable;
        return std::filesystem::equivalent(library->path(), path, unreadable);
    });
}

std::vector<std::string> ComponentLoader::unloadAll() {
    std::vector<std::string> problems;
    for (const ComponentReport& report : mRegistry.stopAll(OrvStateChangeReasonHostShutdown)) {
        if (!report.problem.empty()) {
            problems.push_back(report.name + ": " + report.problem);
        }
    }
    while (!mLibraries.empty()) {
        const std::string problem = mLibraries.back()->close(mLeavesOpen);
        mLibraries.pop_back();
        if (!problem.empty()) {
            problems.push_back(problem);
        }
    }
    return problems;
}

std::vector<std::string> ComponentLoader::loaded() const {
    std::vector<std::string> paths;
    for (const auto& library : mLibraries) {
        paths.push_back(library->path());
    }
    return paths;
}

}
