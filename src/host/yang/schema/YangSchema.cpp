// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "YangSchema.h"

#include "base/DnView.h"
#include "yang/schema/Rule.h"

#include <utility>

namespace OrvHost {

YangSchema::YangSchema(std::shared_ptr<const YangContext> context) : mContext(std::move(context)) {}

YangSchema::~YangSchema() = default;

const ObjectShape* YangSchema::find(const ObjectShape* parent, std::string_view className) const {
    for (const ObjectShape* shape : childrenOf(parent)) {
        if (shape->className == className) {
            return shape;
        }
    }
    return nullptr;
}

const ObjectShape* YangSchema::findByDn(std::string_view dn) const {
    const ObjectShape* shape = nullptr;
    for (const DnStep step : DnView(dn).steps()) {
        shape = find(shape, step.className());
        if (shape == nullptr) {
            return nullptr;
        }
    }
    return shape;
}

const ObjectShape* YangSchema::objectAt(const lysc_node* node) const {
    const auto found = mObjectAt.find(node);
    return found == mObjectAt.end() ? nullptr : found->second;
}

const ValueShape* YangSchema::valueAt(const lysc_node* node) const {
    const auto found = mValueAt.find(node);
    return found == mValueAt.end() ? nullptr : found->second;
}

ObjectShape& YangSchema::addObject(ObjectShape* parent, ObjectShape shape) {
    ObjectShape& added = mObjects.emplace_back(std::move(shape));
    (parent != nullptr ? parent->children : mTop).push_back(&added);
    return added;
}

void YangSchema::complete(const Model& model) {
    for (ObjectShape& shape : mObjects) {
        shape.moc = model.findClass(shape.className).value();
        mObjectAt.emplace(shape.list, &shape);
        for (const ValueShape& attribute : shape.attributes) {
            index(attribute);
        }
    }
}

void YangSchema::setRules(std::vector<Rule> rules) {
    mRules = std::move(rules);
}

void YangSchema::index(const ValueShape& shape) {
    mValueAt.emplace(shape.node, &shape);
    for (const ValueShape& member : shape.members) {
        index(member);
    }
}

}
