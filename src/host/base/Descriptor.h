// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_DESCRIPTOR_H
#define ORV_HOST_BASE_DESCRIPTOR_H

#include <utility>

#include <unistd.h>

namespace OrvHost {

/// An open file descriptor, closed with this object.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int fd) : mFd(fd) {}
    Descriptor(Descriptor&& other) noexcept : mFd(std::exchange(other.mFd, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(mFd, other.mFd);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (mFd >= 0) {
            close(mFd);
        }
    }

    int get() const { return mFd; }
    /// The caller closes it.
    int release() { return std::exchange(mFd, -1); }

private:
    int mFd = -1;
};

}

#endif
