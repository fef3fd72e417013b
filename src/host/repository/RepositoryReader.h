// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_REPOSITORY_REPOSITORYREADER_H
#define ORV_HOST_REPOSITORY_REPOSITORYREADER_H

#include "ModelReader.h"
#include "VekOamSpiModelRepository_4.h"

#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

/// Wraps the table of a model repository: lists are returned whole, texts as strings, and what does
/// not exist as nothing. Throws Orv::OrvException with the function's name and the code if a
/// function is missing, if a list does not move on, or if a code means neither success nor "not
/// there". Stateless except for the table; any thread.
class RepositoryReader {
public:
    using Moc = Orv::ModelReader::Moc;
    using Attribute = Orv::ModelReader::Attribute;
    using BiDir = Orv::ModelReader::BiDir;
    using UniDir = Orv::ModelReader::UniDir;
    using End = Orv::ModelReader::End;
    using Type = Orv::ModelReader::Type;

    /// `table` must outlive the reader.
    explicit RepositoryReader(const VekOamSpiModelRepository_4& table) : mModel(table) {}

    /// The class of the object that an internal DN names.
    std::optional<Moc> findClass(const std::string& dn) const;
    std::string nameOfClass(Moc moc) const;
    std::vector<Moc> childrenOf(Moc moc) const;
    std::vector<Attribute> attributesOf(Moc moc) const;
    std::vector<BiDir> biDirsOf(Moc moc) const;
    std::vector<UniDir> uniDirsOf(Moc moc) const;

    std::string nameOfAttribute(Attribute attribute) const;
    Moc classOfAttribute(Attribute attribute) const;
    Type typeOf(Attribute attribute) const;
    int typeCodeOf(Type type) const;
    /// `identifier`: VekOamSpiMrLowerBound_4 or VekOamSpiMrUpperBound_4.
    long long boundOfType(Type type, int identifier) const;
    Moc referencedClass(Type type) const;

    End firstEnd(BiDir association) const;
    End secondEnd(BiDir association) const;
    End endOf(UniDir association) const;
    Moc classOfEnd(End end) const;
    Attribute attributeOfEnd(End end) const;
    /// `identifier`: VekOamSpiMrEndName_4 or VekOamSpiMrEndRole_4.
    std::string textOfEnd(End end, int identifier) const;
    bool isKeptAtDelete(End end) const;
    long long boundOfEnd(End end, int identifier) const;

private:
    using Properties = Orv::ModelReader::Properties;

    std::string nameOf(Properties properties) const;

    Orv::ModelReader mModel;
};

}

#endif
