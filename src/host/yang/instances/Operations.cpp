// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Operations.h"

#include "yang/instances/JsonWriter.h"
#include "yang/instances/ParsedData.h"
#include "yang/source/SourceLocator.h"

#include <cstdlib>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace OrvHost {
namespace {

/// What the model has in the place of a node that was read without it. `parent` is the same of the
/// node around it.
const lysc_node* schemaOf(const lyd_node_opaq& node, const lysc_node* parent,
                          const YangContext& context) {
    const lys_module* module = parent == nullptr ? nullptr : parent->module;
    if (node.format == LY_VALUE_XML && node.name.module_ns != nullptr) {
        module = ly_ctx_get_module_implemented_ns(context.get(), node.name.module_ns);
    } else if (node.format == LY_VALUE_JSON && node.name.module_name != nullptr) {
        module = ly_ctx_get_module_implemented(context.get(), node.name.module_name);
    }
    return module == nullptr ? nullptr : lys_find_child(parent, module, node.name.name, 0, 0, 0);
}

struct Operation {
    lyd_node* node;
    const lysc_node* schema;
};

void findOperations(lyd_node* first, const lysc_node* parent, const YangContext& context,
                    std::vector<Operation>& found) {
    for (lyd_node* node = first; node != nullptr; node = node->next) {
        const auto& written = *reinterpret_cast<const lyd_node_opaq*>(node);
        const lysc_node* schema = schemaOf(written, parent, context);
        if (schema == nullptr) {
            continue;
        }
        if ((schema->nodetype & (LYS_RPC | LYS_ACTION | LYS_NOTIF)) != 0) {
            found.push_back({node, schema});
        } else {
            findOperations(lyd_child(node), schema, context, found);
        }
    }
}

/// The library's printer of JSON writes the texts of such nodes as they are.
void escapeTexts(lyd_node* first) {
    for (lyd_node* node = first; node != nullptr; node = node->next) {
        auto& written = *reinterpret_cast<lyd_node_opaq*>(node);
        const std::string text = jsonEscaped(written.value == nullptr ? "" : written.value);
        if (!text.empty() && text != written.value) {
            const char* escaped = nullptr;
            if (lydict_insert(LYD_CTX(node), text.c_str(), text.size(), &escaped) != LY_SUCCESS) {
                throw std::bad_alloc();
            }
            lydict_remove(LYD_CTX(node), std::exchange(written.value, escaped));
        }
        escapeTexts(lyd_child(node));
    }
}

std::string printed(const ParsedData& tree, LYD_FORMAT format) {
    if (format == LYD_JSON) {
        escapeTexts(tree.get());
    }
    char* text = nullptr;
    lyd_print_mem(&text, tree.get(), format, LYD_PRINT_WITHSIBLINGS);
    const std::unique_ptr<char, void (*)(void*)> owner(text, std::free);
    return text == nullptr ? "" : text;
}

}

std::optional<std::string> withoutOperations(const std::string& text, LYD_FORMAT format,
                                             const YangContext& context, const std::string& label,
                                             ModelNotes& notes) {
    // A context without modules: everything is kept as it is written.
    const YangContext empty;
    const ParserInput input = parserInputOf(text);
    lyd_node* parsed = nullptr;
    const LY_ERR code = lyd_parse_data(empty.get(), nullptr, input.get(), format,
                                       LYD_PARSE_OPAQ | LYD_PARSE_ONLY, 0, &parsed);
    ParsedData tree(parsed);
    empty.takeMessages();
    std::vector<Operation> operations;
    if (code == LY_SUCCESS) {
        findOperations(tree.get(), nullptr, context, operations);
    }
    if (operations.empty()) {
        return std::nullopt;
    }
    for (const Operation& operation : operations) {
        notes.count(pathOf(operation.schema) + " is no data and is skipped", {label, 0},
                    pathOf(operation.schema));
        removeFrom(tree, operation.node);
    }
    return printed(tree, format);
}

}
