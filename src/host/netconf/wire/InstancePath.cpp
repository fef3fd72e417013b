// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "InstancePath.h"

#include "base/DnView.h"
#include "yang/instances/ObjectWriter.h"
#include "yang/schema/YangSchema.h"

#include <libyang/libyang.h>

#include <algorithm>

namespace OrvHost {

namespace {

void appendData(const lyd_node* node, InstancePath& path) {
    if (node->parent != nullptr) {
        appendData(&node->parent->node, path);
    }
    if (node->schema == nullptr) {
        return;
    }
    path.append(node->schema);
    if (node->schema->nodetype != LYS_LIST) {
        return;
    }
    for (const lyd_node* key = lyd_child(node);
         key != nullptr && key->schema != nullptr && lysc_is_key(key->schema); key = key->next) {
        path.where(key->schema, lyd_get_value(key));
    }
}

void appendObject(const ObjectShape& shape, std::string_view name, InstancePath& path) {
    for (const lysc_node* wrapper : shape.wrappers) {
        path.append(wrapper);
    }
    path.append(shape.list);
    const std::vector<std::string> keys = keysOf(shape, name);
    for (std::size_t at = 0; at < keys.size(); ++at) {
        path.where(shape.keys[at], keys[at]);
    }
}

void appendMember(const ObjectShape& shape, const std::string& name, InstancePath& path) {
    const auto found = std::find_if(shape.attributes.begin(), shape.attributes.end(),
                                    [&](const ValueShape& value) { return value.name == name; });
    if (found != shape.attributes.end()) {
        if (found->wrapper != nullptr) {
            path.append(found->wrapper);
        }
        path.append(found->node);
        return;
    }
    const auto action = std::find_if(shape.actions.begin(), shape.actions.end(),
                                     [&](const ActionShape& one) { return one.name == name; });
    if (action != shape.actions.end()) {
        path.append(action->node);
    }
}

}

std::string InstancePath::qualified(const lysc_node* node) {
    prefixes.emplace(node->module->name, node->module->ns);
    return std::string(node->module->name) + ":" + node->name;
}

void InstancePath::append(const lysc_node* node) {
    text += "/" + qualified(node);
}

void InstancePath::where(const lysc_node* key, const std::string& value) {
    const char quote = value.find('\'') == std::string::npos ? '\'' : '"';
    text += "[" + qualified(key) + "=" + quote + value + quote + "]";
}

bool InstancePath::whereSelf(const std::string& value) {
    const bool hasSingle = value.find('\'') != std::string::npos;
    if (hasSingle && value.find('"') != std::string::npos) {
        return false;
    }
    const char quote = hasSingle ? '"' : '\'';
    text += std::string("[.=") + quote + value + quote + "]";
    return true;
}

InstancePath instancePathOf(const lyd_node* node) {
    InstancePath path;
    appendData(node, path);
    return path;
}

InstancePath instancePathOf(const YangSchema& schema, const std::string& dn,
                            const std::string& member) {
    InstancePath path;
    const ObjectShape* shape = nullptr;
    for (const DnStep step : DnView(dn).steps()) {
        const ObjectShape* below = schema.find(shape, step.className());
        if (below == nullptr) {
            return path;
        }
        shape = below;
        try {
            appendObject(*shape, step.value(), path);
        } catch (const UnwritableValueError&) {
            return path;
        }
    }
    if (shape != nullptr) {
        appendMember(*shape, member, path);
    }
    return path;
}

}
