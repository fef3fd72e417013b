// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_COMMON_MODELREADER_H
#define ORV_COMMON_MODELREADER_H

#include "HostFlag.h"
#include "OrvReturn.h"
#include "VekOamSpiModelRepository_4.h"

#include <type_traits>

namespace Orv {

/// What a function of the model repository answered.
template <class Value>
struct ModelAnswer {
    const char* entry; ///< the name of the function, for messages
    bool isOffered;    ///< false if the repository has no such function: nothing was asked then
    OrvReturnT code;   ///< what it returned; OrvFailure if it is not offered
    Value value;       ///< what it wrote; zero, null or false if it wrote nothing
};

/// The model repository's functions with types. Each operation makes one call, of a function whose
/// contract says what is asked, and gives back all that came of it. Callers decide what a code
/// means, and differ: one takes handles that come from the model to be good and goes on with the
/// value, another must not go on after any failure.
///
/// The steps of a list begin with `first` and `next`. They take the value to give back if the
/// function writes nothing, for a walk that goes on after a failed step.
///
/// Texts are owned by the repository. Contracts: VekOamSpiModelRepository_4.h.
///
/// Threads: any. Nothing is kept but the table.
class ModelReader {
public:
    using Moc = VekOamSpiMrMocHandle_4T;
    using Attribute = VekOamSpiMrAttributeHandle_4T;
    using Type = VekOamSpiMrTypeHandle_4T;
    using Containment = VekOamSpiMrContainmentHandle_4T;
    using BiDir = VekOamSpiMrBiDirAssociationHandle_4T;
    using UniDir = VekOamSpiMrUniDirAssociationHandle_4T;
    using End = VekOamSpiMrAssociationEndHandle_4T;
    using Properties = VekOamSpiMrGeneralPropertiesHandle_4T;
    using Text = const char*;

    /// \p repository is not owned and outlives the reader.
    explicit ModelReader(const VekOamSpiModelRepository_4& repository) : mModel(repository) {}

    /// The class of the object that \p dn, internal, names.
    ModelAnswer<Moc> mocOfDn(const char* dn) const {
        constexpr int flag = 1;
        return ask<Moc>("getMocFromDn", mModel.dnLookup, &VekOamSpiMrDnLookup_4::getMocFromDn, dn,
                        flag);
    }

    ModelAnswer<Text> generalName(Properties properties) const {
        return ask<Text>("getGeneralStringProperty", mModel.generalProperties,
                         &VekOamSpiMrGeneralProperties_4::getGeneralStringProperty, properties,
                         VekOamSpiMrGeneralName_4);
    }

    // Classes

    ModelAnswer<Properties> mocProperties(Moc moc) const {
        return ask<Properties>("getMocGeneralProperties", mModel.mocQueries,
                               &VekOamSpiMrMocQueries_4::getMocGeneralProperties, moc);
    }
    ModelAnswer<Attribute> firstAttribute(Moc moc, Attribute unwritten = 0) const {
        return step("getFirstAttribute", mModel.mocQueries,
                    &VekOamSpiMrMocQueries_4::getFirstAttribute, unwritten, moc);
    }
    ModelAnswer<Attribute> nextAttribute(Attribute current, Attribute unwritten = 0) const {
        return step("getNextAttribute", mModel.attribute, &VekOamSpiMrAttribute_4::getNextAttribute,
                    unwritten, current);
    }
    ModelAnswer<Containment> firstContainment(Moc moc, Containment unwritten = 0) const {
        return step("getFirstContainment", mModel.mocQueries,
                    &VekOamSpiMrMocQueries_4::getFirstContainment, unwritten, moc);
    }
    ModelAnswer<Containment> nextContainment(Containment current, Containment unwritten = 0) const {
        return step("getNextContainment", mModel.containment,
                    &VekOamSpiMrContainment_4::getNextContainment, unwritten, current);
    }
    ModelAnswer<Moc> containedMoc(Containment containment) const {
        return ask<Moc>("getContainedMoc", mModel.containment,
                        &VekOamSpiMrContainment_4::getContainedMoc, containment);
    }

    // Attributes and their types

    ModelAnswer<Properties> attributeProperties(Attribute attribute) const {
        return ask<Properties>("getAttributeGeneralProperties", mModel.attribute,
                               &VekOamSpiMrAttribute_4::getAttributeGeneralProperties, attribute);
    }
    ModelAnswer<Moc> attributeMoc(Attribute attribute) const {
        return ask<Moc>("getAttributeMoc", mModel.attribute,
                        &VekOamSpiMrAttribute_4::getAttributeMoc, attribute);
    }
    ModelAnswer<Type> attributeType(Attribute attribute) const {
        return ask<Type>("getAttributeType", mModel.attribute,
                         &VekOamSpiMrAttribute_4::getAttributeType, attribute);
    }
    ModelAnswer<int> typeCode(Type type) const {
        return ask<int>("getTypeCode", mModel.attributeType,
                        &VekOamSpiMrAttributeType_4::getTypeCode, type);
    }
    /// \p identifier: VekOamSpiMrLowerBound_4 or VekOamSpiMrUpperBound_4.
    ModelAnswer<long long> typeBound(Type type, int identifier) const {
        return ask<long long>("getTypeIntProperty", mModel.attributeType,
                              &VekOamSpiMrAttributeType_4::getTypeIntProperty, type, identifier);
    }
    ModelAnswer<Moc> referencedMoc(Type type) const {
        return ask<Moc>("getReferencedMoc", mModel.referenceType,
                        &VekOamSpiMrReferenceType_4::getReferencedMoc, type);
    }

