// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_CORE_EDITOPERATION_H
#define ORV_HOST_NETCONF_CORE_EDITOPERATION_H

#include <cstdint>
#include <optional>
#include <string>

struct lyd_node;

namespace OrvHost {

/// What an edit-config does with a node and what is below it: RFC 6241, section 7.2. None is only a
/// default operation.
enum class EditOperation : std::uint8_t { None, Merge, Replace, Create, Delete, Remove };

/// "merge" and so on.
EditOperation editOperationOf(const std::string& text);

/// The node's own operation; nothing if it has none. Also of a node that the modules do not know.
std::optional<EditOperation> ownOperation(const lyd_node* node);

/// True for delete and remove.
bool takesAway(EditOperation operation);

}

#endif
