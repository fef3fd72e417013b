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

/// The class with its inner steps and its stores within reach.
class Utils : public OrvExtCmRouterService::BiDirUtils {
public:
    using BiDirUtils::addMoToBackPointer;
    using BiDirUtils::addUpdatedBp;
    using BiDirUtils::getMoRefDiff;
    using BiDirUtils::modelRepository;
    using BiDirUtils::modifiedBackPointers;
    using BiDirUtils::moRouter;
    using BiDirUtils::pendingBackPointers;
    using BiDirUtils::removeMoFromBackPointer;
    using BiDirUtils::setMoAttr;
    using BiDirUtils::startsWith;
    using BiDirUtils::updateBackpointers;

    /// What waits, one line each: "Y=1 <- X=1 (tx 1, xs, ys)".
    Lines pending() const;
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

/// Catches what is traced and logged, in the old form: "trace: text", "entry: text", "log 3: text".
class LogLines {
public:
    LogLines();
    LogLines(const LogLines&) = delete;
    LogLines& operator=(const LogLines&) = delete;
    ~LogLines();

    const Lines& all() const { return mLines; }
    /// Those that begin with \p prefix.
    Lines of(const std::string& prefix) const;
    void forget() { mLines.clear(); }

private:
    Lines mLines;
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

    /// The host's calls since the last start or forget, in their order.
    Lines calls() const { return stage.script.texts(); }
    void forget();

    Scripted::Departure& when(const std::string& call) { return stage.script.when(call); }
    Lines refs(const std::string& dn, const std::string& attribute) const {
        return stage.world.references(dn, attribute);
    }

    /// What the client does, in short.
    OrvReturnT set(unsigned long tx, const std::string& dn, const std::string& attribute,
                   const Lines& references) {
        return client.set(tx, dn, attribute, references);
    }
    OrvReturnT modify(unsigned long tx, const std::string& dn, const std::string& attribute,
                      const Lines& references, bool isNewMo = false) {
        return client.announce(tx, dn, attribute, references, isNewMo);
    }

    /// What is recorded for validation: "X=1.ys".
    Lines modified(unsigned long tx);

    /// Validates and gives the code; the verdict is in `valid`.
    OrvReturnT validate(unsigned long tx);
    Lines messages() const { return stage.messages(); }

    VekOamSpiMrMocHandle_4T moc(const std::string& name) const;
    VekOamSpiMrBiDirAssociationHandle_4T firstBiDir(const std::string& mocName) const;
    VekOamSpiMrAssociationEndHandle_4T firstEnd(const std::string& mocName) const;
    VekOamSpiMrAssociationEndHandle_4T secondEnd(const std::string& mocName) const;

    Scripted::Stage stage;
    LogLines log;
    Utils utils;
    Validator validator{utils};
    Client client{stage, utils};
    bool valid = false;
};

// Pieces of expected call sequences, in the words of what they ask for.

/// The pieces one after the other.
Lines joined(std::initializer_list<Lines> pieces);
/// One text with a line for each, of which a failing comparison shows the difference.
std::string block(const Lines& lines);

Lines mocOf(const std::string& dn);
/// The walk over the associations of a class.
Lines bidirsOf(const std::string& moc, const Lines& associations);
/// Both ends and their classes.
Lines endsOf(const std::string& association, const std::string& first, const std::string& second);
/// The name of an end, of an attribute or of a class.
Lines nameOfEnd(const std::string& end);
Lines nameOfAttribute(const std::string& attribute);
Lines nameOfMoc(const std::string& moc);
Lines exists(const std::string& dn);
Lines read(const std::string& dn, const std::string& attribute);
Lines write(const std::string& dn, const std::string& attribute, const Lines& references);
Lines release(const std::string& what);

}

#endif
