// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_VALIDATE_LIBRARYCHECK_H
#define ORV_VALIDATE_LIBRARYCHECK_H

#include <chrono>
#include <string>

namespace OrvValidate {

/// Why \p path cannot be loaded as a component, in one line: it is not a file, not an ELF shared
/// object, made for another machine, it cannot be linked, it is linked with a
/// libext_cm.so, an exported function is missing, or loading it ends the process or takes longer
/// than \p limit. Empty if it can be loaded. It is loaded in a process of its own. No other thread
/// may run. Throws as runChild does.
std::string whyNotLoadable(const std::string& path, std::chrono::seconds limit);

}

#endif
