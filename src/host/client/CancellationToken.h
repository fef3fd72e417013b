// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_CANCELLATIONTOKEN_H
#define ORV_HOST_CLIENT_CANCELLATIONTOKEN_H

#include "ClientErrors.h"

#include <atomic>

namespace OrvHost {

/// Lets somebody end work that takes long: walks over the tree, plans. The work asks the token
/// between two calls of the component, so it ends at a place where no call is half done; what was
/// written before stays in the transaction. A token that is cancelled stays so until renew().
///
/// Threads: any. cancel() may also be called by a signal handler.
class CancellationToken {
public:
    void cancel() { mIsCancelled.store(true, std::memory_order_relaxed); }
    /// For the owner, between two pieces of work.
    void renew() { mIsCancelled.store(false, std::memory_order_relaxed); }
    bool isCancelled() const { return mIsCancelled.load(std::memory_order_relaxed); }

    /// Throws CancelledError if cancel() was called.
    void throwIfCancelled() const {
        if (isCancelled()) {
            throw CancelledError();
        }
    }

private:
    static_assert(std::atomic<bool>::is_always_lock_free, "signal handlers set it");
    std::atomic<bool> mIsCancelled{false};
};

}

#endif
