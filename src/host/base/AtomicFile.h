// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_ATOMICFILE_H
#define ORV_HOST_BASE_ATOMICFILE_H

#include <filesystem>
#include <fstream>
#include <ostream>
#include <stdexcept>
#include <string>

namespace OrvHost {

/// A file that cannot be written: what() names it, and says why.
class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A file that is written as a whole or not at all. The text goes to a file of another name in the
/// same directory, which takes the place of the old one in replace(). Until then the old one stays
/// as it is; without replace() the destructor removes the new one, so only a process that is killed
/// leaves it there: its name begins with a point and the name of the file, and ends with ".tmp".
///
/// A link is followed; the new file has the permissions of the old one. One thread.
class AtomicFile {
public:
    /// Throws FileError if there is no such directory, it may not be written, or \p file is
    /// something else than a file.
    explicit AtomicFile(const std::filesystem::path& file);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    std::ostream& out() { return mOut; }

    /// Throws FileError if something could not be written, such as on a full disk. For work that
    /// needs not be continued then.
    void throwIfFailed();

    /// Everything is on the disk, and the old file is replaced, when it returns. Throws FileError;
    /// the old file is still there then. Call it once, at the end.
    void replace();

private:
    void create();
    [[noreturn]] void fail(const char* what, int error) const;

    std::filesystem::path mFile;
    std::filesystem::path mTemporary; ///< empty: none is there
    int mDescriptor = -1;             ///< of the temporary file, beside that of mOut
    std::ofstream mOut;
};

/// Writes \p text to \p file, as AtomicFile does it; to something that is no regular file, such as
/// a pipe or a device, directly. Throws FileError.
void writeWholeFile(const std::filesystem::path& file, const std::string& text);

/// "FILE: WHAT: the reason", with the reason of the latest call of the system that failed.
std::string fileErrorText(const std::filesystem::path& file, const std::string& what);

}

#endif
