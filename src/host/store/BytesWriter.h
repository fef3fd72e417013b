// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_STORE_BYTESWRITER_H
#define ORV_HOST_STORE_BYTESWRITER_H

#include <cstdint>
#include <string>
#include <string_view>

namespace OrvHost {

/// Adds values to a string of bytes, in the form that BytesReader reads.
class BytesWriter {
public:
    explicit BytesWriter(std::string& out) : mOut(out) {}

    /// In groups of seven bits, lowest first.
    void number(std::uint64_t number) {
        while (number >= 0x80U) {
            mOut += static_cast<char>(number | 0x80U);
            number >>= 7U;
        }
        mOut += static_cast<char>(number);
    }
    void signedNumber(std::int64_t value) { number(foldSign(value)); }
    void flag(bool value) { mOut += static_cast<char>(value ? 1 : 0); }
    void real(double value) { mOut.append(reinterpret_cast<const char*>(&value), sizeof value); }
    void text(std::string_view value) {
        number(value.size());
        mOut += value;
    }

    /// Maps small numbers of either sign to small unsigned numbers, which take few bytes.
    static std::uint64_t foldSign(std::int64_t number) {
        const auto bits = static_cast<std::uint64_t>(number);
        return (bits << 1U) ^ (number < 0 ? UINT64_MAX : 0);
    }

private:
    std::string& mOut;
};

}

#endif
