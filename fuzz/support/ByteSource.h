// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_FUZZ_SUPPORT_BYTESOURCE_H
#define ORV_FUZZ_SUPPORT_BYTESOURCE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace Fuzz {

/// A fuzzer's input, taken from front to back: what was read stays what it is when bytes are
/// appended. After the end there are only zeros.
class ByteSource {
public:
    ByteSource(const std::uint8_t* data, std::size_t size) : mData(data), mSize(size) {}

    bool isEmpty() const { return mPosition == mSize; }

    /// How many bytes have been taken.
    std::size_t position() const { return mPosition; }

    /// Passes over \p size bytes, or over as many as there are.
    void skip(std::size_t size) { mPosition += std::min(size, mSize - mPosition); }

    std::uint8_t byte() { return isEmpty() ? std::uint8_t{0} : mData[mPosition++]; }

    /// From 0 to \p bound - 1; \p bound is at most 256.
    std::size_t below(std::size_t bound) { return byte() % bound; }

    /// The next \p size bytes, lowest first.
    std::uint64_t number(int size) {
        std::uint64_t value = 0;
        for (int at = 0; at < size; ++at) {
            value |= static_cast<std::uint64_t>(byte()) << (8 * at);
        }
        return value;
    }

    /// A length of one byte and so many characters, or as many as there are; no NUL.
    std::string text() {
        std::string read;
        for (std::size_t left = byte(); left > 0 && !isEmpty(); --left) {
            const auto character = static_cast<char>(byte());
            read += character != '\0' ? character : '?';
        }
        return read;
    }

    std::string rest() {
        std::string read(reinterpret_cast<const char*>(mData) + mPosition, mSize - mPosition);
        mPosition = mSize;
        return read;
    }

private:
    const std::uint8_t* mData;
    std::size_t mSize;
    std::size_t mPosition = 0;
};

}

#endif
