// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_BYTES_H
#define ORV_RECORD_BYTES_H

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace OrvRecord {

/// Appends numbers and texts to a buffer that it does not own. One thread at a time.
class ByteWriter {
public:
    explicit ByteWriter(std::string& out) : mOut(out) {}

    void byte(std::uint8_t value) { mOut.push_back(static_cast<char>(value)); }
    /// In one byte for each seven bits.
    void number(std::uint64_t value);
    void raw(const void* bytes, std::size_t size) {
        mOut.append(static_cast<const char*>(bytes), size);
    }
    /// May be null, which is not the empty text.
    void text(const char* text);
    void bytes(std::string_view bytes);

private:
    std::string& mOut;
};

/// What a reader throws for bytes that no writer has written.
class DamagedBytes : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads what ByteWriter has written. Throws DamagedBytes. One thread at a time.
class ByteReader {
public:
    /// The bytes must outlive the reader and what it hands out.
    explicit ByteReader(std::string_view bytes) : mBytes(bytes) {}

    bool atEnd() const { return mAt == mBytes.size(); }
    std::size_t position() const { return mAt; }
    std::size_t left() const { return mBytes.size() - mAt; }
    std::uint8_t byte();
    std::uint64_t number();
    std::string_view raw(std::size_t size);
    /// False for null, with \p text empty.
    bool text(std::string_view& text);
    std::string_view bytes();

private:
    std::string_view mBytes;
    std::size_t mAt = 0;
};

}

#endif
