// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "WireModel.h"

#include "yang/types/TypeFacts.h"

#include <libyang/libyang.h>

#include <cstdlib>

extern const char kEmbedded_ietf_netconf_yang[];
extern const char kEmbedded_ietf_netconf_monitoring_yang[];
extern const char kEmbedded_ietf_netconf_with_defaults_yang[];
extern const char kEmbedded_orv_netconf_defaults_yang[];
extern const char kEmbedded_orv_netconf_transports_yang[];
extern const char kEmbedded_notifications_yang[];
extern const char kEmbedded_ietf_netconf_notifications_yang[];

namespace OrvHost {

namespace {

/// What the server can do beyond the base; the others are refused where a request uses them.
const std::vector<std::string> kFeatures{"writable-running",  "candidate", "confirmed-commit",
                                         "rollback-on-error", "validate",  "xpath"};

void addModule(YangModelReader& reader, const std::string& name, const char* text) {
    reader.offerText(name, name + ".yang (built in)", text);
    reader.load(name);
}

void addProtocol(YangModelReader& reader) {
    addModule(reader, kNetconfModule, kEmbedded_ietf_netconf_yang);
    reader.selectFeatures(kNetconfModule, kFeatures);
    addModule(reader, "ietf-netconf-monitoring", kEmbedded_ietf_netconf_monitoring_yang);
    addModule(reader, "ietf-netconf-with-defaults", kEmbedded_ietf_netconf_with_defaults_yang);
    addModule(reader, kDefaultsModule, kEmbedded_orv_netconf_defaults_yang);
    addModule(reader, "orv-netconf-transports", kEmbedded_orv_netconf_transports_yang);
    addModule(reader, "notifications", kEmbedded_notifications_yang);
    addModule(reader, "ietf-netconf-notifications", kEmbedded_ietf_netconf_notifications_yang);
}

using Text = std::unique_ptr<char, void (*)(void*)>;

}

WireModel::WireModel(YangModelReader reader, std::shared_ptr<const YangSchema> schema)
    : mSchema(std::move(schema)) {
    addProtocol(reader);
    mContext = reader.readForProtocol();
    mLargeReplies = std::make_unique<LargeReplies>(mContext->get());
    for (const ObjectShape* top : mSchema->childrenOf(nullptr)) {
        add(*top);
    }
}

const lysc_node* WireModel::wireNode(const lysc_node* node) const {
    const Text path(lysc_path(node, LYSC_PATH_DATA, nullptr, 0), std::free);
    const lysc_node* found =
        path != nullptr ? lys_find_path(mContext->get(), nullptr, path.get(), 0) : nullptr;
    if (found == nullptr) {
        mContext->takeMessages();
        throw ModelError({{{},
                           std::string(path != nullptr ? path.get() : node->name) +
                               " is not found among the modules of the protocol"}});
    }
    return found;
}

void WireModel::add(const ObjectShape& shape) {
    mObjects.emplace(wireNode(shape.list), &shape);
    for (const lysc_node* wrapper : shape.wrappers) {
        mTransparent.insert(wireNode(wrapper));
    }
    for (const ValueShape& value : shape.attributes) {
        if (value.wrapper != nullptr) {
            mTransparent.insert(wireNode(value.wrapper));
        }
        add(value);
    }
    for (const ActionShape& action : shape.actions) {
        mActions.emplace(wireNode(action.node), &action);
        for (const ValueShape& parameter : action.input) {
            add(parameter);
        }
    }
    for (const ObjectShape* child : shape.children) {
        add(*child);
    }
}

// A reference holds a DN, whatever pattern its author meant for another form of it.
void WireModel::add(const ValueShape& shape) {
    const lysc_node* node = wireNode(shape.node);
    mValues.emplace(node, &shape);
    if (shape.kind == ValueKind::MoRef) {
        mContext->ignorePatterns(typeOfLeaf(node));
    }
    for (const ValueShape& member : shape.members) {
        add(member);
    }
}

std::vector<WireModel::Module> WireModel::modules() const {
    std::vector<Module> all;
    const auto textOf = [](const char* text) { return std::string(text != nullptr ? text : ""); };
    std::uint32_t at = 0;
    while (const lys_module* module = ly_ctx_get_module_iter(mContext->get(), &at)) {
        all.push_back({module->name, textOf(module->revision), module->ns});
        LY_ARRAY_COUNT_TYPE part = 0;
        LY_ARRAY_FOR(module->parsed->includes, part) {
            const lysp_submodule* submodule = module->parsed->includes[part].submodule;
            all.push_back({submodule->name,
                           textOf(submodule->revs != nullptr ? submodule->revs[0].date : nullptr),
                           module->ns});
        }
    }
    return all;
}

std::optional<std::string> WireModel::moduleText(const std::string& name,
                                                 const std::string& revision) const {
    const char* const wanted = revision.empty() ? nullptr : revision.c_str();
    const ly_ctx* context = mContext->get();
    char* text = nullptr;
    const lys_module* module = wanted != nullptr
                                   ? ly_ctx_get_module(context, name.c_str(), wanted)
                                   : ly_ctx_get_module_implemented(context, name.c_str());
    if (module == nullptr && wanted == nullptr) {
        module = ly_ctx_get_module_latest(context, name.c_str());
    }
    if (module != nullptr) {
        lys_print_mem(&text, module, LYS_OUT_YANG, 0);
    } else if (const lysp_submodule* part =
                   wanted != nullptr ? ly_ctx_get_submodule(context, name.c_str(), wanted)
                                     : ly_ctx_get_submodule_latest(context, name.c_str())) {
        ly_out* out = nullptr;
        if (ly_out_new_memory(&text, 0, &out) == LY_SUCCESS) {
            lys_print_submodule(out, part, LYS_OUT_YANG, 0, 0);
            ly_out_free(out, nullptr, 0);
        }
    }
    const Text owned(text, std::free);
    return owned != nullptr ? std::optional<std::string>(owned.get()) : std::nullopt;
}

}
