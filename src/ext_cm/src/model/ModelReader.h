// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_MODELREADER_H
#define ORV_EXT_CM_MODELREADER_H

#include "VekOamSpiModelRepository_4.h"
#include "values/HostFlag.h"

#include <cstring>

namespace OrvExtCmRouterService {

/// True if both texts are there and equal: what has no name matches nothing.
inline bool sameText(const char* one, const char* other) {
    return one != nullptr && other != nullptr && std::strcmp(one, other) == 0;
}

/// \p text where a text must stand, also if the model has none.
inline const char* textOrEmpty(const char* text) {
    return text != nullptr ? text : "";
}

/// Asks the model repository in the words of bidirectional associations.
///
/// Handles that come from the model are taken to be good, so their codes are not looked at: what
/// cannot be answered is a zero handle, a null text, a zero number or false. Only the lookup of a
/// class by a DN, which comes from a client, tells its code.
///
/// Each operation makes the calls that it needs and no others, in the order of its name's parts.
/// Texts belong to the repository. Threads: any; the repository must not be null.
class ModelReader {
public:
    explicit ModelReader(const VekOamSpiModelRepository_4* repository) : mModel(*repository) {}

    OrvReturnT mocOfDn(const char* dn, VekOamSpiMrMocHandle_4T& moc) const {
        moc = 0;
        return mModel.dnLookup->getMocFromDn(dn, dnLookupFlag, &moc);
    }

    const char* mocName(VekOamSpiMrMocHandle_4T moc) const {
        VekOamSpiMrGeneralPropertiesHandle_4T properties = 0;
        mModel.mocQueries->getMocGeneralProperties(moc, &properties);
        return generalName(properties);
    }

    const char* attributeName(VekOamSpiMrAttributeHandle_4T attribute) const {
        VekOamSpiMrGeneralPropertiesHandle_4T properties = 0;
        mModel.attribute->getAttributeGeneralProperties(attribute, &properties);
        return generalName(properties);
    }

    VekOamSpiMrMocHandle_4T attributeMoc(VekOamSpiMrAttributeHandle_4T attribute) const {
        VekOamSpiMrMocHandle_4T moc = 0;
        mModel.attribute->getAttributeMoc(attribute, &moc);
        return moc;
    }

    VekOamSpiMrTypeHandle_4T attributeType(VekOamSpiMrAttributeHandle_4T attribute) const {
        VekOamSpiMrTypeHandle_4T type = 0;
        mModel.attribute->getAttributeType(attribute, &type);
        return type;
    }

    bool isReference(VekOamSpiMrTypeHandle_4T type) const {
        int code = 0;
        mModel.attributeType->getTypeCode(type, &code);
        return code == VekOamSpiMrTypeMoRef_4;
    }

    long long typeBound(VekOamSpiMrTypeHandle_4T type, int identifier) const {
        long long bound = 0;
        mModel.attributeType->getTypeIntProperty(type, identifier, &bound);
        return bound;
    }

    VekOamSpiMrMocHandle_4T referencedMoc(VekOamSpiMrTypeHandle_4T type) const {
        VekOamSpiMrMocHandle_4T moc = 0;
        mModel.referenceType->getReferencedMoc(type, &moc);
        return moc;
    }

    VekOamSpiMrAssociationEndHandle_4T
    firstEnd(VekOamSpiMrBiDirAssociationHandle_4T association) const {
        VekOamSpiMrAssociationEndHandle_4T end = 0;
        mModel.biDirAssociation->getFirstEnd(association, &end);
        return end;
    }

    VekOamSpiMrAssociationEndHandle_4T
    secondEnd(VekOamSpiMrBiDirAssociationHandle_4T association) const {
        VekOamSpiMrAssociationEndHandle_4T end = 0;
        mModel.biDirAssociation->getSecondEnd(association, &end);
        return end;
    }

    /// The end of \p association that is not \p near. The second end is asked for only if the
    /// first is the near one.
    VekOamSpiMrAssociationEndHandle_4T farEnd(VekOamSpiMrBiDirAssociationHandle_4T association,
                                              VekOamSpiMrAssociationEndHandle_4T near) const {
        const VekOamSpiMrAssociationEndHandle_4T first = firstEnd(association);
        return first == near ? secondEnd(association) : first;
    }

    VekOamSpiMrMocHandle_4T endMoc(VekOamSpiMrAssociationEndHandle_4T end) const {
        VekOamSpiMrMocHandle_4T moc = 0;
        mModel.associationEnd->getEndMoc(end, &moc);
        return moc;
    }

    VekOamSpiMrAttributeHandle_4T endAttribute(VekOamSpiMrAssociationEndHandle_4T end) const {
        VekOamSpiMrAttributeHandle_4T attribute = 0;
        mModel.associationEnd->getEndAttribute(end, &attribute);
        return attribute;
    }

    /// The end's name by way of its general properties.
    const char* endName(VekOamSpiMrAssociationEndHandle_4T end) const {
        VekOamSpiMrGeneralPropertiesHandle_4T properties = 0;
        mModel.associationEnd->getEndGeneralProperties(end, &properties);
        return generalName(properties);
    }

    const char* endText(VekOamSpiMrAssociationEndHandle_4T end, int identifier) const {
        const char* text = nullptr;
        mModel.associationEnd->getEndStringProperty(end, identifier, &text);
        return text;
    }

    bool endKeepsAtDelete(VekOamSpiMrAssociationEndHandle_4T end) const {
        bool keep = false;
        mModel.associationEnd->getEndBoolProperty(end, VekOamSpiMrEndKeepAtDelete_4, &keep);
        return isSet(keep);
    }

    long long endBound(VekOamSpiMrAssociationEndHandle_4T end, int identifier) const {
        long long bound = 0;
        mModel.associationEnd->getEndIntProperty(end, identifier, &bound);
        return bound;
    }

private:
    static constexpr int dnLookupFlag = 1;

    const char* generalName(VekOamSpiMrGeneralPropertiesHandle_4T properties) const {
        const char* name = nullptr;
        mModel.generalProperties->getGeneralStringProperty(properties, VekOamSpiMrGeneralName_4,
                                                           &name);
        return name;
    }

    const VekOamSpiModelRepository_4& mModel;
};

}

#endif
