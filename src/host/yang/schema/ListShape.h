// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_LISTSHAPE_H
#define ORV_HOST_YANG_SCHEMA_LISTSHAPE_H

#include <libyang/libyang.h>

#include <string>

namespace OrvHost {

/// A text that is equal for two lists if, and only if, one class can stand for both: the same key,
/// attributes, actions and child classes, in any order. Types are compared with their
/// ranges, lengths, patterns and names. For comparison only, not for people.
std::string shapeTextOf(const lysc_node* list);

}

#endif
