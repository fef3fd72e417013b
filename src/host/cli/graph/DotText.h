// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_DOTTEXT_H
#define ORV_HOST_CLI_GRAPH_DOTTEXT_H

#include <cstddef>
#include <initializer_list>
#include <string>

namespace OrvHost {

/// A directed graph in Graphviz's language, written line by line. Names of nodes come from the
/// caller and need no quotes; all other texts may contain anything and are quoted here. One thread.
class DotText {
public:
    enum class Form {
        Text,  ///< a line end in the text begins a new line in the picture
        Markup ///< a text of TableLabel
    };
    /// An attribute and its text; without a text it is not written.
    struct Attribute {
        const char* name;
        std::string text;
        Form form = Form::Text;
    };
    using Attributes = std::initializer_list<Attribute>;

    DotText();

    /// \p what: "graph", or "node" or "edge" to set their defaults.
    void set(const char* what, Attributes attributes);
    void node(const std::string& name, Attributes attributes);
    /// \p from and \p to: a node, or "node:port".
    void edge(const std::string& from, const std::string& to, Attributes attributes);
    /// What follows, until the frame is closed, is drawn inside of it.
    void openFrame(const std::string& name, Attributes attributes);
    void closeFrame();

    /// The whole graph. All frames must be closed.
    std::string text() const { return mText + "}\n"; }

private:
    void statement(const std::string& head, Attributes attributes);
    std::string indent() const { return std::string(2 * (mOpenFrames + 1), ' '); }

    std::string mText;
    std::size_t mOpenFrames = 0;
};

/// \p text as a quoted string. Quotes, backslashes and entities in it lose their meaning, and
/// control characters are left out.
std::string dotQuoted(const std::string& text);

}

#endif
