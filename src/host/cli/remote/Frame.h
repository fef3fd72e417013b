// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_REMOTE_FRAME_H
#define ORV_HOST_CLI_REMOTE_FRAME_H

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace OrvHost {

/// A message between a server's shell and its client: a kind, and a body of that kind.
struct Frame {
    char kind = 0; ///< see ShellProtocol.h
    std::string body;
};

/// What came is no frame, or one that is too long.
class FrameError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The bytes of a frame: the kind, the size of the body in four bytes, the highest first, the body.
/// The body must be shorter than 4 GB.
std::string frameBytes(char kind, std::string_view body);

/// Takes frames out of a stream of bytes. It never holds more than the longest frame and what was
/// added last.
class FrameReader {
public:
    /// \p most: the size of the longest body.
    explicit FrameReader(std::size_t most) : mMost(most) {}

    void add(std::string_view bytes) { mBytes.append(bytes); }
    /// The next frame that is whole. Throws FrameError if its body is too long, as soon as its size
    /// is known.
    std::optional<Frame> next();
    /// From now on bodies can have that size.
    void allow(std::size_t most) { mMost = most; }
    /// Whether the beginning of a frame is there.
    bool isInFrame() const { return !mBytes.empty(); }

private:
    std::size_t mMost;
    std::string mBytes;
};

}

#endif
