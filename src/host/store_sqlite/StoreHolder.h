// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_SQLITE_STOREHOLDER_H
#define ORV_HOST_STORE_SQLITE_STOREHOLDER_H

#include <filesystem>
#include <string>

namespace OrvHost {

/// The right of one process to use the file of a store. A small file beside it, with "-holder"
/// after its name, says who has it, and is locked meanwhile: the operating system takes the lock
/// back when the process ends in any way. One thread.
class StoreHolder {
public:
    /// Throws LogUnavailable with a text that names the process that holds \p file, or says why the
    /// file beside it cannot be written.
    explicit StoreHolder(const std::filesystem::path& file);
    ~StoreHolder();
    StoreHolder(const StoreHolder&) = delete;
    StoreHolder& operator=(const StoreHolder&) = delete;

private:
    bool tryLock(const std::filesystem::path& file);

    std::filesystem::path mFile;
    int mDescriptor = -1;
};

}

#endif
