// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DataReader.h"

#include "netconf/core/ObjectText.h"
#include "netconf/wire/RpcError.h"

#include <libyang/libyang.h>

#include <cstdlib>
#include <new>
#include <sstream>

namespace OrvHost {

namespace {

[[noreturn]] void fail(const YangContext& context, const std::string& what) {
    const std::vector<YangMessage> messages = context.takeMessages();
    RpcError error;
    error.tag = "operation-failed";
    error.message = what + (messages.empty() ? "" : ": " + messages.front().text);
    throw RpcErrors(error);
}

struct SetDeleter {
    void operator()(ly_set* set) const { ly_set_free(set, nullptr); }
};

}

std::string DataReader::read(NetconfSession& session, const DataRequest& request) {
    std::string objects = readObjects(session, request);
    if (!request.xpath.empty()) {
        return select(objects, request);
    }
    if (!request.onlyConfig) {
        OwnedTree modules = moduleList();
        if (request.filter) {
            modules = filtered(std::move(modules), *request.filter);
        }
        objects += print(modules.get());
    }
    return objects;
}

std::string DataReader::readObjects(NetconfSession& session, const DataRequest& request) {
    ObjectSelection selection;
    selection.onlyConfig = request.onlyConfig;
    if (request.xpath.empty()) {
        selection.filter = request.filter;
    }
    std::ostringstream text;
    mStores.read(session, request.store, [&](ClientSession& client, unsigned long txHandle) {
        writeObjects(client, txHandle, mModel, selection, text);
    });
    return std::move(text).str();
}

OwnedTree DataReader::moduleList() const {
    lyd_node* tree = nullptr;
    if (ly_ctx_get_yanglib_data(mModel.context().get(), &tree, "%u",
                                ly_ctx_get_change_count(mModel.context().get())) != LY_SUCCESS) {
        fail(mModel.context(), "the list of modules cannot be made");
    }
    return OwnedTree(tree);
}

std::string DataReader::print(const lyd_node* tree) const {
    char* text = nullptr;
    if (tree != nullptr &&
        lyd_print_mem(&text, tree, LYD_XML, LYD_PRINT_WITHSIBLINGS) != LY_SUCCESS) {
        fail(mModel.context(), "the data cannot be printed");
    }
    const std::unique_ptr<char, void (*)(void*)> owned(text, std::free);
    return owned != nullptr ? owned.get() : "";
}

std::string DataReader::select(const std::string& objects, const DataRequest& request) const {
    const YangContext& context = mModel.context();
    lyd_node* parsed = nullptr;
    if (lyd_parse_data_mem(context.get(), objects.c_str(), LYD_XML, LYD_PARSE_ONLY, 0, &parsed) !=
        LY_SUCCESS) {
        fail(context, "the data cannot be searched");
    }
    if (!request.onlyConfig) {
        lyd_insert_sibling(parsed, moduleList().release(), &parsed);
    }
    const OwnedTree tree(parsed);
    ly_set* set = nullptr;
    if (tree == nullptr) {
        return "";
    }
    if (request.xpath == "/") { // the root is no node of the library
        return print(tree.get());
    }
    if (lyd_find_xpath3(nullptr, tree.get(), request.xpath.c_str(), nullptr, &set) != LY_SUCCESS) {
        fail(context, "the expression cannot be evaluated");
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
    const OwnedTree result(selected);
    return print(result.get());
}

}
