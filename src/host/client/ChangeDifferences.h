// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_CHANGEDIFFERENCES_H
#define ORV_HOST_CLIENT_CHANGEDIFFERENCES_H

#include "StateComparison.h"
#include "store/ChangeSet.h"

#include <vector>

namespace OrvHost {

/// What a transaction has changed, as clients name it: with external DNs, in values too. A value
/// that is not set is empty, even if its attribute has a default. \p model must outlive the result.
std::vector<ObjectDifference> differencesOf(const ChangeSet& changes, const Model& model);

}

#endif
