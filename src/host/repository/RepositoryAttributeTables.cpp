// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RepositoryTables.h"

#include "RepositoryAnswer.h"
#include "model/TypeCode.h"

namespace OrvHost {

namespace {

OrvReturnT getTypeCode(Handle type, int* code) {
    return answer(type, &isOne<HandleKind::Type>, code,
                  [](const RepositoryIndex& index, RepositoryHandle parts) {
                      return std::optional<int>(typeCodeOf(index.attribute(parts).type.kind));
                  });
}

OrvReturnT getTypeIntProperty(Handle type, int identifier, long long* number) {
    return answerProperty(type, &isOne<HandleKind::Type>, number,
                          [identifier](const RepositoryIndex& index, RepositoryHandle parts) {
                              const AttributeDef& attribute = index.attribute(parts);
                              return boundOf(attribute, attribute.multiplicity, identifier);
                          });
}

OrvReturnT getAttributeGeneralProperties(Handle attribute, Handle* properties) {
    return propertiesOf(attribute, &isOne<HandleKind::Attribute>, properties);
}

OrvReturnT getAttributeMoc(Handle attribute, Handle* moc) {
    return answer(attribute, &isOne<HandleKind::Attribute>, moc,
                  [](const auto&, RepositoryHandle parts) {
                      return Answer(encode({HandleKind::Moc, parts.first}));
                  });
}

OrvReturnT getAttributeType(Handle attribute, Handle* type) {
    return answer(attribute, &isOne<HandleKind::Attribute>, type,
                  [](const auto&, RepositoryHandle parts) {
                      return Answer(encode({HandleKind::Type, parts.first, parts.second}));
                  });
}

OrvReturnT getNextAttribute(Handle attribute, Handle* next) {
    return answer(attribute, &isOne<HandleKind::Attribute>, next,
                  [](const RepositoryIndex& index, RepositoryHandle parts) {
                      return elementAt(HandleKind::Attribute, parts.first, parts.second + 1,
                                       index.model().classes[parts.first].attributes.size());
                  });
}

OrvReturnT getReferencedMoc(Handle type, Handle* moc) {
    return answerProperty(
        type, &isOne<HandleKind::Type>, moc,
        [](const RepositoryIndex& index, RepositoryHandle parts) -> Answer {
            const TypeDef& def = index.attribute(parts).type;
            if (def.kind != ValueKind::MoRef) {
                return std::nullopt;
            }
            const bool isOneClass = def.targets.size() == 1;
            return encode({HandleKind::Moc, isOneClass ? def.targets.front() : kAnyClassPosition});
        });
}

}

const VekOamSpiMrAttributeType_4 kAttributeType{nullptr, &getTypeCode, nullptr,
                                                nullptr, nullptr,      &getTypeIntProperty};

const VekOamSpiMrAttribute_4 kAttribute{&getAttributeGeneralProperties, &getAttributeMoc,
                                        &getAttributeType, &getNextAttribute};

const VekOamSpiMrReferenceType_4 kReferenceType{&getReferencedMoc};

}
