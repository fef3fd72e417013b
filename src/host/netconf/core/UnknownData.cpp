// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "UnknownData.h"

#include "netconf/wire/XmlText.h"

#include <libyang/libyang.h>

#include <set>

namespace OrvHost {

namespace {

const lyd_node_opaq& opaque(const lyd_node* node) {
    return *reinterpret_cast<const lyd_node_opaq*>(node);
}

std::string nameOf(const lyd_node* node) {
    return node->schema != nullptr ? node->schema->name : opaque(node).name.name;
}

const lys_module* moduleOf(const WireModel& model, const lyd_node* node) {
    const char* const place = opaque(node).name.module_ns;
    return place != nullptr ? ly_ctx_get_module_implemented_ns(model.context().get(), place)
                            : nullptr;
}

/// The node of the modules, also of one that the parser could not fit into them; or null.
const lysc_node* schemaOf(const WireModel& model, const lyd_node* node) {
    return node->schema != nullptr ? node->schema : meantNode(model, node);
}

std::string namespaceOf(const lyd_node* node) {
    const char* const place =
        node->schema != nullptr ? node->schema->module->ns : opaque(node).name.module_ns;
    return place != nullptr ? place : "";
}

class Search {
public:
    explicit Search(const WireModel& model) : mModel(model) {}

    std::vector<RpcError> take() { return std::move(mErrors); }

    void look(const lyd_node* node) {
        const std::string name = nameOf(node);
        const lysc_node* meant = meantNode(mModel, node);
        const std::string expected = meant == nullptr ? expectedNamespaces(node) : "";
        if (!expected.empty()) {
            addOtherNamespace(node, expected);
            return;
        }
        if (moduleOf(mModel, node) == nullptr) {
            const std::string known = namespaceOf(node);
            add(node, "unknown-namespace",
                "<" + name + "> is in the namespace \"" + known +
                    "\", which no module of this server has",
                errorInfo("bad-element", name) + errorInfo("bad-namespace", known));
            return;
        }
        if (meant == nullptr) {
            const lyd_node* above = lyd_parent(node);
            add(node, "unknown-element",
                "<" + name + "> is not known " +
                    (above != nullptr ? "in <" + nameOf(above) + ">" : "at the top"),
                errorInfo("bad-element", name));
        } else if ((meant->nodetype & (LYS_LEAF | LYS_LEAFLIST)) != 0) {
            lookAtValue(node, meant);
        } else {
            lookInside(node, meant);
        }
    }

private:
    /// The namespaces in which the modules have such an element at this place, for people; empty:
    /// none.
    std::string expectedNamespaces(const lyd_node* node) const {
        const lyd_node* above = lyd_parent(node);
        const lysc_node* parent = above != nullptr ? schemaOf(mModel, above) : nullptr;
        std::set<std::string> found;
        if (above == nullptr) {
            found = namespacesOfTop(nameOf(node));
        } else if (parent != nullptr) {
            found = namespacesIn(parent, nameOf(node));
        }
        std::string text;
        for (const std::string& one : found) {
            text += (text.empty() ? "\"" : " or \"") + one + "\"";
        }
        return text;
    }

    std::set<std::string> namespacesOfTop(const std::string& name) const {
        std::set<std::string> found;
        for (const ObjectShape* shape : mModel.schema().childrenOf(nullptr)) {
            const lysc_node* top = shape->list;
            while (top->parent != nullptr) {
                top = top->parent;
            }
            if (name == top->name) {
                found.insert(top->module->ns);
            }
        }
        return found;
    }

    static std::set<std::string> namespacesIn(const lysc_node* parent, const std::string& name) {
        std::set<std::string> found;
        const lysc_node* child = nullptr;
        while ((child = lys_getnext(child, parent, nullptr, 0)) != nullptr) {
            if (name == child->name && (child->nodetype & (LYS_ACTION | LYS_NOTIF)) == 0) {
                found.insert(child->module->ns);
            }
        }
        return found;
    }

    /// An element without xmlns is in the namespace of the element around it: at the top, of the
    /// request.
    void addOtherNamespace(const lyd_node* node, const std::string& expected) {
        const std::string name = nameOf(node);
        const std::string given = namespaceOf(node);
        const lyd_node* above = lyd_parent(node);
        const bool isMissing = given.empty() || given == kNetconfNamespace;
        const bool isFromAbove = !isMissing && above != nullptr && given == namespaceOf(above);
        add(node, "unknown-namespace",
            isMissing ? "<" + name + "> lacks its namespace; xmlns=" + expected + " was expected"
                      : "<" + name + "> is in the namespace \"" + given + "\"" +
                            (isFromAbove ? ", that of <" + nameOf(above) + ">; xmlns=" : "; ") +
                            expected + " was expected",
            errorInfo("bad-element", name) + errorInfo("bad-namespace", given));
    }

    void lookAtValue(const lyd_node* node, const lysc_node* meant) {
        const std::string refusal = mModel.context().refusal(meant, opaque(node).value);
        if (!refusal.empty()) {
            add(node, "invalid-value", "<" + nameOf(node) + ">: " + refusal,
                errorInfo("bad-element", nameOf(node)));
        }
    }

    void lookInside(const lyd_node* node, const lysc_node* meant) {
        for (const lysc_node* key = lysc_node_child(meant);
             meant->nodetype == LYS_LIST && key != nullptr && lysc_is_key(key); key = key->next) {
            if (!has(node, key)) {
                add(node, "missing-element",
                    "<" + nameOf(node) + "> lacks its key <" + key->name + ">",
                    errorInfo("bad-element", key->name));
            }
        }
        for (const lyd_node* child = lyd_child(node); child != nullptr; child = child->next) {
            if (child->schema == nullptr) {
                look(child);
            }
        }
    }

    static bool has(const lyd_node* node, const lysc_node* key) {
        for (const lyd_node* child = lyd_child(node); child != nullptr; child = child->next) {
            if (nameOf(child) == key->name) {
                return true;
            }
        }
        return false;
    }

    void add(const lyd_node* node, const std::string& tag, const std::string& message,
             const std::string& info) {
        RpcError error;
        error.tag = tag;
        error.path = instancePathOf(node);
        error.message = message;
        error.info = info;
        mErrors.push_back(std::move(error));
    }

    const WireModel& mModel;
    std::vector<RpcError> mErrors;
};

}

const lysc_node* meantNode(const WireModel& model, const lyd_node* node) {
    const lys_module* module = moduleOf(model, node);
    const lyd_node* above = lyd_parent(node);
    const lysc_node* parent = above != nullptr ? schemaOf(model, above) : nullptr;
    if (module == nullptr || (above != nullptr && parent == nullptr)) {
        return nullptr;
    }
    return lys_find_child(parent, module, opaque(node).name.name, 0, 0, 0);
}

std::vector<RpcError> whyUnknown(const WireModel& model, const lyd_node* node) {
    Search search(model);
    search.look(node);
    std::vector<RpcError> errors = search.take();
    if (errors.empty()) {
        RpcError error;
        error.tag = "bad-element";
        error.path = instancePathOf(node);
        error.message = "<" + nameOf(node) + "> does not fit the modules";
        error.info = errorInfo("bad-element", nameOf(node));
        errors.push_back(std::move(error));
    }
    return errors;
}

}
