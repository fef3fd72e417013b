// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "AtomicFile.h"

#include "HeldFile.h"

#include <cerrno>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace OrvHost {

namespace fs = std::filesystem;

namespace {

constexpr int kMostNames = 100;
constexpr mode_t kMode = 0666; // the process's mask takes its part away
constexpr mode_t kPermissions = 07777;

constexpr int kMostLinks = 40; // as the system follows them

/// The file that a link leads to, which need not exist.
fs::path followed(const fs::path& file) {
    std::error_code error;
    fs::path target = file;
    for (int links = 0; fs::is_symlink(fs::symlink_status(target, error)); ++links) {
        const fs::path next = fs::read_symlink(target, error);
        if (error || links == kMostLinks) {
            throw FileError(file.string() +
                            ": the link leads to no file; a new file, a regular one or a link to "
                            "one was expected");
        }
        target = target.parent_path() / next;
    }
    return target;
}

}

AtomicFile::AtomicFile(const fs::path& file) : mFile(followed(file)) {
    std::error_code ignored;
    const fs::file_status status = fs::status(mFile, ignored);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        throw FileError(mFile.string() + ": is not a file that can be replaced; a new file or a "
                                         "regular one was expected");
    }
    if (HeldFile::isHeld(mFile)) {
        throw FileError(mFile.string() + ": is the file of this host's store");
    }
    if (!mFile.has_filename()) {
        throw FileError("'" + mFile.string() + "' is not the name of a file");
    }
    create();
    struct stat old {};
    if (stat(mFile.c_str(), &old) == 0) {
        static_cast<void>(fchmod(mDescriptor, old.st_mode & kPermissions));
    }
    mOut.open(mTemporary, std::ios::binary);
}

AtomicFile::~AtomicFile() {
    if (mDescriptor >= 0) {
        close(mDescriptor);
    }
    if (!mTemporary.empty()) {
        unlink(mTemporary.c_str());
    }
}

void AtomicFile::create() {
    for (int number = 0; mDescriptor < 0; ++number) {
        const fs::path name = mFile.parent_path() /
                              ("." + mFile.filename().string() + "." + std::to_string(getpid()) +
                               "-" + std::to_string(number) + ".tmp");
        mDescriptor = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kMode);
        if (mDescriptor >= 0) {
            mTemporary = name;
        } else if (errno != EEXIST || number >= kMostNames) {
            fail("no file can be made in this directory", errno);
        }
    }
}

void AtomicFile::throwIfFailed() {
    if (!mOut) {
        fail("cannot be written to its end", errno);
    }
}

void AtomicFile::replace() {
    errno = 0;
    mOut.flush();
    throwIfFailed();
    mOut.close();
    throwIfFailed();
    if (fsync(mDescriptor) != 0) {
        fail("cannot be written to its end", errno);
    }
    if (rename(mTemporary.c_str(), mFile.c_str()) != 0) {
        fail("cannot be replaced", errno);
    }
    mTemporary.clear();
    // The new name must last, too. Some file systems cannot be asked for that; it is no reason to
    // call the file unwritten, since it is in its place.
    const fs::path directory = mFile.has_parent_path() ? mFile.parent_path() : fs::path(".");
    const int descriptor = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        fsync(descriptor);
        close(descriptor);
    }
}

void AtomicFile::fail(const char* what, int error) const {
    errno = error;
    throw FileError(fileErrorText(mFile, what));
}

void writeWholeFile(const fs::path& file, const std::string& text) {
    std::error_code ignored;
    const fs::file_status status = fs::status(file, ignored);
    if (!fs::exists(status) || fs::is_regular_file(status)) {
        AtomicFile whole(file);
        whole.out() << text;
        whole.replace();
        return;
    }
    errno = 0;
    std::ofstream out(file, std::ios::binary);
    out << text;
    out.close();
    if (!out) {
        throw FileError(fileErrorText(file, "cannot be written"));
    }
}

std::string fileErrorText(const fs::path& file, const std::string& what) {
    const int error = errno;
    return file.string() + ": " + what +
           (error != 0 ? ": " + std::generic_category().message(error) : "");
}

}
