// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_OBJECTTEXT_H
#define ORV_HOST_NETCONF_CORE_OBJECTTEXT_H

#include "netconf/core/SubtreeFilter.h"
#include "netconf/wire/WireModel.h"

#include <optional>
#include <ostream>
#include <vector>

namespace OrvHost {

class ClientSession;

/// What of the objects is wanted.
struct ObjectSelection {
    std::optional<std::vector<FilterNode>> filter; ///< none: all objects
    bool onlyConfig = false;                       ///< without what only the system sets
};

/// Writes the objects that the transaction \p txHandle sees, as XML, to \p out. It reads what is
/// selected, and asks for objects whose keys a filter names instead of walking over all of them;
/// nothing but the path to the current object is kept in memory.
///
/// Throws what SubtreeReader throws. One thread.
void writeObjects(ClientSession& session, unsigned long txHandle, const WireModel& model,
                  const ObjectSelection& selection, std::ostream& out);

}

#endif
