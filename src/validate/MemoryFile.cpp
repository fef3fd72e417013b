// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MemoryFile.h"

#include <cerrno>
#include <system_error>

#include <sys/mman.h>
#include <unistd.h>

namespace OrvValidate {

namespace {

[[noreturn]] void failWith(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

}

MemoryFile::MemoryFile() : mFile(memfd_create("orv-validate", MFD_CLOEXEC)) {
    if (mFile < 0) {
        failWith("memfd_create");
    }
}

MemoryFile::~MemoryFile() {
    close(mFile);
}

void MemoryFile::resize(std::size_t size) const {
    if (ftruncate(mFile, static_cast<off_t>(size)) != 0) {
        failWith("ftruncate");
    }
}

bool MemoryFile::write(const void* bytes, std::size_t size) const {
    return pwrite(mFile, bytes, size, 0) == static_cast<ssize_t>(size);
}

std::string MemoryFile::read(std::size_t size) const {
    std::string bytes(size, '\0');
    const ssize_t count = pread(mFile, bytes.data(), size, 0);
    if (count < 0) {
        failWith("pread");
    }
    bytes.resize(static_cast<std::size_t>(count));
    return bytes;
}

}
