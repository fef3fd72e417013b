// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_PLAINJSONVALUE_H
#define ORV_HOST_YANG_INSTANCES_PLAINJSONVALUE_H

#include "model/Value.h"
#include "yang/instances/JsonCursor.h"

#include <libyang/libyang.h>

#include <optional>

namespace OrvHost::PlainJsonValue {

/// Takes a value of the leaf or leaf-list \p node, as ValueCodec decodes it. Nothing if it does not
/// fit the type, or if only the library's parser can say so.
std::optional<Value> read(JsonCursor& text, const ly_ctx* context, const lysc_node* node,
                          ValueKind kind);

}

#endif
