// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_SERVER_SERVERERROR_H
#define ORV_HOST_NETCONF_SERVER_SERVERERROR_H

#include <stdexcept>

namespace OrvHost {

/// Something that the server needs cannot be used: an address, a key, a file.
class ServerError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}

#endif
