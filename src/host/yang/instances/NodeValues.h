// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_NODEVALUES_H
#define ORV_HOST_YANG_INSTANCES_NODEVALUES_H

#include "yang/schema/YangSchema.h"

#include <libyang/libyang.h>

#include <functional>
#include <utility>
#include <vector>

namespace OrvHost {

/// Turns parsed nodes into the values of attributes, members of structs, or parameters.
class NodeValues {
public:
    using ShapeAt = std::function<const ValueShape*(const lysc_node* node)>;
    using Tell = std::function<void(const lyd_node* node)>;

    /// \p shapeAt says what a node of the modules is in the model; null: nothing. \p foreign is
    /// called for a node that is nothing there, \p second for a further value of what can have only
    /// one; both are left out.
    NodeValues(ShapeAt shapeAt, Tell foreign, Tell second)
        : mShapeAt(std::move(shapeAt)), mForeign(std::move(foreign)), mSecond(std::move(second)) {}

    /// Adds the value of a node, to the last of \p values if that is of the same name.
    void append(const lyd_node* node, std::vector<NamedValue>& values) const;

private:
    Value valueOf(const lyd_node* node, const ValueShape& shape) const;

    ShapeAt mShapeAt;
    Tell mForeign;
    Tell mSecond;
};

}

#endif
