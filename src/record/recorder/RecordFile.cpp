// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RecordFile.h"

#include "Recording.h"
#include "Tell.h"

#include <cerrno>
#include <cstring>
#include <exception>

#include <csignal>
#include <fcntl.h>
#include <pthread.h>
#include <sys/uio.h>
#include <unistd.h>

namespace OrvRecord {

namespace {

constexpr int kMostNames = 10000;

int createFile(const std::string& path, std::string& name) {
    for (int number = 0; number < kMostNames; ++number) {
        name = number == 0 ? path : path + "." + std::to_string(number);
        const int file = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (file >= 0 || errno != EEXIST) {
            return file;
        }
    }
    return -1;
}

// Over its limit of file sizes a process gets a signal that ends it; here the write is to fail.
class WithoutSizeSignal {
public:
    WithoutSizeSignal() {
        sigemptyset(&mSignal);
        sigaddset(&mSignal, SIGXFSZ);
        pthread_sigmask(SIG_BLOCK, &mSignal, &mBefore);
    }
    WithoutSizeSignal(const WithoutSizeSignal&) = delete;
    WithoutSizeSignal& operator=(const WithoutSizeSignal&) = delete;
    ~WithoutSizeSignal() { pthread_sigmask(SIG_SETMASK, &mBefore, nullptr); }

    /// Takes the signal that a failed write has left.
    void take() const {
        if (sigismember(&mBefore, SIGXFSZ) == 0) {
            const timespec atOnce{};
            sigtimedwait(&mSignal, nullptr, &atOnce);
        }
    }

private:
    sigset_t mSignal{};
    sigset_t mBefore{};
};

bool writeWhole(int file, std::string_view first, std::string_view second) {
    iovec parts[] = {{const_cast<char*>(first.data()), first.size()},
                     {const_cast<char*>(second.data()), second.size()}};
    std::size_t left = first.size() + second.size();
    while (left > 0) {
        const ssize_t written = ::writev(file, parts, 2);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        auto done = static_cast<std::size_t>(written);
        left -= done;
        for (iovec& part : parts) {
            const std::size_t ofPart = done < part.iov_len ? done : part.iov_len;
            part.iov_base = static_cast<char*>(part.iov_base) + ofPart;
            part.iov_len -= ofPart;
            done -= ofPart;
        }
    }
    return true;
}

}

RecordFile::~RecordFile() {
    if (mFile >= 0) {
        ::close(mFile);
    }
}

void RecordFile::open(const std::string& path, std::uint64_t mostBytes) noexcept {
    try {
        std::string problem;
        ::pthread_atfork(nullptr, nullptr, [] { _isForked = true; });
        {
            const std::lock_guard lock(mMutex);
            mFile = createFile(path, mPath);
            mMostBytes = mostBytes;
            if (mFile < 0 || !writeWhole(mFile, kHeadLine, {})) {
                problem = "nothing is recorded: " + mPath + ": " + ::strerrordesc_np(errno);
            } else {
                mSize = kHeadLine.size();
                mIsOn = true;
            }
        }
        if (!problem.empty()) {
            tell(problem);
        }
    } catch (const std::exception&) {
        stop("there is no memory");
    }
}

void RecordFile::write(std::string_view body) noexcept {
    if (!isOn()) {
        return; // without the lock, which a thread of the parent may have had at the fork
    }
    const char* problem = nullptr;
    bool isEnd = false;
    try {
        const std::string head = blockHead(body);
        const std::lock_guard lock(mMutex);
        if (!mIsOn) {
            return;
        }
        if (mSize + head.size() + body.size() > mMostBytes || body.size() > 0xFFFFFFFFU) {
            problem = "the file has reached its limit";
        } else {
            const WithoutSizeSignal guard;
            const int before = errno;
            if (writeWhole(mFile, head, body)) {
                mSize += head.size() + body.size();
            } else {
                problem = ::strerrordesc_np(errno);
                if (errno == EFBIG) {
                    guard.take();
                }
                // Half a record would hide that the rest is whole.
                static_cast<void>(::ftruncate(mFile, static_cast<off_t>(mSize)) == 0);
            }
            errno = before;
        }
        // Before the lock is free: nobody may write behind what is missing.
        isEnd = problem != nullptr && mIsOn.exchange(false);
    } catch (const std::exception&) {
        stop("there is no memory");
    }
    if (isEnd) {
        tellEnd(problem);
    }
}

void RecordFile::stop(const char* why) noexcept {
    if (mIsOn.exchange(false)) {
        tellEnd(why);
    }
}

void RecordFile::tellEnd(const char* why) const noexcept {
    try {
        tell(mPath + ": the recording ends here: " + why);
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): there is nobody to tell
    }
}

}
