// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_READERLOCK_H
#define ORV_HOST_BASE_READERLOCK_H

#include <array>
#include <atomic>
#include <cstddef>
#include <mutex>

namespace OrvHost {

/// A lock for many readers and one writer, for data that is read much more often than written.
///
/// Readers on different threads count themselves at different places, so that they do not slow
/// each other down; a writer visits all places. A writer that waits comes before readers that
/// arrive later, and readers that waited for a writer come before the next one: so writers that
/// follow each other without a pause keep nobody out. No thread may lock it twice.
///
/// The function names are those that std::shared_lock and std::unique_lock need.
class ReaderLock {
public:
    ReaderLock() = default;
    ReaderLock(const ReaderLock&) = delete;
    ReaderLock& operator=(const ReaderLock&) = delete;

    void lock();
    void unlock();

    void lock_shared() {
        // First counted, then looked: either the writer sees the reader or the reader sees the
        // writer.
        std::atomic<int>& readers = mPlaces[placeOfThread()].readers;
        readers.fetch_add(1);
        if (mHasWriter.load()) {
            waitToEnter(readers);
        }
    }
    void unlock_shared() {
        std::atomic<int>& readers = mPlaces[placeOfThread()].readers;
        readers.fetch_sub(1);
        if (mHasWriter.load()) {
            readers.notify_all();
        }
    }

private:
    static constexpr std::size_t kPlaces = 16;
    /// Each on a cache line of its own. Threads beyond their number share places.
    struct alignas(64) Place {
        std::atomic<int> readers{0};
    };

    static std::size_t placeOfThread() {
        static std::atomic<std::size_t> threads{0};
        thread_local std::size_t place = kPlaces; // not known yet
        if (place == kPlaces) {
            place = threads.fetch_add(1) % kPlaces;
        }
        return place;
    }
    void waitToEnter(std::atomic<int>& readers);

    std::array<Place, kPlaces> mPlaces;
    alignas(64) std::atomic<bool> mHasWriter{false}; ///< one waits or is inside
    alignas(64) std::atomic<int> mWaitingReaders{0}; ///< for that writer to leave
    std::mutex mWriters;                             ///< held by that writer
};

}

#endif