    // Associations and their ends

    ModelAnswer<BiDir> firstBiDir(Moc moc, BiDir unwritten = 0) const {
        return step("getFirstBiDirAssociation", mModel.mocQueries,
                    &VekOamSpiMrMocQueries_4::getFirstBiDirAssociation, unwritten, moc);
    }
    ModelAnswer<BiDir> nextBiDir(BiDir current, Moc moc, BiDir unwritten = 0) const {
        return step("getNextBiDirAssociation", mModel.biDirAssociation,
                    &VekOamSpiMrBiDirAssociation_4::getNextBiDirAssociation, unwritten, current,
                    moc);
    }
    ModelAnswer<End> firstEnd(BiDir association) const {
        return ask<End>("getFirstEnd", mModel.biDirAssociation,
                        &VekOamSpiMrBiDirAssociation_4::getFirstEnd, association);
    }
    ModelAnswer<End> secondEnd(BiDir association) const {
        return ask<End>("getSecondEnd", mModel.biDirAssociation,
                        &VekOamSpiMrBiDirAssociation_4::getSecondEnd, association);
    }
    ModelAnswer<UniDir> firstUniDir(Moc moc, UniDir unwritten = 0) const {
        return step("getFirstUniDirAssociation", mModel.mocQueries,
                    &VekOamSpiMrMocQueries_4::getFirstUniDirAssociation, unwritten, moc);
    }
    ModelAnswer<UniDir> nextUniDir(UniDir current, UniDir unwritten = 0) const {
        return step("getNextUniDirAssociation", mModel.uniDirAssociation,
                    &VekOamSpiMrUniDirAssociation_4::getNextUniDirAssociation, unwritten, current);
    }
    ModelAnswer<End> uniDirEnd(UniDir association) const {
        return ask<End>("getUniDirEnd", mModel.uniDirAssociation,
                        &VekOamSpiMrUniDirAssociation_4::getUniDirEnd, association);
    }
    ModelAnswer<Moc> endMoc(End end) const {
        return ask<Moc>("getEndMoc", mModel.associationEnd, &VekOamSpiMrAssociationEnd_4::getEndMoc,
                        end);
    }
    ModelAnswer<Attribute> endAttribute(End end) const {
        return ask<Attribute>("getEndAttribute", mModel.associationEnd,
                              &VekOamSpiMrAssociationEnd_4::getEndAttribute, end);
    }
    ModelAnswer<Properties> endProperties(End end) const {
        return ask<Properties>("getEndGeneralProperties", mModel.associationEnd,
                               &VekOamSpiMrAssociationEnd_4::getEndGeneralProperties, end);
    }
    /// \p identifier: VekOamSpiMrEndName_4 or VekOamSpiMrEndRole_4.
    ModelAnswer<Text> endText(End end, int identifier) const {
        return ask<Text>("getEndStringProperty", mModel.associationEnd,
                         &VekOamSpiMrAssociationEnd_4::getEndStringProperty, end, identifier);
    }
    ModelAnswer<bool> endKeepsAtDelete(End end) const {
        return ask<bool>("getEndBoolProperty", mModel.associationEnd,
                         &VekOamSpiMrAssociationEnd_4::getEndBoolProperty, end,
                         VekOamSpiMrEndKeepAtDelete_4);
    }
    /// \p identifier: VekOamSpiMrLowerBound_4 or VekOamSpiMrUpperBound_4.
    ModelAnswer<long long> endBound(End end, int identifier) const {
        return ask<long long>("getEndIntProperty", mModel.associationEnd,
                              &VekOamSpiMrAssociationEnd_4::getEndIntProperty, end, identifier);
    }

private:
    template <class Value, class SubTable, class Function, class... Arguments>
    static ModelAnswer<Value> ask(const char* entry, const SubTable* subTable,
                                  Function SubTable::*function, Arguments... arguments) {
        return step(entry, subTable, function, Value{}, arguments...);
    }

    /// Asks with \p value as the out parameter.
    template <class Value, class SubTable, class Function, class... Arguments>
    static ModelAnswer<Value> step(const char* entry, const SubTable* subTable,
                                   Function SubTable::*function, Value value,
                                   Arguments... arguments) {
        if (subTable == nullptr || subTable->*function == nullptr) {
            return {entry, false, OrvFailure, value};
        }
        const OrvReturnT code = (subTable->*function)(arguments..., &value);
        if constexpr (std::is_same_v<Value, bool>) {
            return {entry, true, code, isSet(value)};
        } else {
            return {entry, true, code, value};
        }
    }

    const VekOamSpiModelRepository_4& mModel;
};

}

#endif
