// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_REPOSITORY_REPOSITORYINDEX_H
#define ORV_HOST_REPOSITORY_REPOSITORYINDEX_H

#include "RepositoryRows.h"
#include "model/Model.h"

#include <cstdint>
#include <vector>

namespace OrvHost {

/// The repository's answers, made once from a Model. Immutable: any number of threads.
class RepositoryIndex {
public:
    /// `model` must outlive the index and must not move.
    explicit RepositoryIndex(const Model& model);
    RepositoryIndex(const RepositoryIndex&) = delete;
    RepositoryIndex& operator=(const RepositoryIndex&) = delete;

    /// Valid as long as the index.
    const RepositoryRows& rows() const { return mRows; }

private:
    void addClass(ClassIndex index);
    void addBiDir(std::uint32_t index);
    void addUniDir(std::uint32_t index);
    RepositoryRows::EndRow rowOf(const AssociationEnd& end, ClassIndex owner) const;

    const Model& mModel;
    std::vector<RepositoryRows::MocRow> mMocs;
    std::vector<RepositoryRows::AttributeRow> mAttributes;
    std::vector<RepositoryRows::ContainmentRow> mContainments;
    std::vector<RepositoryRows::BiDirRow> mBiDirs;
    std::vector<RepositoryRows::EndRow> mBiDirEnds;
    std::vector<RepositoryRows::UniDirRow> mUniDirs;
    std::vector<RepositoryRows::EndRow> mUniDirEnds;
    RepositoryRows mRows;
};

}

#endif
