// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_TYPES_TYPEDEFCHAIN_H
#define ORV_HOST_YANG_TYPES_TYPEDEFCHAIN_H

#include <libyang/libyang.h>

#include <string>
#include <vector>

namespace OrvHost {

/// The typedefs that lead to the type of a leaf or leaf-list, as "module:name", the nearest first.
/// A compiled type has lost them, so they are followed in the parsed modules.
std::vector<std::string> typedefsOf(const lysc_node* node);

}

#endif
