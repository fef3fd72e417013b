// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Reach.h"

#include "yang/schema/XPathText.h"
#include "yang/source/SourceLocator.h"
#include "yang/source/YangContext.h"

#include <memory>

namespace OrvHost {
namespace {

struct SetDeleter {
    void operator()(ly_set* set) const { ly_set_free(set, nullptr); }
};

class ReachReader {
public:
    ReachReader(const YangSchema& schema, const Expression& expression)
        : mSchema(schema), mExpression(expression) {}

    Reach read() && {
        const std::unique_ptr<ly_set, SetDeleter> atoms = findAtoms();
        if (!atoms) {
            mReach.whyNot = "the YANG library cannot tell what it asks about";
            return std::move(mReach);
        }
        const XPathMoves moves = movesOf(mExpression.text());
        mReach.isOwn = !moves.isUnbounded;
        for (std::uint32_t i = 0; i < atoms->count && mReach.whyNot.empty(); ++i) {
            addAtom(atoms->snodes[i], moves);
        }
        if (!mReach.isOwn && !moves.isUnbounded && !moves.climbsFar) {
            mReach.root = ancestorObject(moves.climbs);
        }
        return std::move(mReach);
    }

private:
    std::unique_ptr<ly_set, SetDeleter> findAtoms() const {
        ly_set* atoms = nullptr;
        const LY_ERR code =
            lys_find_expr_atoms(mExpression.context, mExpression.module, mExpression.parsed,
                                mExpression.prefixes, 0, &atoms);
        mSchema.context().takeMessages(); // about names that no module knows
        return std::unique_ptr<ly_set, SetDeleter>(code == LY_SUCCESS ? atoms : nullptr);
    }

    void addAtom(const lysc_node* atom, const XPathMoves& moves) {
        const ObjectShape* object = enclosingObject(mSchema, atom);
        const bool isKnown = object == nullptr ? mSchema.isTransparent(atom)
                                               : atom == object->list || object->isKey(atom) ||
                                                     mSchema.isTransparent(atom) ||
                                                     mSchema.valueAt(atom) != nullptr;
        if (!isKnown) {
            mReach.whyNot = "it asks about " + pathOf(atom) + ", which is not part of the model";
        } else if ((atom->flags & LYS_CONFIG_R) != 0) {
            mReach.whyNot = "it asks about state, " + pathOf(atom);
        } else if (object != nullptr) {
            mReach.addReadOf(mSchema, atom);
            // From its context an expression meets another object only by the name of a list.
            mReach.isOwn =
                mReach.isOwn && (atom != object->list || moves.descends.count(atom->name) == 0);
        }
    }

    const ObjectShape* ancestorObject(std::size_t climbs) const {
        const lysc_node* node = mExpression.context;
        for (; node != nullptr && climbs > 0; --climbs) {
            node = lysc_data_parent(node);
        }
        return node == nullptr ? nullptr : enclosingObject(mSchema, node);
    }

    const YangSchema& mSchema;
    const Expression& mExpression;
    Reach mReach;
};

}

namespace {

/// True for a node in a case of a choice, or under a condition, within its object.
bool isConditional(const lysc_node* node, const ObjectShape& object) {
    for (; node != nullptr && node != object.list; node = node->parent) {
        if (node->nodetype == LYS_CASE || lysc_node_when(node) != nullptr) {
            return true;
        }
    }
    return false;
}

}

void Reach::addReads(const Reach& other) {
    for (const auto& [object, attributes] : other.reads) {
        reads[object].insert(attributes.begin(), attributes.end());
    }
}

void Reach::addReadOf(const YangSchema& schema, const lysc_node* node) {
    const ObjectShape* object = enclosingObject(schema, node);
    std::set<std::string>& attributes = reads[object];
    if (const ValueShape* attribute = attributeAt(schema, node, *object)) {
        attributes.insert(attribute->name);
    }
    if (isConditional(node, *object)) {
        addAllReads(schema, object);
    }
}

/// Whether a node is there, if only as a default, can change with any attribute.
void Reach::addAllReads(const YangSchema& schema, const ObjectShape* object) {
    for (; object != nullptr; object = enclosingObject(schema, object->list->parent)) {
        for (const ValueShape& attribute : object->attributes) {
            reads[object].insert(attribute.name);
        }
    }
}

const ObjectShape* enclosingObject(const YangSchema& schema, const lysc_node* node) {
    for (; node != nullptr; node = node->parent) {
        if (const ObjectShape* object = schema.objectAt(node)) {
            return object;
        }
    }
    return nullptr;
}

const ValueShape* attributeAt(const YangSchema& schema, const lysc_node* node,
                              const ObjectShape& object) {
    const ValueShape* found = nullptr;
    for (; node != object.list; node = node->parent) {
        if (const ValueShape* value = schema.valueAt(node)) {
            found = value;
        }
    }
    return found;
}

Reach reachOf(const YangSchema& schema, const Expression& expression) {
    return ReachReader(schema, expression).read();
}

}
