// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "XmlWriter.h"

#include "yang/instances/XmlEntity.h"
#include "yang/types/ValueCodec.h"

#include <algorithm>
#include <cctype>
#include <set>

namespace OrvHost {
namespace {

constexpr const char* kStep = "  ";

std::string escapeCharacter(char c) {
    if (const char* const entity = xmlEntity(c)) {
        return entity;
    }
    if (static_cast<unsigned char>(c) < 0x20 && c != '\t') {
        throw UnwritableValueError("a text with a control character cannot be written as XML");
    }
    return std::string(1, c);
}

std::string escape(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        escaped += escapeCharacter(c);
    }
    return escaped;
}

std::string startTag(const lysc_node* node, const lysc_node* parent) {
    const bool isQualified = parent == nullptr || parent->module != node->module;
    return std::string(node->name) +
           (isQualified ? " xmlns=\"" + escape(node->module->ns) + "\"" : "");
}

std::string element(const lysc_node* node, const lysc_node* parent, const std::string& text) {
    return "<" + startTag(node, parent) + ">" + text + "</" + node->name + ">";
}

/// `text` on lines of its own inside an element, indented.
std::string block(const lysc_node* node, const lysc_node* parent, const std::string& text) {
    if (text.empty()) {
        return "<" + startTag(node, parent) + "/>";
    }
    std::string moved;
    for (const char c : text) {
        moved += c;
        if (c == '\n') {
            moved += kStep;
        }
    }
    return "<" + startTag(node, parent) + ">\n" + kStep + moved + "\n</" + node->name + ">";
}

void appendLine(std::string& text, const std::string& line) {
    text += (text.empty() || line.empty() ? "" : "\n") + line;
}

/// Declares the module name of an identity as a prefix.
std::string declarationFor(const std::string& identity, const YangContext& context) {
    const std::string module = identity.substr(0, identity.find(':'));
    const lys_module* found = ly_ctx_get_module_implemented(context.get(), module.c_str());
    return found == nullptr ? "" : " xmlns:" + module + "=\"" + escape(found->ns) + "\"";
}

bool isOfName(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '-' || c == '.';
}

/// An instance-identifier as XML has it. There every name has a prefix, in JSON only one whose
/// module is not that of the name before it. Module names serve as prefixes.
class XmlPath {
public:
    explicit XmlPath(const std::string& jsonPath) {
        for (std::size_t at = 0; at < jsonPath.size();) {
            const char c = jsonPath[at];
            if (c == '\'' || c == '"') {
                const std::size_t end = std::min(jsonPath.find(c, at + 1), jsonPath.size() - 1);
                addValue(jsonPath.substr(at, end + 1 - at));
                at = end + 1;
            } else if (isOfName(c) && !std::isdigit(static_cast<unsigned char>(c)) && c != '.') {
                at = addName(jsonPath, at);
            } else {
                mText += c;
                ++at;
            }
        }
    }

    const std::string& text() const { return mText; }
    /// All prefixes, some of which may be none: values in it can look as if they had one.
    const std::set<std::string>& prefixes() const { return mPrefixes; }

private:
    std::size_t addName(const std::string& path, std::size_t at) {
        const bool isNode = at > 0 && path[at - 1] == '/';
        std::string module = mModule;
        std::size_t end = endOfName(path, at);
        if (end < path.size() && path[end] == ':') {
            module = path.substr(at, end - at);
            at = end + 1;
            end = endOfName(path, at);
        }
        if (isNode) {
            mModule = module;
        }
        mPrefixes.insert(module);
        mText += module + ":" + path.substr(at, end - at);
        return end;
    }

    /// A key can be an identity, whose prefix must be known, too.
    void addValue(const std::string& quoted) {
        const std::size_t colon = quoted.find(':');
        if (colon != std::string::npos) {
            mPrefixes.insert(quoted.substr(1, colon - 1));
        }
        mText += quoted;
    }

