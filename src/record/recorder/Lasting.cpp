// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Lasting.h"

#include <atomic>
#include <mutex>
#include <vector>

namespace OrvRecord {

namespace {

/// What is to be done at the end, in the order in which it came.
struct Unload {
    std::mutex mutex; ///< guards work
    std::vector<std::function<void()>> work;
    std::atomic<bool> isExpected{false};

    ~Unload() {
        if (!isExpected) {
            return;
        }
        for (const std::function<void()>& each : work) {
            each();
        }
    }
};

Unload unload;

}

void atUnload(std::function<void()> work) {
    const std::lock_guard lock(unload.mutex);
    unload.work.push_back(std::move(work));
}

void expectUnload(bool isExpected) {
    unload.isExpected = isExpected;
}

}
