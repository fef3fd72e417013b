// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Stage.h"

#include "HostCode.h"

namespace Scripted {

namespace {

using Handle = Model::Handle;

Argument handleArg(Handle handle) {
    Argument made = arg(handle);
    made.text = quoted(Stage::current().model.nameOf(handle).c_str());
    return made;
}

/// Records the call and writes \p answer, if there is one, to \p out.
template <class Out, class Answer>
OrvReturnT ask(const char* function, std::vector<Argument> arguments, Out* out,
               const Answer& answer) {
    Stage& stage = Stage::current();
    return stage.script.play(Call{std::string("Model.") + function, std::move(arguments), out},
                             [&]() -> OrvReturnT {
                                 const auto found = answer(static_cast<const Model&>(stage.model));
                                 if (!found) {
                                     return OrvNotExist;
                                 }
                                 *out = *found;
                                 return OrvOk;
                             });
}

/// A question that is one handle, answered by a member of Model.
template <class Out>
OrvReturnT ask(const char* function, Handle handle, Out* out,
               std::optional<Out> (Model::*question)(Handle) const) {
    return ask(function, {handleArg(handle)}, out,
               [&](const Model& model) { return (model.*question)(handle); });
}

/// A question that is a handle and the identifier of a property.
template <class Out>
OrvReturnT ask(const char* function, Handle handle, int identifier, Out* out,
               std::optional<Out> (Model::*question)(Handle, int) const) {
    return ask(function, {handleArg(handle), arg(identifier)}, out,
               [&](const Model& model) { return (model.*question)(handle, identifier); });
}

OrvReturnT getMocFromDn(const char* dn, int flag, Handle* moc) {
    return ask("getMocFromDn", {arg(dn), arg(flag)}, moc,
               [&](const Model& model) { return model.mocFromDn(dn); });
}

OrvReturnT getGeneralStringProperty(Handle properties, int identifier, const char** text) {
    return ask("getGeneralStringProperty", {handleArg(properties), arg(identifier)}, text,
               [&](const Model& model) -> std::optional<const char*> {
                   return identifier == 0 ? model.generalName(properties) : std::nullopt;
               });
}

OrvReturnT getMocGeneralProperties(Handle moc, Handle* properties) {
    return ask("getMocGeneralProperties", moc, properties, &Model::propertiesOf);
}
OrvReturnT getFirstAttribute(Handle moc, Handle* attribute) {
    return ask("getFirstAttribute", moc, attribute, &Model::firstAttribute);
}
OrvReturnT getFirstContainment(Handle moc, Handle* containment) {
    return ask("getFirstContainment", moc, containment, &Model::firstContainment);
}
OrvReturnT getFirstBiDirAssociation(Handle moc, Handle* association) {
    return ask("getFirstBiDirAssociation", moc, association, &Model::firstBiDir);
}
OrvReturnT getFirstUniDirAssociation(Handle moc, Handle* association) {
    return ask("getFirstUniDirAssociation", moc, association, &Model::firstUniDir);
}

OrvReturnT getContainedMoc(Handle containment, Handle* moc) {
    return ask("getContainedMoc", containment, moc, &Model::containedMoc);
}
OrvReturnT getNextContainment(Handle containment, Handle* next) {
    return ask("getNextContainment", containment, next, &Model::nextContainment);
}

OrvReturnT getEndMoc(Handle end, Handle* moc) {
    return ask("getEndMoc", end, moc, &Model::endMoc);
}
OrvReturnT getEndAttribute(Handle end, Handle* attribute) {
    return ask("getEndAttribute", end, attribute, &Model::endAttribute);
}
OrvReturnT getEndGeneralProperties(Handle end, Handle* properties) {
    return ask("getEndGeneralProperties", end, properties, &Model::propertiesOf);
}
OrvReturnT getEndStringProperty(Handle end, int identifier, const char** text) {
    return ask("getEndStringProperty", end, identifier, text, &Model::endText);
}
OrvReturnT getEndBoolProperty(Handle end, int identifier, bool* flag) {
    return ask("getEndBoolProperty", end, identifier, flag, &Model::endFlag);
}
OrvReturnT getEndIntProperty(Handle end, int identifier, long long* number) {
    return ask("getEndIntProperty", end, identifier, number, &Model::endBound);
}

OrvReturnT getFirstEnd(Handle association, Handle* end) {
    return ask("getFirstEnd", {handleArg(association)}, end,
               [&](const Model& model) { return model.endOfBiDir(association, false); });
}
OrvReturnT getSecondEnd(Handle association, Handle* end) {
    return ask("getSecondEnd", {handleArg(association)}, end,
               [&](const Model& model) { return model.endOfBiDir(association, true); });
}
OrvReturnT getNextBiDirAssociation(Handle current, Handle moc, Handle* next) {
    return ask("getNextBiDirAssociation", {handleArg(current), handleArg(moc)}, next,
               [&](const Model& model) { return model.nextBiDir(current, moc); });
}

OrvReturnT getUniDirEnd(Handle association, Handle* end) {
    return ask("getUniDirEnd", association, end, &Model::endOfUniDir);
}
OrvReturnT getNextUniDirAssociation(Handle association, Handle* next) {
    return ask("getNextUniDirAssociation", association, next, &Model::nextUniDir);
}

OrvReturnT getTypeCode(Handle type, int* code) {
    return ask("getTypeCode", type, code, &Model::typeCode);
}
OrvReturnT getTypeIntProperty(Handle type, int identifier, long long* number) {
    return ask("getTypeIntProperty", type, identifier, number, &Model::typeBound);
}

OrvReturnT getAttributeGeneralProperties(Handle attribute, Handle* properties) {
    return ask("getAttributeGeneralProperties", attribute, properties, &Model::propertiesOf);
}
OrvReturnT getAttributeMoc(Handle attribute, Handle* moc) {
    return ask("getAttributeMoc", attribute, moc, &Model::mocOfAttribute);
}
OrvReturnT getAttributeType(Handle attribute, Handle* type) {
    return ask("getAttributeType", attribute, type, &Model::typeOfAttribute);
}
OrvReturnT getNextAttribute(Handle attribute, Handle* next) {
    return ask("getNextAttribute", attribute, next, &Model::nextAttribute);
}

OrvReturnT getReferencedMoc(Handle type, Handle* moc) {
    return ask("getReferencedMoc", type, moc, &Model::referencedMoc);
}

const VekOamSpiMrDnLookup_4 dnLookup = {nullptr, nullptr, asHostCode<&getMocFromDn>};
const VekOamSpiMrGeneralProperties_4 generalProperties = {asHostCode<&getGeneralStringProperty>};
const VekOamSpiMrMocQueries_4 mocQueries = {asHostCode<&getMocGeneralProperties>,
                                            nullptr,
                                            nullptr,
                                            nullptr,
                                            nullptr,
                                            asHostCode<&getFirstAttribute>,
                                            nullptr,
                                            asHostCode<&getFirstContainment>,
                                            nullptr,
                                            asHostCode<&getFirstBiDirAssociation>,
                                            asHostCode<&getFirstUniDirAssociation>};
const VekOamSpiMrContainment_4 containment = {nullptr, nullptr, asHostCode<&getContainedMoc>,
                                              nullptr, nullptr, asHostCode<&getNextContainment>};
const VekOamSpiMrAssociationEnd_4 associationEnd = {asHostCode<&getEndMoc>,
                                                    asHostCode<&getEndAttribute>,
                                                    asHostCode<&getEndGeneralProperties>,
                                                    asHostCode<&getEndStringProperty>,
                                                    asHostCode<&getEndBoolProperty>,
                                                    asHostCode<&getEndIntProperty>};
const VekOamSpiMrBiDirAssociation_4 biDirAssociation = {nullptr, nullptr, asHostCode<&getFirstEnd>,
                                                        asHostCode<&getSecondEnd>,
                                                        asHostCode<&getNextBiDirAssociation>};
const VekOamSpiMrUniDirAssociation_4 uniDirAssociation = {
    nullptr, nullptr, asHostCode<&getUniDirEnd>, asHostCode<&getNextUniDirAssociation>};
const VekOamSpiMrAttributeType_4 attributeType = {
    nullptr, asHostCode<&getTypeCode>, nullptr, nullptr, nullptr, asHostCode<&getTypeIntProperty>};
const VekOamSpiMrAttribute_4 attribute = {
    asHostCode<&getAttributeGeneralProperties>, asHostCode<&getAttributeMoc>,
    asHostCode<&getAttributeType>, asHostCode<&getNextAttribute>};
const VekOamSpiMrReferenceType_4 referenceType = {asHostCode<&getReferencedMoc>};

}

VekOamSpiModelRepository_4* modelRepositoryTable() {
    static VekOamSpiModelRepository_4 table = {
        {"VekOamSpiModelRepositoryService", "VekOamSpiModelRepository", "4"},
        &dnLookup,
        &generalProperties,
        nullptr,
        &mocQueries,
        &containment,
        &associationEnd,
        &biDirAssociation,
        &uniDirAssociation,
        &attributeType,
        nullptr,
        nullptr,
        &attribute,
        nullptr,
        &referenceType};
    return &table;
}

}
