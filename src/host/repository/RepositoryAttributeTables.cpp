// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RepositoryTables.h"

#include "RepositoryAnswer.h"

namespace OrvHost {

namespace {

using Rows = RepositoryRows;

OrvReturnT getTypeCode(Handle type, int* code) {
    return answer<&Rows::type>(type, code, [](const auto& row, int& result) {
        result = row.typeCode;
        return OrvOk;
    });
}

OrvReturnT getTypeIntProperty(Handle type, int identifier, long long* number) {
    return answer<&Rows::type>(type, number, [identifier](const auto& row, long long& result) {
        return answerBound(row.multiplicity, identifier, result);
    });
}

OrvReturnT getAttributeGeneralProperties(Handle attribute, Handle* properties) {
    return answerProperties<&Rows::attribute>(attribute, properties);
}

OrvReturnT getAttributeMoc(Handle attribute, Handle* moc) {
    return answerHandle<&Rows::attribute, &Rows::AttributeRow::moc>(attribute, moc);
}

OrvReturnT getAttributeType(Handle attribute, Handle* type) {
    return answer<&Rows::attribute>(attribute, type, [attribute](const auto&, Handle& result) {
        result = encode({HandleKind::Type, decode(attribute).first});
        return OrvOk;
    });
}

OrvReturnT getNextAttribute(Handle attribute, Handle* next) {
    return answerHandle<&Rows::attribute, &Rows::AttributeRow::next>(attribute, next);
}

OrvReturnT getReferencedMoc(Handle type, Handle* moc) {
    return answer<&Rows::type>(type, moc, [](const auto& row, Handle& result) {
        if (row.referencedMoc == 0) {
            return OrvInvalidArgument;
        }
        result = row.referencedMoc;
        return OrvOk;
    });
}

}

const VekOamSpiMrAttributeType_4 kAttributeType{nullptr, &getTypeCode, nullptr,
                                                nullptr, nullptr,      &getTypeIntProperty};

const VekOamSpiMrAttribute_4 kAttribute{&getAttributeGeneralProperties, &getAttributeMoc,
                                        &getAttributeType, &getNextAttribute};

const VekOamSpiMrReferenceType_4 kReferenceType{&getReferencedMoc};

}
