// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RootRenaming.h"

#include "base/DnView.h"
#include "base/RootObject.h"
#include "yang/instances/InstanceDataError.h"

#include <libyang/libyang.h>

#include <utility>

namespace OrvHost {
namespace {

void findRoots(const lyd_node* first, const YangSchema& schema, std::set<std::string>& names) {
    for (const lyd_node* node = first; node != nullptr; node = node->next) {
        const ObjectShape* shape = schema.objectAt(node->schema);
        const lyd_node* key = lyd_child(node);
        if (shape == nullptr) {
            if (schema.isTransparent(node->schema)) {
                findRoots(key, schema, names);
            }
        } else if (shape->className == kRootClass && key != nullptr && shape->isKey(key->schema)) {
            names.insert(lyd_get_value(key));
        }
    }
}

/// Calls visit(text) for each reference in the value, those in members of structs included.
template <class Visit>
void forEachReference(AttributeValue& value, const Visit& visit) {
    for (Value& one : value.values) {
        if (auto* members = std::get_if<StructValue>(&one)) {
            for (NamedValue& member : members->members) {
                forEachReference(member.second, visit);
            }
        } else if (value.kind == ValueKind::MoRef) {
            visit(std::get<std::string>(one));
        }
    }
}

}

std::set<std::string> rootNamesIn(const lyd_node* first, const YangSchema& schema) {
    std::set<std::string> names;
    findRoots(first, schema, names);
    return names;
}

std::set<std::string> rootNamesIn(const std::vector<DataObject>& objects) {
    std::set<std::string> names;
    for (const DataObject& object : objects) {
        const DnView dn(object.dn);
        if (!dn.hasParent() && dn.last().className() == kRootClass) {
            names.emplace(dn.last().value());
        }
    }
    return names;
}

std::string onlyRootOf(const std::set<std::string>& names, const std::string& label) {
    if (names.size() > 1) {
        std::string all;
        for (const std::string& name : names) {
            all += (all.empty() ? "" : ", ") + std::string(kRootClass) + "=" + name;
        }
        throw InstanceDataError(
            {{{label, 0},
              "there are several elements at the root: " + all + "; one was expected"}});
    }
    return names.empty() ? "" : *names.begin();
}

RootRenaming::RootRenaming(std::string from, std::string to)
    : mFrom(std::move(from)), mTo(std::move(to)) {}

std::vector<std::string> RootRenaming::rename(DataObject& object) const {
    std::vector<std::string> problems;
    if (mFrom.empty() || mFrom == mTo) {
        return problems;
    }
    for (NamedValue& attribute : object.attributes) {
        forEachReference(attribute.second, [&](std::string& dn) {
            if (isNamed(dn, mTo)) {
                problems.push_back(object.dn + ": attribute " + attribute.first + " names " + dn +
                                   ", but the element at the root is " + kRootClass + "=" + mFrom +
                                   " in this data");
            }
            rename(dn);
        });
    }
    rename(object.dn);
    return problems;
}

void RootRenaming::rename(std::string& dn) const {
    if (isNamed(dn, mFrom)) {
        const DnStep root = *DnView(dn).steps().begin();
        dn.replace(root.text().size() - mFrom.size(), mFrom.size(), mTo);
    }
}

bool RootRenaming::isNamed(const std::string& dn, const std::string& name) {
    if (dn.empty()) {
        return false;
    }
    const DnStep root = *DnView(dn).steps().begin();
    return root.className() == kRootClass && root.value() == name;
}

}
