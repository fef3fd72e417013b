// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_HELDFILE_H
#define ORV_HOST_BASE_HELDFILE_H

#include <filesystem>
#include <utility>

#include <sys/types.h>

namespace OrvHost {

/// A file that this process keeps open under a lock, by whatever name. Who opens it once more by
/// other means and closes it again gives the lock up, since it is the process that has it; so
/// whatever opens files that users name asks isHeld() first. Any thread.
class HeldFile {
public:
    /// \p file exists.
    explicit HeldFile(const std::filesystem::path& file);
    ~HeldFile();
    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;

    /// Whether \p file is one for which there is such an object. It is not opened.
    static bool isHeld(const std::filesystem::path& file);

private:
    std::pair<dev_t, ino_t> mWhich;
};

}

#endif
