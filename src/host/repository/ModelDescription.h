// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_REPOSITORY_MODELDESCRIPTION_H
#define ORV_HOST_REPOSITORY_MODELDESCRIPTION_H

#include "RepositoryReader.h"
#include "model/Model.h"

#include <string>
#include <vector>

/// \file
/// The classes as a model repository describes them, for people. Nothing here is taken from a Model
/// except the names of the top-level classes, since no function of the repository lists all
/// classes.

namespace OrvHost {

struct AttributeDescription {
    std::string name;
    int typeCode = 0;
    Bounds multiplicity;
    std::string referencedClass; ///< of a reference; kAnyClassName for any class or several
};

/// One direction of an association, seen from the class that holds the attribute: the attribute
/// `attribute` of `owner` may name objects of `target`.
struct ReferenceDescription {
    std::string owner;
    std::string attribute;
    std::string target;
    Bounds cardinality;
    std::string role;
    bool keepAtDelete = false;
    std::string opposite; ///< the attribute of `target` that refers back; empty: unidirectional
};

struct ClassDescription {
    std::string name;
    std::vector<AttributeDescription> attributes;
    std::vector<std::string> children;
    /// Both kinds of association; one entry for each attribute of the class and permitted target.
    std::vector<ReferenceDescription> references;
};

/// Describes one class by its handle.
/// \throws Orv::OrvException as RepositoryReader does
ClassDescription describeClass(const RepositoryReader& reader, RepositoryReader::Moc moc);

/// Describes all classes that can be reached from those of `topLevelClasses`, each once, parents
/// before children.
/// \throws Orv::OrvException as RepositoryReader does, or if there is no class with one of these
/// names at top level
std::vector<ClassDescription> describeClasses(const RepositoryReader& reader,
                                              const std::vector<std::string>& topLevelClasses);

/// The description with that name, or null.
const ClassDescription* findDescription(const std::vector<ClassDescription>& classes,
                                        const std::string& name);

/// The names of the classes at the top level.
std::vector<std::string> topLevelClasses(const Model& model);

}

#endif
