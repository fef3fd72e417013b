// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_GRAPH_DOTTEXT_H
#define ORV_HOST_CLI_GRAPH_DOTTEXT_H

#include <initializer_list>
#include <string>
#include <utility>

namespace OrvHost {

/// A directed graph in Graphviz's language, line by line. Names of nodes are the caller's and need
/// no quotes; all other texts may hold anything and are quoted here. One thread.
class DotText {
public:
    /// An attribute and its text, in which line ends begin a new line.
    using Attribute = std::pair<const char*, std::string>;
    using Attributes = std::initializer_list<Attribute>;

    DotText();

    /// For "graph", or as the defaults for "node" and "edge".
    void set(const char* what, Attributes attributes);
    void node(const std::string& name, Attributes attributes);
    void edge(const std::string& from, const std::string& to, Attributes attributes);

    /// The whole graph.
    std::string text() const { return mText + "}\n"; }

private:
    void statement(const std::string& head, Attributes attributes);

    std::string mText;
};

/// \p text as a quoted string: neither quotes nor backslashes nor entities in it mean anything, and
/// control characters are left out.
std::string dotQuoted(const std::string& text);

}

#endif
