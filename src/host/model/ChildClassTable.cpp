// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ChildClassTable.h"

namespace OrvHost {

void ChildClassTable::add(ClassIndex parent, std::string_view name, ClassIndex child) {
    const std::size_t place = placeOf(parent);
    if (place >= mChildren.size()) {
        mChildren.resize(place + 1);
    }
    Children& children = mChildren[place];
    children.all.push_back({std::string(name), child});
    if (children.all.size() <= kFew) {
        return;
    }
    for (std::size_t at = children.byName.size(); at < children.all.size(); ++at) {
        children.byName.emplace(children.all[at].name, at);
    }
}

const ChildClassTable::Child* ChildClassTable::find(ClassIndex parent,
                                                    std::string_view name) const {
    const Children* const children = childrenOf(parent);
    return children == nullptr ? nullptr : findIn(*children, name);
}

const ChildClassTable::Child* ChildClassTable::findIn(const Children& children,
                                                      std::string_view name) {
    if (children.all.size() > kFew) {
        const auto found = children.byName.find(name);
        return found == children.byName.end() ? nullptr : &children.all[found->second];
    }
    for (const Child& child : children.all) {
        if (child.name == name) {
            return &child;
        }
    }
    return nullptr;
}

}
