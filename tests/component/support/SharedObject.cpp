// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "SharedObject.h"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace Scripted {

namespace {

std::string pathFrom(const char* variable, const char* fallback) {
    const char* path = std::getenv(variable); // NOLINT(concurrency-mt-unsafe): nobody sets it
    return path != nullptr
               ? path
               : std::filesystem::read_symlink("/proc/self/exe").parent_path() / fallback;
}

std::string lastError() {
    const char* text = dlerror(); // NOLINT(concurrency-mt-unsafe): kept per thread by glibc
    return text != nullptr ? text : "unknown error";
}

}

SharedObject::SharedObject(const char* variable, const char* fallback)
    : mPath(pathFrom(variable, fallback)), mHandle(dlopen(mPath.c_str(), RTLD_NOW | RTLD_GLOBAL)) {
    if (mHandle == nullptr) {
        throw std::runtime_error(std::string(variable) + ": " + lastError());
    }
}

SharedObject::~SharedObject() {
    dlclose(mHandle);
}

void* SharedObject::symbol(const char* name) const {
    void* found = dlsym(mHandle, name);
    if (found == nullptr) {
        throw std::runtime_error(mPath + " has no " + name);
    }
    return found;
}

}
