// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "HeldFile.h"

#include <mutex>
#include <set>

#include <sys/stat.h>

namespace OrvHost {

namespace {

using Which = std::pair<dev_t, ino_t>;

Which whichOf(const std::filesystem::path& file) {
    struct stat found {};
    return stat(file.c_str(), &found) == 0 ? Which(found.st_dev, found.st_ino) : Which(0, 0);
}

struct Held {
    std::mutex mutex;
    std::multiset<Which> files;
};

Held& held() {
    static Held all;
    return all;
}

}

HeldFile::HeldFile(const std::filesystem::path& file) : mWhich(whichOf(file)) {
    const std::lock_guard<std::mutex> lock(held().mutex);
    held().files.insert(mWhich);
}

HeldFile::~HeldFile() {
    const std::lock_guard<std::mutex> lock(held().mutex);
    held().files.erase(held().files.find(mWhich));
}

bool HeldFile::isHeld(const std::filesystem::path& file) {
    const Which which = whichOf(file);
    const std::lock_guard<std::mutex> lock(held().mutex);
    return which != Which(0, 0) && held().files.count(which) > 0;
}

}
