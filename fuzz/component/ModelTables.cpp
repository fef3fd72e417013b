// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// The model repository's tables.

#include "Host.h"

#include <cstring>

namespace Fuzz {

namespace {

using Handle = NetworkModel::Handle;

/// What stands in the out parameter of a function that lies.
Handle lieFor(const Handle*, ByteSource& details) {
    return NetworkModel::anyHandle(details);
}
const char* lieFor(const char* const*, ByteSource& details) {
    static constexpr const char* kTexts[] = {nullptr,         "",      "cells",
                                             "ManagedObject", "a,b=c", "Unit"};
    return kTexts[details.below(std::size(kTexts))];
}
int lieFor(const int*, ByteSource& details) {
    return details.below(2) == 0 ? 11 : details.byte();
}
long long lieFor(const long long*, ByteSource& details) {
    static constexpr long long kNumbers[] = {0, 1, -1, 2, INT64_MAX, INT64_MIN};
    return kNumbers[details.below(std::size(kNumbers))];
}

template <class Out>
void put(Out* out, const Out& answer) {
    *out = answer;
}

/// Writes what an honest repository answers, or nothing for OrvNotExist.
template <class Out>
OrvReturnT ask(Slot slot, const char* function, Handle asked, Out* out,
               const std::optional<Out>& answer) {
    Host& host = Host::current();
    host.journal.call(function).number(static_cast<long long>(asked));
    return host.play(
        slot,
        [&]() -> OrvReturnT {
            if (!answer) {
                return OrvNotExist;
            }
            *out = *answer;
            return OrvOk;
        },
        [&](ByteSource& details) {
            *out = lieFor(out, details);
            return OrvOk;
        });
}

/// A step on a list, which a repository that lies never ends. What goes on for very long is no
/// longer written down.
OrvReturnT step(Slot slot, const char* function, Handle asked, Handle* out,
                const std::optional<Handle>& answer, bool mayBeLong = false) {
    return Host::current().stepsOn(mayBeLong) ? ask(slot, function, asked, out, answer)
                                              : OrvNotExist;
}

const NetworkModel& model() {
    return Host::current().model;
}

OrvReturnT getMocFromDn(const char* dn, int, Handle* moc) {
    Host::current().journal.text(dn);
    return ask(Slot::MocOfDn, "getMocFromDn", 0, moc, model().mocOfDn(dn));
}
OrvReturnT getGeneralStringProperty(Handle properties, int, const char** text) {
    return ask(Slot::GeneralText, "getGeneralStringProperty", properties, text,
               model().generalName(properties));
}
OrvReturnT getMocGeneralProperties(Handle moc, Handle* properties) {
    return ask(Slot::MocProperties, "getMocGeneralProperties", moc, properties,
               model().propertiesOf(moc));
}
OrvReturnT getFirstAttribute(Handle moc, Handle* attribute) {
    return step(Slot::FirstAttribute, "getFirstAttribute", moc, attribute,
                model().firstAttribute(moc), true);
}
OrvReturnT getFirstContainment(Handle moc, Handle* containment) {
    return step(Slot::FirstContainment, "getFirstContainment", moc, containment,
                model().firstContainment(moc));
}
OrvReturnT getFirstBiDirAssociation(Handle moc, Handle* association) {
    return step(Slot::FirstBiDir, "getFirstBiDirAssociation", moc, association,
                model().firstBiDir(moc));
}
OrvReturnT getFirstUniDirAssociation(Handle moc, Handle* association) {
    return step(Slot::FirstUniDir, "getFirstUniDirAssociation", moc, association,
                model().firstUniDir(moc), true);
}
OrvReturnT getContainedMoc(Handle containment, Handle* moc) {
    return ask(Slot::ContainedMoc, "getContainedMoc", containment, moc,
               model().containedMoc(containment));
}
OrvReturnT getNextContainment(Handle containment, Handle* next) {
    return step(Slot::NextContainment, "getNextContainment", containment, next,
                model().nextContainment(containment));
}
OrvReturnT getEndMoc(Handle end, Handle* moc) {
    return ask(Slot::EndMoc, "getEndMoc", end, moc, model().endMoc(end));
}
OrvReturnT getEndAttribute(Handle end, Handle* attribute) {
    return ask(Slot::EndAttribute, "getEndAttribute", end, attribute, model().endAttribute(end));
}
OrvReturnT getEndGeneralProperties(Handle end, Handle* properties) {
    return ask(Slot::EndProperties, "getEndGeneralProperties", end, properties,
               model().propertiesOf(end));
}
OrvReturnT getEndStringProperty(Handle end, int identifier, const char** text) {
    return ask(Slot::EndText, "getEndStringProperty", end, text, model().endText(end, identifier));
}
OrvReturnT getEndIntProperty(Handle end, int identifier, long long* number) {
    return ask(Slot::EndBound, "getEndIntProperty", end, number, model().endBound(end, identifier));
}
OrvReturnT getFirstEnd(Handle association, Handle* end) {
    return ask(Slot::FirstEnd, "getFirstEnd", association, end, model().firstEnd(association));
}
OrvReturnT getSecondEnd(Handle association, Handle* end) {
    return ask(Slot::SecondEnd, "getSecondEnd", association, end, model().secondEnd(association));
}
OrvReturnT getNextBiDirAssociation(Handle current, Handle moc, Handle* next) {
    return step(Slot::NextBiDir, "getNextBiDirAssociation", current, next,
                model().nextBiDir(current, moc));
}
OrvReturnT getUniDirEnd(Handle association, Handle* end) {
    ++Host::current().referenceQuestions;
    return ask(Slot::UniDirEnd, "getUniDirEnd", association, end, model().uniDirEnd(association));
}
OrvReturnT getNextUniDirAssociation(Handle association, Handle* next) {
    ++Host::current().referenceQuestions;
    return step(Slot::NextUniDir, "getNextUniDirAssociation", association, next,
                model().nextUniDir(association), true);
}
OrvReturnT getTypeCode(Handle type, int* code) {
    return ask(Slot::TypeCode, "getTypeCode", type, code, model().typeCode(type));
}
OrvReturnT getTypeIntProperty(Handle type, int identifier, long long* number) {
    return ask(Slot::TypeBound, "getTypeIntProperty", type, number,
               model().typeBound(type, identifier));
}
OrvReturnT getAttributeGeneralProperties(Handle attribute, Handle* properties) {
    return ask(Slot::AttributeProperties, "getAttributeGeneralProperties", attribute, properties,
               model().propertiesOf(attribute));
}
OrvReturnT getAttributeMoc(Handle attribute, Handle* moc) {
    return ask(Slot::AttributeMoc, "getAttributeMoc", attribute, moc,
               model().attributeMoc(attribute));
}
OrvReturnT getAttributeType(Handle attribute, Handle* type) {
    return ask(Slot::AttributeType, "getAttributeType", attribute, type,
               model().attributeType(attribute));
}
OrvReturnT getNextAttribute(Handle attribute, Handle* next) {
    return step(Slot::NextAttribute, "getNextAttribute", attribute, next,
                model().nextAttribute(attribute), true);
}
OrvReturnT getReferencedMoc(Handle type, Handle* moc) {
    return ask(Slot::ReferencedMoc, "getReferencedMoc", type, moc, model().referencedMoc(type));
}

/// Any byte but zero means that the flag is set.
OrvReturnT getEndBoolProperty(Handle end, int identifier, bool* flag) {
    Host& host = Host::current();
    host.journal.call("getEndBoolProperty").number(static_cast<long long>(end));
    return host.play(
        Slot::EndFlag,
        [&]() -> OrvReturnT {
            const std::optional<bool> answer = model().endFlag(end, identifier);
            if (!answer) {
                return OrvNotExist;
            }
            *flag = *answer;
            return OrvOk;
        },
        [&](ByteSource& details) {
            const std::uint8_t byte = details.byte();
            std::memcpy(flag, &byte, sizeof(byte));
            return OrvOk;
        });
}

const VekOamSpiMrDnLookup_4 dnLookup = {nullptr, nullptr, &getMocFromDn};
const VekOamSpiMrGeneralProperties_4 generalProperties = {&getGeneralStringProperty};
const VekOamSpiMrMocQueries_4 mocQueries = {&getMocGeneralProperties,
                                            nullptr,
                                            nullptr,
                                            nullptr,
                                            nullptr,
                                            &getFirstAttribute,
                                            nullptr,
                                            &getFirstContainment,
                                            nullptr,
                                            &getFirstBiDirAssociation,
                                            &getFirstUniDirAssociation};
const VekOamSpiMrContainment_4 containment = {nullptr, nullptr, &getContainedMoc,
                                              nullptr, nullptr, &getNextContainment};
const VekOamSpiMrAssociationEnd_4 associationEnd = {
    &getEndMoc,          &getEndAttribute,  &getEndGeneralProperties, &getEndStringProperty,
    &getEndBoolProperty, &getEndIntProperty};
const VekOamSpiMrBiDirAssociation_4 biDirAssociation = {nullptr, nullptr, &getFirstEnd,
                                                        &getSecondEnd, &getNextBiDirAssociation};
const VekOamSpiMrUniDirAssociation_4 uniDirAssociation = {nullptr, nullptr, &getUniDirEnd,
                                                          &getNextUniDirAssociation};
const VekOamSpiMrAttributeType_4 attributeType = {nullptr, &getTypeCode, nullptr,
                                                  nullptr, nullptr,      &getTypeIntProperty};
const VekOamSpiMrAttribute_4 attribute = {&getAttributeGeneralProperties, &getAttributeMoc,
                                          &getAttributeType, &getNextAttribute};
const VekOamSpiMrReferenceType_4 referenceType = {&getReferencedMoc};

}

VekOamSpiModelRepository_4* modelRepository() {
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
