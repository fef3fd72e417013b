// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_COMMON_HOSTFLAG_H
#define ORV_COMMON_HOSTFLAG_H

#include <cstring>

namespace Orv {

/// The byte of a flag that a host may have written to. Other bytes than 0 and 1 may stand there,
/// which must not be read as a `bool`.
inline unsigned char byteOf(const bool& flag) {
    unsigned char byte = 0;
    static_assert(sizeof(byte) == sizeof(flag));
    std::memcpy(&byte, &flag, sizeof(byte));
    return byte;
}

/// True for any byte but zero.
inline bool isSet(const bool& flag) {
    return byteOf(flag) != 0;
}

}

#endif
