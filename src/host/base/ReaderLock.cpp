// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ReaderLock.h"

namespace OrvHost {

void ReaderLock::lock() {
    mWriters.lock();
    // Those who waited for the writer before are let in first. Meanwhile nobody begins to wait.
    for (int left = mWaitingReaders.load(); left != 0; left = mWaitingReaders.load()) {
        mWaitingReaders.wait(left);
    }
    mHasWriter.store(true);
    for (Place& place : mPlaces) {
        for (int inside = place.readers.load(); inside != 0; inside = place.readers.load()) {
            place.readers.wait(inside);
        }
    }
}

void ReaderLock::unlock() {
    mHasWriter.store(false);
    mHasWriter.notify_all();
    mWriters.unlock();
}

// The reader is counted already; it gives way to the writer and counts itself again after it.
void ReaderLock::waitToEnter(std::atomic<int>& readers) {
    mWaitingReaders.fetch_add(1);
    do {
        readers.fetch_sub(1);
        readers.notify_all();
        mHasWriter.wait(true);
        readers.fetch_add(1);
    } while (mHasWriter.load());
    if (mWaitingReaders.fetch_sub(1) == 1) {
        mWaitingReaders.notify_all();
    }
}

}
