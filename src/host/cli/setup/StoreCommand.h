// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_SETUP_STORECOMMAND_H
#define ORV_HOST_CLI_SETUP_STORECOMMAND_H

#include "cli/errors/CliErrors.h"

#include <ostream>
#include <string>
#include <vector>

namespace OrvHost {

/// Runs `store info STORE`, `store check FILE`, `store compact FILE` and `store trim STORE [ENTRIES
/// [HOURS]]`, which need no host. \p words are those after `store`; answers go to \p out, as one
/// JSON document if \p wantsJson. Throws LoadError if the store cannot be used, UsageError for a
/// word that is no number.
ExitStatus runStoreCommand(const std::vector<std::string>& words, bool wantsJson,
                           std::ostream& out);

}

#endif
