// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "UnixAddress.h"

#include <sys/socket.h>

namespace OrvHost {

UnixAddress::UnixAddress(const std::string& path) {
    constexpr std::size_t kMost = sizeof(mAddress.sun_path) - 1;
    mAddress.sun_family = AF_UNIX;
    if (path.empty()) {
        mProblem = "the path of a socket was expected";
    } else if (path.size() > kMost) {
        mProblem = "is too long for a socket: a path of at most " + std::to_string(kMost) +
                   " bytes was expected, and it has " + std::to_string(path.size());
    } else {
        path.copy(mAddress.sun_path, path.size());
    }
}

}
