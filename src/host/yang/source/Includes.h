// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SOURCE_INCLUDES_H
#define ORV_HOST_YANG_SOURCE_INCLUDES_H

#include "yang/source/ModuleFinder.h"

#include <string>

/// \file
/// Texts of modules and submodules in which only modules include.
///
/// If a submodule includes another one that the module has not included before, the YANG library
/// does not resolve the extension statements in it, and compiling the module then ends the process.
/// This happens only if the texts come through a callback. So the module is given all of its
/// submodules, and these include none. The meaning is the same: the library looks up every name in
/// the whole module. Line numbers do not change.

namespace OrvHost {

/// The text of a module with an `include` for each submodule that only its submodules include. In
/// YANG 1.1 there can be none, and the library says so: nothing is added.
std::string withAllIncludes(const ModuleSource& module, ModuleFinder& finder);

/// The text of a submodule without the `include` statements that are in the module's text, see
/// withAllIncludes().
std::string withoutIncludes(const ModuleSource& submodule, const ModuleSource& module,
                            ModuleFinder& finder);

}

#endif
