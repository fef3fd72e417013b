// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ObjectWriter.h"

#include "model/KeyValues.h"
#include "yang/instances/JsonWriter.h"
#include "yang/instances/XmlWriter.h"

#include <algorithm>

namespace OrvHost {

namespace {

void writeBelow(NodeStream& stream, const TextNode& node) {
    for (const TextNode::Group& group : node.groups) {
        for (const std::unique_ptr<TextNode>& child : group.nodes) {
            stream.open(group.schema, child->body);
            writeBelow(stream, *child);
            stream.close();
        }
    }
}

}

TextNode::Group& TextNode::group(const lysc_node* schema) {
    const auto found = std::find_if(groups.begin(), groups.end(),
                                    [schema](const Group& g) { return g.schema == schema; });
    if (found != groups.end()) {
        return *found;
    }
    groups.push_back({schema, {}});
    return groups.back();
}

std::unique_ptr<ObjectWriter> ObjectWriter::make(DataFormat format, const YangContext& context) {
    if (format == DataFormat::Json) {
        return std::make_unique<JsonWriter>(context);
    }
    return std::make_unique<XmlWriter>(context);
}

void ObjectWriter::write(std::ostream& out, const TextNode& root, int step) const {
    const std::unique_ptr<NodeStream> text = stream(out, step);
    writeBelow(*text, root);
    text->finish();
}

const ObjectShape& requireShape(const YangSchema& schema, const ObjectShape* parent,
                                std::string_view className) {
    const ObjectShape* shape = schema.find(parent, className);
    if (shape == nullptr) {
        const std::string where =
            parent != nullptr ? "under class \"" + parent->className + "\"" : "at the top";
        throw UnwritableValueError("no class \"" + std::string(className) + "\" stands " + where);
    }
    return *shape;
}

std::vector<std::string> keysOf(const ObjectShape& shape, std::string_view name) {
    if (shape.keys.size() == 1) {
        return {std::string(name)};
    }
    auto keys = splitKeys(name, shape.keys.size());
    if (!keys) {
        throw UnwritableValueError(
            "the name \"" + std::string(name) + "\" does not consist of the " +
            std::to_string(shape.keys.size()) +
            " key values of its class; they were expected with | between them");
    }
    return std::move(*keys);
}

const ValueShape& shapeOf(const NamedValue& value, const std::vector<ValueShape>& shapes) {
    const auto found = std::find_if(shapes.begin(), shapes.end(), [&value](const ValueShape& s) {
        return s.name == value.first;
    });
    if (found == shapes.end()) {
        throw UnwritableValueError("there is no attribute or member \"" + value.first + "\"");
    }
    const auto isOdd = [found](const Value& v) { return !isOfKind(v, found->kind); };
    const std::vector<Value>& values = value.second.values;
    if (std::any_of(values.begin(), values.end(), isOdd)) {
        throw UnwritableValueError("\"" + value.first + "\" is not a " +
                                   std::string(kindName(found->kind)));
    }
    if (!found->isMultiple && values.size() > 1) {
        throw UnwritableValueError("\"" + value.first + "\" has " + std::to_string(values.size()) +
                                   " values; one was expected");
    }
    return *found;
}

void writeIndented(std::ostream& out, const std::string& text, int indent) {
    const std::string spaces(static_cast<std::size_t>(indent), ' ');
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = std::min(text.find('\n', start), text.size() - 1) + 1;
        out << spaces;
        out.write(text.data() + start, static_cast<std::streamsize>(end - start));
        start = end;
    }
}

}
