// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Frame.h"

#include <cstdint>

namespace OrvHost {

namespace {

constexpr std::size_t kHead = 5;

}

std::string frameBytes(char kind, std::string_view body) {
    std::string bytes(1, kind);
    const auto size = static_cast<std::uint32_t>(body.size());
    for (const unsigned int shift : {24U, 16U, 8U, 0U}) {
        bytes += static_cast<char>((size >> shift) & 0xFFU);
    }
    return bytes.append(body);
}

std::optional<Frame> FrameReader::next() {
    if (mBytes.size() < kHead) {
        return std::nullopt;
    }
    std::size_t size = 0;
    for (std::size_t at = 1; at < kHead; ++at) {
        size = (size << 8U) | static_cast<unsigned char>(mBytes[at]);
    }
    if (size > mMost) {
        throw FrameError("a message of " + std::to_string(size) + " bytes came; at most " +
                         std::to_string(mMost) + " were expected");
    }
    if (mBytes.size() < kHead + size) {
        return std::nullopt;
    }
    Frame frame{mBytes.front(), mBytes.substr(kHead, size)};
    mBytes.erase(0, kHead + size);
    return frame;
}

}
