// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_FILEHOLDER_H
#define ORV_HOST_BASE_FILEHOLDER_H

#include <filesystem>
#include <string>

namespace OrvHost {

/// The right of one process to use a file. A small file beside it, with "-holder" after its name,
/// says who has it, and is locked meanwhile: the operating system takes the lock back when the
/// process ends in any way. One thread.
class FileHolder {
public:
    /// \p file need not exist. Throws FileError with a text that names the process that holds it,
    /// or says why the file beside it cannot be written.
    explicit FileHolder(const std::filesystem::path& file);
    ~FileHolder();
    FileHolder(const FileHolder&) = delete;
    FileHolder& operator=(const FileHolder&) = delete;

private:
    bool tryLock(const std::filesystem::path& file);

    std::filesystem::path mFile;
    int mDescriptor = -1;
};

}

#endif
