// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_YANGSCHEMA_H
#define ORV_HOST_YANG_YANGSCHEMA_H

#include "model/Model.h"

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

struct lysc_node;

namespace OrvHost {

class YangContext;

/// An attribute, or a member of a struct, at one place in the modules.
struct ValueShape {
    std::string name;
    ValueKind kind = ValueKind::String;
    bool isMultiple = false; ///< a list or leaf-list
    const lysc_node* node = nullptr;
    const lysc_node* wrapper = nullptr; ///< the container `attributes` around it, or null
    std::vector<ValueShape> members;
};

/// A class at one place in the modules. One class can stand at several.
struct ObjectShape {
    std::string className;
    ClassIndex moc = 0;
    const lysc_node* list = nullptr;
    const lysc_node* key = nullptr;
    /// Containers around a top-level list, outermost first: they hold objects and are none.
    std::vector<const lysc_node*> wrappers;
    std::vector<ValueShape> attributes; ///< without the key
    std::vector<const ObjectShape*> children;
};

/// How objects and their attributes lie in the trees of instance data: what the model, which knows
/// no YANG, leaves out. Made together with a Model by YangModelReader.
///
/// Does not change once it is made; any number of threads may use it.
class YangSchema {
public:
    explicit YangSchema(std::shared_ptr<const YangContext> context);
    ~YangSchema();
    YangSchema(const YangSchema&) = delete;
    YangSchema& operator=(const YangSchema&) = delete;

    const YangContext& context() const { return *mContext; }

    /// The place of a class below a place of its parent's, or at the top if `parent` is null.
    /// Null if the class does not stand there.
    const ObjectShape* find(const ObjectShape* parent, std::string_view className) const;

    /// What a node of the modules is. Null if it is nothing of that sort.
    const ObjectShape* objectAt(const lysc_node* node) const;
    const ValueShape* valueAt(const lysc_node* node) const;
    /// True for a container that stands for nothing in the model.
    bool isTransparent(const lysc_node* node) const { return mTransparent.count(node) > 0; }

    /// For YangModelReader: while the schema is being made.
    ObjectShape& addObject(ObjectShape* parent, ObjectShape shape);
    void addTransparent(const lysc_node* node) { mTransparent.insert(node); }
    /// When all is added: takes the class indices from the model and makes the nodes findable.
    void complete(const Model& model);

private:
    void index(const ValueShape& shape);

    std::shared_ptr<const YangContext> mContext;
    std::deque<ObjectShape> mObjects; // addresses are handed out
    std::vector<const ObjectShape*> mTop;
    std::unordered_set<const lysc_node*> mTransparent;
    std::unordered_map<const lysc_node*, const ObjectShape*> mObjectAt;
    std::unordered_map<const lysc_node*, const ValueShape*> mValueAt;
};

}

#endif
