// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ModelDescription.h"

#include "OrvException.h"
#include "VekOamSpiModelRepository_4.h"

#include <algorithm>
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

/// The attribute that `end` is named after, as a reference to the objects at that end.
ReferenceDescription describeReference(const RepositoryReader& reader, RepositoryReader::End end) {
    ReferenceDescription description;
    description.owner = reader.nameOfClass(reader.classOfAttribute(reader.attributeOfEnd(end)));
    description.attribute = reader.textOfEnd(end, VekOamSpiMrEndName_4);
    description.target = reader.nameOfClass(reader.classOfEnd(end));
    description.role = reader.textOfEnd(end, VekOamSpiMrEndRole_4);
    description.cardinality = {reader.boundOfEnd(end, VekOamSpiMrLowerBound_4),
                               reader.boundOfEnd(end, VekOamSpiMrUpperBound_4)};
    description.keepAtDelete = reader.isKeptAtDelete(end);
    return description;
}

/// Adds those of the two directions whose attribute belongs to `moc`: both if the association joins
/// the class to itself; but an attribute that is its own opposite is added once.
void addBiDir(const RepositoryReader& reader, Moc moc, RepositoryReader::BiDir association,
              std::vector<ReferenceDescription>& references) {
    const RepositoryReader::End ends[] = {reader.firstEnd(association),
                                          reader.secondEnd(association)};
    const RepositoryReader::Attribute attributes[] = {reader.attributeOfEnd(ends[0]),
                                                      reader.attributeOfEnd(ends[1])};
    const std::size_t directions = attributes[0] == attributes[1] ? 1 : 2;
    for (std::size_t named = 0; named < directions; ++named) {
        if (reader.classOfAttribute(attributes[named]) == moc) {
            references.push_back(describeReference(reader, ends[named]));
            references.back().opposite = reader.textOfEnd(ends[1 - named], VekOamSpiMrEndName_4);
        }
    }
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
        addBiDir(reader, moc, association, description.references);
    }
    for (const auto association : reader.uniDirsOf(moc)) {
        description.references.push_back(describeReference(reader, reader.endOf(association)));
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

const ClassDescription* findDescription(const std::vector<ClassDescription>& classes,
                                        const std::string& name) {
    const auto found =
        std::find_if(classes.begin(), classes.end(),
                     [&](const ClassDescription& description) { return description.name == name; });
    return found == classes.end() ? nullptr : &*found;
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
