// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RepositoryIndex.h"

#include "model/TypeCode.h"

#include <atomic>

namespace OrvHost {

namespace {

std::uint64_t nextNumber() {
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

Handle mocHandle(ClassIndex moc) {
    return encode({HandleKind::Moc, moc});
}

Handle attributeHandle(std::size_t position) {
    return encode({HandleKind::Attribute, static_cast<std::uint32_t>(position)});
}

Handle containmentHandle(std::size_t position) {
    return encode({HandleKind::Containment, static_cast<std::uint32_t>(position)});
}

// 0 unless values of that type are references.
Handle referencedMoc(const TypeDef& type) {
    if (type.kind != ValueKind::MoRef) {
        return 0;
    }
    return mocHandle(type.targets.size() == 1 ? type.targets.front() : kAnyClassPosition);
}

// The bounds of an attribute's values, or of the objects at the end that the attribute is named
// after. What depends on a condition has no lower bound here: a reader of the model cannot know
// whether it is due (see ConditionalReferences.h).
Bounds boundsOf(const AttributeDef& attribute, Bounds bounds) {
    if (attribute.isConditional) {
        bounds.lower = 0;
    }
    return bounds;
}

constexpr RepositoryRows::MocRow kAnyMoc{kAnyClassName.data(), 0, 0, 0, 0};

}

RepositoryIndex::RepositoryIndex(const Model& model) : mModel(model) {
    for (ClassIndex index = 0; index < model.classes.size(); ++index) {
        addClass(index);
    }
    mBiDirs.resize(model.biDirAssociations.size());
    mBiDirEnds.resize(2 * model.biDirAssociations.size());
    mUniDirs.resize(model.uniDirAssociations.size());
    mUniDirEnds.resize(model.uniDirAssociations.size());
    // From the last to the first, since each one links to the next of the same class.
    for (std::size_t index = mBiDirs.size(); index > 0; --index) {
        addBiDir(static_cast<std::uint32_t>(index - 1));
    }
    for (std::size_t index = mUniDirs.size(); index > 0; --index) {
        addUniDir(static_cast<std::uint32_t>(index - 1));
    }
    mRows.mModel = &mModel;
    mRows.mNumber = nextNumber();
    mRows.mMocs = RepositoryRows::View(mMocs);
    mRows.mAnyMoc = &kAnyMoc;
    mRows.mAttributes = RepositoryRows::View(mAttributes);
    mRows.mContainments = RepositoryRows::View(mContainments);
    mRows.mBiDirs = RepositoryRows::View(mBiDirs);
    mRows.mBiDirEnds = RepositoryRows::View(mBiDirEnds);
    mRows.mUniDirs = RepositoryRows::View(mUniDirs);
    mRows.mUniDirEnds = RepositoryRows::View(mUniDirEnds);
}

void RepositoryIndex::addClass(ClassIndex index) {
    const ClassDef& moc = mModel.classes[index];
    mMocs.push_back({moc.name.c_str(),
                     moc.attributes.empty() ? 0 : attributeHandle(mAttributes.size()),
                     moc.children.empty() ? 0 : containmentHandle(mContainments.size()), 0, 0});
    for (const AttributeDef& def : moc.attributes) {
        const bool isLast = &def == &moc.attributes.back();
        mAttributes.push_back({def.name.c_str(), mocHandle(index),
                               isLast ? 0 : attributeHandle(mAttributes.size() + 1),
                               referencedMoc(def.type), boundsOf(def, def.multiplicity),
                               typeCodeOf(def.type.kind)});
    }
    for (const ClassIndex& child : moc.children) {
        const bool isLast = &child == &moc.children.back();
        mContainments.push_back(
            {mocHandle(child), isLast ? 0 : containmentHandle(mContainments.size() + 1)});
    }
}

void RepositoryIndex::addBiDir(std::uint32_t index) {
    const AssociationEnd(&ends)[2] = mModel.biDirAssociations[index].ends;
    RepositoryRows::MocRow& first = mMocs[ends[0].moc];
    RepositoryRows::MocRow& second = mMocs[ends[1].moc];
    mBiDirEnds[2 * std::size_t{index}] = rowOf(ends[0], ends[1].moc);
    mBiDirEnds[2 * std::size_t{index} + 1] = rowOf(ends[1], ends[0].moc);
    mBiDirs[index] = {{mocHandle(ends[0].moc), mocHandle(ends[1].moc)},
                      {first.firstBiDir, second.firstBiDir}};
    first.firstBiDir = second.firstBiDir = encode({HandleKind::BiDir, index});
}

void RepositoryIndex::addUniDir(std::uint32_t index) {
    const UniDirAssociation& association = mModel.uniDirAssociations[index];
    RepositoryRows::MocRow& owner = mMocs[association.owner];
    mUniDirs[index] = {owner.firstUniDir};
    mUniDirEnds[index] = rowOf(association.end, association.owner);
    owner.firstUniDir = encode({HandleKind::UniDir, index});
}

RepositoryRows::EndRow RepositoryIndex::rowOf(const AssociationEnd& end, ClassIndex owner) const {
    const ClassDef& moc = mModel.classes[owner];
    const AttributeIndex attribute = moc.findAttributeIndex(end.name).value();
    const Handle firstAttribute = mMocs[owner].firstAttribute;
    return {end.name.c_str(),
            end.role.c_str(),
            mocHandle(end.moc),
            attributeHandle(decode(firstAttribute).first + attribute),
            boundsOf(moc.attributes[attribute], end.cardinality),
            end.keepAtDelete};
}

}
