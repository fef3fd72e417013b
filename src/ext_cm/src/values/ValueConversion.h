// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_EXT_CM_VALUECONVERSION_H
#define ORV_EXT_CM_VALUECONVERSION_H

#include "AutoMemory.h"
#include "OrvMoAttributeValue.h"
#include "values/ConversionMemory.h"
#include "values/ConvertedResultData.h"
#include "values/IdMappings.h"
#include "values/ValueCheck.h"

#include <cstdint>
#include <new>

namespace OrvExtCmRouterService {

/// Translates the DNs in attribute values, for the versions that hand results back through release
/// functions. A value without DNs costs no copy: its view goes on sharing the original's slots.
///
/// A reference that cannot be translated passes through as it is. Nothing here fails but by
/// exhausted memory.
///
/// Threads: any; a value belongs to one thread.
class ValueConversion {
public:
    using NamedAttribute = OrvMoNamedAttributeValueContainer_3;
    using Slot = OrvMoAttributeValue_3;

    explicit ValueConversion(const IdMappings& mappings) : mMappings(mappings) {}

    /// Converts references and structs; any other type is left alone. The value is readable.
    void transformContainer(ConvertedResultData& view, IdMappings::DnConversion direction) const;

    /// Converts what a router or an interceptor has answered, unless it is not readable: that is
    /// passed on as it is, since the call has been done and its result belongs to the client.
    void toExternal(ConvertedResultData& view) const {
        if (mayHoldReferences(view) && areReferencesReadable(view)) {
            transformContainer(view, IdMappings::ToExternal);
        }
    }

    /// The internal form of \p value, which is readable. New slots belong to \p memory; a value
    /// without DNs keeps its own.
    OrvMoAttributeValueContainer_3 toInternal(const OrvMoAttributeValueContainer_3& value,
                                              ConversionMemory& memory) const {
        OrvMoAttributeValueContainer_3 converted = value;
        if (mayHoldReferences(value)) {
            converted.values = internalSlots(value, memory);
        }
        return converted;
    }

    /// Internal copies of \p attributes, which are ended by a null pointer and whose values are
    /// readable, in an array that ends in the same way. All belongs to \p memory, but for the names
    /// and for values without DNs, which are the client's own. \p onEach is called with each copy
    /// before the next attribute is converted.
    template <class OnEach>
    NamedAttribute** toInternal(NamedAttribute* const* attributes, ConversionMemory& memory,
                                const OnEach& onEach) const {
        const auto count = static_cast<unsigned int>(lengthOf(attributes));
        auto** const copies = memory.malloc<NamedAttribute*>(count + 1);
        auto* const records = count != 0 ? memory.malloc<NamedAttribute>(count) : nullptr;
        for (unsigned int index = 0; index < count; ++index) {
            records[index].name = attributes[index]->name;
            records[index].value = toInternal(attributes[index]->value, memory);
            copies[index] = &records[index];
            onEach(records[index]);
        }
        return copies;
    }

private:
    class NestedMaker;

    Slot* internalSlots(const OrvMoAttributeValueContainer_3& value,
                        ConversionMemory& memory) const;
    template <class Memory>
    Slot* translatedSlots(const Slot* references, std::uint32_t count,
                          IdMappings::DnConversion direction, Memory& memory) const;
    void transformMoRefContainer(ConvertedResultData& view,
                                 IdMappings::DnConversion direction) const;
    void transformStructContainer(ConvertedResultData& view,
                                  IdMappings::DnConversion direction) const;

    const IdMappings& mMappings;
};

}

#endif
