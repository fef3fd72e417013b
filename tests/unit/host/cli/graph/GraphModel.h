// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_UNIT_HOST_GRAPH_GRAPHMODEL_H
#define ORV_TESTS_UNIT_HOST_GRAPH_GRAPHMODEL_H

#include "cli/graph/TreePicture.h"
#include "model/Model.h"
#include "repository/ModelDescription.h"
#include "repository/ModelRepository.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OrvHost {

/// Masts and antennas that refer to each other (a mast has at least one antenna); antennas also
/// have one-way references to masts, references of one attribute to at most one mast and to sites,
/// and references without an association.
Model graphModel();

/// Builds a picture and the model that it belongs to.
class GraphTest : public testing::Test {
protected:
    /// Adds an object of the tree; if its parent is to be shown, that must have been added.
    void add(const std::string& dn, std::vector<PicturedLink> links = {});
    /// Adds an object outside the tree.
    void addOutside(const std::string& dn, std::vector<PicturedLink> links = {});

    Model mModel = graphModel();
    ModelRepository mRepository{mModel};
    std::vector<ClassDescription> mClasses =
        describeClasses(RepositoryReader(*mRepository.getInterface()), topLevelClasses(mModel));
    TreePicture mPicture;
};

}

#endif
