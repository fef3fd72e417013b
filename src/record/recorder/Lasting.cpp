// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Lasting.h"

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include <dlfcn.h>

namespace OrvRecord {

namespace {

using Works = std::vector<std::function<void()>>;

std::mutex mutex; // guards works
Works* works = nullptr;
bool isClosed = false;
bool isEndOfProcess = false;

struct EndOfProcess {
    EndOfProcess() = default;
    EndOfProcess(const EndOfProcess&) = delete;
    EndOfProcess& operator=(const EndOfProcess&) = delete;
    ~EndOfProcess() {
        isEndOfProcess = !isClosed;
        Dl_info here{};
        if (isEndOfProcess && dladdr(&works, &here) != 0) {
            dlopen(here.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
        }
    }
};

// When a shared object is closed, such a function runs before its static objects are destroyed; at
// the end of a process, after them. That tells the two apart.
__attribute__((destructor)) void close() {
    isClosed = true;
    if (isEndOfProcess) {
        return;
    }
    const std::unique_ptr<Works> all(works);
    for (std::size_t at = 0; all != nullptr && at < all->size(); ++at) {
        const std::function<void()> work = std::move((*all)[at]);
        work(); // which may add others
    }
}

}

void atClose(std::function<void()> work) {
    const std::lock_guard lock(mutex);
    if (works == nullptr) {
        works = new Works;
    }
    works->push_back(std::move(work));
}

void noticeEndOfProcess() {
    static const EndOfProcess theEnd;
}

}
