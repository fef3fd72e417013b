// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_OBJECTPAGE_H
#define ORV_HOST_CLI_GRAPH_OBJECTPAGE_H

#include "ReferenceLines.h"
#include "TreePicture.h"
#include "audit/InstanceReport.h"

#include <string>
#include <vector>

namespace OrvHost {

/// One HTML page to look around in: the objects as a tree that can be searched and folded, and of
/// the chosen object the attributes, the references both ways and the violations. It needs nothing
/// else, neither files nor a network. \p picture was read with the values of all attributes. Throws
/// CancelledError, see TreePicture::token.
std::string objectPage(const TreePicture& picture, const ReferenceLines& lines,
                       const std::vector<InstanceProblem>& violations);

}

#endif
