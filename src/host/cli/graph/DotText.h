// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_DOTTEXT_H
#define ORV_HOST_CLI_GRAPH_DOTTEXT_H

#include <initializer_list>
#include <string>
#include <utility>

namespace OrvHost {

/// A directed graph in Graphviz's language, written line by line. Names of nodes come from the
/// caller and need no quotes; all other texts may contain anything and are quoted here. One thread.
class DotText {
public:
    /// An attribute and its text. A line end in the text begins a new line in the picture.
    using Attribute = std::pair<const char*, std::string>;
    using Attributes = std::initializer_list<Attribute>;

    DotText();

    /// \p what: "graph", or "node" or "edge" to set their defaults.
    void set(const char* what, Attributes attributes);
    void node(const std::string& name, Attributes attributes);
    void edge(const std::string& from, const std::string& to, Attributes attributes);

    /// The whole graph.
    std::string text() const { return mText + "}\n"; }

private:
    void statement(const std::string& head, Attributes attributes);

    std::string mText;
};

/// \p text as a quoted string. Quotes, backslashes and entities in it lose their meaning, and
/// control characters are left out.
std::string dotQuoted(const std::string& text);

}

#endif
