// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLI_REPOSITORYFACTS_H
#define ORV_HOST_CLI_REPOSITORYFACTS_H

#include "VekOamSpiModelRepository_4.h"
#include "model/Model.h"

#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

class Host;

/// What the model repository's table tells of an attribute.
struct AttributeFacts {
    std::string name;
    int typeCode = 0;
    Bounds multiplicity;
    std::string referencedClass; ///< of a reference; "ManagedObject" stands for any
};

/// What it tells of one direction of an association, seen from the class that holds the attribute.
struct ReferenceFacts {
    std::string owner;
    std::string attribute;
    std::string target;
    Bounds cardinality;
    std::string role;
    bool keepAtDelete = false;
    std::string opposite; ///< the attribute of the target that points back; empty: unidirectional
};

/// Reads classes and associations out of the model repository as a component sees it, through the
/// table VekOamSpiModelRepository_4. Everything is copied.
///
/// A code other than OrvOk, and other than the end of a list, becomes an OperationError.
class RepositoryFacts {
public:
    using Moc = VekOamSpiMrMocHandle_4T;

    /// Throws LoadError if the host offers no repository. \p host must outlive the reader.
    explicit RepositoryFacts(Host& host);

    /// The class of that name; zero if no DN leads to it: the repository finds classes by DN only.
    Moc find(const std::string& className) const;

    std::vector<std::string> children(Moc moc) const;
    std::vector<AttributeFacts> attributes(Moc moc) const;
    /// Both kinds of association; one entry for each attribute of the class and permitted target.
    std::vector<ReferenceFacts> references(Moc moc) const;

private:
    std::string nameOf(Moc moc) const;
    std::string textOf(VekOamSpiMrGeneralPropertiesHandle_4T properties) const;
    AttributeFacts attributeFacts(VekOamSpiMrAttributeHandle_4T attribute) const;
    Moc mocOf(VekOamSpiMrAssociationEndHandle_4T end) const;
    std::string nameOfEnd(VekOamSpiMrAssociationEndHandle_4T end) const;
    ReferenceFacts referenceFacts(Moc owner, VekOamSpiMrAssociationEndHandle_4T end) const;
    void addBiDirectional(Moc moc, std::vector<ReferenceFacts>& references) const;
    void addUniDirectional(Moc moc, std::vector<ReferenceFacts>& references) const;

    const Model& mModel;
    VekOamSpiModelRepository_4* mTable;
};

/// A DN on which an object of that class could stand; empty if the class can stand nowhere.
std::string exampleDn(const Model& model, ClassIndex moc);

}

#endif
