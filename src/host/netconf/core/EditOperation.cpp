// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "EditOperation.h"

#include "netconf/wire/WireModel.h"

#include <libyang/libyang.h>

#include <array>
#include <utility>

namespace OrvHost {

EditOperation editOperationOf(const std::string& text) {
    static const std::array<std::pair<const char*, EditOperation>, 6> known{
        {{"none", EditOperation::None},
         {"merge", EditOperation::Merge},
         {"replace", EditOperation::Replace},
         {"create", EditOperation::Create},
         {"delete", EditOperation::Delete},
         {"remove", EditOperation::Remove}}};
    for (const auto& [name, operation] : known) {
        if (text == name) {
            return operation;
        }
    }
    return EditOperation::Merge; // the parser lets nothing else through
}

std::optional<EditOperation> ownOperation(const lyd_node* node) {
    if (node->schema != nullptr) {
        const lyd_meta* meta = lyd_find_meta(node->meta, nullptr, "ietf-netconf:operation");
        return meta != nullptr ? std::optional(editOperationOf(lyd_get_meta_value(meta)))
                               : std::nullopt;
    }
    const auto* opaque = reinterpret_cast<const lyd_node_opaq*>(node);
    for (const lyd_attr* one = opaque->attr; one != nullptr; one = one->next) {
        const char* const place = one->name.module_ns;
        if (std::string(one->name.name) == "operation" && place != nullptr &&
            std::string(place) == kNetconfNamespace) {
            return editOperationOf(one->value);
        }
    }
    return std::nullopt;
}

bool takesAway(EditOperation operation) {
    return operation == EditOperation::Delete || operation == EditOperation::Remove;
}

}
