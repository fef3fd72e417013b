// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_ASSOCIATIONREADER_H
#define ORV_HOST_YANG_SCHEMA_ASSOCIATIONREADER_H

#include "model/building/ModelBuilder.h"
#include "yang/schema/AssociationStatement.h"
#include "yang/schema/ClassNames.h"
#include "yang/source/SourceLocator.h"
#include "yang/source/YangContext.h"

#include <libyang/libyang.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// Reads the statements of orv-associations, in leaves and at module level, into associations of
/// the model. Collects problems until they are asked for.
class AssociationReader {
public:
    AssociationReader(const SourceLocator& locator, const ClassNames& names)
        : mLocator(locator), mNames(names) {}

    /// Reads the statements at the level of a module.
    void readModule(const lys_module* module);

    /// Reads the statements in a leaf or leaf-list that is the attribute \p name of a class. The
    /// name can be another one than that of the node.
    void readAttribute(const lysc_node* node, const std::string& className,
                       const std::string& name);

    /// Refuses the statements that make the attribute \p name a reference although it is a key.
    void refuseKey(const lysc_node* node, const std::string& className, const std::string& name);

    /// The classes that a reference in a struct or a parameter may refer to. Associations are not
    /// allowed there, because the component updates only attributes.
    std::vector<std::string> readMember(const lysc_node* node);

    /// True if a statement in the leaf or in a module makes the leaf, which is the attribute \p
    /// name of a class, a reference.
    bool isReference(const lysc_node* node, const std::string& className,
                     const std::string& name) const;

    void addTo(ModelBuilder& builder);

    /// Adds a problem that was found with a reference.
    void refuse(const SourcePosition& source, std::string text) {
        mProblems.push_back({source, std::move(text)});
    }

    std::vector<Problem> takeProblems() { return std::move(mProblems); }

private:
    /// A statement's place: the module whose classes its names mean first, and the position.
    struct Place {
        std::string module;
        SourcePosition source;
        std::string statement; ///< keyword and argument
    };

    void readModuleStatement(const std::string& keyword, const std::string& argument,
                             const Place& place);
    void add(const UniDirInModule& statement, const Place& place);
    void add(const BiDirInModule& statement, const Place& place);
    void readInAttribute(const std::string& keyword, const std::string& argument,
                         ReferenceDraft draft, const Place& place);
    std::string readInMember(const std::string& keyword, const std::string& argument,
                             const Place& place);
    void enterFromModule(ReferenceDraft draft, const Place& place);
    std::string use(const ClassName& name, const Place& place);
    void refuse(const Place& place, const std::string& reason);

    const SourceLocator& mLocator;
    const ClassNames& mNames;
    std::vector<ReferenceDraft> mReferences;
    /// The modules' statements, by class and attribute.
    std::map<std::pair<std::string, std::string>, std::vector<Place>> mFromModules;
    std::vector<Problem> mProblems;
};

/// True if the node has the statement of orv-associations with that name.
bool hasStatement(const lysc_node* node, const std::string& name);

/// The statements of orv-associations in the node as one text, for comparison.
std::string associationsText(const lysc_node* node);

/// True if the type of the leaf or leaf-list says that its values are DNs.
bool isReferenceByType(const lysc_node* node);

/// Models in the public style have their own type for DNs, whose pattern is that of another
/// notation: it permits no "_" in the name of a class, which many of their classes have. So values
/// of these types are checked as references only. Call it before the types are read.
void ignorePatternsOfReferences(YangContext& context);

}

#endif
