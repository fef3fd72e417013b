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

std::string spaces(int count) {
    std::string text;
    text.resize(static_cast<std::size_t>(count), ' ');
    return text;
}

/// Writes nodes, with commas between those of a level.
class JsonStream : public NodeStream {
public:
    JsonStream(std::ostream& out, int step) : mOut(out), mStep(step) {
        mOut << "{\n";
        mLevels.push_back({nullptr, 0, "", nullptr});
    }

    void open(const lysc_node* schema, const std::string& body) override {
        const int indent = beginEntry(mLevels.back(), schema);
        mOut << "{\n";
        writeIndented(mOut, body, indent + mStep);
        mLevels.push_back({schema, indent, body.empty() ? "" : ",\n", nullptr});
    }

    void close() override {
        endGroup(mLevels.back());
        mOut << "\n" << spaces(mLevels.back().indent) << "}";
        mLevels.pop_back();
    }

    void finish() override {
        close();
        mOut << "\n";
    }

private:
    /// An open node.
    struct Level {
        const lysc_node* schema;
        int indent;
        const char* separator;  ///< before its next member
        const lysc_node* group; ///< the list or container that was written last, or null
    };

    /// Writes what stands before the entry, and returns the indentation of the entry.
    int beginEntry(Level& level, const lysc_node* schema) {
        const int groupIndent = level.indent + mStep;
        const bool isList = schema->nodetype == LYS_LIST;
        const bool isFirst = level.group != schema;
        if (isFirst) {
            endGroup(level);
            mOut << level.separator << spaces(groupIndent) << nameOf(schema, level.schema) << ": "
                 << (isList ? "[\n" : "");
            level.separator = ",\n";
            level.group = schema;
        }
        if (!isList) {
            return groupIndent;
        }
        mOut << (isFirst ? "" : ",\n") << spaces(groupIndent + mStep);
        return groupIndent + mStep;
    }

    void endGroup(Level& level) {
        if (level.group != nullptr && level.group->nodetype == LYS_LIST) {
            mOut << "\n" << spaces(level.indent + mStep) << "]";
        }
        level.group = nullptr;
    }

    std::ostream& mOut;
    int mStep;
    std::vector<Level> mLevels;
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

std::unique_ptr<NodeStream> JsonWriter::stream(std::ostream& out, int step) const {
    return std::make_unique<JsonStream>(out, step);
}

}
