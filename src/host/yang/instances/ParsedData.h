// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_INSTANCES_PARSEDDATA_H
#define ORV_HOST_YANG_INSTANCES_PARSEDDATA_H

#include <libyang/libyang.h>

#include <memory>
#include <new>
#include <string>

namespace OrvHost {

struct ParsedDataDeleter {
    void operator()(lyd_node* tree) const { lyd_free_all(tree); }
};
/// The first node of a tree of the library, which owns all its siblings.
using ParsedData = std::unique_ptr<lyd_node, ParsedDataDeleter>;

struct ParserInputDeleter {
    void operator()(ly_in* input) const { ly_in_free(input, 0); }
};
using ParserInput = std::unique_ptr<ly_in, ParserInputDeleter>;

/// The text must live as long as the input.
inline ParserInput parserInputOf(const std::string& text) {
    ly_in* input = nullptr;
    if (ly_in_new_memory(text.c_str(), &input) != LY_SUCCESS) {
        throw std::bad_alloc();
    }
    return ParserInput(input);
}

/// Frees \p node, which is in the tree.
inline void removeFrom(ParsedData& tree, lyd_node* node) {
    if (node == tree.get()) {
        lyd_node* const next = node->next;
        static_cast<void>(tree.release());
        tree.reset(next);
    }
    lyd_free_tree(node);
}

}

#endif
