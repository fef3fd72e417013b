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

/// An end of an association: the attribute `name` of `owner` refers to `moc`.
struct EndDescription {
    std::string owner;
    std::string name;
    std::string moc;
    std::string role;
    Bounds cardinality;
    bool keepAtDelete = false;
};

struct BiDirDescription {
    EndDescription first;
    EndDescription second;
};

struct ClassDescription {
    std::string name;
    std::vector<AttributeDescription> attributes;
    std::vector<std::string> children;
    std::vector<BiDirDescription> biDirAssociations;
    std::vector<EndDescription> uniDirAssociations;
};

/// One class, by its handle. \throws Orv::OrvException as RepositoryReader does
ClassDescription describeClass(const RepositoryReader& reader, RepositoryReader::Moc moc);

/// All classes that are reached from those of `topLevelClasses`, each once, parents before
/// children. \throws Orv::OrvException as RepositoryReader does, or if there is no class of one of
/// these names at top level
std::vector<ClassDescription> describeClasses(const RepositoryReader& reader,
                                              const std::vector<std::string>& topLevelClasses);

/// The names to begin with.
std::vector<std::string> topLevelClasses(const Model& model);

}

#endif
