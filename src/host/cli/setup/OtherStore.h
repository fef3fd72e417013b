// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SETUP_OTHERSTORE_H
#define ORV_HOST_CLI_SETUP_OTHERSTORE_H

#include "model/Model.h"

#include <functional>
#include <string>
#include <vector>

namespace OrvHost {

/// Whether \p text names a store that is there: a shared one, or the file of one. A file is looked
/// into, since instance data are files as well.
bool isStore(const std::string& text);

/// An object of a store: its internal DN, and the values that were set.
using TakeStored = std::function<void(const std::string& dn, std::vector<NamedValue> values)>;

/// Calls \p take with each object of a store that is not this host's own, as of the last commit,
/// parents first and siblings in order. The data is not changed; what a host that was killed has
/// left in the journal of a file is brought into the file. Hosts may use a shared one meanwhile; a
/// file that a process uses is refused, with the name of that process, and is held while it is
/// read. Throws HostError: it cannot be read, or is of another model, with the first difference;
/// and what \p take throws.
void readStore(const std::string& store, const Model& model, const TakeStored& take);

}

#endif
