// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_REFERENCELIST_H
#define ORV_EXT_CM_REFERENCELIST_H

#include "OrvMoAttributeValue.h"

#include <cstddef>
#include <string>
#include <vector>

/// \file
/// The references that a value holds, compared and copied as texts. A router may answer with
/// something else where the model has references, so areReferences is to be asked first.

namespace OrvExtCmRouterService {

/// True if every value that \p value counts is a reference that can be read. A value without any is
/// one of no references, whatever its type.
bool areReferences(const VekMoAttributeValueContainer_3& value);

/// The references of \p one that \p other does not hold, in the order of \p one and as often as
/// they stand there. They point into \p one.
std::vector<const char*> missingReferences(const VekMoAttributeValueContainer_3& one,
                                           const VekMoAttributeValueContainer_3& other);

/// Copies of all references, in their order, in a vector with room for \p room.
std::vector<std::string> copyReferences(const VekMoAttributeValueContainer_3& references,
                                        std::size_t room);

}

#endif
