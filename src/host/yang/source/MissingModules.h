// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SOURCE_MISSINGMODULES_H
#define ORV_HOST_YANG_SOURCE_MISSINGMODULES_H

#include "base/Problem.h"
#include "yang/source/ModuleFinder.h"

#include <functional>
#include <string>
#include <vector>

namespace OrvHost {

/// One problem for each `import` or `include` of these modules, and of those that they import, that
/// names a module that is not found. `isBuiltIn` is asked for modules that need no file.
std::vector<Problem> missingModules(const std::vector<std::string>& modules, ModuleFinder& finder,
                                    const std::function<bool(const std::string&)>& isBuiltIn);

/// The text of such a problem.
std::string describeMissing(const std::string& module, const ModuleFinder& finder);

}

#endif
