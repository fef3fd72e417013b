// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "values/ValueConversion.h"

#include "values/StructConversion.h"
#include "values/ValueCheck.h"

#include <cstdint>
#include <string>

namespace OrvExtCmRouterService {

ValueConversion::ValueConversion(const IdMappings& mappings) : mMappings(mappings) {}

/// Makes the values of a struct that is rebuilt for the view \p root. All belong to the root: a
/// view that belonged to the one around it would be destroyed by recursion over the depth of the
/// value.
class ValueConversion::NestedMaker {
public:
    using Container = OrvMoAttributeValueContainer_3;

    NestedMaker(const ValueConversion& conversion, ConvertedResultData& root,
                IdMappings::DnConversion direction)
        : mConversion(conversion), mRoot(root), mDirection(direction) {}

    Container* convert(Container* original, OrvMoAttributeValue_3*& slots) {
        ConvertedResultData& nested = mRoot.addNested(original);
        if (nested.type == OrvMoAttributeTypeMoRef_3) {
            mConversion.transformMoRefContainer(nested, mDirection);
        } else if (isStructWithReferences(nested)) {
            slots = nested.ownValues();
        }
        return &nested;
    }

private:
    const ValueConversion& mConversion;
    ConvertedResultData& mRoot;
    IdMappings::DnConversion mDirection;
};

void ValueConversion::transformContainer(ConvertedResultData& view,
                                         IdMappings::DnConversion direction) const {
    if (view.type == OrvMoAttributeTypeMoRef_3) {
        transformMoRefContainer(view, direction);
    } else if (isStructWithReferences(view)) {
        transformStructContainer(view, direction);
    }
}

// The call has been done, so its result belongs to the client even if it cannot be read here.
void ValueConversion::toExternal(ConvertedResultData& view) const {
    if (isReadable(view)) {
        transformContainer(view, IdMappings::ToExternal);
    }
}

// A reference that cannot be translated stays the producer's text: it lives as long as the
// original, which lives as long as the view. An empty value keeps the producer's array.
void ValueConversion::transformMoRefContainer(ConvertedResultData& view,
                                              IdMappings::DnConversion direction) const {
    for (std::uint32_t index = 0; index < view.count; ++index) {
        const char* const original = view.originalValue(index).moRef;
        const std::string translated = mMappings.convertDn(original, direction);
        OrvMoAttributeValue_3& slot = view.ownValues()[index];
        slot.moRef = translated.empty() ? original : view.strdup(translated.c_str());
    }
}

void ValueConversion::transformStructContainer(ConvertedResultData& view,
                                               IdMappings::DnConversion direction) const {
    const OrvMoAttributeValueContainer_3 original = view; // its slots are those of the producer
    NestedMaker maker(*this, view, direction);
    StructConversion<NestedMaker>(maker, view).rebuild(original, view.ownValues());
}

ValueConversion::NamedAttribute** ValueConversion::newArrayFor(NamedAttribute* const* attributes,
                                                               Orv::AutoMemory& memory) {
    return memory.malloc<NamedAttribute*>(static_cast<unsigned int>(lengthOf(attributes)) + 1);
}

ValueConversion::NamedAttribute* ValueConversion::toInternal(NamedAttribute& attribute,
                                                             Orv::AutoMemory& memory,
                                                             NewRecordFn newRecord) const {
    auto* const view = new ConvertedResultData(nullptr, &attribute.value);
    memory.own(view);
    transformContainer(*view, IdMappings::ToInternal);
    NamedAttribute* const converted = newRecord(memory);
    converted->name = attribute.name;
    converted->value = *view;
    return converted;
}

ValueConversion::NamedAttribute** ValueConversion::toInternal(NamedAttribute* const* attributes,
                                                              Orv::AutoMemory& memory,
                                                              NewRecordFn newRecord) const {
    NamedAttribute** const converted = newArrayFor(attributes, memory);
    for (std::size_t index = 0; attributes[index] != nullptr; ++index) {
        converted[index] = toInternal(*attributes[index], memory, newRecord);
    }
    return converted;
}

ValueConversion::NamedAttribute* ValueConversion::newOwnedRecord(Orv::AutoMemory& memory) {
    auto* const record = new NamedAttribute{};
    memory.own(record);
    return record;
}

ValueConversion::NamedAttribute* ValueConversion::newBlockRecord(Orv::AutoMemory& memory) {
    return memory.malloc<NamedAttribute>(1);
}

}
