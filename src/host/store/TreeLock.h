// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_TREELOCK_H
#define ORV_HOST_STORE_TREELOCK_H

#include <atomic>
#include <mutex>
#include <shared_mutex>

namespace OrvHost {

/// A lock for many readers and one writer in which a waiting writer comes before readers that
/// arrive later. std::shared_mutex does not promise that, and with it a commit could wait as long
/// as reads overlap. No thread may lock it twice.
///
/// The function names are those that std::shared_lock and std::unique_lock need.
class TreeLock {
public:
    TreeLock() = default;
    TreeLock(const TreeLock&) = delete;
    TreeLock& operator=(const TreeLock&) = delete;

    void lock() {
        mWaiting.fetch_add(1);
        {
            const std::lock_guard<std::mutex> gate(mGate);
            mTree.lock();
        }
        mWaiting.fetch_sub(1);
    }
    void unlock() { mTree.unlock(); }

    void lock_shared() {
        if (mWaiting.load() > 0) {
            const std::lock_guard<std::mutex> gate(mGate);
        }
        mTree.lock_shared();
    }
    void unlock_shared() { mTree.unlock_shared(); }

private:
    std::atomic<int> mWaiting{0};
    std::mutex mGate; ///< held by a writer that waits
    std::shared_mutex mTree;
};

}

#endif
