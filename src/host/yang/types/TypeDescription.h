// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_TYPES_TYPEDESCRIPTION_H
#define ORV_HOST_YANG_TYPES_TYPEDESCRIPTION_H

#include <libyang/libyang.h>

#include <string>

namespace OrvHost {

/// A type for people: "uint8 (1..4)", "uint16 or enumeration".
std::string describeType(const lysc_type* type);

/// What a value of the leaf or leaf-list must be, for messages: "uint8 (1..4)", "one of UP, DOWN".
std::string expectedBy(const lysc_node* node);

}

#endif