    static std::size_t endOfName(const std::string& path, std::size_t at) {
        while (at < path.size() && isOfName(path[at])) {
            ++at;
        }
        return at;
    }

    std::string mText;
    std::set<std::string> mPrefixes;
    std::string mModule; ///< of the latest node
};

class XmlStream : public NodeStream {
public:
    XmlStream(std::ostream& out, int step) : mOut(out), mStep(step) {}

    void open(const lysc_node* schema, const std::string& body) override {
        const lysc_node* parent = mOpen.empty() ? nullptr : mOpen.back();
        mOut << indentation() << "<" << startTag(schema, parent) << ">\n";
        mOpen.push_back(schema);
        writeIndented(mOut, body, static_cast<int>(indentation().size()));
        mOut << (body.empty() ? "" : "\n");
        mIsEmpty = false;
    }

    void close() override {
        const lysc_node* schema = mOpen.back();
        mOpen.pop_back();
        mOut << indentation() << "</" << schema->name << ">\n";
    }

    // A text without anything would not be known as XML.
    void finish() override { mOut << (mIsEmpty ? "<!-- no objects -->\n" : ""); }

private:
    std::string indentation() const {
        std::string spaces;
        spaces.resize(mOpen.size() * static_cast<std::size_t>(mStep), ' ');
        return spaces;
    }

    std::ostream& mOut;
    int mStep;
    std::vector<const lysc_node*> mOpen;
    bool mIsEmpty = true;
};

}

std::string XmlWriter::body(const ObjectShape& shape, const std::vector<std::string>& keys,
                            const std::vector<NamedValue>& attributes) const {
    std::string text;
    for (std::size_t at = 0; at < keys.size(); ++at) {
        appendLine(text, scalar(keys[at], shape.keys[at], shape.list));
    }
    const lysc_node* wrapper = nullptr;
    std::string wrapped;
    for (const NamedValue& value : attributes) {
        const ValueShape& attribute = shapeOf(value, shape.attributes);
        if (attribute.wrapper != nullptr) {
            wrapper = attribute.wrapper;
            append(wrapped, value, attribute, wrapper);
        } else {
            append(text, value, attribute, shape.list);
        }
    }
    if (wrapper != nullptr && !wrapped.empty()) {
        appendLine(text, block(wrapper, shape.list, wrapped));
    }
    return text;
}

void XmlWriter::append(std::string& text, const NamedValue& value, const ValueShape& shape,
                       const lysc_node* parent) const {
    for (const Value& one : value.second.values) {
        appendLine(text, single(one, shape, parent));
    }
}

std::string XmlWriter::single(const Value& value, const ValueShape& shape,
                              const lysc_node* parent) const {
    if (shape.kind != ValueKind::Struct) {
        return scalar(value, shape.node, parent);
    }
    std::string text;
    for (const NamedValue& member : std::get<StructValue>(value).members) {
        append(text, member, shapeOf(member, shape.members), shape.node);
    }
    return block(shape.node, parent, text);
}

std::string XmlWriter::scalar(const Value& value, const lysc_node* node,
                              const lysc_node* parent) const {
    const EncodedValue encoded = encodeValue(value, node, context());
    if (encoded.form == EncodedValue::Form::Empty) {
        return encoded.text == "false" ? "" : "<" + startTag(node, parent) + "/>";
    }
    if (encoded.isPath) {
        const XmlPath path(encoded.text);
        std::string declarations;
        for (const std::string& prefix : path.prefixes()) {
            declarations += declarationFor(prefix, context());
        }
        return "<" + startTag(node, parent) + declarations + ">" + escape(path.text()) + "</" +
               node->name + ">";
    }
    if (encoded.isIdentity) {
        return "<" + startTag(node, parent) + declarationFor(encoded.text, context()) + ">" +
               escape(encoded.text) + "</" + node->name + ">";
    }
    return element(node, parent, escape(encoded.text));
}

std::unique_ptr<NodeStream> XmlWriter::stream(std::ostream& out, int step) const {
    return std::make_unique<XmlStream>(out, step);
}

}
