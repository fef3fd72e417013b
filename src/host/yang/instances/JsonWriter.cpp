// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "JsonWriter.h"

#include "yang/types/ValueCodec.h"

#include <array>
#include <cstdio>

namespace OrvHost {
namespace {

constexpr const char* kStep = "  ";

std::string escapeCharacter(char c) {
    switch (c) {
    case '"':
        return "\\\"";
    case '\\':
        return "\\\\";
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        break;
    }
    if (static_cast<unsigned char>(c) >= 0x20) {
        return std::string(1, c);
    }
    std::array<char, 8> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "\\u%04x", static_cast<unsigned int>(c));
    return buffer.data();
}

std::string quote(const std::string& text) {
    return "\"" + jsonEscaped(text) + "\"";
}

/// The name of a member, with the module if it is not the parent's.
std::string nameOf(const lysc_node* node, const lysc_node* parent) {
    const bool isQualified = parent == nullptr || parent->module != node->module;
    return quote(isQualified ? std::string(node->module->name) + ":" + node->name : node->name);
}

std::string join(const std::vector<std::string>& parts, const std::string& separator) {
    std::string text;
    for (const std::string& part : parts) {
        text += (text.empty() ? "" : separator) + part;
    }
    return text;
}

/// `text` with every line except the first indented.
std::string indent(const std::string& text) {
    std::string moved;
    for (const char c : text) {
        moved += c;
        if (c == '\n') {
            moved += kStep;
        }
    }
    return moved;
}

std::string block(const std::vector<std::string>& parts, const char* open, const char* close) {
    if (parts.empty()) {
        return std::string(open) + close;
    }
    return std::string(open) + "\n" + kStep + indent(join(parts, ",\n")) + "\n" + close;
}

/// Writes a tree of text nodes, with commas between the nodes of a level.
class TreeWriter {
public:
    TreeWriter(std::ostream& out, int step) : mOut(out), mStep(step) {}

    void writeNode(const TextNode& node, const lysc_node* schema, int indent) {
        mOut << "{\n";
        writeIndented(mOut, node.body, indent + mStep);
        const char* separator = node.body.empty() ? "" : ",\n";
        for (const TextNode::Group& group : node.groups) {
            mOut << separator;
            writeGroup(group, schema, indent + mStep);
            separator = ",\n";
        }
        mOut << "\n" << std::string(static_cast<std::size_t>(indent), ' ') << "}";
    }

private:
    void writeGroup(const TextNode::Group& group, const lysc_node* parent, int indent) {
        const std::string spaces(static_cast<std::size_t>(indent), ' ');
        mOut << spaces << nameOf(group.schema, parent) << ": ";
        if (group.schema->nodetype != LYS_LIST) {
            writeNode(*group.nodes.front(), group.schema, indent);
            return;
        }
        mOut << "[\n";
        const char* separator = "";
        for (const std::unique_ptr<TextNode>& node : group.nodes) {
            mOut << separator << spaces << std::string(static_cast<std::size_t>(mStep), ' ');
            writeNode(*node, group.schema, indent + mStep);
            separator = ",\n";
        }
        mOut << "\n" << spaces << "]";
    }

    std::ostream& mOut;
    int mStep;
};

}

std::string jsonEscaped(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        escaped += escapeCharacter(c);
    }
    return escaped;
}

std::string JsonWriter::body(const ObjectShape& shape, const std::vector<std::string>& keys,
                             const std::vector<NamedValue>& attributes) const {
    std::vector<std::string> members;
    for (std::size_t at = 0; at < keys.size(); ++at) {
        members.push_back(nameOf(shape.keys[at], shape.list) + ": " +
                          scalar(keys[at], shape.keys[at]));
    }
    const lysc_node* wrapper = nullptr;
    std::vector<std::string> wrapped;
    for (const NamedValue& value : attributes) {
        const ValueShape& attribute = shapeOf(value, shape.attributes);
        const bool isWrapped = attribute.wrapper != nullptr;
        wrapper = isWrapped ? attribute.wrapper : wrapper;
        const std::string text =
            member(value, attribute, isWrapped ? attribute.wrapper : shape.list);
        if (!text.empty()) {
            (isWrapped ? wrapped : members).push_back(text);
        }
    }
    if (wrapper != nullptr && !wrapped.empty()) {
        members.push_back(nameOf(wrapper, shape.list) + ": " + block(wrapped, "{", "}"));
    }
    return join(members, ",\n");
}

/// An attribute without values is left out; so is an `empty` leaf that is not set.
std::string JsonWriter::member(const NamedValue& value, const ValueShape& shape,
                               const lysc_node* parent) const {
    std::vector<std::string> parts;
    for (const Value& one : value.second.values) {
        std::string text = single(one, shape);
        if (!text.empty()) {
            parts.push_back(std::move(text));
        }
    }
    if (parts.empty()) {
        return "";
    }
    const bool isFlat = shape.kind != ValueKind::Struct;
    std::string text = parts.front();
    if (shape.isMultiple) {
        text = isFlat ? "[" + join(parts, ", ") + "]" : block(parts, "[", "]");
    }
    return nameOf(shape.node, parent) + ": " + text;
}

std::string JsonWriter::single(const Value& value, const ValueShape& shape) const {
    return shape.kind == ValueKind::Struct ? structure(std::get<StructValue>(value), shape)
                                           : scalar(value, shape.node);
}

std::string JsonWriter::scalar(const Value& value, const lysc_node* node) const {
    const EncodedValue encoded = encodeValue(value, node, context());
    switch (encoded.form) {
    case EncodedValue::Form::Bare:
        return encoded.text;
    case EncodedValue::Form::Empty:
        return encoded.text == "false" ? "" : "[null]";
    default:
        return quote(encoded.text);
    }
}

std::string JsonWriter::structure(const StructValue& value, const ValueShape& shape) const {
    std::vector<std::string> parts;
    for (const NamedValue& one : value.members) {
        const std::string text = member(one, shapeOf(one, shape.members), shape.node);
        if (!text.empty()) {
            parts.push_back(text);
        }
    }
    return block(parts, "{", "}");
}

void JsonWriter::write(std::ostream& out, const TextNode& root, int step) const {
    TreeWriter(out, step).writeNode(root, nullptr, 0);
    out << "\n";
}

}
