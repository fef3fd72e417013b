// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SOURCE_STATEMENTPLACEMENT_H
#define ORV_HOST_YANG_SOURCE_STATEMENTPLACEMENT_H

#include "yang/source/ModuleFinder.h"

#include <vector>

namespace OrvHost {

/// The name of the module that the statements belong to.
constexpr const char* kAssociationsModule = "orv-associations";

/// The statements of orv-associations at places where the YANG library drops them, or where they
/// have no meaning. Without this check they would be ignored silently.
std::vector<Problem> misplacedStatements(const ModuleSource& module);

}

#endif
