// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_YANG_SCHEMA_ASSOCIATIONREADER_H
#define ORV_HOST_YANG_SCHEMA_ASSOCIATIONREADER_H

#include "model/building/ModelBuilder.h"
#include "yang/schema/AssociationStatement.h"
#include "yang/source/SourceLocator.h"

#include <libyang/libyang.h>

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// Reads the statements of orv-associations, in leaves and at module level, into associations of
/// the model. Collects problems until they are asked for.
class AssociationReader {
public:
    explicit AssociationReader(const SourceLocator& locator) : mLocator(locator) {}

    /// Reads the statements at the level of a module.
    void readModule(const lys_module* module);

    /// Reads the statements in a leaf or leaf-list that is an attribute of a class.
    void readAttribute(const lysc_node* node, const std::string& className);

    /// The classes that a reference in a struct or a parameter may refer to. Associations are not
    /// allowed there, because the component updates only attributes.
    std::vector<std::string> readMember(const lysc_node* node);

    /// True if a statement in the leaf or in a module makes the leaf a reference.
    bool isReference(const lysc_node* node, const std::string& className) const;

    /// Checks that the classes belong to the modules that the statements name, then adds all
    /// associations. `modulesOf` gives the modules of each class.
    void addTo(ModelBuilder& builder,
               const std::map<std::string, std::set<std::string>>& modulesOf);

    /// Adds a problem that was found with a reference.
    void refuse(const SourcePosition& source, std::string text) {
        mProblems.push_back({source, std::move(text)});
    }

    std::vector<Problem> takeProblems() { return std::move(mProblems); }

private:
    struct Named {
        ClassName moc;
        SourcePosition source;
    };

    void readModuleStatement(const std::string& keyword, const std::string& argument,
                             const SourcePosition& source);
    void add(const UniDirInModule& statement, const SourcePosition& source);
    void add(const BiDirInModule& statement, const SourcePosition& source);
    void readInAttribute(const std::string& keyword, const std::string& argument,
                         ReferenceDraft draft);
    std::string readInMember(const std::string& keyword, const std::string& argument,
                             const SourcePosition& source);
    std::string use(const ClassName& name, const SourcePosition& source);
    void refuse(const SourcePosition& source, const std::string& keyword,
                const std::string& argument, const std::string& reason);

    const SourceLocator& mLocator;
    std::vector<ReferenceDraft> mReferences;
    std::set<std::pair<std::string, std::string>> mFromModules; // class and attribute
    std::vector<Named> mNamed;
    std::vector<Problem> mProblems;
};

/// True if the node has the statement of orv-associations with that name.
bool hasStatement(const lysc_node* node, const std::string& name);

}

#endif
