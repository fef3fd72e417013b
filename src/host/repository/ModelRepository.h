// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_REPOSITORY_MODELREPOSITORY_H
#define ORV_HOST_REPOSITORY_MODELREPOSITORY_H

#include "RepositoryIndex.h"
#include "VekOamSpiModelRepository_4.h"
#include "base/OnlyOne.h"
#include "model/Model.h"

namespace OrvHost {

/// The table "VekOamSpiModelRepository" version "4" over a Model.
///
/// Codes of its functions:
/// - OrvOk;
/// - OrvNotExist: the handle is zero, nothing is there, or the list is at its end;
/// - OrvInvalidArgument: a handle of another kind or of nothing, an unknown property, a null
///   pointer;
/// - OrvNotActive: the repository has been destroyed.
///
/// The out parameter is written only on OrvOk.
///
/// The referenced MOC of a reference attribute with exactly one permitted class is that class. For
/// every other reference attribute it is the class "ManagedObject", which means any class: it has
/// only a name, and no DN leads to it. The bounds of a type are the bounds of the number of values.
/// An open upper bound is kUnbounded, a large positive number. What belongs to a case of a choice
/// or depends on a condition has the lower bound 0; the store demands it when it is due.
///
/// A table function gets no object argument, so only one repository at a time can exist in a
/// process. Nothing changes after construction: the functions take no lock, and any number of
/// threads may call them between construction and destruction.
class ModelRepository {
public:
    /// `model` is from a ModelBuilder; it must outlive the repository and must not move.
    /// \throws std::logic_error if there is a repository already
    explicit ModelRepository(const Model& model);
    ModelRepository(const ModelRepository&) = delete;
    ModelRepository& operator=(const ModelRepository&) = delete;
    ~ModelRepository();

    /// Lives as long as the repository.
    VekOamSpiModelRepository_4* getInterface() { return &mInterface; }

private:
    OnlyOne<ModelRepository> mOnlyOne;
    RepositoryIndex mIndex;
    VekOamSpiModelRepository_4 mInterface;
};

}

#endif
