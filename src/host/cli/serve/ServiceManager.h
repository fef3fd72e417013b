// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SERVE_SERVICEMANAGER_H
#define ORV_HOST_CLI_SERVE_SERVICEMANAGER_H

#include <string>

namespace OrvHost {

/// Sends \p state, such as "READY=1", to the service manager that has started this program, as
/// sd_notify(3) describes it. Without one nothing happens, and nor does if it cannot be reached.
void tellServiceManager(const std::string& state);

}

#endif
