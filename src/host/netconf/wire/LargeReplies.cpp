// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "LargeReplies.h"

#include "base/TextScanner.h"

#include <libyang/libyang.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace OrvHost {

namespace {

/// A module with an anyxml for each node at the top of \p module; empty if there is none.
std::string withoutContents(const lys_module& module) {
    std::string nodes;
    const lysc_node* const first = module.compiled != nullptr ? module.compiled->data : nullptr;
    for (const lysc_node* node = first; node != nullptr; node = node->next) {
        nodes += std::string("anyxml ") + node->name + ";\n";
    }
    const std::string head = std::string(" {\nnamespace \"") + module.ns + "\";\n";
    return nodes.empty()
               ? nodes
               : std::string("module ") + module.name + head + "prefix own;\n" + nodes + "}\n";
}

struct Element {
    const lysc_node* node;
    std::string_view content;
};

std::string_view withoutFirstBlanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(" \n"), text.size()));
}

/// The element that \p text begins with, and takes it away. It ends with the last end tag of its
/// name: what stands between elements of one name is printed as it is, too.
std::optional<Element> takeElement(const ly_ctx* context, std::string_view& text) {
    TextScanner scanner(text);
    const auto isStart = scanner.before("<");
    const auto name = scanner.before(" xmlns=\"");
    const auto nameSpace = scanner.before("\">");
    if (!isStart || !isStart->empty() || !name || !nameSpace) {
        return std::nullopt;
    }
    const lys_module* module =
        ly_ctx_get_module_implemented_ns(context, std::string(*nameSpace).c_str());
    const lysc_node* node =
        module != nullptr ? lys_find_child(nullptr, module, std::string(*name).c_str(), 0, 0, 0)
                          : nullptr;
    const std::string endTag = "</" + std::string(*name) + ">";
    const std::string_view rest = scanner.rest();
    const std::size_t end = rest.rfind(endTag);
    if (node == nullptr || node->nodetype != LYS_ANYXML || end == std::string_view::npos) {
        return std::nullopt;
    }
    text = withoutFirstBlanks(rest.substr(end + endTag.size()));
    return Element{node, rest.substr(0, end)};
}

OwnedTree makeNode(const lysc_node& schema, CText content) {
    lyd_node* node = nullptr;
    if (lyd_new_any(nullptr, schema.module, schema.name, content.get(), 1, LYD_ANYDATA_XML, 0,
                    &node) != LY_SUCCESS) {
        throw std::bad_alloc();
    }
    static_cast<void>(content.release()); // the node has it
    return OwnedTree(node);
}

/// The same text without what stands before and after \p part of it.
CText cut(CText text, std::string_view part) {
    std::memmove(text.get(), part.data(), part.size());
    text.get()[part.size()] = '\0';
    return text;
}

}

void LargeReplies::ContextDeleter::operator()(ly_ctx* context) const {
    ly_ctx_destroy(context);
}

LargeReplies::LargeReplies(const ly_ctx* context) {
    ly_ctx* own = nullptr;
    bool isMade =
        ly_ctx_new(nullptr, LY_CTX_NO_YANGLIBRARY | LY_CTX_DISABLE_SEARCHDIRS, &own) == LY_SUCCESS;
    mContext.reset(own);
    std::uint32_t position = 0;
    const lys_module* module = nullptr;
    while (isMade && (module = ly_ctx_get_module_iter(context, &position)) != nullptr) {
        const std::string text = withoutContents(*module);
        // Each context has the modules of the library itself.
        const bool isThere = ly_ctx_get_module_implemented(own, module->name) != nullptr;
        isMade = text.empty() || isThere ||
                 lys_parse_mem(own, text.c_str(), LYS_IN_YANG, nullptr) == LY_SUCCESS;
    }
    if (!isMade) {
        const char* const reason = own != nullptr ? ly_errmsg(own) : nullptr;
        throw std::runtime_error(std::string("the context of large replies cannot be set up: ") +
                                 (reason != nullptr ? reason : "no memory"));
    }
}

OwnedTree LargeReplies::take(CText& text) const {
    std::vector<Element> elements;
    std::string_view rest = withoutFirstBlanks(text.get());
    while (!rest.empty()) {
        const std::optional<Element> element = takeElement(mContext.get(), rest);
        if (!element) {
            return nullptr;
        }
        elements.push_back(*element);
    }
    if (elements.empty()) {
        return nullptr;
    }
    std::vector<CText> copies;
    for (std::size_t at = 1; at < elements.size(); ++at) {
        copies.push_back(toCText(elements[at].content));
    }
    // The first one, with the objects, stays in its place in memory.
    OwnedTree tree = makeNode(*elements[0].node, cut(std::move(text), elements[0].content));
    for (std::size_t at = 1; at < elements.size(); ++at) {
        lyd_node* first = tree.release();
        lyd_insert_sibling(first, makeNode(*elements[at].node, std::move(copies[at - 1])).release(),
                           &first);
        tree.reset(first);
    }
    return tree;
}

}
