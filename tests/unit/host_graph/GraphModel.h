// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_UNIT_HOST_GRAPH_GRAPHMODEL_H
#define ORV_TESTS_UNIT_HOST_GRAPH_GRAPHMODEL_H

#include "cli/graph/TreePicture.h"
#include "model/Model.h"
#include "model/ModelDescription.h"
#include "model/ModelRepository.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OrvHost {

/// Masts and antennas that refer to each other (one antenna at least), antennas that refer to masts
/// one way, and to anything without an association.
Model graphModel();

/// A picture to be put together, and the model that it is of.
class GraphTest : public testing::Test {
protected:
    /// Adds an object of the tree; its parent must be there if it is to be shown.
    void add(const std::string& dn, std::vector<PicturedLink> links = {});
    /// Adds an object outside.
    void addOutside(const std::string& dn, std::vector<PicturedLink> links = {});

    Model mModel = graphModel();
    ModelRepository mRepository{mModel};
    std::vector<ClassDescription> mClasses =
        describeClasses(RepositoryReader(*mRepository.getInterface()), topLevelClasses(mModel));
    TreePicture mPicture;
};

}

#endif
