// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DataTree.h"

#include "base/DnView.h"
#include "yang/instances/DataProblem.h"
#include "yang/instances/InstanceDataWriter.h"
#include "yang/instances/TreeReader.h"
#include "yang/source/YangContext.h"

#include <algorithm>
#include <sstream>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace OrvHost {
namespace {

/// The values that the class has at this place of the modules. A class that is at several places
/// can have others too.
std::vector<NamedValue> valuesAt(const ObjectShape& shape, std::vector<NamedValue> values) {
    const auto isElsewhere = [&shape](const NamedValue& value) {
        return std::none_of(shape.attributes.begin(), shape.attributes.end(),
                            [&](const ValueShape& known) { return known.name == value.first; });
    };
    values.erase(std::remove_if(values.begin(), values.end(), isElsewhere), values.end());
    return values;
}

}

DataTree::DataTree(std::shared_ptr<const YangSchema> schema, const ObjectView& view)
    : mSchema(std::move(schema)), mView(view) {}

DataTree::~DataTree() {
    lyd_free_all(mFirst);
}

void DataTree::need(const std::string& dn) {
    for (DnView next(dn); !next.isEmpty(); next = next.parent()) {
        if (!mNeeded.insert(std::string(next.text())).second) {
            return;
        }
    }
}

std::vector<std::string> DataTree::inOrder() const {
    if (!mKeepsOrder) {
        return {mNeeded.begin(), mNeeded.end()};
    }
    std::vector<std::string> ordered;
    std::unordered_set<std::string_view> seen;
    for (const std::string& dn : mNeeded) {
        const DnView view(dn);
        if (!seen.insert(view.siblingPrefix()).second) {
            continue;
        }
        const std::string parent(view.parent().text());
        const std::string className(view.last().className());
        for (const std::string& name : mView.namesOf(parent, className)) {
            std::string sibling = DnView(parent).child(className, name);
            if (mNeeded.count(sibling) > 0) {
                ordered.push_back(std::move(sibling));
            }
        }
    }
    // The writer places an object with the first that it gets of what is below it.
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const std::string& left, const std::string& right) {
                         return DnView(left).depth() < DnView(right).depth();
                     });
    return ordered;
}

void DataTree::build() {
    InstanceDataWriter writer(mSchema, DataFormat::Json);
    writer.indent(false);
    for (const std::string& dn : inOrder()) {
        const ObjectShape* shape = mSchema->findByDn(dn);
        if (shape != nullptr) {
            writer.add({dn, shape->moc, valuesAt(*shape, mView.valuesOf(dn)), false});
        }
    }
    std::ostringstream text;
    writer.write(text);
    const YangContext& context = mSchema->context();
    const std::string json = text.str();
    if (lyd_parse_data_mem(context.get(), json.c_str(), LYD_JSON, LYD_PARSE_ONLY | LYD_PARSE_STRICT,
                           0, &mFirst) != LY_SUCCESS) {
        throw InstanceDataError({takeDataProblem(context, "", json)});
    }
    addDefaults();
    index(mFirst, "");
}

void DataTree::addDefaults() {
    // Conditions are judged elsewhere. Here they only decide which defaults there are, and for that
    // all that was set counts. Of nodes that it has just read the library thinks that it has made
    // them itself, with the defaults in them: containers without contents.
    for (lyd_node* root = mFirst; root != nullptr; root = root->next) {
        lyd_node* node = nullptr;
        LYD_TREE_DFS_BEGIN(root, node) {
            node->flags |= LYD_WHEN_TRUE;
            node->flags &= ~static_cast<std::uint32_t>(LYD_NEW);
            LYD_TREE_DFS_END(root, node);
        }
    }
    for (lyd_node* root = mFirst; root != nullptr; root = root->next) {
        lyd_new_implicit_tree(root, LYD_IMPLICIT_NO_STATE, nullptr);
    }
    mSchema->context().takeMessages();
}

void DataTree::index(lyd_node* first, const std::string& parentDn) {
    for (lyd_node* node = first; node != nullptr; node = node->next) {
        if (const ObjectShape* shape = mSchema->objectAt(node->schema)) {
            const std::string dn =
                DnView(parentDn).child(shape->className, nameOfEntry(node, *shape));
            mNodes.emplace(dn, node);
            mDns.emplace(node, dn);
            index(lyd_child(node), dn);
        } else if (mSchema->isTransparent(node->schema)) {
            index(lyd_child(node), parentDn);
        }
    }
}

lyd_node* DataTree::find(const std::string& dn) const {
    const auto found = mNodes.find(dn);
    return found == mNodes.end() ? nullptr : found->second;
}

std::string DataTree::dnOf(const lyd_node* node) const {
    for (; node != nullptr; node = lyd_parent(node)) {
        const auto found = mDns.find(node);
        if (found != mDns.end()) {
            return found->second;
        }
    }
    return "";
}

}
