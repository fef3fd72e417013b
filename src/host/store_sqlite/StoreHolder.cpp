// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "StoreHolder.h"

#include "base/AtomicFile.h"
#include "store/CommitLog.h"

namespace OrvHost {

StoreHolder::StoreHolder(const std::filesystem::path& file) {
    if (file.empty()) {
        throw LogUnavailable("the path of the store's file is empty");
    }
    try {
        mHolder.emplace(file);
    } catch (const FileError& failure) {
        throw LogUnavailable(failure.what());
    }
}

}
