// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_INPUT_PLACE_H
#define ORV_HOST_CLI_INPUT_PLACE_H

#include "model/Model.h"

#include <string>

namespace OrvHost {

/// \p dn, as somebody wrote it, as the DN from the top level, in the short form (see shortDn).
/// \p here is the object at which the session stands, from the top level; empty: none.
///
/// "." is that object and ".." the one above it. A DN whose first class can be below that object is
/// below it; any other begins at the top level, and so does one with a "/" in front. Throws
/// UsageError for a ".." that leads above the top level. External DNs. Any thread.
std::string fromTop(const Model& model, const std::string& here, const std::string& dn);

/// Throws UsageError if the model has no place for an object \p dn, external. The top level (empty)
/// is one. Any thread.
void requirePlace(const Model& model, const std::string& dn);

}

#endif
