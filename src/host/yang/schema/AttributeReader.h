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

    /// Reads an attribute of that class; nothing if the node cannot be an attribute, which is
    /// noted. With `isFirst`, the node's statements on associations go to the association reader:
    /// the same attribute can be found at several places.
    std::optional<Attribute> readAttribute(const lysc_node* node, const std::string& className,
                                           bool isFirst);

    /// Reads a parameter or a result of an action, which has `others` already; nothing if the node
    /// cannot be one, which is noted.
    std::optional<AttributeDraft> readParameter(const lysc_node* node,
                                                const std::vector<AttributeDraft>& others);

private:
    std::optional<Attribute> read(const lysc_node* node, const std::string& className,
                                  bool isFirst);
    Attribute readLeaf(const lysc_node* node, const std::string& className, bool isFirst);
    Attribute readStruct(const lysc_node* node);
    void tellReference(const lysc_node* node, const std::string& className, bool isFirst,
                       Attribute& attribute);
    bool makeUnique(const lysc_node* node, const std::vector<AttributeDraft>& others,
                    AttributeDraft& draft);
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
