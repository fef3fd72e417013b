// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_UNIT_EXT_CM_BIDIRSCENE_H
#define ORV_TESTS_UNIT_EXT_CM_BIDIRSCENE_H

#include "BiDirClient.h"
#include "BiDirUtils.h"
#include "BiDirValidator.h"
#include "Records.h"
#include "Stage.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace BiDirTests {

using Lines = std::vector<std::string>;

/// The class with its stores, and the steps that take its lock, within reach.
class Utils : public OrvExtCmRouterService::BiDirUtils {
public:
    using BiDirUtils::addMoToBackPointer;
    using BiDirUtils::addUpdatedBp;
    using BiDirUtils::getMoRefDiff;
    using BiDirUtils::mMutex;
    using BiDirUtils::modelRepository;
    using BiDirUtils::modifiedBackPointers;
    using BiDirUtils::moRouter;
    using BiDirUtils::pendingBackPointers;
    using BiDirUtils::removeMoFromBackPointer;
    using BiDirUtils::setMoAttr;
    using BiDirUtils::startsWith;
    using BiDirUtils::updateBackpointers;
};

/// The same for the validator.
class Validator : public OrvExtCmRouterService::BiDirValidator {
public:
    using BiDirValidator::addThreadContextMessage;
    using BiDirValidator::attributeTypeCheck;
    using BiDirValidator::attrMultiplicityCheck;
    using BiDirValidator::biDirCardinalityCheck;
    using BiDirValidator::BiDirValidator;
    using BiDirValidator::getAttributeFromMoc;
    using BiDirValidator::modelRepository;
    using BiDirValidator::moRouter;
    using BiDirValidator::threadContext;
};

/// Both classes on a scripted host. Models and MOs first, then start().
class Scene : public ::testing::Test {
protected:
    Scene();
    ~Scene() override;

    /// Classes X and Y: the attribute `ys` of X and the attribute `xs` of Y belong together. The
    /// ends are "xs@X", the first, and "ys@Y".
    void modelOfXAndY();

    void start();

    Scripted::Departure& when(const std::string& call) { return stage.script.when(call); }
    Lines refs(const std::string& dn, const std::string& attribute) const {
        return stage.world.references(dn, attribute);
    }

    /// What the client does, in short.
    OrvReturnT set(unsigned long tx, const std::string& dn, const std::string& attribute,
                   const Lines& references) {
        return client.set(tx, dn, attribute, references);
    }

    /// Validates and gives the code; the verdict is in `valid`.
    OrvReturnT validate(unsigned long tx);
    Lines messages() const { return stage.messages(); }

    VekOamSpiMrAssociationEndHandle_4T firstEnd(const std::string& mocName) const;

    Scripted::Stage stage;
    Utils utils;
    Validator validator{utils};
    Client client{stage, utils};
    bool valid = false;
};

}

#endif
