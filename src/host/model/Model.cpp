// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Model.h"

#include "base/DnView.h"

#include <algorithm>
#include <cctype>

namespace OrvHost {

namespace {

template <class Definition>
const Definition* findNamed(const std::vector<Definition>& all, std::string_view name) {
    const auto found = std::find_if(all.begin(), all.end(), [name](const Definition& definition) {
        return definition.name == name;
    });
    return found == all.end() ? nullptr : &*found;
}

}

std::string defaultNamingAttribute(std::string className) {
    className.front() =
        static_cast<char>(std::tolower(static_cast<unsigned char>(className.front())));
    return className + "Id";
}

const AttributeDef* TypeDef::findMember(std::string_view memberName) const {
    return findNamed(members, memberName);
}

const AttributeDef* ClassDef::findAttribute(std::string_view attributeName) const {
    const AttributeDef* found = findNamed(attributes, attributeName);
    const bool isKey = keys.size() == 1 && keys.front() == attributeName;
    return found == nullptr && isKey ? findNamed(attributes, namingAttribute) : found;
}

bool AttributeDef::isRequired() const {
    return multiplicity.lower > 0 && !defaultValue && !isGivenByName() && isWritable &&
           !isConditional;
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
    for (const DnStep step : DnView(dn).steps()) {
        const auto next = step.value().empty() ? std::nullopt : findClass(step.className());
        if (!next) {
            return std::nullopt;
        }
        const ClassDef& moc = classes[*next];
        if (reached ? !moc.mayStandUnder(*reached) : !moc.isTopLevel) {
            return std::nullopt;
        }
        reached = next;
    }
    return reached;
}

}
