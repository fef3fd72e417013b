// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_UNDOING_H
#define ORV_HOST_NETCONF_CORE_UNDOING_H

#include "client/edits/Wish.h"
#include "model/Model.h"
#include "store/ChangeSet.h"

namespace OrvHost {

/// The wish that what a commit has changed is again as it was before. Values that only the system
/// sets are not in it: a deleted object gets back what clients can set.
Wish undoing(const ChangeSet& changes, const Model& model);

}

#endif
