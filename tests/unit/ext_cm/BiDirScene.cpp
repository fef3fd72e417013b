// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "BiDirScene.h"

#include "LoggingWrapper.h"
#include "Portal.h"
#include "messages/Tracing.h"

namespace BiDirTests {

namespace {

constexpr unsigned int everything = 8;

std::string lineOf(const Orv::LogRecord& record) {
    if (record.form == Orv::LogRecord::Form::Log) {
        return "log " + std::to_string(record.level) + ": " + record.text;
    }
    return (record.kind == OrvExtCmRouterService::TraceEntry ? "entry: " : "trace: ") + record.text;
}

std::string quotedRefs(const Lines& references) {
    return Scripted::refs(references).text();
}

}

Lines Utils::pending() const {
    Lines lines;
    for (const auto& [key, record] : pendingBackPointers) {
        lines.push_back(key + " <- " + record.sourceDn + " (tx " + std::to_string(record.txHandle) +
                        ", " + record.backPointerAttribute + ", " + record.sourceAttribute + ")");
    }
    return lines;
}

LogLines::LogLines() {
    Orv::LoggingWrapper::instance()->setLevel(everything);
    Orv::LoggingWrapper::instance()->setSink([this](const Orv::LogRecord& record) {
        if (record.form != Orv::LogRecord::Form::TraceV2) {
            mLines.push_back(lineOf(record));
        }
    });
}

LogLines::~LogLines() {
    Orv::LoggingWrapper::instance()->setSink(nullptr);
}

Lines LogLines::of(const std::string& prefix) const {
    Lines chosen;
    for (const std::string& line : mLines) {
        if (line.starts_with(prefix)) {
            chosen.push_back(line);
        }
    }
    return chosen;
}

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
    forget();
}

void Scene::forget() {
    stage.script.forgetCalls();
    log.forget();
}

Lines Scene::modified(unsigned long tx) {
    Lines lines;
    for (const auto& [dn, attribute] : utils.getModifiedBackPointers(tx)) {
        lines.push_back(dn + "." + attribute);
    }
    return lines;
}

OrvReturnT Scene::validate(unsigned long tx) {
    return validator.validateBiDirs(tx, &valid);
}

VekOamSpiMrMocHandle_4T Scene::moc(const std::string& name) const {
    return stage.model.mocFromDn(name + "=1").value();
}

VekOamSpiMrBiDirAssociationHandle_4T Scene::firstBiDir(const std::string& mocName) const {
    return stage.model.firstBiDir(moc(mocName)).value();
}

VekOamSpiMrAssociationEndHandle_4T Scene::firstEnd(const std::string& mocName) const {
    return stage.model.endOfBiDir(firstBiDir(mocName), false).value();
}

VekOamSpiMrAssociationEndHandle_4T Scene::secondEnd(const std::string& mocName) const {
    return stage.model.endOfBiDir(firstBiDir(mocName), true).value();
}

Lines joined(std::initializer_list<Lines> pieces) {
    Lines all;
    for (const Lines& piece : pieces) {
        all.insert(all.end(), piece.begin(), piece.end());
    }
    return all;
}

std::string block(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

Lines mocOf(const std::string& dn) {
    return {"Model.getMocFromDn('" + dn + "', 1)"};
}

Lines bidirsOf(const std::string& moc, const Lines& associations) {
    Lines lines = {"Model.getFirstBiDirAssociation('" + moc + "')"};
    for (const std::string& association : associations) {
        lines.push_back("Model.getNextBiDirAssociation('" + association + "', '" + moc + "')");
    }
    return lines;
}

Lines endsOf(const std::string& association, const std::string& first, const std::string& second) {
    return {"Model.getFirstEnd('" + association + "')", "Model.getSecondEnd('" + association + "')",
            "Model.getEndMoc('" + first + "')", "Model.getEndMoc('" + second + "')"};
}

namespace {

Lines nameBy(const std::string& function, const std::string& object) {
    const std::string properties = object == "0" ? "0" : "properties of " + object;
    return {"Model." + function + "('" + object + "')",
            "Model.getGeneralStringProperty('" + properties + "', 0)"};
}

}

Lines nameOfEnd(const std::string& end) {
    return nameBy("getEndGeneralProperties", end);
}

Lines nameOfAttribute(const std::string& attribute) {
    return nameBy("getAttributeGeneralProperties", attribute);
}

Lines nameOfMoc(const std::string& moc) {
    return nameBy("getMocGeneralProperties", moc);
}

Lines exists(const std::string& dn) {
    return {"VekRouter3.existsMo(1, '" + dn + "')"};
}

Lines read(const std::string& dn, const std::string& attribute) {
    return {"VekRouter3.getMoAttribute(1, '" + dn + "', '" + attribute + "')"};
}

Lines write(const std::string& dn, const std::string& attribute, const Lines& references) {
    return {"VekRouter3.setMoAttribute(1, '" + dn + "', '" + attribute + "', " +
            quotedRefs(references) + ")"};
}

Lines release(const std::string& what) {
    return {"Producer.release('" + what + "')"};
}

}
