// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_ITERATIONS_H
#define ORV_TESTS_COMPONENT_SUPPORT_ITERATIONS_H

#include "OrvReturn.h"

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace Scripted {

/// The scripted router's iterators. Handles use the upper half of their 64 bits too.
///
/// Threads: every operation, any thread.
class Iterations {
public:
    using Handle = unsigned long long;

    Handle open(std::vector<std::string> names);
    /// Null with OrvOk is the end; a handle that is unknown or finalized: OrvNotActive.
    OrvReturnT next(Handle handle, char** result);
    OrvReturnT finalize(Handle handle);

private:
    struct Iteration {
        std::vector<std::string> names;
        std::size_t position = 0;
        bool finalized = false;
    };

    std::mutex mMutex;
    Handle mNext = 0x1122'3344'0000'0001ULL;
    std::map<Handle, Iteration> mIterations;
};

}

#endif
