// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ModelDescription.h"

#include "OrvException.h"
#include "VekOamSpiModelRepository_4.h"

#include <deque>
#include <unordered_set>

namespace OrvHost {

namespace {

using Moc = RepositoryReader::Moc;

AttributeDescription describeAttribute(const RepositoryReader& reader,
                                       RepositoryReader::Attribute attribute) {
    const auto type = reader.typeOf(attribute);
    AttributeDescription description;
    description.name = reader.nameOfAttribute(attribute);
    description.typeCode = reader.typeCodeOf(type);
    description.multiplicity = {reader.boundOfType(type, VekOamSpiMrLowerBound_4),
                                reader.boundOfType(type, VekOamSpiMrUpperBound_4)};
    if (description.typeCode == VekOamSpiMrTypeMoRef_4) {
        description.referencedClass = reader.nameOfClass(reader.referencedClass(type));
    }
    return description;
}

EndDescription describeEnd(const RepositoryReader& reader, RepositoryReader::End end) {
    EndDescription description;
    description.owner = reader.nameOfClass(reader.classOfAttribute(reader.attributeOfEnd(end)));
    description.name = reader.textOfEnd(end, VekOamSpiMrEndName_4);
    description.moc = reader.nameOfClass(reader.classOfEnd(end));
    description.role = reader.textOfEnd(end, VekOamSpiMrEndRole_4);
    description.cardinality = {reader.boundOfEnd(end, VekOamSpiMrLowerBound_4),
                               reader.boundOfEnd(end, VekOamSpiMrUpperBound_4)};
    description.keepAtDelete = reader.isKeptAtDelete(end);
    return description;
}

Moc findTopLevelClass(const RepositoryReader& reader, const std::string& name) {
    const auto moc = reader.findClass(name + "=1");
    if (!moc) {
        throw Orv::OrvException(OrvNotExist, "The model repository has no top-level class %s.",
                                name.c_str());
    }
    return *moc;
}

}

ClassDescription describeClass(const RepositoryReader& reader, Moc moc) {
    ClassDescription description;
    description.name = reader.nameOfClass(moc);
    for (const auto attribute : reader.attributesOf(moc)) {
        description.attributes.push_back(describeAttribute(reader, attribute));
    }
    for (const Moc child : reader.childrenOf(moc)) {
        description.children.push_back(reader.nameOfClass(child));
    }
    for (const auto association : reader.biDirsOf(moc)) {
        description.biDirAssociations.push_back(
            {describeEnd(reader, reader.firstEnd(association)),
             describeEnd(reader, reader.secondEnd(association))});
    }
    for (const auto association : reader.uniDirsOf(moc)) {
        description.uniDirAssociations.push_back(describeEnd(reader, reader.endOf(association)));
    }
    return description;
}

std::vector<ClassDescription> describeClasses(const RepositoryReader& reader,
                                              const std::vector<std::string>& topLevelClasses) {
    std::vector<ClassDescription> descriptions;
    std::unordered_set<Moc> known;
    std::deque<Moc> toVisit;
    const auto meet = [&](Moc moc) {
        if (known.insert(moc).second) {
            toVisit.push_back(moc);
        }
    };
    for (const std::string& name : topLevelClasses) {
        meet(findTopLevelClass(reader, name));
    }
    for (; !toVisit.empty(); toVisit.pop_front()) {
        descriptions.push_back(describeClass(reader, toVisit.front()));
        for (const Moc child : reader.childrenOf(toVisit.front())) {
            meet(child);
        }
    }
    return descriptions;
}

std::vector<std::string> topLevelClasses(const Model& model) {
    std::vector<std::string> names;
    for (const ClassDef& moc : model.classes) {
        if (moc.isTopLevel) {
            names.push_back(moc.name);
        }
    }
    return names;
}

}
