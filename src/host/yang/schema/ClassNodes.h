// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_CLASSNODES_H
#define ORV_HOST_YANG_SCHEMA_CLASSNODES_H

#include <libyang/libyang.h>

namespace OrvHost {

/// The first key of a list, or null.
const lysc_node* keyOf(const lysc_node* list);

/// True for a list whose entries are objects. A list with several keys has no single attribute that
/// names its entries, so these are not objects.
bool isClass(const lysc_node* node);

/// True for the container in a class whose contents are attributes of the class.
bool isTransparentInClass(const lysc_node* node);

/// True for an action or an rpc.
bool isCallable(const lysc_node* node);

}

#endif
