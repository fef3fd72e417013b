// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_UNIXADDRESS_H
#define ORV_HOST_BASE_UNIXADDRESS_H

#include <string>

#include <sys/un.h>

namespace OrvHost {

/// The address of a UNIX socket at a path.
class UnixAddress {
public:
    explicit UnixAddress(const std::string& path);

    /// Why no socket can have that path; empty if one can.
    const std::string& problem() const { return mProblem; }
    bool isUsable() const { return mProblem.empty(); }
    const sockaddr_un& get() const { return mAddress; }

private:
    sockaddr_un mAddress{};
    std::string mProblem;
};

}

#endif
