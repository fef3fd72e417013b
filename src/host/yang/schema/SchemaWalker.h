// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_SCHEMAWALKER_H
#define ORV_HOST_YANG_SCHEMA_SCHEMAWALKER_H

#include "model/building/ModelBuilder.h"
#include "yang/schema/AssociationReader.h"
#include "yang/schema/AttributeReader.h"
#include "yang/schema/ChoiceReader.h"
#include "yang/schema/ClassNames.h"
#include "yang/schema/ModelNotes.h"
#include "yang/schema/RuleReader.h"
#include "yang/schema/YangSchema.h"
#include "yang/source/IdentitySearch.h"
#include "yang/source/SourceLocator.h"
#include "yang/source/YangContext.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace OrvHost {

/// Walks the compiled modules and collects classes, attributes, actions and associations. One class
/// can be found at many places: what is said at these places is merged.
class SchemaWalker {
public:
    SchemaWalker(std::shared_ptr<const YangContext> context, ModuleFinder& finder,
                 YangSchema& schema, ModelNotes& notes);

    void walk();

    /// Makes the model of everything that was found; completes the schema.
    /// \throws ModelError with all problems
    Model build();

    /// Makes build() read all rules, not only conditions.
    void readAllRules() { mRules.readAll(); }

private:
    struct Place {
        const lysc_node* list;
        ChoiceReader choices;
    };

    struct Class {
        ClassDraft draft;
        std::vector<Place> places; ///< where it is found, in order
    };

    void walkTop(const lysc_node* parent, const lys_module* module,
                 const std::vector<const lysc_node*>& wrappers);
    void walkObject(const lysc_node* list, ObjectShape* parent,
                    const std::vector<const lysc_node*>& wrappers);
    void walkContents(const lysc_node* node, const lysc_node* wrapper, Class& moc,
                      ObjectShape& shape);
    void walkActions(const lysc_node* list, Class& moc, ObjectShape& shape);
    bool noteList(const lysc_node* node, const char* whatEntriesAre);
    Class& enterClass(const lysc_node* list);
    Class& addClass(const lysc_node* list);
    std::vector<ChoiceDef> choicesOf(Class& moc);
    void addAttribute(const lysc_node* node, const lysc_node* wrapper, Class& moc,
                      ObjectShape& shape);
    std::string attributeName(const lysc_node* node, const Class& moc, const ObjectShape& shape);
    void uniteAttribute(AttributeReader::Attribute attribute, const lysc_node* wrapper, Class& moc,
                        ObjectShape& shape);
    ActionDraft readAction(const lysc_node_action* action, ActionShape& shape);
    void readResult(const lysc_node_action* action, ActionDraft& draft, ActionShape& shape);
    std::vector<AttributeDraft> readParameters(const lysc_node* inout,
                                               std::vector<ValueShape>& shapes);

    std::shared_ptr<const YangContext> mContext;
    const ModuleFinder& mFinder;
    SourceLocator mLocator;
    YangSchema& mSchema;
    ModelNotes& mNotes;
    ClassNames mNames;
    AssociationReader mAssociations;
    IdentitySearch mIdentities;
    RuleReader mRules;
    AttributeReader mAttributes;
    std::vector<std::unique_ptr<Class>> mClasses;
    std::map<std::string, Class*> mClassByName;
    std::vector<ContainmentDraft> mContainments;
    std::vector<Problem> mProblems;
};

}

#endif
