// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_QUIETRELEASE_H
#define ORV_EXT_CM_QUIETRELEASE_H

namespace OrvExtCmRouterService {

/// Hands \p given back to its producer, if there is both something to hand back and a function that
/// takes it. What that function throws is dropped: the value has been used by then, so the answer
/// to the client stands, and nothing may leave the destructors that call this.
template <class Given>
void releaseQuietly(void (*release)(Given*), Given* given) noexcept {
    if (release == nullptr || given == nullptr) {
        return;
    }
    try {
        release(given);
    } catch (...) { // NOLINT(bugprone-empty-catch): see above
    }
}

}

#endif
