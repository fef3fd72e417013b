// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "TreeReader.h"

#include "DnUtil.h"
#include "base/DnView.h"
#include "model/KeyValues.h"
#include "yang/instances/InstanceDataError.h"
#include "yang/source/SourceLocator.h"

#include <cstdlib>
#include <memory>
#include <utility>

namespace OrvHost {

std::string dataPathOf(const lyd_node* node) {
    const std::unique_ptr<char, void (*)(void*)> path(lyd_path(node, LYD_PATH_STD, nullptr, 0),
                                                      std::free);
    return path ? path.get() : "";
}

std::string nameOfEntry(const lyd_node* entry, const ObjectShape& shape) {
    std::vector<std::string> keys;
    for (const lyd_node* key = lyd_child(entry);
         key != nullptr && key->schema != nullptr && lysc_is_key(key->schema); key = key->next) {
        keys.emplace_back(lyd_get_value(key));
    }
    const bool isWhole = keys.size() == shape.keys.size();
    return !isWhole ? "" : keys.size() == 1 ? keys.front() : joinKeys(keys);
}

TreeReader::TreeReader(const YangSchema& schema, std::string label, ModelNotes& notes,
                       EntryLines lines)
    : mSchema(schema),
      mLabel(std::move(label)),
      mNotes(notes),
      mLines(std::move(lines)),
      mValues([this](const lysc_node* node) { return mSchema.valueAt(node); },
              [this](const lyd_node* node) { skip(node); },
              [this](const lyd_node* node) {
                  refuse(node, "is given twice; one value was expected");
              }) {}

void TreeReader::read(const lyd_node* first, const Sink& sink) {
    readSiblings(first, "", sink);
    if (!mProblems.empty()) {
        throw InstanceDataError(std::move(mProblems));
    }
}

void TreeReader::readSiblings(const lyd_node* first, const std::string& parentDn,
                              const Sink& sink) {
    for (const lyd_node* node = first; node != nullptr; node = node->next) {
        if (const ObjectShape* shape = mSchema.objectAt(node->schema); shape != nullptr) {
            readObject(node, *shape, parentDn, sink);
        } else if (mSchema.isTransparent(node->schema)) {
            readSiblings(lyd_child(node), parentDn, sink);
        } else {
            skip(node);
        }
    }
}

void TreeReader::readObject(const lyd_node* node, const ObjectShape& shape,
                            const std::string& parentDn, const Sink& sink) {
    DataObject object;
    object.dn = DnView(parentDn).child(shape.className, namingValueOf(node, shape));
    object.moc = shape.moc;
    object.line = mLines.lineOf(node);
    Contents contents;
    gather(lyd_child(node), shape, contents);
    object.attributes = std::move(contents.attributes);
    object.isBare = contents.isBare;
    const std::string dn = object.dn;
    sink(std::move(object));
    for (const lyd_node* child : contents.children) {
        readObject(child, *mSchema.objectAt(child->schema), dn, sink);
    }
}

void TreeReader::gather(const lyd_node* first, const ObjectShape& shape, Contents& contents) {
    for (const lyd_node* node = first; node != nullptr; node = node->next) {
        if (shape.isKey(node->schema)) {
            continue;
        }
        if (mSchema.objectAt(node->schema) != nullptr) {
            contents.children.push_back(node);
            continue;
        }
        if (mSchema.isTransparent(node->schema)) {
            contents.isBare = false;
            gather(lyd_child(node), shape, contents);
        } else if (mSchema.valueAt(node->schema) == nullptr) {
            skip(node);
        } else {
            contents.isBare = false;
            mValues.append(node, contents.attributes);
        }
    }
}

std::string TreeReader::namingValueOf(const lyd_node* node, const ObjectShape& shape) {
    std::string name = nameOfEntry(node, shape);
    if (!Orv::DnUtil::validateMoNamingAttr(name.c_str())) {
        refuse(node, "\"" + name +
                         "\" cannot be a value in a DN: a text was expected without control "
                         "characters and without , = + \" \\ < > ; that neither begins nor ends "
                         "with a space");
    }
    return name;
}

/// A file can hold the same thing for every object: it is noted once, with the number.
void TreeReader::skip(const lyd_node* node) {
    mNotes.count(pathOf(node->schema) + " has no place in the model and is skipped", {mLabel, 0},
                 dataPathOf(node));
}

void TreeReader::refuse(const lyd_node* node, const std::string& text) {
    mProblems.push_back({{mLabel, mLines.lineOf(node)}, dataPathOf(node) + ": " + text});
}

}
