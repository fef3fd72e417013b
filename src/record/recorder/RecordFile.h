// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_RECORDER_RECORDFILE_H
#define ORV_RECORD_RECORDER_RECORDFILE_H

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

namespace OrvRecord {

/// The file that a recording goes to. Nothing here throws: a host is not to be disturbed. What
/// cannot be written ends the recording, and one line in the log says why; what was written before
/// stays a whole recording.
///
/// A process that is forked off records nothing: it would write in between.
///
/// Threads: every operation, any thread.
class RecordFile {
public:
    RecordFile() = default;
    RecordFile(const RecordFile&) = delete;
    RecordFile& operator=(const RecordFile&) = delete;
    ~RecordFile();

    /// Makes a new file at \p path, for its owner alone; if there is one, at the first free of
    /// \p path.1, \p path.2 and so on. Ends itself after \p mostBytes.
    void open(const std::string& path, std::uint64_t mostBytes) noexcept;
    bool isOn() const {
        return mIsOn.load(std::memory_order_relaxed) && !_isForked.load(std::memory_order_relaxed);
    }
    /// Writes one block with this body, at once.
    void write(std::string_view body) noexcept;
    /// Ends the recording; \p why goes to the log, the first time.
    void stop(const char* why) noexcept;

private:
    void tellEnd(const char* why) const noexcept;

    inline static std::atomic<bool> _isForked{false};

    std::atomic<bool> mIsOn{false};
    std::mutex mMutex; ///< guards what follows
    std::string mPath;
    int mFile = -1;
    std::uint64_t mSize = 0;
    std::uint64_t mMostBytes = 0;
};

}

#endif
