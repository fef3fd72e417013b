// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "PlayedLibrary.h"

#include <filesystem>
#include <stdexcept>

#include <dlfcn.h>

namespace OrvRecord {

PlayedLibrary::PlayedLibrary(const std::string& path)
    : mHandle(dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (mHandle == nullptr) {
        throw std::runtime_error(path + ": cannot be opened as a shared object: " + dlerror());
    }
    init = reinterpret_cast<decltype(init)>(dlsym(mHandle, "orvLCMinit"));
    terminate = reinterpret_cast<decltype(terminate)>(dlsym(mHandle, "orvLCMterminate"));
    interceptors = findInterceptorFunctions(mHandle);
    if (init == nullptr || terminate == nullptr) {
        dlclose(mHandle);
        throw std::runtime_error(path + ": has no entry points orvLCMinit and orvLCMterminate");
    }
}

PlayedLibrary::~PlayedLibrary() {
    dlclose(mHandle);
}

}
