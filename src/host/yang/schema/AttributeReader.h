// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_ATTRIBUTEREADER_H
#define ORV_HOST_YANG_SCHEMA_ATTRIBUTEREADER_H

#include "model/building/ModelDraft.h"
#include "yang/schema/AssociationReader.h"
#include "yang/schema/ModelNotes.h"
#include "yang/schema/RuleReader.h"
#include "yang/schema/YangSchema.h"
#include "yang/source/IdentitySearch.h"
#include "yang/source/SourceLocator.h"
#include "yang/source/YangContext.h"

#include <memory>
#include <optional>
#include <string>

namespace OrvHost {

/// Turns leaves, leaf-lists, containers and lists of the compiled modules into attributes, members
/// of structs, and parameters.
class AttributeReader {
public:
    struct Attribute {
        AttributeDraft draft;
        ValueShape shape;
    };

    AttributeReader(std::shared_ptr<const YangContext> context, const SourceLocator& locator,
                    AssociationReader& associations, IdentitySearch& identities, RuleReader& rules,
                    ModelNotes& notes);

    /// What a node becomes.
    struct Purpose {
        std::string className; ///< of the attribute; empty: a member of a struct, or a parameter
        std::string name;      ///< in the model
        /// The node's statements on associations go to the association reader. The same attribute
        /// can be found at several places.
        bool isFirst = true;
    };

    /// Reads an attribute of a class; nothing if the node cannot be an attribute, which is noted.
    std::optional<Attribute> readAttribute(const lysc_node* node, const Purpose& purpose);

    /// Reads a parameter or a result of an action, which has `others` already; nothing if the node
    /// cannot be one, which is noted.
    std::optional<Attribute> readParameter(const lysc_node* node,
                                           const std::vector<AttributeDraft>& others);

private:
    std::optional<Attribute> read(const lysc_node* node, const Purpose& purpose);
    Attribute readLeaf(const lysc_node* node, const Purpose& purpose);
    Attribute readStruct(const lysc_node* node, const std::string& name);
    void tellReference(const lysc_node* node, const Purpose& purpose, Attribute& attribute);
    bool makeUnique(const lysc_node* node, const std::vector<AttributeDraft>& others,
                    Attribute& attribute);
    void noteOpenIdentities(const lysc_node* node, const lysc_type* type);
    static void describeKey(const lysc_node* node, AttributeDef& def);
    void describe(const lysc_node* node, Attribute& attribute) const;

    std::shared_ptr<const YangContext> mContext;
    const SourceLocator& mLocator;
    AssociationReader& mAssociations;
    IdentitySearch& mIdentities;
    RuleReader& mRules;
    ModelNotes& mNotes;
};

/// How many values the attribute or member that a node becomes must have, and can have.
Bounds multiplicityOf(const lysc_node* node);

}

#endif
