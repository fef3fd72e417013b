// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"

#include "Portal.h"

namespace BiDirTests {

Scene::Scene() {
    Orv::Portal::instance()->attach(&Scripted::orvPortalLookup);
}

Scene::~Scene() {
    validator.stop();
    utils.stop();
    Orv::Portal::instance()->detach();
    EXPECT_EQ(stage.results.complaints(), Lines());
}

void Scene::modelOfXAndY() {
    stage.model.biDir({"X", "ys"}, {"Y", "xs"});
}

void Scene::start() {
    utils.start();
    validator.start();
    stage.script.forgetCalls();
}

OrvReturnT Scene::validate(unsigned long tx) {
    return validator.validateBiDirs(tx, &valid);
}

VekOamSpiMrAssociationEndHandle_4T Scene::firstEnd(const std::string& mocName) const {
    const auto moc = stage.model.mocFromDn(mocName + "=1").value();
    return stage.model.endOfBiDir(stage.model.firstBiDir(moc).value(), false).value();
}

}
