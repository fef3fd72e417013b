// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_STATEMENTPLACEMENT_H
#define ORV_HOST_YANG_STATEMENTPLACEMENT_H

#include "yang/ModuleFinder.h"

#include <vector>

namespace OrvHost {

/// The name of the module that the statements belong to.
constexpr const char* kAssociationsModule = "orv-associations";

/// The statements of orv-associations that stand where the YANG library loses them, or where they
/// mean nothing. They would otherwise vanish without a word.
std::vector<ModelProblem> misplacedStatements(const ModuleText& module);

}

#endif
