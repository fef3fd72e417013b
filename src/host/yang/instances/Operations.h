// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_OPERATIONS_H
#define ORV_HOST_YANG_INSTANCES_OPERATIONS_H

#include "yang/schema/ModelNotes.h"
#include "yang/source/YangContext.h"

#include <libyang/libyang.h>

#include <optional>
#include <string>

namespace OrvHost {

/// Leaves RPCs, actions and notifications, with what they contain, out of instance data: they are
/// known, but they are no data, and the library refuses a whole text for one of them. Each is
/// noted, with \p label as its file.
///
/// Returns the text without them, in the same format but not in the same lines, or nothing if there
/// are none or the text is malformed.
std::optional<std::string> withoutOperations(const std::string& text, LYD_FORMAT format,
                                             const YangContext& context, const std::string& label,
                                             ModelNotes& notes);

}

#endif
