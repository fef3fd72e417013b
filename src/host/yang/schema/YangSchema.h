// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_YANGSCHEMA_H
#define ORV_HOST_YANG_SCHEMA_YANGSCHEMA_H

#include "model/Model.h"

#include <algorithm>
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
struct Rule;

/// An attribute, or a member of a struct, at one place in the modules.
struct ValueShape {
    std::string name;
    ValueKind kind = ValueKind::String;
    bool isMultiple = false; ///< a list or leaf-list
    const lysc_node* node = nullptr;
    const lysc_node* wrapper = nullptr; ///< the container `attributes` around it, or null
    std::vector<ValueShape> members;
};

/// An action of a class at one place in the modules.
struct ActionShape {
    std::string name;
    const lysc_node* node = nullptr;
    std::vector<ValueShape> input;
    /// What it returns: of several nodes, each is a member of the result, which is a struct then.
    std::vector<ValueShape> output;
};

/// A class at one place in the modules. One class can be at several places.
struct ObjectShape {
    std::string className;
    ClassIndex moc = 0;
    const lysc_node* list = nullptr;
    std::vector<const lysc_node*> keys; ///< at least one, in the order of the naming value
    /// Containers around a top-level list, outermost first; they contain objects but are not
    /// objects.
    std::vector<const lysc_node*> wrappers;
    std::vector<ValueShape> attributes; ///< without the keys
    std::vector<ActionShape> actions;
    std::vector<const ObjectShape*> children;

    bool isKey(const lysc_node* node) const {
        return std::find(keys.begin(), keys.end(), node) != keys.end();
    }
};

/// How objects and their attributes are placed in the trees of instance data. The model, which
/// knows no YANG, does not have these facts. YangModelReader makes it together with a Model.
///
/// It does not change afterwards; any number of threads may use it.
class YangSchema {
public:
    explicit YangSchema(std::shared_ptr<const YangContext> context);
    ~YangSchema();
    YangSchema(const YangSchema&) = delete;
    YangSchema& operator=(const YangSchema&) = delete;

    const YangContext& context() const { return *mContext; }

    /// The place of a class below a place of its parent, or at the top if `parent` is null. Null if
    /// the class is not at that place.
    const ObjectShape* find(const ObjectShape* parent, std::string_view className) const;

    /// The places directly below one, or at the top if `parent` is null.
    const std::vector<const ObjectShape*>& childrenOf(const ObjectShape* parent) const {
        return parent != nullptr ? parent->children : mTop;
    }

    /// The place of the object that an internal DN names. Null if the DN is no path of the model.
    const ObjectShape* findByDn(std::string_view dn) const;

    /// The object that a node of the modules defines. Null if it defines none.
    const ObjectShape* objectAt(const lysc_node* node) const;
    const ValueShape* valueAt(const lysc_node* node) const;
    /// True for a container that has no counterpart in the model.
    bool isTransparent(const lysc_node* node) const { return mTransparent.count(node) > 0; }

    /// The rules of the modules that the model does not represent: see rulesOf().
    const std::vector<Rule>& rules() const { return mRules; }

    /// For YangModelReader, while it makes the schema.
    ObjectShape& addObject(ObjectShape* parent, ObjectShape shape);
    void addTransparent(const lysc_node* node) { mTransparent.insert(node); }
    /// Call it after everything is added: takes the class indices from the model and makes the
    /// nodes findable.
    void complete(const Model& model);
    void setRules(std::vector<Rule> rules);

private:
    void index(const ValueShape& shape);

    std::shared_ptr<const YangContext> mContext;
    std::deque<ObjectShape> mObjects; // a deque, because callers keep addresses
    std::vector<const ObjectShape*> mTop;
    std::unordered_set<const lysc_node*> mTransparent;
    std::unordered_map<const lysc_node*, const ObjectShape*> mObjectAt;
    std::unordered_map<const lysc_node*, const ValueShape*> mValueAt;
    std::vector<Rule> mRules;
};

}

#endif
