// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_VALIDATE_MEMORYFILE_H
#define ORV_VALIDATE_MEMORYFILE_H

#include <cstddef>
#include <string>

namespace OrvValidate {

/// A file of the kernel without a name: it keeps what a child has written into it, however that
/// child ends. Programs that are run do not have it open. Threads: every operation, any thread.
class MemoryFile {
public:
    /// Throws std::system_error.
    MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile();

    int descriptor() const { return mFile; }

    /// Gives it this size, with zeros. Throws std::system_error.
    void resize(std::size_t size) const;
    /// Writes at the beginning. False if that was not possible.
    bool write(const void* bytes, std::size_t size) const;
    /// At most \p size bytes from the beginning. Throws std::system_error.
    std::string read(std::size_t size) const;

private:
    int mFile;
};

}

#endif
