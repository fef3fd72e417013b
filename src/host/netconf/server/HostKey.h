// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_SERVER_HOSTKEY_H
#define ORV_HOST_NETCONF_SERVER_HOSTKEY_H

#include <string>

namespace OrvHost {

/// Makes a new key of the server at \p path, readable by its owner only, unless there is a file.
/// Throws ServerError if it cannot be made, or if others can read the file that is there.
void ensureHostKey(const std::string& path);

}

#endif
