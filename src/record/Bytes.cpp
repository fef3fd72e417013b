// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Bytes.h"

#include <cstring>

namespace OrvRecord {

void ByteWriter::number(std::uint64_t value) {
    for (; value >= 0x80; value >>= 7) {
        byte(static_cast<std::uint8_t>(value | 0x80));
    }
    byte(static_cast<std::uint8_t>(value));
}

// Zero is null; so a length is one more than it is.
void ByteWriter::text(const char* text) {
    if (text == nullptr) {
        number(0);
        return;
    }
    const std::size_t size = std::strlen(text);
    number(size + 1);
    raw(text, size);
}

void ByteWriter::bytes(std::string_view bytes) {
    number(bytes.size());
    mOut.append(bytes);
}

std::uint8_t ByteReader::byte() {
    return static_cast<std::uint8_t>(raw(1).front());
}

std::uint64_t ByteReader::number() {
    std::uint64_t value = 0;
    for (unsigned int shift = 0; shift < 64; shift += 7) {
        const std::uint8_t next = byte();
        value |= std::uint64_t{next & 0x7FU} << shift;
        if ((next & 0x80) == 0) {
            return value;
        }
    }
    throw DamagedBytes("a number that does not end");
}

std::string_view ByteReader::raw(std::size_t size) {
    if (size > mBytes.size() - mAt) {
        throw DamagedBytes("a value is longer than its record");
    }
    mAt += size;
    return mBytes.substr(mAt - size, size);
}

bool ByteReader::text(std::string_view& text) {
    const std::uint64_t size = number();
    text = size == 0 ? std::string_view() : raw(size - 1);
    return size != 0;
}

std::string_view ByteReader::bytes() {
    return raw(number());
}

}
