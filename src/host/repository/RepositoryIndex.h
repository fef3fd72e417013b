// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_REPOSITORY_REPOSITORYINDEX_H
#define ORV_HOST_REPOSITORY_REPOSITORYINDEX_H

#include "RepositoryHandle.h"
#include "model/Model.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace OrvHost {

/// Answers the repository's questions about a Model in constant time (the step to the next
/// bidirectional association: logarithmic). Immutable: any number of threads.
class RepositoryIndex {
public:
    /// `model` must outlive the index and must not move.
    explicit RepositoryIndex(const Model& model);

    const Model& model() const { return mModel; }

    /// True if the handle names something in the model.
    bool exists(RepositoryHandle handle) const;

    std::optional<std::uint32_t> firstBiDir(ClassIndex moc) const;
    /// The association of `moc` with the next higher position.
    std::optional<std::uint32_t> nextBiDir(std::uint32_t current, ClassIndex moc) const;
    bool takesPart(ClassIndex moc, std::uint32_t biDir) const;
    std::optional<std::uint32_t> firstUniDir(ClassIndex moc) const;
    std::optional<std::uint32_t> nextUniDir(std::uint32_t current) const;

    /// The end that a handle of kind BiDirEnd or UniDirEnd names.
    const AssociationEnd& end(RepositoryHandle handle) const;
    /// The attribute that is named after that end, in the class at the other end.
    RepositoryHandle attributeOfEnd(RepositoryHandle handle) const;
    /// The attribute that a handle of kind Attribute or Type names.
    const AttributeDef& attribute(RepositoryHandle handle) const;

private:
    bool isAttribute(RepositoryHandle handle) const;
    bool isContainment(RepositoryHandle handle) const;

    const Model& mModel;
    std::vector<std::vector<std::uint32_t>> mBiDirs; ///< by class, in ascending order
    std::vector<std::vector<std::uint32_t>> mUniDirs;
    std::vector<std::optional<std::uint32_t>> mNextUniDir;             ///< by association
    std::vector<std::vector<RepositoryHandle>> mAttributesOfBiDirEnds; ///< by association and end
    std::vector<RepositoryHandle> mAttributesOfUniDirEnds;             ///< by association
};

}

#endif
