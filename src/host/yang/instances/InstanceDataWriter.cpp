// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "InstanceDataWriter.h"

#include "base/DnView.h"
#include "yang/instances/ObjectWriter.h"
#include "yang/source/YangContext.h"

#include <fstream>
#include <utility>

namespace OrvHost {
namespace {

[[noreturn]] void refuse(std::string_view dn, const std::string& text) {
    throw InstanceDataError({{{}, std::string(dn) + ": " + text}});
}

/// The last step. Its value is not checked: the type of the naming attribute does not matter here.
DnStep lastStep(std::string_view dn) {
    const DnStep step = DnView(dn).last();
    if (step.type().empty() || step.value().empty()) {
        refuse(dn, "is not a DN; steps such as Class=value with commas between were expected");
    }
    return step;
}

std::vector<std::string> keysIn(std::string_view dn, const ObjectShape& shape) {
    try {
        return keysOf(shape, lastStep(dn).value());
    } catch (const UnwritableValueError& error) {
        refuse(dn, error.what());
    }
}

}

InstanceDataWriter::InstanceDataWriter(std::shared_ptr<const YangSchema> schema, DataFormat format)
    : mSchema(std::move(schema)),
      mWriter(ObjectWriter::make(format, mSchema->context())),
      mRoot(std::make_unique<TextNode>()) {}

InstanceDataWriter::~InstanceDataWriter() = default;

InstanceDataWriter& InstanceDataWriter::indent(bool on) {
    mStep = on ? 2 : 0;
    return *this;
}

void InstanceDataWriter::add(const DataObject& object) {
    const ObjectShape& shape = shapeFor(object.dn);
    std::string body;
    try {
        body = mWriter->body(shape, keysIn(object.dn, shape), object.attributes);
    } catch (const UnwritableValueError& error) {
        refuse(object.dn, error.what());
    }
    Entry& entry = enter(object.dn);
    if (entry.isAdded) {
        refuse(object.dn, "the object was added before");
    }
    entry.node->body = std::move(body);
    entry.isAdded = true;
    ++mSize;
}

const ObjectShape& InstanceDataWriter::shapeFor(std::string_view dn) const {
    const auto known = mEntries.find(std::string(dn));
    if (known != mEntries.end()) {
        return *known->second.shape;
    }
    const DnStep step = lastStep(dn);
    const DnView parentDn = DnView(dn).parent();
    const ObjectShape* parent = parentDn.isEmpty() ? nullptr : &shapeFor(parentDn.text());
    try {
        return requireShape(*mSchema, parent, step.type());
    } catch (const UnwritableValueError& error) {
        refuse(dn, error.what());
    }
}

/// The DN has a class of the model, since shapeFor() has found it.
InstanceDataWriter::Entry& InstanceDataWriter::enter(std::string_view dn) {
    const auto known = mEntries.find(std::string(dn));
    if (known != mEntries.end()) {
        return known->second;
    }
    const DnView parentDn = DnView(dn).parent();
    TextNode& parent = parentDn.isEmpty() ? *mRoot : *enter(parentDn.text()).node;
    const ObjectShape& shape = shapeFor(dn);
    TextNode& node = place(shape, parent);
    node.body = mWriter->body(shape, keysIn(dn, shape), {});
    return mEntries.emplace(std::string(dn), Entry{&shape, &node, false}).first->second;
}

TextNode& InstanceDataWriter::place(const ObjectShape& shape, TextNode& parent) {
    TextNode* around = &parent;
    for (const lysc_node* wrapper : shape.wrappers) {
        TextNode::Group& group = around->group(wrapper);
        if (group.nodes.empty()) {
            group.nodes.push_back(std::make_unique<TextNode>());
        }
        around = group.nodes.front().get();
    }
    TextNode::Group& group = around->group(shape.list);
    group.nodes.push_back(std::make_unique<TextNode>());
    return *group.nodes.back();
}

void InstanceDataWriter::write(std::ostream& out) const {
    mWriter->write(out, *mRoot, mStep);
}

void InstanceDataWriter::writeFile(const std::filesystem::path& file) const {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    write(out);
    out.close();
    if (!out) {
        throw InstanceDataError({{{file.string(), 0}, "cannot be written"}});
    }
}

void InstanceDataWriter::clear() {
    mEntries.clear();
    mRoot = std::make_unique<TextNode>();
    mSize = 0;
}

}
