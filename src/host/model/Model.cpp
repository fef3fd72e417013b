// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Model.h"

#include "base/DnView.h"
#include "base/ShortText.h"

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
    const auto index = findAttributeIndex(attributeName);
    return index ? &attributes[*index] : nullptr;
}

bool AttributeDef::isRequired() const {
    return multiplicity.lower > 0 && !defaultValue && !isGivenByName() && isWritable &&
           !isConditional;
}

const ActionDef* ClassDef::findAction(std::string_view actionName) const {
    return findNamed(actions, actionName);
}

std::optional<AttributeIndex> ClassDef::findAttributeIndex(std::string_view attributeName) const {
    for (std::size_t index = 0; index < attributes.size(); ++index) {
        if (isSameText(attributes[index].name, attributeName)) {
            return static_cast<AttributeIndex>(index);
        }
    }
    const bool isKey =
        keys.size() == 1 && keys.front() == attributeName && attributeName != namingAttribute;
    return isKey ? findAttributeIndex(namingAttribute) : std::nullopt;
}

bool ClassDef::mayStandUnder(ClassIndex parent) const {
    return std::binary_search(sortedParents.begin(), sortedParents.end(), parent);
}

std::optional<ClassIndex> Model::findClass(std::string_view name) const {
    const auto found = classByName.find(name);
    if (found == classByName.end()) {
        return std::nullopt;
    }
    return found->second;
}

std::optional<ClassIndex> Model::findClassOfDn(std::string_view dn) const {
    ClassIndex reached = ChildClassTable::topLevel;
    for (std::string_view rest = dn;;) {
        const auto* child = childClasses.findAtStart(reached, rest);
        std::size_t value = child == nullptr ? 0 : child->name.size() + 1;
        if (child == nullptr) {
            // With an attribute, or there is no such child.
            const DnStep step = *DnView(rest).steps().begin();
            child = step.hasEquals() ? childClasses.find(reached, step.className()) : nullptr;
            value = step.type().size() + 1;
        }
        const std::size_t end = rest.find(',', value);
        if (child == nullptr || value == std::min(end, rest.size())) {
            return std::nullopt; // without a class, or without a value
        }
        reached = child->moc;
        if (end == std::string_view::npos) {
            return reached;
        }
        rest.remove_prefix(end + 1);
    }
}

}
