// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DataReader.h"

#include "netconf/core/ObjectText.h"
#include "netconf/wire/RpcError.h"

#include <libyang/libyang.h>

#include <algorithm>
#include <new>
#include <ostream>
#include <sstream>
#include <utility>

namespace OrvHost {

namespace {

[[noreturn]] void fail(const YangContext& context, const std::string& what) {
    const std::vector<YangMessage> messages = context.takeMessages();
    RpcError error;
    error.tag = "operation-failed";
    error.message = what + (messages.empty() ? "" : ": " + messages.front().text);
    throw RpcErrors(error);
}

/// Both trees as siblings; each can be empty.
OwnedTree together(OwnedTree left, OwnedTree right) {
    if (right == nullptr) {
        return left;
    }
    lyd_node* first = left.release();
    lyd_insert_sibling(first, right.release(), &first);
    return OwnedTree(first);
}

/// True if the filter is about a node at the top of the module.
bool canSelect(const std::vector<FilterNode>& filter, const YangContext& context,
               const char* moduleName) {
    const lys_module* module = ly_ctx_get_module_implemented(context.get(), moduleName);
    const lysc_node* top = nullptr;
    while ((top = lys_getnext(top, nullptr, module->compiled, 0)) != nullptr) {
        if (std::any_of(filter.begin(), filter.end(),
                        [&](const FilterNode& node) { return node.isAbout(top); })) {
            return true;
        }
    }
    return false;
}

struct SetDeleter {
    void operator()(ly_set* set) const { ly_set_free(set, nullptr); }
};

}

CText DataReader::read(NetconfSession& session, const DataRequest& request) {
    if (request.xpath.empty() && request.defaults == Defaults::Trim) {
        return readText(session, request);
    }
    OwnedTree tree = readTree(session, request);
    // The root is no node of the library.
    if (tree != nullptr && !request.xpath.empty() && request.xpath != "/") {
        return print(select(tree, request.xpath).get(), request.defaults);
    }
    if (request.filter) {
        tree = filtered(std::move(tree), *request.filter);
    }
    return print(tree.get(), request.defaults);
}

CText DataReader::readText(NetconfSession& session, const DataRequest& request) {
    CTextBuffer buffer;
    std::ostream text(&buffer);
    readObjects(session, request, request.filter, text);
    if (!request.onlyConfig) {
        OwnedTree state = serverState(request.filter);
        if (request.filter) {
            state = filtered(std::move(state), *request.filter);
        }
        text << print(state.get(), request.defaults).get();
    }
    return buffer.take();
}

OwnedTree DataReader::readTree(NetconfSession& session, const DataRequest& request) {
    std::ostringstream text;
    readObjects(session, request, std::nullopt, text);
    const YangContext& context = mModel.context();
    lyd_node* parsed = nullptr;
    if (lyd_parse_data_mem(context.get(), text.str().c_str(), LYD_XML, LYD_PARSE_ONLY, 0,
                           &parsed) != LY_SUCCESS) {
        fail(context, "the data cannot be searched");
    }
    if (request.defaults != Defaults::Trim) {
        addDefaults(parsed, request);
    }
    if (!request.onlyConfig) {
        parsed = together(OwnedTree(parsed), serverState(request.filter)).release();
    }
    return OwnedTree(parsed);
}

void DataReader::readObjects(NetconfSession& session, const DataRequest& request,
                             const std::optional<std::vector<FilterNode>>& filter,
                             std::ostream& text) {
    text.exceptions(std::ios::badbit); // otherwise it would end where memory runs out
    mStores.read(session, request.store, [&](ClientSession& client, unsigned long txHandle) {
        writeObjects(client, txHandle, mModel, {filter, request.onlyConfig}, text);
    });
}

void DataReader::addDefaults(lyd_node* first, const DataRequest& request) const {
    const std::uint32_t options = request.onlyConfig ? LYD_IMPLICIT_NO_STATE : 0;
    for (lyd_node* top = first; top != nullptr; top = top->next) {
        if (lyd_new_implicit_tree(top, options, nullptr) != LY_SUCCESS) {
            lyd_free_all(first);
            fail(mModel.context(), "the defaults cannot be added");
        }
        removeForeign(top);
        if (request.defaults == Defaults::ReportAllTagged) {
            tagDefaults(top);
        }
    }
}

/// The defaults of nodes that have no place in the objects of this server.
void DataReader::removeForeign(lyd_node* top) const {
    std::vector<lyd_node*> foreign;
    lyd_node* node = nullptr;
    LYD_TREE_DFS_BEGIN(top, node) {
        if ((node->flags & LYD_DEFAULT) != 0 && mModel.valueAt(node->schema) == nullptr &&
            !mModel.isTransparent(node->schema)) {
            foreign.push_back(node);
            LYD_TREE_DFS_continue = 1;
        }
        LYD_TREE_DFS_END(top, node);
    }
    for (lyd_node* one : foreign) {
        lyd_free_tree(one);
    }
}

void DataReader::tagDefaults(lyd_node* top) const {
    const lys_module* module =
        ly_ctx_get_module_implemented(mModel.context().get(), kDefaultsModule);
    lyd_node* node = nullptr;
    LYD_TREE_DFS_BEGIN(top, node) {
        const bool isLeaf = (node->schema->nodetype & (LYS_LEAF | LYS_LEAFLIST)) != 0;
        if (isLeaf && lyd_is_default(node) != 0) {
            lyd_new_meta(nullptr, node, module, "default", "true", 0, nullptr);
        }
        LYD_TREE_DFS_END(top, node);
    }
}

/// The list of modules, and the state of the server: what of them a filter can select, since they
/// cost more than most reads.
OwnedTree DataReader::serverState(const std::optional<std::vector<FilterNode>>& filter) const {
    const auto isWanted = [&](const char* module) {
        return !filter || canSelect(*filter, mModel.context(), module);
    };
    OwnedTree state = isWanted("ietf-yang-library") ? listOfModules() : nullptr;
    return isWanted("ietf-netconf-monitoring") ? together(std::move(state), monitored())
                                               : std::move(state);
}

OwnedTree DataReader::listOfModules() const {
    lyd_node* tree = nullptr;
    if (ly_ctx_get_yanglib_data(mModel.context().get(), &tree, "%u",
                                ly_ctx_get_change_count(mModel.context().get())) != LY_SUCCESS) {
        fail(mModel.context(), "the list of modules cannot be made");
    }
    return OwnedTree(tree);
}

OwnedTree DataReader::monitored() const {
    const std::string text = mMonitor.toXml();
    lyd_node* parsed = nullptr;
    if (lyd_parse_data_mem(mModel.context().get(), text.c_str(), LYD_XML,
                           LYD_PARSE_ONLY | LYD_PARSE_STRICT, 0, &parsed) != LY_SUCCESS) {
        fail(mModel.context(), "the state of the server cannot be shown");
    }
    return OwnedTree(parsed);
}

CText DataReader::print(const lyd_node* tree, Defaults defaults) const {
    const std::uint32_t shown =
        defaults == Defaults::Trim ? LYD_PRINT_WD_EXPLICIT : LYD_PRINT_WD_ALL;
    char* text = nullptr;
    if (tree != nullptr &&
        lyd_print_mem(&text, tree, LYD_XML, LYD_PRINT_WITHSIBLINGS | shown) != LY_SUCCESS) {
        fail(mModel.context(), "the data cannot be printed");
    }
    return text != nullptr ? CText(text) : toCText("");
}

OwnedTree DataReader::select(const OwnedTree& tree, const std::string& xpath) const {
    ly_set* set = nullptr;
    if (lyd_find_xpath3(nullptr, tree.get(), xpath.c_str(), nullptr, &set) != LY_SUCCESS) {
        fail(mModel.context(), "the expression cannot be evaluated");
    }
    const std::unique_ptr<ly_set, SetDeleter> found(set);
    lyd_node* selected = nullptr;
    for (std::uint32_t at = 0; at < found->count; ++at) {
        lyd_node* copy = nullptr;
        if (lyd_dup_single(found->dnodes[at], nullptr, LYD_DUP_RECURSIVE | LYD_DUP_WITH_PARENTS,
                           &copy) != LY_SUCCESS) {
            lyd_free_all(selected);
            throw std::bad_alloc();
        }
        while (copy->parent != nullptr) {
            copy = &copy->parent->node;
        }
        lyd_merge_siblings(&selected, copy, LYD_MERGE_DESTRUCT);
    }
    return OwnedTree(selected);
}

}
