// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Model.h"

#include <algorithm>

namespace OrvHost {

namespace {

template <class Definition>
const Definition* findNamed(const std::vector<Definition>& all, std::string_view name) {
    const auto found = std::find_if(all.begin(), all.end(), [name](const Definition& definition) {
        return definition.name == name;
    });
    return found == all.end() ? nullptr : &*found;
}

/// Removes the first step from `dn` and returns its class name, which is empty if the step is
/// malformed.
std::string_view popClassName(std::string_view& dn) {
    const std::size_t comma = dn.find(',');
    const std::string_view step = dn.substr(0, comma);
    dn.remove_prefix(comma == std::string_view::npos ? dn.size() : comma + 1);
    const std::size_t equals = step.find('=');
    const bool hasValue = equals != std::string_view::npos && equals + 1 < step.size();
    const bool isLast = comma == std::string_view::npos;
    if (!hasValue || (!isLast && dn.empty())) {
        return {};
    }
    const std::string_view name = step.substr(0, equals);
    return name.substr(0, name.find('.'));
}

}

const AttributeDef* ClassDef::findAttribute(std::string_view attributeName) const {
    return findNamed(attributes, attributeName);
}

const ActionDef* ClassDef::findAction(std::string_view actionName) const {
    return findNamed(actions, actionName);
}

std::optional<AttributeIndex> ClassDef::findAttributeIndex(std::string_view attributeName) const {
    const AttributeDef* found = findAttribute(attributeName);
    if (!found) {
        return std::nullopt;
    }
    return static_cast<AttributeIndex>(found - attributes.data());
}

bool ClassDef::mayStandUnder(ClassIndex parent) const {
    return std::find(parents.begin(), parents.end(), parent) != parents.end();
}

std::optional<ClassIndex> Model::findClass(std::string_view name) const {
    const auto found = classByName.find(name);
    if (found == classByName.end()) {
        return std::nullopt;
    }
    return found->second;
}

std::optional<ClassIndex> Model::findClassOfDn(std::string_view dn) const {
    std::optional<ClassIndex> reached;
    do {
        const auto next = findClass(popClassName(dn));
        if (!next) {
            return std::nullopt;
        }
        const ClassDef& moc = classes[*next];
        if (reached ? !moc.mayStandUnder(*reached) : !moc.isTopLevel) {
            return std::nullopt;
        }
        reached = next;
    } while (!dn.empty());
    return reached;
}

}
