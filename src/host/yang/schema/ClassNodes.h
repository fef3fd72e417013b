// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_CLASSNODES_H
#define ORV_HOST_YANG_SCHEMA_CLASSNODES_H

#include <libyang/libyang.h>

#include <string>
#include <vector>

namespace OrvHost {

/// The keys of a list, in the order in which they identify its entries. Empty if it has none.
std::vector<const lysc_node*> keysOf(const lysc_node* list);

/// True for a list whose entries are objects.
bool isClass(const lysc_node* node);

/// Why the entries of a list with keys cannot be objects although nothing says that they are
/// structs; empty if they can.
std::string whyNoClass(const lysc_node* list);

/// True for the container in a class whose contents are attributes of the class.
bool isTransparentInClass(const lysc_node* node);

/// True for an action or an rpc.
bool isCallable(const lysc_node* node);

}

#endif
