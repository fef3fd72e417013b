// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "FileHolder.h"

#include "AtomicFile.h"
#include "UtcTime.h"

#include <array>
#include <cerrno>
#include <ctime>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace OrvHost {

namespace {

std::string hostName() {
    std::array<char, 256> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "an unknown host";
}

std::string contentOf(int descriptor) {
    std::array<char, 512> text{};
    const ssize_t size = pread(descriptor, text.data(), text.size(), 0);
    return size > 0 ? std::string(text.data(), static_cast<std::size_t>(size)) : std::string();
}

std::string reason() {
    return std::generic_category().message(errno);
}

std::filesystem::path holderFileOf(const std::filesystem::path& file) {
    std::error_code error;
    const std::filesystem::path whole = std::filesystem::weakly_canonical(file, error);
    if (error) {
        throw FileError(file.string() + " cannot be opened: " + error.message());
    }
    return whole.string() + "-holder";
}

// Who held the file before may have removed it between our opening and our locking it.
bool isStillThere(const std::filesystem::path& file, int descriptor) {
    struct stat own {};
    struct stat there {};
    return fstat(descriptor, &own) == 0 && stat(file.c_str(), &there) == 0 &&
           own.st_ino == there.st_ino && own.st_dev == there.st_dev;
}

}

// A file has one holder, whichever name or symbolic link it is opened by. Hard links are different
// files here; the engine's own lock finds those.
FileHolder::FileHolder(const std::filesystem::path& file) : mFile(holderFileOf(file)) {
    while (!tryLock(file)) {
    }
    // The lock counts. The text is for people, and a disk that is full has no room for it.
    const std::string text = "process " + std::to_string(getpid()) + " on " + hostName() +
                             ", since " + utcText(std::time(nullptr));
    const bool isTold =
        ftruncate(mDescriptor, 0) == 0 && pwrite(mDescriptor, text.data(), text.size(), 0) >= 0;
    static_cast<void>(isTold);
}

bool FileHolder::tryLock(const std::filesystem::path& file) {
    mDescriptor = open(mFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (mDescriptor < 0) {
        const std::string why = reason();
        throw FileError(file.string() + " cannot be opened: " + mFile.string() +
                        " cannot be written: " + why);
    }
    if (flock(mDescriptor, LOCK_EX | LOCK_NB) == 0) {
        if (isStillThere(mFile, mDescriptor)) {
            return true;
        }
        close(mDescriptor);
        return false;
    }
    const std::string holder = contentOf(mDescriptor);
    close(mDescriptor);
    throw FileError(file.string() + " is in use by " +
                    (holder.empty() ? "another process" : holder));
}

FileHolder::~FileHolder() {
    unlink(mFile.c_str());
    close(mDescriptor);
}

}
