// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Iterations.h"

#include <utility>

namespace Scripted {

Iterations::Handle Iterations::open(std::vector<std::string> names) {
    const std::lock_guard<std::mutex> guard(mMutex);
    mIterations[mNext] = Iteration{std::move(names)};
    return mNext++;
}

OrvReturnT Iterations::next(Handle handle, char** result) {
    const std::lock_guard<std::mutex> guard(mMutex);
    const auto found = mIterations.find(handle);
    if (found == mIterations.end() || found->second.finalized) {
        return OrvNotActive;
    }
    Iteration& iteration = found->second;
    const bool atEnd = iteration.position == iteration.names.size();
    *result = atEnd ? nullptr : iteration.names[iteration.position].data();
    iteration.position += atEnd ? 0 : 1;
    return OrvOk;
}

OrvReturnT Iterations::finalize(Handle handle) {
    const std::lock_guard<std::mutex> guard(mMutex);
    const auto found = mIterations.find(handle);
    if (found == mIterations.end()) {
        return OrvNotActive;
    }
    found->second.finalized = true;
    return OrvOk;
}

}
