// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SERVE_OWNFOLDERS_H
#define ORV_HOST_CLI_SERVE_OWNFOLDERS_H

#include <string>

namespace OrvHost {

/// Throws ServerError if others can exchange what \p path, a path of the file system, leads to, or
/// put something of their own there: unless each folder on the way to it, behind symbolic links,
/// too, and each such link belongs to the user of this process or to root, and nobody else may
/// write into these folders. The sticky bit, as /tmp has it, is enough, but not for the folder of
/// \p path itself. \p path need not exist, its folder must.
void requireOwnFolders(const std::string& path);

}

#endif
