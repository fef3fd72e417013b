// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RepositoryIndex.h"

#include <algorithm>

namespace OrvHost {

namespace {

RepositoryHandle findAttribute(const Model& model, ClassIndex owner, const std::string& name) {
    return {HandleKind::Attribute, owner, model.classes[owner].findAttributeIndex(name).value()};
}

std::optional<std::uint32_t> firstOf(const std::vector<std::uint32_t>& list) {
    return list.empty() ? std::nullopt : std::optional(list.front());
}

}

RepositoryIndex::RepositoryIndex(const Model& model)
    : mModel(model),
      mBiDirs(model.classes.size()),
      mUniDirs(model.classes.size()),
      mNextUniDir(model.uniDirAssociations.size()) {
    for (std::uint32_t index = 0; index < model.biDirAssociations.size(); ++index) {
        const AssociationEnd& first = model.biDirAssociations[index].ends[0];
        const AssociationEnd& second = model.biDirAssociations[index].ends[1];
        mBiDirs[first.moc].push_back(index);
        if (second.moc != first.moc) {
            mBiDirs[second.moc].push_back(index);
        }
        mAttributesOfBiDirEnds.push_back({findAttribute(model, second.moc, first.name),
                                          findAttribute(model, first.moc, second.name)});
    }
    for (std::uint32_t index = 0; index < model.uniDirAssociations.size(); ++index) {
        const UniDirAssociation& association = model.uniDirAssociations[index];
        std::vector<std::uint32_t>& ofOwner = mUniDirs[association.owner];
        if (!ofOwner.empty()) {
            mNextUniDir[ofOwner.back()] = index;
        }
        ofOwner.push_back(index);
        mAttributesOfUniDirEnds.push_back(
            findAttribute(model, association.owner, association.end.name));
    }
}

bool RepositoryIndex::exists(RepositoryHandle handle) const {
    switch (handle.kind) {
    case HandleKind::Moc:
        return handle.second == 0 &&
               (handle.first < mModel.classes.size() || handle.first == kAnyClassPosition);
    case HandleKind::Attribute:
    case HandleKind::Type:
        return isAttribute(handle);
    case HandleKind::Containment:
        return isContainment(handle);
    case HandleKind::BiDir:
        return handle.first < mModel.biDirAssociations.size() && handle.second == 0;
    case HandleKind::BiDirEnd:
        return handle.first < mModel.biDirAssociations.size() && handle.second < 2;
    case HandleKind::UniDir:
    case HandleKind::UniDirEnd:
        return handle.first < mModel.uniDirAssociations.size() && handle.second == 0;
    }
    return false;
}

bool RepositoryIndex::isAttribute(RepositoryHandle handle) const {
    return handle.first < mModel.classes.size() &&
           handle.second < mModel.classes[handle.first].attributes.size();
}

bool RepositoryIndex::isContainment(RepositoryHandle handle) const {
    return handle.first < mModel.classes.size() &&
           handle.second < mModel.classes[handle.first].children.size();
}

std::optional<std::uint32_t> RepositoryIndex::firstBiDir(ClassIndex moc) const {
    return moc < mBiDirs.size() ? firstOf(mBiDirs[moc]) : std::nullopt;
}

std::optional<std::uint32_t> RepositoryIndex::nextBiDir(std::uint32_t current,
                                                        ClassIndex moc) const {
    const std::vector<std::uint32_t>& list = mBiDirs[moc];
    const auto next = std::upper_bound(list.begin(), list.end(), current);
    return next == list.end() ? std::nullopt : std::optional(*next);
}

bool RepositoryIndex::takesPart(ClassIndex moc, std::uint32_t biDir) const {
    return moc < mBiDirs.size() &&
           std::binary_search(mBiDirs[moc].begin(), mBiDirs[moc].end(), biDir);
}

std::optional<std::uint32_t> RepositoryIndex::firstUniDir(ClassIndex moc) const {
    return moc < mUniDirs.size() ? firstOf(mUniDirs[moc]) : std::nullopt;
}

std::optional<std::uint32_t> RepositoryIndex::nextUniDir(std::uint32_t current) const {
    return mNextUniDir[current];
}

const AssociationEnd& RepositoryIndex::end(RepositoryHandle handle) const {
    return handle.kind == HandleKind::BiDirEnd
               ? mModel.biDirAssociations[handle.first].ends[handle.second]
               : mModel.uniDirAssociations[handle.first].end;
}

RepositoryHandle RepositoryIndex::attributeOfEnd(RepositoryHandle handle) const {
    return handle.kind == HandleKind::BiDirEnd ? mAttributesOfBiDirEnds[handle.first][handle.second]
                                               : mAttributesOfUniDirEnds[handle.first];
}

const AttributeDef& RepositoryIndex::attribute(RepositoryHandle handle) const {
    return mModel.classes[handle.first].attributes[handle.second];
}

}
