// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_MODEL_MODELDESCRIPTION_H
#define ORV_HOST_MODEL_MODELDESCRIPTION_H

#include "Model.h"
#include "RepositoryReader.h"

#include <string>
#include <vector>

/// \file
/// What a model repository tells of its classes, for people. Nothing here is taken from a Model but
/// the names to begin with, since no entry of the repository lists all classes.

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
    std::string opposite; ///< the attribute of `target` that points back; empty: unidirectional
};

struct ClassDescription {
    std::string name;
    std::vector<AttributeDescription> attributes;
    std::vector<std::string> children;
    /// Both kinds of association; one entry for each attribute of the class and permitted target.
    std::vector<ReferenceDescription> references;
};

/// One class, by its handle. \throws Orv::OrvException as RepositoryReader does
ClassDescription describeClass(const RepositoryReader& reader, RepositoryReader::Moc moc);

/// All classes that are reached from those of `topLevelClasses`, each once, parents before
/// children. \throws Orv::OrvException as RepositoryReader does, or if there is no class of one of
/// these names at top level
std::vector<ClassDescription> describeClasses(const RepositoryReader& reader,
                                              const std::vector<std::string>& topLevelClasses);

/// The one of that name, or null.
const ClassDescription* findDescription(const std::vector<ClassDescription>& classes,
                                        const std::string& name);

/// The names to begin with.
std::vector<std::string> topLevelClasses(const Model& model);

}

#endif
