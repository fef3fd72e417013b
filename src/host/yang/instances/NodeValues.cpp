// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "NodeValues.h"

#include "yang/types/ValueCodec.h"

namespace OrvHost {

void NodeValues::append(const lyd_node* node, std::vector<NamedValue>& values) const {
    const ValueShape* shape = mShapeAt(node->schema);
    if (shape == nullptr) {
        mForeign(node);
        return;
    }
    // All instances of one node are together in the tree, even if they were apart in the text.
    const bool isAnother = !values.empty() && values.back().first == shape->name;
    if (!isAnother) {
        values.emplace_back(shape->name, AttributeValue{shape->kind, {}});
    } else if (!shape->isMultiple) {
        mSecond(node);
        return;
    }
    values.back().second.values.push_back(valueOf(node, *shape));
}

Value NodeValues::valueOf(const lyd_node* node, const ValueShape& shape) const {
    if (shape.kind != ValueKind::Struct) {
        const auto* term = reinterpret_cast<const lyd_node_term*>(node);
        return decodeValue(LYD_CTX(node), term->value, shape.kind);
    }
    StructValue value;
    for (const lyd_node* member = lyd_child(node); member != nullptr; member = member->next) {
        append(member, value.members);
    }
    return value;
}

}
