// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_NETCONF_WIRE_WIREMODEL_H
#define ORV_HOST_NETCONF_WIRE_WIREMODEL_H

#include "LargeReplies.h"
#include "yang/schema/YangModelReader.h"
#include "yang/schema/YangSchema.h"
#include "yang/source/YangContext.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace OrvHost {

/// The namespace of RFC 6241.
constexpr const char* kNetconfNamespace = "urn:ietf:params:xml:ns:netconf:base:1.0";
/// The name of its module.
constexpr const char* kNetconfModule = "ietf-netconf";

/// Our module with the attribute `default` of RFC 6243, which tells values that are the default.
constexpr const char* kDefaultsModule = "orv-netconf-defaults";

/// What requests and replies are made of: the modules of the model and those of the protocol in one
/// context, and which of its nodes are objects and attributes of the model.
///
/// The model has a context of its own, because the protocol's library uses the private pointers of
/// nodes that the reader of models needs, and because the protocol's modules are not part of the
/// model.
///
/// Any thread.
class WireModel {
public:
    /// \p reader has read the model of \p schema. Throws ModelError.
    WireModel(YangModelReader reader, std::shared_ptr<const YangSchema> schema);

    YangContext& context() const { return *mContext; }
    const LargeReplies& largeReplies() const { return *mLargeReplies; }
    /// Of the model; its nodes are those of the model's own context.
    const YangSchema& schema() const { return *mSchema; }
    const std::shared_ptr<const YangSchema>& sharedSchema() const { return mSchema; }

    /// What a node of the wire's context is in the model. Null, or false, if it is nothing there.
    const ObjectShape* objectAt(const lysc_node* node) const { return find(mObjects, node); }
    const ValueShape* valueAt(const lysc_node* node) const { return find(mValues, node); }
    const ActionShape* actionAt(const lysc_node* node) const { return find(mActions, node); }
    bool isTransparent(const lysc_node* node) const { return mTransparent.count(node) != 0; }

    /// A module or a submodule.
    struct Module {
        std::string name;
        std::string revision;  ///< "2024-01-15"; empty: it has none
        std::string nameSpace; ///< of a submodule: that of its module
    };

    /// All that are loaded; moduleText has a text for each.
    std::vector<Module> modules() const;

    /// The text of a loaded module or submodule in YANG. \p revision may be empty. Nothing if there
    /// is none.
    std::optional<std::string> moduleText(const std::string& name,
                                          const std::string& revision) const;

private:
    template <class Shape>
    using ByNode = std::unordered_map<const lysc_node*, const Shape*>;

    template <class Shape>
    static const Shape* find(const ByNode<Shape>& shapes, const lysc_node* node) {
        const auto found = shapes.find(node);
        return found != shapes.end() ? found->second : nullptr;
    }

    const lysc_node* wireNode(const lysc_node* node) const;
    void add(const ObjectShape& shape);
    void add(const ValueShape& shape);

    std::shared_ptr<const YangSchema> mSchema;
    std::shared_ptr<YangContext> mContext;
    std::unique_ptr<LargeReplies> mLargeReplies;
    ByNode<ObjectShape> mObjects;
    ByNode<ValueShape> mValues; ///< attributes, and parameters of actions
    ByNode<ActionShape> mActions;
    std::unordered_set<const lysc_node*> mTransparent;
};

}

#endif
