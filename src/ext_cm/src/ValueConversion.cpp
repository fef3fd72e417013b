// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ValueConversion.h"

#include <cstdint>
#include <string>

namespace OrvExtCmRouterService {

ValueConversion::ValueConversion(const IdMappings& mappings) : mMappings(mappings) {}

void ValueConversion::transformContainer(ConvertedResultData& view,
                                         IdMappings::DnConversion direction) const {
    if (view.type == OrvMoAttributeTypeMoRef_3) {
        transformMoRefContainer(view, direction);
    } else if (view.type == OrvMoAttributeTypeStruct_3) {
        transformStructContainer(view, direction);
    }
}

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
    if (view.count == 0 || !showsReference(view.originalValue(0).structValue)) {
        return;
    }
    OrvMoAttributeValue_3* const slots = view.ownValues();
    for (std::uint32_t index = 0; index < view.count; ++index) {
        slots[index].structValue =
            rebuildStruct(view, view.originalValue(index).structValue, direction);
    }
}

OrvMoStructMember_3* ValueConversion::rebuildStruct(ConvertedResultData& view,
                                                    const OrvMoStructMember_3* first,
                                                    IdMappings::DnConversion direction) const {
    OrvMoStructMember_3* head = nullptr;
    OrvMoStructMember_3** link = &head;
    for (const OrvMoStructMember_3* member = first; member != nullptr; member = member->next) {
        auto* const rebuilt = view.malloc<OrvMoStructMember_3>(1);
        *link = rebuilt;
        link = &rebuilt->next;
        rebuilt->name = view.strdup(member->name);
        ConvertedResultData& nested = view.addNested(member->value);
        transformContainer(nested, direction);
        rebuilt->value = &nested;
    }
    return head;
}

ValueConversion::NamedAttribute** ValueConversion::newArrayFor(NamedAttribute* const* attributes,
                                                               Orv::AutoMemory& memory) {
    unsigned int count = 0;
    while (attributes[count] != nullptr) {
        ++count;
    }
    return memory.malloc<NamedAttribute*>(count + 1);
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
