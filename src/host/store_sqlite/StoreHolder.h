// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_SQLITE_STOREHOLDER_H
#define ORV_HOST_STORE_SQLITE_STOREHOLDER_H

#include "base/FileHolder.h"

#include <filesystem>
#include <optional>

namespace OrvHost {

/// The right of one process to use the file of a store: see FileHolder. One thread.
class StoreHolder {
public:
    /// Throws LogUnavailable with the text of FileHolder.
    explicit StoreHolder(const std::filesystem::path& file);

private:
    std::optional<FileHolder> mHolder; ///< always there; it cannot be moved
};

}

#endif
