// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DotText.h"

namespace OrvHost {

namespace {

// Graphviz interprets escapes such as \N in strings, and entities such as &lt; in labels.
std::string escaped(char letter) {
    switch (letter) {
    case '"':
        return "\\\"";
    case '\\':
        return "\\\\";
    case '&':
        return "&amp;";
    case '\n':
        return "\\n";
    default:
        break;
    }
    const bool isControl = static_cast<unsigned char>(letter) < 0x20 || letter == 0x7F;
    return isControl ? std::string() : std::string(1, letter);
}

}

std::string dotQuoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char letter : text) {
        quoted += escaped(letter);
    }
    return quoted + "\"";
}

DotText::DotText() : mText("digraph orv {\n") {}

void DotText::set(const char* what, Attributes attributes) {
    statement(what, attributes);
}

void DotText::node(const std::string& name, Attributes attributes) {
    statement(name, attributes);
}

void DotText::edge(const std::string& from, const std::string& to, Attributes attributes) {
    statement(from + " -> " + to, attributes);
}

void DotText::openFrame(const std::string& name, Attributes attributes) {
    // Only subgraphs with such a name have a frame.
    mText += indent() + "subgraph cluster_" + name + " {\n";
    ++mOpenFrames;
    set("graph", attributes);
}

void DotText::closeFrame() {
    --mOpenFrames;
    mText += indent() + "}\n";
}

void DotText::statement(const std::string& head, Attributes attributes) {
    std::string list;
    for (const Attribute& attribute : attributes) {
        if (!attribute.text.empty()) {
            list += (list.empty() ? "" : ", ") + std::string(attribute.name) + "=" +
                    (attribute.form == Form::Markup ? "<" + attribute.text + ">"
                                                    : dotQuoted(attribute.text));
        }
    }
    mText += indent() + head + (list.empty() ? "" : " [" + list + "]") + ";\n";
}

}
